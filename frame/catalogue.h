// Message catalogue (ACTA.res), menu captions (menu.res) and the resource profile
// file (captions, pictures, colours). No user-visible text lives in the code.
#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>

struct MessageRecord {
  int level = 0;  // 0 information, 1 warning, 2 critical
  QString text1;
  QString text2;
  QString code;
};

// Reads ACTA.res from the working directory into memory. A missing file shows
// "resource file[ACTA.res] not found." and gives false.
bool LoadResource();
// Same for menu.res with two fields; false only means built-in captions stay.
bool LoadMenuResource();
// Reads a catalogue from the given text (tests and tools); replaces what is held.
void LoadResourceFromText(const QString& text);
void LoadMenuResourceFromText(const QString& text);
// First record with exactly this code.
std::optional<MessageRecord> FindMessage(const QString& code);
// Text 1 of a catalogue record with %1, %2, ... replaced by args in order (for lines
// built of counts and names). Without the record: the code and the args, so that the
// facts still show.
QString CatalogueLine(const QString& code, const QStringList& args = {});
// Caption of the first equal key, or "*** Resouce Not Exist ***".
QString GetMenuCaption(const QString& key);

// Shows a catalogue message with OK. With replace, every "__MESSAGE1__" and
// "__MESSAGE2__" in extra is replaced by text 1 and text 2 and extra is the whole text;
// without, extra goes on a line of its own behind the texts.
void MessageDialog(const QString& code, const QString& extra = QString(), bool replace = false);
// Same with Yes and No: returns kAnswerYes (6) or kAnswerNo (7); 0 when the code or
// the title code is missing.
int QuestionDialog(const QString& code, const QString& extra = QString(), bool replace = false);
// The text a MessageDialog of that code would show (title not included).
QString BuildMessageText(const MessageRecord& rec, const QString& extra, bool replace);

// Resource profile file lookups (section = screen name, see the installation files).
QString GetIniCaption(const QString& section, const QString& key);
// Colour as red + 256 green + 65536 blue from key_R, key_G, key_B; 0 when unreadable.
std::uint32_t GetIniBackColor(const QString& section, const QString& key);
// The picture path of a key when that file exists; else empty, with a level-1 trace
// line "image file not found: section,key" under the name "SetIniPicture".
QString GetIniPicturePath(const QString& section, const QString& key);
// Reads FONT, the date formats and FORM_BKCOLOR into the shared values.
void LoadCommonFormat();
