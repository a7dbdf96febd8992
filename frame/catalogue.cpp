#include "frame/catalogue.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>

#include <vector>

#include "frame/config.h"
#include "frame/dialog.h"
#include "frame/profile.h"
#include "frame/shared_values.h"
#include "frame/trace.h"
#include "frame/vbformat.h"

namespace {

const QString kNotExist = QStringLiteral("*** Resouce Not Exist ***");
const QString kTitleCode = QStringLiteral("TITL-I-0001");

// Codes keep the order of the file; the index remembers the first record of each code.
struct Catalogue {
  std::vector<MessageRecord> records;
  QHash<QString, qsizetype> firstIndex;
};

struct MenuCatalogue {
  QHash<QString, QString> captions;  // first caption of each key
};

Catalogue& catalogue() {
  static Catalogue c;
  return c;
}

MenuCatalogue& menus() {
  static MenuCatalogue m;
  return m;
}

// Reads comma-separated fields as the message files are written: a field
// ends at a comma or a line end, a quoted field may hold commas, blanks around an
// unquoted field are dropped, and a record simply takes the next fields, so it may run
// over a line end.
class FieldReader {
 public:
  explicit FieldReader(const QString& text) : s_(text) {}

  bool atEnd() const { return pos_ >= s_.size(); }

  // Skips empty lines between records.
  void skipBlankLines() {
    while (!atEnd()) {
      qsizetype p = pos_;
      while (p < s_.size() && (s_[p] == u' ' || s_[p] == u'\t')) ++p;
      if (p < s_.size() && (s_[p] == u'\r' || s_[p] == u'\n')) {
        pos_ = p;
        skipLineEnd();
      } else {
        return;
      }
    }
  }

  QString next() {
    while (!atEnd() && (s_[pos_] == u' ' || s_[pos_] == u'\t')) ++pos_;
    QString field;
    if (!atEnd() && s_[pos_] == u'"') {
      const qsizetype close = s_.indexOf(u'"', pos_ + 1);
      const qsizetype end = close < 0 ? s_.size() : close;
      field = s_.mid(pos_ + 1, end - pos_ - 1);
      pos_ = close < 0 ? s_.size() : close + 1;
      // Anything between the closing quote and the separator is dropped.
      while (!atEnd() && s_[pos_] != u',' && s_[pos_] != u'\r' && s_[pos_] != u'\n') ++pos_;
    } else {
      const qsizetype start = pos_;
      while (!atEnd() && s_[pos_] != u',' && s_[pos_] != u'\r' && s_[pos_] != u'\n') ++pos_;
      field = s_.mid(start, pos_ - start).trimmed();
    }
    if (!atEnd()) {
      if (s_[pos_] == u',') {
        ++pos_;
      } else {
        skipLineEnd();
      }
    }
    return field;
  }

  // Drops the rest of the current line including its break.
  void skipLine() {
    while (!atEnd() && s_[pos_] != u'\r' && s_[pos_] != u'\n') ++pos_;
    skipLineEnd();
  }

  // True when the last field ended the line (so a comment code took the whole line).
  bool atLineStart() const { return pos_ == 0 || s_[pos_ - 1] == u'\n' || s_[pos_ - 1] == u'\r'; }

 private:
  void skipLineEnd() {
    if (!atEnd() && s_[pos_] == u'\r') ++pos_;
    if (!atEnd() && s_[pos_] == u'\n') ++pos_;
  }

  const QString& s_;
  qsizetype pos_ = 0;
};

// Reads records of fieldCount fields; calls add(fields) for each kept record.
template <typename Add>
void readRecords(const QString& text, int fieldCount, Add&& add) {
  FieldReader in(text);
  for (;;) {
    in.skipBlankLines();
    if (in.atEnd()) return;
    QStringList fields;
    fields << in.next();
    if (fields.front().startsWith(u';')) {
      if (!in.atLineStart()) in.skipLine();
      continue;
    }
    for (int i = 1; i < fieldCount; ++i) fields << in.next();
    if (fields.front().isEmpty()) continue;
    add(fields);
  }
}

bool readWholeFile(const QString& name, QString& text) {
  QFile f(name);
  if (!f.open(QIODevice::ReadOnly)) return false;
  text = DecodeSystemText(f.readAll());
  return true;
}

QString defaultTitle() {
  if (auto t = FindMessage(kTitleCode)) return t->text1;
  return QCoreApplication::applicationName();
}

DialogIcon iconOfLevel(int level) {
  switch (level) {
    case 0:
      return DialogIcon::Information;
    case 1:
      return DialogIcon::Exclamation;
    case 2:
      return DialogIcon::Critical;
    default:
      return DialogIcon::None;
  }
}

// Shared part of both dialogs. Returns the record and title when the dialog can be
// shown, after logging; nullopt when a missing code or title was reported instead.
struct Prepared {
  MessageRecord rec;
  QString title;
  QString text;
};

std::optional<Prepared> prepare(const QString& code, const QString& extra, bool replace,
                                const QString& logName) {
  DialogInterface* dialogs = GetDialogInterface();
  const auto rec = FindMessage(code);
  if (!rec) {
    dialogs->showMessage(defaultTitle(), kNotExist + QStringLiteral(" (") + code + u')',
                         DialogIcon::Critical);
    return std::nullopt;
  }
  Prepared p{*rec, QString(), BuildMessageText(*rec, extra, replace)};
  // Logged before the box appears, so the log has it even if nobody ever answers.
  if (rec->level == 1 || rec->level == 2) {
    QString logged = p.text;
    logged.replace(QLatin1String("\r\n"), QLatin1String("_"));
    WriteTrace(QString::number(rec->level), logName, logged);
  }
  const auto title = FindMessage(kTitleCode);
  if (!title) {
    dialogs->showMessage(QCoreApplication::applicationName(),
                         kNotExist + QStringLiteral(" TITL-I-0001, vbCritical + vbOKOnly"),
                         DialogIcon::None);
    return std::nullopt;
  }
  p.title = title->text1;
  return p;
}

}  // namespace

void LoadResourceFromText(const QString& text) {
  Catalogue fresh;
  readRecords(text, 4, [&](const QStringList& f) {
    MessageRecord rec;
    rec.code = f[0];
    rec.level = static_cast<int>(Val(f[1]));
    rec.text1 = f[2];
    rec.text2 = f[3];
    if (!fresh.firstIndex.contains(rec.code)) {
      fresh.firstIndex.insert(rec.code, static_cast<qsizetype>(fresh.records.size()));
    }
    fresh.records.push_back(std::move(rec));
  });
  catalogue() = std::move(fresh);
}

void LoadMenuResourceFromText(const QString& text) {
  MenuCatalogue fresh;
  readRecords(text, 2, [&](const QStringList& f) {
    if (!fresh.captions.contains(f[0])) fresh.captions.insert(f[0], f[1]);
  });
  menus() = std::move(fresh);
}

bool LoadResource() {
  QString text;
  if (!FileExists(QStringLiteral("ACTA.res")) || !readWholeFile(QStringLiteral("ACTA.res"), text)) {
    GetDialogInterface()->showMessage(QCoreApplication::applicationName(),
                                      QStringLiteral("resource file[ACTA.res] not found."),
                                      DialogIcon::None);
    return false;
  }
  LoadResourceFromText(text);
  return true;
}

bool LoadMenuResource() {
  QString text;
  if (!FileExists(QStringLiteral("menu.res")) || !readWholeFile(QStringLiteral("menu.res"), text)) {
    return false;
  }
  LoadMenuResourceFromText(text);
  return true;
}

std::optional<MessageRecord> FindMessage(const QString& code) {
  const Catalogue& c = catalogue();
  const auto it = c.firstIndex.constFind(code);
  if (it == c.firstIndex.cend()) return std::nullopt;
  return c.records[static_cast<size_t>(*it)];
}

QString CatalogueLine(const QString& code, const QStringList& args) {
  const auto rec = FindMessage(code);
  if (!rec) return code + (args.isEmpty() ? QString() : QStringLiteral(": ") + args.join(QStringLiteral(", ")));
  QString text = rec->text1;
  // From the highest number down, so that %1 does not eat the start of %10.
  for (qsizetype i = args.size(); i >= 1; --i)
    text.replace(QLatin1Char('%') + QString::number(i), args.at(i - 1));
  return text;
}

QString GetMenuCaption(const QString& key) {
  const auto& captions = menus().captions;
  const auto it = captions.constFind(key);
  return it == captions.cend() ? kNotExist : *it;
}

QString BuildMessageText(const MessageRecord& rec, const QString& extra, bool replace) {
  QString text;
  if (!replace) {
    text = rec.text1;
    if (!rec.text2.isEmpty()) text += QStringLiteral("\r\n") + rec.text2;
  }
  if (!extra.isEmpty()) {
    if (replace) {
      text = extra;
      text.replace(QLatin1String("__MESSAGE1__"), rec.text1);
      text.replace(QLatin1String("__MESSAGE2__"), rec.text2);
    } else {
      text += QStringLiteral("\r\n") + extra;
    }
  }
  return text;
}

void MessageDialog(const QString& code, const QString& extra, bool replace) {
  if (auto p = prepare(code, extra, replace, QStringLiteral("MessageDialog"))) {
    GetDialogInterface()->showMessage(p->title, p->text, iconOfLevel(p->rec.level));
  }
}

int QuestionDialog(const QString& code, const QString& extra, bool replace) {
  if (auto p = prepare(code, extra, replace, QStringLiteral("QuestionDialog"))) {
    return GetDialogInterface()->askQuestion(p->title, p->text, iconOfLevel(p->rec.level));
  }
  return 0;
}

QString GetIniCaption(const QString& section, const QString& key) {
  return ReadIniString(GetResourceIniPath(), section, key);
}

std::uint32_t GetIniBackColor(const QString& section, const QString& key) {
  std::uint32_t colour = 0;
  std::uint32_t factor = 1;
  for (const char* part : {"_R", "_G", "_B"}) {
    const QString text = ReadIniString(GetResourceIniPath(), section, key + QLatin1String(part));
    bool ok = false;
    const int v = text.trimmed().toInt(&ok);
    if (!ok || v < 0 || v > 255) {
      WriteTrace(QStringLiteral("1"), QStringLiteral("GetIniBackColor"),
                 QStringLiteral("color not found: ") + section + u',' + key);
      return 0;
    }
    colour += static_cast<std::uint32_t>(v) * factor;
    factor *= 256;
  }
  return colour;
}

QString GetIniPicturePath(const QString& section, const QString& key) {
  const QString path = ReadIniString(GetResourceIniPath(), section, key);
  if (!path.isEmpty() && FileExists(path)) return path;
  WriteTrace(QStringLiteral("1"), QStringLiteral("SetIniPicture"),
             QStringLiteral("image file not found: ") + section + u',' + key);
  return QString();
}

void LoadCommonFormat() {
  const QString resource = GetResourceIniPath();
  const QString common = QStringLiteral("VB_COMMON");
  SetCommonFontName(ReadIniString(resource, common, QStringLiteral("FONT")));
  const QString localeShortDate = Ini_GetLocaleShortDate();
  if (localeShortDate.trimmed().isEmpty()) {
    const QString dateFormat = ReadIniString(resource, common, QStringLiteral("DATE_FORMAT"));
    QString screen;
    for (QChar c : dateFormat) {
      if (c == u'-' || c == u'/' || c == u'.') screen += u'\\';
      screen += c;
    }
    SetCommonDateFormat(dateFormat);
    SetCommonScreenDateFormat(screen);
  } else {
    SetCommonDateFormat(localeShortDate);
    SetCommonScreenDateFormat(Ini_GetDateScreenYmd());
  }
  SetCommonFormBackColor(GetIniBackColor(common, QStringLiteral("FORM_BKCOLOR")));
}
