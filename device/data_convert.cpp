#include "device/data_convert.h"

#include <QStringDecoder>

namespace {

// The recorder writes texts in the Japanese ANSI code page. Plain ASCII (the usual
// case: digits) skips the decoder.
QString DecodeRecorderText(const quint8* bytes, int n) {
  bool ascii = true;
  for (int i = 0; i < n; ++i) {
    if (bytes[i] >= 0x80) {
      ascii = false;
      break;
    }
  }
  const char* chars = reinterpret_cast<const char*>(bytes);
  if (ascii) return QString::fromLatin1(chars, n);
  QStringDecoder decoder("Shift_JIS");
  if (!decoder.isValid()) return QString::fromLatin1(chars, n);
  return decoder.decode(QByteArrayView(chars, n));
}

}  // namespace

QString ByteToText(const quint8* bytes, int n) {
  bool allFF = true;
  for (int i = 0; i < n; ++i) {
    if (bytes[i] != 0xFF) {
      allFF = false;
      break;
    }
  }
  if (allFF) return QStringLiteral("NoData");
  return DecodeRecorderText(bytes, n);
}

quint16 ByteToWord(const quint8* bytes) {
  return static_cast<quint16>(bytes[0] | (bytes[1] << 8));
}

qint32 ByteToLong(const quint8* bytes) {
  const quint32 u = static_cast<quint32>(bytes[0]) | (static_cast<quint32>(bytes[1]) << 8) |
                    (static_cast<quint32>(bytes[2]) << 16) | (static_cast<quint32>(bytes[3]) << 24);
  return static_cast<qint32>(u);
}

qint32 BcdToByte(quint8 b) { return (b >> 4) * 10 + (b & 0x0F); }

qint32 Bcd2ToWord(const quint8* bytes) { return BcdToByte(bytes[0]) * 100 + BcdToByte(bytes[1]); }

qint32 Bcd3ToLong(const quint8* bytes) {
  return BcdToByte(bytes[0]) * 10000 + BcdToByte(bytes[1]) * 100 + BcdToByte(bytes[2]);
}

namespace {

// A date the way the system's date type can hold it: years 100 to 9999, real days only.
QDate BuildDate(int year, int month, int day) {
  if (year < 100 || year > 9999) return ZeroDate();
  const QDate d(year, month, day);
  return d.isValid() ? d : ZeroDate();
}

}  // namespace

QDate Bcd4ToDate(const quint8* bytes) {
  const int year = BcdToByte(bytes[0]) * 100 + BcdToByte(bytes[1]);
  return BuildDate(year, BcdToByte(bytes[2]), BcdToByte(bytes[3]));
}

QDate Bcd3ToDate(const quint8* bytes) {
  const int yy = BcdToByte(bytes[0]);
  const int year = yy >= 70 ? 1900 + yy : 2000 + yy;
  return BuildDate(year, BcdToByte(bytes[1]), BcdToByte(bytes[2]));
}

QDateTime Bcd5ToDateTime(const quint8* bytes) {
  const QDate date = BuildDate(2000 + BcdToByte(bytes[0]), BcdToByte(bytes[1]), BcdToByte(bytes[2]));
  if (date == ZeroDate()) return ZeroDateTime();
  const qint64 seconds = static_cast<qint64>(BcdToByte(bytes[3])) * 3600 +
                         static_cast<qint64>(BcdToByte(bytes[4])) * 60;
  return QDateTime(date, QTime(0, 0), Qt::UTC).addSecs(seconds);
}

QTime Bcd2ToTime(const quint8* bytes) {
  const int hh = BcdToByte(bytes[0]);
  const int mm = BcdToByte(bytes[1]);
  if (hh > 23 || mm > 59) return NoTimeMarker();
  return QTime(hh, mm, 0);
}

QString ProfileSlotDumpText(quint8 raw, bool mets) {
  if (mets) {
    if (raw == 0) return QStringLiteral("0");
    if (raw > 90) return QString();
    return QStringLiteral("%1.%2").arg(raw / 10).arg(raw % 10);
  }
  if (raw == 0) return QStringLiteral("0");
  if (raw == 1) return QStringLiteral("0.5");
  if (raw <= 10) return QString::number(raw - 1);
  return QString();
}
