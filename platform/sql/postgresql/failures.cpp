#include "platform/sql/postgresql/failures.h"

#include "platform/sql/errors.h"

#include <QRegularExpression>

namespace platform::sql::postgresql {

namespace {

QString in(const QString& label) {
  return QStringLiteral(" (%1)").arg(label);
}

/// With what the server knows beyond its first line, such as the value that is there twice.
QString fullText(const ServerError& error) {
  return error.detail.isEmpty() ? error.text : error.text + u' ' + error.detail;
}

bool startsWith(const QString& statement, const char* word) {
  return statement.trimmed().startsWith(QLatin1String(word), Qt::CaseInsensitive);
}

/// The server tells the referring table in both cases: which side was changed shows in the statement.
Failure foreignKeyFailure(const ServerError& error, const QString& statement, const QString& label) {
  static const QRegularExpression updated(QStringLiteral("^\\s*update\\s+(?|\"([^\"]+)\"|(\\S+))"),
                                          QRegularExpression::CaseInsensitiveOption);
  const QRegularExpressionMatch match = updated.match(statement);
  const bool ofKey = startsWith(statement, "delete") || startsWith(statement, "drop") ||
                     (match.hasMatch() && match.captured(1).compare(error.table, Qt::CaseInsensitive) != 0);
  if (ofKey)
    return {errors::relatedRecords,
            QStringLiteral(
                "The record cannot be deleted or changed because other tables include related records. ") +
                fullText(error) + in(label)};
  return {errors::relatedRecordRequired,
          QStringLiteral("You cannot add or change a record because a related record is required. ") +
              fullText(error) + in(label)};
}

Failure constraintFailure(const ServerError& error, const QString& statement, const QString& label) {
  if (error.state == u"23505")
    return {
        errors::duplicateKey,
        QStringLiteral("The changes you requested to the table were not successful because they would create "
                       "duplicate values in the index, primary key, or relationship: ") +
            fullText(error) + in(label)};
  if (error.state == u"23503") return foreignKeyFailure(error, statement, label);
  if (error.state == u"23502")
    return {errors::valueRequired,
            QStringLiteral("The field '%1.%2' cannot contain a Null value.").arg(error.table, error.column) +
                in(label)};
  if (error.constraint.endsWith(zeroLengthSuffix))
    return {errors::zeroLength, QStringLiteral("Field '%1' cannot be a zero-length string.")
                                        .arg(error.constraint.chopped(zeroLengthSuffix.size())) +
                                    in(label)};
  return {errors::statementFailed, fullText(error) + in(label)};
}

struct Known {
  const char* state;  // or its beginning: the longer ones come first
  qint32 number;
  const char* text;  // goes before the server's own
};
constexpr Known known[] = {
    {"42P01", errors::tableNotFound, "The database engine cannot find the input table or query"},
    {"42703", errors::noSuchColumn, "No value given for one or more required parameters"},
    {"42P07", errors::tableExists, "The table already exists"},
    {"42701", errors::duplicateField, "Cannot define a field more than once"},
    {"42710", errors::objectExists, "The object already exists"},
    {"42P04", errors::databaseExists, "The database already exists"},
    {"42P16", errors::primaryKeyExists, "The definition cannot be carried out"},
    {"42501", errors::noPermission, "You do not have the necessary permissions"},
    {"22001", errors::fieldTooSmall,
     "The field is too small to accept the amount of data you attempted to add. Try inserting or pasting "
     "less data."},
    {"22003", failure::overflow, "Overflow"},
    {"22P02", errors::unreadableValue, "Data type conversion error"},
    {"22007", errors::unreadableValue, "Data type conversion error"},
    {"22008", errors::unreadableValue, "Data type conversion error"},
    {"25006", errors::readOnly, "Cannot update. The database is read-only"},
    {"40001", errors::locked, "The record is in use by another program"},
    {"40P01", errors::locked, "The record is in use by another program"},
    {"55P03", errors::locked, "The record or table is in use by another program"},
    {"55006", errors::locked, "The object is in use by another program"},
    {"53100", errors::diskFull, "Not enough space on disk"},
    {"58030", errors::diskError, "Disk or network error"},
    {"XX001", errors::damaged, "The database is damaged"},
    {"XX002", errors::damaged, "The database is damaged"},
    {"08P01", errors::statementFailed, "The statement cannot be carried out"},  // too few parameters
    {"08", errors::connectionFailed, "The connection is broken"},
    {"57P", errors::connectionFailed, "The connection is broken"},
};

}  // namespace

QString wordAt(const QString& statement, int position) {
  static const QRegularExpression word(QStringLiteral("^(?:\"(?:[^\"]|\"\")*\"|[\\w$.]+)+"),
                                       QRegularExpression::UseUnicodePropertiesOption);
  const QList<uint> signs = statement.toUcs4();
  if (position <= 0 || position > signs.size()) return {};
  const QList<uint> rest = signs.mid(position - 1);
  const QString text = QString::fromUcs4(reinterpret_cast<const char32_t*>(rest.constData()), rest.size());
  return word.match(text).captured(0).remove(u'"');
}

Failure failureOf(const ServerError& error, const QString& statement, const QString& label) {
  if (error.state.startsWith(u"23")) return constraintFailure(error, statement, label);
  for (const Known& each : known) {
    if (!error.state.startsWith(QLatin1String(each.state))) continue;
    QString text = QString::fromLatin1(each.text);
    text += text.endsWith(u'.') ? QStringLiteral(" ") : QStringLiteral(": ");
    // the server folds a name before it looks for it; the statement has it as it was written
    if (!error.word.isEmpty() && !error.text.contains(error.word)) text += error.word + u": "_qs;
    return {each.number, text + fullText(error) + in(label)};
  }
  return {errors::statementFailed, fullText(error) + in(label)};
}

}  // namespace platform::sql::postgresql
