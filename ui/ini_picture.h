// Pictures of the screens, named in the resource profile file (section = screen,
// key = picture). A missing or unreadable picture never stops a screen: it is logged
// and the control keeps what it showed before.
#pragma once

#include <QPixmap>
#include <QString>

class QAbstractButton;
class QLabel;

// Loads the picture of section/key. False (and a level-"1" line under "SetIniPicture")
// when the file is missing or cannot be read; picture is then left as it was.
bool LoadIniPicture(const QString& section, const QString& key, QPixmap& picture);

// Shows the picture in a label / on a button.
void SetIniPicture(QLabel& target, const QString& section, const QString& key);
void SetIniPicture(QAbstractButton& target, const QString& section, const QString& key);
