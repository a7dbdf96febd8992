#include "device/recorder_dump.h"

#include <QStringList>

#include "device/data_convert.h"
#include "device/memory_layout.h"

qint32 ReadRecorderContents(TavoReader& reader, DeviceClock& clock, RecorderContents& out,
                            QString* error) {
  const auto fail = [error](qint32 code, const QString& message) {
    if (error != nullptr) *error = message;
    return code;
  };
  DeviceState state;
  if (UsbOpen(reader, clock, state) == 0)
    return fail(kDeviceNoTransfer, QStringLiteral("no recorder on the reader"));
  qint32 code = PM_RecvManage(reader, clock, state, QString());
  if (code == kDeviceUnknownKind) {
    UsbClose(reader, state);
    return fail(code, QStringLiteral("not a recorder of a known kind (code %1)").arg(code));
  }
  if (code != kDeviceOk) {
    UsbClose(reader, state);
    return fail(code, QStringLiteral("the management block cannot be read (code %1)").arg(code));
  }
  const FlashManage& m = state.manage;
  const int ring = RingSize(state.pmKind, state.pmLang);
  const QString pageProblem = CheckRecorderPageNumbers(m, state.pmKind, state.pmLang);
  if (!pageProblem.isEmpty()) {
    UsbClose(reader, state);
    return fail(kDeviceNoTransfer, pageProblem);
  }
  out.kind = state.pmKind;
  out.language = state.pmLang;
  out.manage = m;
  out.pages.clear();
  // Every page from the start page up to the recording page, round the ring. A full
  // ring has its recording page just below the start page: that is all the pages, not
  // none, even though a receive's page count reads it as none.
  const int count = WrapPageCount(static_cast<qint16>(m.RecordingPage - m.RecordStartPage), state) + 1;
  for (int i = 1; i <= count; ++i) {
    int page = m.RecordStartPage + i - 1;
    if (page > ring) page -= ring;
    code = PM_RecvData(reader, clock, state, static_cast<qint16>(page), QString());
    if (code != kDeviceOk) {
      UsbClose(reader, state);
      return fail(code, QStringLiteral("page %1 cannot be read (code %2)").arg(page).arg(code));
    }
    out.pages.emplace_back(page, state.data);
  }
  UsbClose(reader, state);
  return kDeviceOk;
}

namespace {

using layout::JsonString;

// Field name and its value already in JSON form.
using Fields = QList<std::pair<QString, QString>>;

Fields ManageFields(const FlashManage& m, RecorderKind kind) {
  Fields f;
  for (const layout::ManageField& row : layout::ManageLayout())
    if (layout::Applies(row.only, kind)) f.append({QLatin1String(row.name), layout::JsonValue(row, m)});
  return f;
}

Fields PageFields(int page, const FlashData& d, RecorderKind kind) {
  Fields f;
  f.append({QStringLiteral("page"), QString::number(page)});
  for (const layout::PageField& row : layout::PageLayout(kind))
    if (layout::Applies(row.only, kind)) f.append({QLatin1String(row.name), layout::JsonValue(row, d)});
  return f;
}

QString JsonObject(const Fields& f, const QString& indent) {
  QString r = QStringLiteral("{\n");
  for (qsizetype i = 0; i < f.size(); ++i) {
    r += indent + QStringLiteral("  ") + JsonString(f[i].first) + QStringLiteral(": ") + f[i].second;
    r += i + 1 < f.size() ? QStringLiteral(",\n") : QStringLiteral("\n");
  }
  r += indent + QLatin1Char('}');
  return r;
}

}  // namespace

QByteArray RecorderContentsJson(const RecorderContents& c) {
  QString r = QStringLiteral("{\n  \"kind\": ") + JsonString(KindText(c.kind)) + QStringLiteral(",\n  \"language\": ") +
              JsonString(LangText(c.language)) + QStringLiteral(",\n  \"manage\": ") +
              JsonObject(ManageFields(c.manage, c.kind), QStringLiteral("  ")) + QStringLiteral(",\n  \"pages\": [");
  for (size_t i = 0; i < c.pages.size(); ++i) {
    r += i == 0 ? QStringLiteral("\n    ") : QStringLiteral(",\n    ");
    r += JsonObject(PageFields(c.pages[i].first, c.pages[i].second, c.kind), QStringLiteral("    "));
  }
  r += c.pages.empty() ? QStringLiteral("]\n}\n") : QStringLiteral("\n  ]\n}\n");
  return r.toUtf8();
}

QString RecorderContentsText(const RecorderContents& c) {
  QString r;
  r += QStringLiteral("kind: %1\nlanguage: %2\n\n[management block]\n").arg(KindText(c.kind), LangText(c.language));
  for (const auto& [name, value] : ManageFields(c.manage, c.kind)) r += name + QStringLiteral(": ") + value + QLatin1Char('\n');
  const bool mets = InfoOf(c.kind).mets;
  for (const auto& [page, data] : c.pages) {
    r += QStringLiteral("\n[page %1]\n").arg(page);
    for (const auto& [name, value] : PageFields(page, data, c.kind)) {
      if (name == QLatin1String("page")) continue;
      if (name == QLatin1String("LevelProfile")) {
        // One line an hour: 30 slots as shown in the log dump, "." for no data.
        r += QStringLiteral("LevelProfile:\n");
        const LevelProfileArray& values = KindProfile(data, c.kind);
        for (int h = 0; h < 24; ++h) {
          QStringList cells;
          for (int s = 0; s < 30; ++s) {
            const QString t = ProfileSlotDumpText(values[static_cast<size_t>(h * 30 + s)], mets);
            cells << (t.isEmpty() ? QStringLiteral(".") : t);
          }
          r += QStringLiteral("  %1:00 ").arg(h, 2, 10, QLatin1Char('0')) + cells.join(QLatin1Char(' ')) + QLatin1Char('\n');
        }
        continue;
      }
      r += name + QStringLiteral(": ") + value + QLatin1Char('\n');
    }
  }
  return r;
}
