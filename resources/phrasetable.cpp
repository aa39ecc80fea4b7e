// Turns the phrase table from UTF-8 into the form that the program reads: UTF-16, little-endian, with a byte
// order mark, lines closed by CR LF. Refuses a table that the program could not use.
#include <QFile>
#include <QSet>
#include <QStringList>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype fieldsPerLine = 17;
constexpr qsizetype englishColumn = 4;

QString faultOf(const QString& line, QSet<QString>& keys) {
  const QStringList fields = line.split(u'\t');
  if (fields.size() != fieldsPerLine) return QStringLiteral("has %1 fields, not 17").arg(fields.size());
  if (fields[0].isEmpty()) return QStringLiteral("has no key");
  if (fields[englishColumn].isEmpty()) return QStringLiteral("has no English text");
  if (keys.contains(fields[0])) return QStringLiteral("repeats the key ") + fields[0];
  keys.insert(fields[0]);
  return {};
}

bool complain(const QString& text) {
  std::fprintf(stderr, "%s\n", qPrintable(text));
  return false;
}

bool convert(const QString& from, const QString& to) {
  QFile source(from);
  if (!source.open(QIODevice::ReadOnly)) return complain(from + u": "_s + source.errorString());
  QStringList lines = QString::fromUtf8(source.readAll()).split(u'\n');
  if (!lines.last().isEmpty()) return complain(from + u": the last line is not closed"_s);
  lines.removeLast();
  QSet<QString> keys;
  QString table(QChar(0xFEFF));
  for (qsizetype i = 0; i < lines.size(); ++i) {
    if (const QString fault = faultOf(lines[i], keys); !fault.isEmpty())
      return complain(QStringLiteral("%1:%2: %3").arg(from).arg(i + 1).arg(fault));
    table += lines[i] + u"\r\n"_s;
  }
  QByteArray bytes;
  bytes.reserve(table.size() * 2);
  for (const QChar c : std::as_const(table)) bytes.append(char(c.cell())).append(char(c.row()));
  QFile target(to);
  if (!target.open(QIODevice::WriteOnly) || target.write(bytes) != bytes.size() || !target.flush())
    return complain(to + u": "_s + target.errorString());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: phrasetable TABLE.tsv RESOURCE\n");
    return 2;
  }
  return convert(QFile::decodeName(argv[1]), QFile::decodeName(argv[2])) ? 0 : 1;
}
