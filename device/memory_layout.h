// The recorder's memory layouts, each described once: where every field of the
// management block and of a data page lies, how it is encoded, and what it is called in
// the trace log and in the JSON dump. The decoders, the image writer and both dumps walk
// these tables.
#pragma once

#include <QByteArray>
#include <QString>
#include <span>
#include <variant>

#include "device/device_records.h"

namespace layout {

enum class Codec {
  Byte,          // unsigned byte
  Word,          // ByteToWord
  Long,          // ByteToLong
  Text,          // ByteToText of `size` bytes
  Bcd2Word,      // four BCD digits
  Bcd3Long,      // six BCD digits
  Bcd4Date,      // YYYY MM DD
  Bcd3Date,      // YY MM DD
  Bcd5DateTime,  // YY MM DD hh mm
  Bcd2Time,      // hh mm; 0xFF 0xFF for no time
  RecordCheck,   // 900 bytes as they stand
  NibbleProfile, // 720 nibbles in 360 bytes, the high nibble first
  MetsProfile,   // 720 bytes in the last three transfer blocks of the page, 240 each
};

// Which kinds have a row: every kind, the BRIO kinds, or ZR and KT only.
enum class Only { All, Brio, ZrKt };

template <class Record>
using Member = std::variant<quint8 Record::*, qint32 Record::*, QString Record::*, QDate Record::*, QTime Record::*,
                            QDateTime Record::*, LevelProfileArray Record::*,
                            std::array<quint8, kRecordCheckBytes> Record::*>;

template <class Record>
struct Field {
  const char* name;   // the record's field, the key of the JSON dump
  const char* label;  // the trace log's label, "[" included
  int offset;
  Codec codec;
  Member<Record> member;
  Only only = Only::All;
  int size = 0;  // Text only
};

using ManageField = Field<FlashManage>;
using PageField = Field<FlashData>;

// The management block (one table for all kinds, the rows marked by the kinds that read
// them) and the page of a kind (one table per family: A, BRIO nibbles, METS).
std::span<const ManageField> ManageLayout();
std::span<const PageField> PageLayout(RecorderKind kind);
bool Applies(Only only, RecorderKind kind);
// Bytes the kind's management block layout covers.
int ManageBytes(RecorderKind kind);

// Decoding and encoding of the rows that apply to the kind. Encoding writes only those
// bytes, so unread bytes keep what the buffer held.
void Decode(const quint8* bytes, FlashManage& out, RecorderKind kind);
void Decode(const quint8* bytes, FlashData& out, RecorderKind kind);
void Encode(QByteArray& bytes, const FlashManage& in, RecorderKind kind);
void Encode(QByteArray& bytes, const FlashData& in, RecorderKind kind);

// A field's value as the trace log shows it (dates "YYYY/MM/DD", times "HH:MM") and as
// the JSON dump does (a JSON value: dates "YYYY-MM-DD", the zero date "", times
// "HH:MM:SS", the record check in hex, a profile as an array).
template <class Record>
QString LogText(const Field<Record>& f, const Record& r);
template <class Record>
QString JsonValue(const Field<Record>& f, const Record& r);
QString JsonString(const QString& s);

}  // namespace layout
