// What the engines are sent at last: each statement that the files in tests/golden/database hold, as its
// driver translates it, in "translated" beside them.
#include "golden.h"
#include "platform/sql/literals.h"
#include "platform/sql/odbc/dialect.h"
#include "platform/sql/postgresql/dialect.h"
#include "platform/sql/sqlite/dialect.h"
#include "serverworld.h"

#include <QRegularExpression>

using namespace hourbook;
using namespace platform;
using basic::Value;

namespace {

/// A line of such a file.
struct Line {
  QString statement;
  QList<Value> parameters;
};

QString textOf(const Value& value) {
  return basic::IsNull(value) ? u"Null"_qs : u'\'' + basic::CStr(value) + u'\'';
}

Value valueOf(const QString& text) {
  bool isNumber = false;
  const int number = text.toInt(&isNumber);
  if (isNumber) return number;
  if (text == u"True" || text == u"False") return text == u"True";
  return text;
}

Line read(const QString& text) {
  const QString parametersBehind = u"   -- "_qs;
  const qsizetype end = text.indexOf(parametersBehind);
  if (end < 0) return {text, {}};
  Line line{text.left(end), {}};
  static const QRegularExpression value(u"(?:^|\\G, )(?:Null|'(.*?)')(?=, (?:Null|')|$)"_qs);
  for (auto found = value.globalMatch(text.mid(end + parametersBehind.size())); found.hasNext();) {
    const QRegularExpressionMatch match = found.next();
    line.parameters.append(match.hasCaptured(1) ? valueOf(match.captured(1)) : Value(basic::Null{}));
  }
  EXPECT_EQ(line.parameters.size(), line.statement.count(u'?')) << qPrintable(text);
  return line;
}

using Translate = std::function<Line(const Line&)>;

/// A creation is left out: a server's is a script in its own language, and carried out as it stands; a file's
/// is made by the engine.
void expectTranslated(const QString& road, const Translate& translate) {
  const QDir folder(QStringLiteral(HOURBOOK_GOLDEN_DATABASE "/") + road);
  QStringList names = folder.entryList({u"*.txt"_qs}, QDir::Files, QDir::Name);
  names.removeAll(u"creation.txt"_qs);
  ASSERT_FALSE(names.isEmpty());
  for (const QString& name : names) {
    QFile file(folder.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QStringList lines;
    for (const QString& text : QString::fromUtf8(file.readAll()).chopped(1).split(u'\n')) {
      const Line line = text.startsWith(u'(') ? Line{text, {}} : translate(read(text));
      QStringList values;
      for (const Value& value : line.parameters) values.append(textOf(value));
      lines +=
          (line.statement + (values.isEmpty() ? QString() : u"   -- "_qs + values.join(u", "))).split(u'\n');
    }
    tests::expectGolden(road + u"/translated/"_qs + name, lines);
  }
}

sql::Type typeOf(int daoType) {
  static const QMap<int, sql::Type> types{
      {dao::dbBoolean, sql::Type::Boolean}, {dao::dbInteger, sql::Type::Integer},
      {dao::dbLong, sql::Type::Long},       {dao::dbCurrency, sql::Type::Currency},
      {dao::dbSingle, sql::Type::Single},   {dao::dbDate, sql::Type::Date},
      {dao::dbText, sql::Type::Text},       {dao::dbMemo, sql::Type::Memo}};
  return types.value(daoType);
}

class TranslatedStatements : public testing::Test {
 protected:
  tests::ServerWorld w;
};

}  // namespace

TEST_F(TranslatedStatements, OnASqlServer) {
  const auto yesNoColumns = [](const QString& table) {
    QList<sql::odbc::YesNoColumn> found;
    for (const SchemaColumn& column : fncSchemaTable(table).columns)
      if (column.intType == dao::dbBoolean) found.append({column.strName, true});
    return found;
  };
  expectTranslated(u"sqlserver"_qs, [&](const Line& line) {
    if (!sql::isAccessStatement(line.statement)) return line;
    const auto translation = sql::odbc::fromAccess(line.statement, line.parameters, yesNoColumns);
    return Line{translation.sql, translation.parameters};
  });
}

TEST_F(TranslatedStatements, InAFile) {
  expectTranslated(u"file"_qs, [](const Line& line) {
    return Line{sql::sqlite::fromAccess(line.statement), line.parameters};
  });
}

TEST_F(TranslatedStatements, EveryRoadHasAFileForEachThatAnotherHas) {
  const auto namesOf = [](const QString& road) {
    QStringList names = QDir(QStringLiteral(HOURBOOK_GOLDEN_DATABASE "/") + road)
                            .entryList({u"*.txt"_qs}, QDir::Files, QDir::Name);
    names.removeAll(u"creation.txt"_qs);  // a server's is a script
    return names;
  };
  const QStringList names = namesOf(u"file"_qs);
  EXPECT_GT(names.size(), 10);
  for (const QString& road : {u"file"_qs, u"sqlserver"_qs, u"postgresql"_qs}) {
    EXPECT_EQ(namesOf(road), names);
    EXPECT_EQ(namesOf(road + u"/translated"_qs), names);
  }
}

TEST_F(TranslatedStatements, OnAPostgresqlServer) {
  sql::postgresql::Catalogue catalogue;
  for (const SchemaTable& table : fncSchemaTables()) {
    sql::postgresql::CatalogueTable known{0, table.strName, false, {}};
    for (const SchemaColumn& column : table.columns) {
      sql::postgresql::CatalogueTable::Entry entry;
      entry.column.name = column.strName;
      entry.column.type = typeOf(column.intType);
      entry.column.autoIncrement = known.entries.isEmpty();
      entry.number = static_cast<int>(known.entries.size()) + 1;
      known.entries.append(entry);
    }
    catalogue.add(known);
  }
  expectTranslated(u"postgresql"_qs, [&](const Line& line) {
    if (!sql::isAccessStatement(line.statement))
      return Line{line.parameters.isEmpty() ? line.statement
                                            : sql::postgresql::withNumberedParameters(line.statement),
                  line.parameters};
    return Line{sql::postgresql::fromAccess(line.statement, catalogue).sql, line.parameters};
  });
}
