#include "commands.h"

#include <QTextStream>

int cmd_chart_data(const QStringList&) {
  QTextStream(stderr) << "not available yet\n";
  return 1;
}

int cmd_range(const QStringList&) {
  QTextStream(stderr) << "not available yet\n";
  return 1;
}

