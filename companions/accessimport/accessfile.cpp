#include "companions/accessimport/accessfile.h"

#include "platform/basic/convert.h"
#include "platform/basic/failure.h"
#include "platform/sql/errors.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>

#include <cmath>

namespace accessimport {

using namespace Qt::StringLiterals;
using platform::Failure;
using platform::basic::Value;
using platform::sql::Type;

namespace {

constexpr int patienceMs = 10 * 60 * 1000;  // for one table
const QString dateForm = u"%Y-%m-%dT%H:%M:%S"_s;
const QString unreadableDate =
    u"1900-01-00T00:00:00"_s;         // what the reader gives for a date that it does not know
constexpr int longestText = 199'996;  // bytes; mdbtools cuts what is longer without a word
/// Amounts come as decimal texts that are read as doubles; behind this one a double has no ten-thousandths.
constexpr double largestAmount = 549'755'813'888.0;

// The header's hidden part is scrambled with a key that all files of this format share.
constexpr int hiddenAt = 0x18, hiddenLength = 128, passwordAt = 0x42, passwordLength = 40, dateAt = 0x72;

QByteArray unscrambled(QByteArray bytes) {
  static constexpr uchar key[] = {0xc7, 0xda, 0x39, 0x6b};
  uchar state[256];
  for (int i = 0; i < 256; ++i) state[i] = uchar(i);
  for (int i = 0, j = 0; i < 256; ++i) {
    j = (j + state[i] + key[i % 4]) % 256;
    std::swap(state[i], state[j]);
  }
  int i = 0, j = 0;
  for (char& byte : bytes) {
    i = (i + 1) % 256;
    j = (j + state[i]) % 256;
    std::swap(state[i], state[j]);
    byte = char(uchar(byte) ^ state[(state[i] + state[j]) % 256]);
  }
  return bytes;
}

/// The types as the reader's listing of a schema names them.
AccessColumn columnOf(const QString& name, const QString& kind, int size) {
  static const QHash<QString, Type> known{{u"Boolean"_s, Type::Boolean},   {u"Byte"_s, Type::Integer},
                                          {u"Integer"_s, Type::Integer},   {u"Long Integer"_s, Type::Long},
                                          {u"Currency"_s, Type::Currency}, {u"Single"_s, Type::Single},
                                          {u"Double"_s, Type::Double},     {u"DateTime"_s, Type::Date},
                                          {u"Text"_s, Type::Text},         {u"Memo/Hyperlink"_s, Type::Memo}};
  AccessColumn column;
  column.name = name;
  column.type = known.value(kind, Type::Memo);
  if (!known.contains(kind)) column.foreignKind = kind;
  if (column.type == Type::Text) column.size = size > 0 ? size : 255;
  return column;
}

std::optional<Value> valueOf(const QJsonValue& json, Type type) {
  if (json.isUndefined() || json.isNull()) {
    if (type == Type::Boolean) return Value(false);
    return Value(platform::basic::Null{});
  }
  const bool number = json.isDouble();
  switch (type) {
    case Type::Boolean:
      if (number) return Value(json.toDouble() != 0);
      return {};
    case Type::Integer:
    case Type::Long:
      if (number && json.toDouble() >= -2147483648.0 && json.toDouble() <= 2147483647.0)
        return Value(qint32(json.toDouble()));
      return {};
    case Type::Single:
      if (number) return Value(float(json.toDouble()));
      return {};
    case Type::Double:
      if (number) return Value(json.toDouble());
      return {};
    case Type::Currency:
      if (number && std::abs(json.toDouble()) < largestAmount)
        return Value(platform::basic::Currency::fromDouble(json.toDouble()));
      return {};
    case Type::Date: {
      const QString text = json.toString();
      const QDate day = QDate::fromString(text.left(10), Qt::ISODate);
      const QTime time = QTime::fromString(text.mid(11), Qt::ISODate);
      if (text.size() == 19 && day.isValid() && time.isValid())
        return Value(platform::basic::Date::of(day, time));
      return {};
    }
    case Type::Text:
    case Type::Memo:
      if (json.isString()) return Value(json.toString());
      return {};
  }
  return {};
}

/// Why a value has none of ours.
QString reasonFor(const QJsonValue& json, const AccessColumn& column) {
  if (column.type == Type::Date && json.toString() == unreadableDate)
    return u"the date of \"%1\" lies before 30 December 1899 or too far ahead, and cannot be read from "
           u"there. "
           u"Change it in Access and begin again."_s.arg(column.name);
  if (column.type == Type::Currency && json.isDouble())
    return u"the amount of \"%1\" is too large to be read from there to the ten-thousandth."_s.arg(
        column.name);
  return u"the value of \"%1\" is not understood."_s.arg(column.name);
}

}  // namespace

AccessFile::AccessFile(QString path) : path_(std::move(path)) {
  const QFileInfo info(path_);
  if (!info.exists()) fail(u"There is no file \"%1\"."_s.arg(path_));
  if (!info.isFile() || !info.isReadable()) fail(u"\"%1\" cannot be read."_s.arg(path_));
  QFile file(path_);
  if (!file.open(QIODevice::ReadOnly)) fail(u"\"%1\" cannot be read: %2"_s.arg(path_, file.errorString()));
  const QByteArray start = file.read(19);
  if (!start.startsWith(QByteArray("\0\1\0\0Standard ", 13)))
    fail(u"\"%1\" is not a Microsoft Access database."_s.arg(path_));
  refuseIfOpen();
  refuseIfProtected();
  makeConversions();
  const QByteArray listed = run(u"mdb-tables"_s, {u"-1"_s, path_});
  for (const QByteArray& name : listed.split('\n'))
    if (!name.isEmpty()) tables_.append(QString::fromUtf8(name));
}

void AccessFile::fail(const QString& text) const {
  throw Failure(platform::sql::errors::unrecognizedFormat, text, u"AccessFile"_s);
}

/// Access keeps a file of locks beside a database as long as somebody has it open.
void AccessFile::refuseIfOpen() const {
  const QFileInfo info(path_);
  for (const auto* suffix : {"ldb", "LDB", "laccdb"}) {
    const QString locks = info.dir().filePath(info.completeBaseName() + u'.' + QLatin1String(suffix));
    if (QFileInfo::exists(locks))
      fail(
          u"\"%1\" is open in Access or in another program: \"%2\" stands beside it. Close it there and "
          u"begin again; when nobody has it open, remove that file."_s.arg(path_, locks));
  }
}

/// The password of Access 2000 to 2003 is hidden under the date of the file's making.
void AccessFile::refuseIfProtected() const {
  QFile file(path_);
  if (!file.open(QIODevice::ReadOnly)) fail(u"\"%1\" cannot be read: %2"_s.arg(path_, file.errorString()));
  const QByteArray page = file.read(hiddenAt + hiddenLength);
  if (page.size() < hiddenAt + hiddenLength) fail(u"\"%1\" breaks off within its header."_s.arg(path_));
  if (page[0x14] != 1) return;  // other versions hide theirs elsewhere; mdbtools says what it cannot read
  const QByteArray hidden = unscrambled(page.mid(hiddenAt, hiddenLength));
  double made = 0;
  memcpy(&made, hidden.constData() + dateAt - hiddenAt, sizeof made);
  const auto day = quint32(std::isfinite(made) && std::abs(made) < 2147483648.0 ? qint32(made) : 0);
  for (int n = 0; n < passwordLength; n += 4) {
    quint32 piece = 0;
    memcpy(&piece, hidden.constData() + passwordAt - hiddenAt + n, sizeof piece);
    if (piece != 0 && piece != day)
      fail(u"\"%1\" is protected by a password. Take the password away in Access and begin again."_s.arg(
          path_));
  }
}

/// The reader takes the texts for UCS-2, which has no letters beyond the first 65,536, and would make two
/// question marks of each emoji. They are UTF-16: the system's converter is told so, for that program alone.
void AccessFile::makeConversions() const {
  if (!conversions_.isValid()) fail(conversions_.errorString());
  QFile aliases(conversions_.filePath(u"gconv-modules"_s));
  const QByteArray text = "alias UCS-2LE// UTF-16LE//\n";
  if (!aliases.open(QIODevice::WriteOnly) || aliases.write(text) != text.size() || !aliases.flush())
    fail(u"\"%1\" cannot be written: %2"_s.arg(aliases.fileName(), aliases.errorString()));
}

QByteArray AccessFile::run(const QString& program, const QStringList& arguments) const {
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);  // numbers with points, texts in UTF-8
  environment.insert(u"TZ"_s, u"UTC"_s);
  const QString others = environment.value(u"GCONV_PATH"_s);
  environment.insert(u"GCONV_PATH"_s,
                     others.isEmpty() ? conversions_.path() : conversions_.path() + u':' + others);
  process.setProcessEnvironment(environment);
  process.start(program, arguments);
  if (!process.waitForStarted())
    fail(u"The program %1 cannot be started. It comes with the package mdbtools."_s.arg(program));
  if (!process.waitForFinished(patienceMs)) {
    process.kill();
    process.waitForFinished();
    fail(u"%1 did not come to an end with \"%2\"."_s.arg(program, path_));
  }
  if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
    fail(u"\"%1\" cannot be read as an Access database (%2): %3"_s.arg(
        path_, program, QString::fromUtf8(process.readAllStandardError()).simplified()));
  const QString warned = QString::fromUtf8(process.readAllStandardError()).simplified();
  if (!warned.isEmpty() && (program == u"mdb-json" || program == u"mdb-count"))  // they go on past damage
    fail(u"\"%1\" may be damaged (%2): %3"_s.arg(path_, program, warned));
  return process.readAllStandardOutput();
}

QMap<QString, QString> AccessFile::captions(const QString& table) const {
  QMap<QString, QString> found;
  QString column;
  const QString listed = QString::fromUtf8(run(u"mdb-prop"_s, {path_, table}));
  for (const QString& line : listed.split(u'\n')) {
    if (line.startsWith(u"name: "))
      column = line.mid(6);
    else if (line.startsWith(u"\tCaption: ") && column != u"(none)")
      found.insert(column.toLower(), line.mid(10));
  }
  return found;
}

QList<AccessColumn> AccessFile::columns(const QString& table) const {
  static const QRegularExpression form(
      u"^\\t\\[(.+)\\]\\s+([A-Za-z/ ]+?)(?: \\((\\d+)[^)]*\\))?(?: NOT NULL)?,?\\s*$"_s);
  const QMap<QString, QString> captions = this->captions(table);
  QList<AccessColumn> found;
  const QString listed = QString::fromUtf8(
      run(u"mdb-schema"_s, {u"--no-indexes"_s, u"--no-relations"_s, u"-T"_s, table, path_, u"access"_s}));
  for (const QString& line : listed.split(u'\n')) {
    if (!line.startsWith(u"\t[")) continue;
    const QRegularExpressionMatch match = form.match(line);
    if (!match.hasMatch())
      fail(u"A column of \"%1\" in \"%2\" is not understood: %3"_s.arg(table, path_, line));
    AccessColumn column = columnOf(match.captured(1), match.captured(2), match.captured(3).toInt());
    column.caption = captions.value(column.name.toLower());
    found.append(column);
  }
  if (found.isEmpty()) fail(u"The table \"%1\" in \"%2\" has no column."_s.arg(table, path_));
  return found;
}

int AccessFile::rowCount(const QString& table) const {
  bool isNumber = false;
  const int count = run(u"mdb-count"_s, {path_, table}).trimmed().toInt(&isNumber);
  if (!isNumber) fail(u"The rows of \"%1\" in \"%2\" cannot be counted."_s.arg(table, path_));
  return count;
}

void AccessFile::rows(const QString& table, const QList<AccessColumn>& columns,
                      const std::function<void(const QList<Value>&)>& take) const {
  const QByteArray listed = run(u"mdb-json"_s, {u"-D"_s, dateForm, u"-T"_s, dateForm, path_, table});
  int number = 0;
  for (const QByteArray& line : listed.split('\n')) {
    if (line.trimmed().isEmpty()) continue;
    ++number;
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject())
      fail(u"Row %1 of \"%2\" in \"%3\" is not understood."_s.arg(number).arg(table, path_));
    const QJsonObject object = document.object();
    QList<Value> values;
    for (const AccessColumn& column : columns) {
      const auto value = valueOf(object.value(column.name), column.type);
      if (!value)
        fail(u"Row %1 of \"%2\" in \"%3\": %4"_s.arg(QString::number(number), table, path_,
                                                     reasonFor(object.value(column.name), column)));
      const auto* const text = std::get_if<QString>(&*value);
      if (text && text->toUtf8().size() >= longestText)
        fail(u"Row %1 of \"%2\" in \"%3\": the text of \"%4\" is longer than can be read from there."_s
                 .arg(number)
                 .arg(table, path_, column.name));
      values.append(*value);
    }
    take(values);
  }
}

}  // namespace accessimport
