// The profile-file reader over arbitrary bytes (UTF-8 or CP932, any line breaks).
#include <unistd.h>

#include <QFile>
#include <cstddef>
#include <cstdint>

#include "frame/profile.h"
#include "fuzz/fuzz_setup.h"

namespace {
QString g_file;
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  g_file = FuzzScratchFolder() + QStringLiteral("/profile.ini");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  {
    QFile f(g_file);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate)) return 0;
    f.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
  }
  (void)ReadIniString(g_file, QStringLiteral("SYSTEM"), QStringLiteral("DB_NAME"));
  (void)ReadIniString(g_file, QStringLiteral("system"), QStringLiteral("lang"), QStringLiteral("x"));
  (void)ReadIniInt(g_file, QStringLiteral("SYSTEM"), QStringLiteral("LOG_LEVEL"));
  (void)ReadIniString(g_file, QStringLiteral("OTHER"), QStringLiteral(""));
  (void)WriteIniString(g_file, QStringLiteral("SYSTEM"), QStringLiteral("SORT_ORDER"), QStringLiteral("2"));
  (void)ReadIniInt(g_file, QStringLiteral("SYSTEM"), QStringLiteral("SORT_ORDER"));
  return 0;
}
