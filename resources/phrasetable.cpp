// Joins the phrase files, one UTF-8 file a language with lines of a key, a tab and a text, into the table
// that the program reads: UTF-16, little-endian, with a byte order mark, lines closed by CR LF, each a key
// and sixteen texts separated by tabs. English says which keys there are and in which order; what another
// language lacks stays an empty cell. Refuses texts that the program could not use.
#include <QDir>
#include <QFile>
#include <QHash>
#include <QStringDecoder>
#include <QStringList>

#include <array>
#include <cstdio>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

// The order is that of the table's columns 1 to 16; the program picks by it.
constexpr std::array<const char*, 16> languages{"cs", "da", "nl", "en", "fi", "fr", "de", "el",
                                                "it", "nb", "pt", "sl", "es", "sv", "tr", "ru"};

struct PhraseFile {
  QStringList keys;  // in the order of the lines
  QHash<QString, QString> texts;
};

bool complain(const QString& text) {
  std::fprintf(stderr, "%s\n", qPrintable(text));
  return false;
}

QString faultOf(const QStringList& fields, const PhraseFile& read) {
  if (fields.size() != 2) return QStringLiteral("has %1 tabs, not one").arg(fields.size() - 1);
  if (fields[0].isEmpty()) return QStringLiteral("has no key");
  if (fields[1].contains(u'\r')) return QStringLiteral("holds a line break");
  if (read.texts.contains(fields[0])) return QStringLiteral("repeats the key ") + fields[0];
  return {};
}

/// Nothing when the file is faulty; a language without a file has no texts.
std::optional<PhraseFile> readPhrases(const QString& path) {
  PhraseFile read;
  QFile file(path);
  if (!file.exists()) return read;
  if (!file.open(QIODevice::ReadOnly)) return complain(path + u": "_s + file.errorString()), std::nullopt;
  QStringDecoder decode(QStringDecoder::Utf8);
  const QString content = decode(file.readAll());
  if (decode.hasError()) return complain(path + u": is not UTF-8"_s), std::nullopt;
  QStringList lines = content.split(u'\n');
  if (!lines.last().isEmpty()) return complain(path + u": the last line is not closed"_s), std::nullopt;
  lines.removeLast();
  for (qsizetype i = 0; i < lines.size(); ++i) {
    const QStringList fields = lines[i].split(u'\t');
    if (const QString fault = faultOf(fields, read); !fault.isEmpty())
      return complain(QStringLiteral("%1:%2: %3").arg(path).arg(i + 1).arg(fault)), std::nullopt;
    read.keys.append(fields[0]);
    read.texts.insert(fields[0], fields[1]);
  }
  return read;
}

bool fitsEnglish(const QString& path, const PhraseFile& file, const PhraseFile& english) {
  for (const QString& key : file.keys)
    if (english.texts.value(key).isEmpty())
      return complain(QStringLiteral("%1: %2 has no English text").arg(path, key));
  return true;
}

bool save(const QString& table, const QString& path) {
  QByteArray bytes;
  bytes.reserve(table.size() * 2);
  for (const QChar c : table) bytes.append(char(c.cell())).append(char(c.row()));
  QFile target(path);
  if (!target.open(QIODevice::WriteOnly) || target.write(bytes) != bytes.size() || !target.flush())
    return complain(path + u": "_s + target.errorString());
  return true;
}

bool join(const QDir& folder, const QString& to) {
  const std::optional<PhraseFile> english = readPhrases(folder.filePath(u"en.tsv"_s));
  if (!english) return false;
  QStringList rows = english->keys;
  for (const char* language : languages) {
    const QString path = folder.filePath(QLatin1String(language) + u".tsv"_s);
    const std::optional<PhraseFile> file = readPhrases(path);
    if (!file || !fitsEnglish(path, *file, *english)) return false;
    for (qsizetype i = 0; i < rows.size(); ++i) rows[i] += u'\t' + file->texts.value(english->keys[i]);
  }
  QString table(QChar(0xFEFF));
  for (const QString& row : std::as_const(rows)) table += row + u"\r\n"_s;
  return save(table, to);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: phrasetable FOLDER RESOURCE\n");
    return 2;
  }
  return join(QDir(QFile::decodeName(argv[1])), QFile::decodeName(argv[2])) ? 0 : 1;
}
