#include "commands.h"

#include <QTextStream>

int cmd_make_recorder(const QStringList&) {
  QTextStream(stderr) << "not available yet\n";
  return 1;
}

int cmd_dump(const QStringList&) {
  QTextStream(stderr) << "not available yet\n";
  return 1;
}

