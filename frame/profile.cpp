#include "frame/profile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>

#include <cstdint>
#include <fstream>
#include <optional>

namespace {

// The value buffer of the classic profile call holds 255 characters and a NUL.
constexpr qsizetype kMaxValueLength = 255;

// Every accessor reads the file afresh, so this is the hot path of all settings: a plain
// stream read costs half the system calls of a QFile open (no stat of the name).
QString readProfileText(const QString& file) {
  if (file.isEmpty()) return QString();
  std::ifstream in(QFile::encodeName(file).toStdString(), std::ios::binary);
  if (!in) return QString();
  QByteArray bytes;
  char buffer[8192];
  while (in.read(buffer, sizeof buffer) || in.gcount() > 0) {
    bytes.append(buffer, static_cast<qsizetype>(in.gcount()));
  }
  return DecodeSystemText(bytes);
}

bool isBlank(QChar c) { return c == u' ' || c == u'\t' || c == u'\r'; }

QStringView trimmed(QStringView v) {
  qsizetype b = 0;
  qsizetype e = v.size();
  while (b < e && isBlank(v[b])) ++b;
  while (e > b && isBlank(v[e - 1])) --e;
  return v.sliced(b, e - b);
}

// "[NAME]" -> NAME; nullopt when the line is no section header.
std::optional<QStringView> sectionName(QStringView line) {
  QStringView t = trimmed(line);
  if (t.isEmpty() || t.front() != u'[') return std::nullopt;
  const qsizetype close = t.indexOf(u']');
  if (close < 0) return std::nullopt;
  return trimmed(t.sliced(1, close - 1));
}

struct KeyLine {
  QStringView key;
  QStringView value;
};

std::optional<KeyLine> keyLine(QStringView line) {
  const qsizetype eq = line.indexOf(u'=');
  if (eq < 0) return std::nullopt;
  return KeyLine{trimmed(line.first(eq)), trimmed(line.sliced(eq + 1))};
}

bool sameName(QStringView a, const QString& b) {
  return a.compare(QStringView(b).trimmed(), Qt::CaseInsensitive) == 0;
}

// The value as the profile call hands it out: surrounding quotes of one kind taken
// off, cut at the first NUL and at 255 characters.
QString profileValue(QStringView raw) {
  if (raw.size() >= 2 && (raw.front() == u'"' || raw.front() == u'\'') &&
      raw.back() == raw.front()) {
    raw = raw.sliced(1, raw.size() - 2);
  }
  const qsizetype nul = raw.indexOf(QChar(u'\0'));
  if (nul >= 0) raw = raw.first(nul);
  if (raw.size() > kMaxValueLength) raw = raw.first(kMaxValueLength);
  return raw.toString();
}

// Calls fn(line, lineStart, lineEnd) for every line of text, lineEnd excluding the break.
template <typename Fn>
void forEachLine(const QString& text, Fn&& fn) {
  const QStringView all(text);
  qsizetype start = 0;
  while (start < all.size()) {
    qsizetype nl = all.indexOf(u'\n', start);
    const qsizetype end = nl < 0 ? all.size() : nl;
    if (!fn(all.sliced(start, end - start), start, end)) return;
    start = nl < 0 ? all.size() : nl + 1;
  }
}

std::optional<QString> findValue(const QString& text, const QString& section, const QString& key) {
  bool inSection = false;
  bool sectionSeen = false;
  std::optional<QString> found;
  forEachLine(text, [&](QStringView line, qsizetype, qsizetype) {
    if (auto name = sectionName(line)) {
      // Only the first section of a name counts, as with the classic calls.
      if (inSection) return false;
      inSection = !sectionSeen && sameName(*name, section);
      sectionSeen = sectionSeen || inSection;
      return true;
    }
    if (!inSection) return true;
    if (auto kv = keyLine(line); kv && sameName(kv->key, key)) {
      found = profileValue(kv->value);
      return false;
    }
    return true;
  });
  return found;
}

}  // namespace

QString DecodeSystemText(const QByteArray& bytes) {
  QByteArrayView view(bytes);
  if (view.startsWith("\xEF\xBB\xBF")) view = view.sliced(3);
  QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
  QString text = utf8.decode(view);
  if (!utf8.hasError()) return text;
  QStringDecoder cp932("CP932");
  if (cp932.isValid()) return cp932.decode(view);
  return QString::fromLatin1(view);
}

QString ReadIniString(const QString& file, const QString& section, const QString& key) {
  const QString text = readProfileText(file);
  if (text.isEmpty()) return QString();
  return findValue(text, section, key).value_or(QString());
}

QString ReadIniString(const QString& file, const QString& section, const QString& key,
                      const QString& defaultValue) {
  const QString text = readProfileText(file);
  if (text.isEmpty()) return defaultValue;
  return findValue(text, section, key).value_or(defaultValue);
}

QString ReadIniInt(const QString& file, const QString& section, const QString& key) {
  const QString value = ReadIniString(file, section, key);
  QStringView v(value);
  qsizetype i = 0;
  while (i < v.size() && (v[i] == u' ' || v[i] == u'\t')) ++i;
  bool negative = false;
  if (i < v.size() && (v[i] == u'-' || v[i] == u'+')) {
    negative = v[i] == u'-';
    ++i;
  }
  // Accumulated in 32 bits with wrap-around, as the classic call does.
  std::uint32_t n = 0;
  bool any = false;
  for (; i < v.size() && v[i] >= u'0' && v[i] <= u'9'; ++i) {
    n = n * 10u + static_cast<std::uint32_t>(v[i].unicode() - u'0');
    any = true;
  }
  if (!any) return QStringLiteral("0");
  const auto result = static_cast<std::int32_t>(negative ? 0u - n : n);
  return QString::number(result);
}

int WriteIniString(const QString& file, const QString& section, const QString& key,
                   const QString& value) {
  if (file.isEmpty() || section.trimmed().isEmpty() || key.trimmed().isEmpty()) return 0;
  QString cleanValue = value;
  if (const qsizetype nul = cleanValue.indexOf(QChar(u'\0')); nul >= 0) cleanValue.truncate(nul);

  QString text;
  if (QFileInfo::exists(file)) {
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly)) return 0;
    text = DecodeSystemText(in.readAll());
  }
  const QString eol = text.contains(QLatin1String("\r\n")) ? QStringLiteral("\r\n")
                                                          : QStringLiteral("\n");
  const QString newLine = key.trimmed() + u'=' + cleanValue;

  // Where the key's line is, or where a new key goes (after the section's last entry).
  qsizetype replaceFrom = -1;
  qsizetype replaceTo = -1;
  qsizetype insertAt = -1;
  bool inSection = false;
  bool sectionSeen = false;
  forEachLine(text, [&](QStringView line, qsizetype start, qsizetype end) {
    if (auto name = sectionName(line)) {
      if (inSection) return false;
      inSection = !sectionSeen && sameName(*name, section);
      if (inSection) {
        sectionSeen = true;
        insertAt = end;
      }
      return true;
    }
    if (!inSection) return true;
    if (!trimmed(line).isEmpty()) insertAt = end;
    if (auto kv = keyLine(line); kv && sameName(kv->key, key)) {
      replaceFrom = start;
      replaceTo = end;
      if (replaceTo > replaceFrom && text[replaceTo - 1] == u'\r') --replaceTo;
      return false;
    }
    return true;
  });

  if (replaceFrom >= 0) {
    text.replace(replaceFrom, replaceTo - replaceFrom, newLine);
  } else if (sectionSeen) {
    // insertAt is the end of a line (before its break, if any).
    if (insertAt < text.size()) {
      if (insertAt > 0 && text[insertAt - 1] == u'\r') --insertAt;
      text.insert(insertAt, eol + newLine);
    } else {
      text += eol + newLine + eol;
    }
  } else {
    if (!text.isEmpty() && !text.endsWith(u'\n')) text += eol;
    text += u'[' + section.trimmed() + u']' + eol + newLine + eol;
  }

  QSaveFile out(file);
  if (!out.open(QIODevice::WriteOnly)) return 0;
  out.write(text.toUtf8());
  return out.commit() ? 1 : 0;
}

bool FileExists(const QString& path) {
  if (path.isEmpty()) return false;
  return QFileInfo(path).isFile();
}
