#include "commands.h"

#include <QTextStream>

int cmd_render(const QStringList&) {
  QTextStream(stderr) << "not available yet\n";
  return 1;
}

