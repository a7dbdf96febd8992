#include "commands.h"

#include <QTextStream>

int cmd_initdb(const QStringList&) {
  QTextStream(stderr) << "not available yet\n";
  return 1;
}

int cmd_users(const QStringList&) {
  QTextStream(stderr) << "not available yet\n";
  return 1;
}

int cmd_days(const QStringList&) {
  QTextStream(stderr) << "not available yet\n";
  return 1;
}

