#include "platform/sql/postgresql/failures.h"

#include "platform/sql/errors.h"
#include "platform/sql/servererrors.h"

#include <QRegularExpression>

namespace platform::sql::postgresql {

namespace {

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
  return serverFailure(ofKey ? errors::relatedRecords : errors::relatedRecordRequired, fullText(error),
                       label);
}

Failure constraintFailure(const ServerError& error, const QString& statement, const QString& label) {
  if (error.state == u"23505") return serverFailure(errors::duplicateKey, fullText(error), label);
  if (error.state == u"23503") return foreignKeyFailure(error, statement, label);
  if (error.state == u"23502")
    return {errors::valueRequired, QStringLiteral("The field '%1.%2' cannot contain a Null value. (%3)")
                                       .arg(error.table, error.column, label)};
  if (error.constraint.endsWith(zeroLengthSuffix)) return zeroLengthFailure(error.constraint, label);
  return serverFailure(errors::statementFailed, fullText(error), label);
}

struct Known {
  const char* state;  // or its beginning: the longer ones come first
  qint32 number;
};
constexpr Known known[] = {
    {"42P01", errors::tableNotFound},    {"42703", errors::noSuchColumn},
    {"42P07", errors::tableExists},      {"42701", errors::duplicateField},
    {"42710", errors::objectExists},     {"42P04", errors::databaseExists},
    {"42P16", errors::primaryKeyExists}, {"42501", errors::noPermission},
    {"22001", errors::fieldTooSmall},    {"22003", failure::overflow},
    {"22P02", errors::unreadableValue},  {"22007", errors::unreadableValue},
    {"22008", errors::unreadableValue},  {"25006", errors::readOnly},
    {"40001", errors::locked},           {"40P01", errors::locked},
    {"55P03", errors::locked},           {"55006", errors::locked},
    {"53100", errors::diskFull},         {"58030", errors::diskError},
    {"XX001", errors::damaged},          {"XX002", errors::damaged},
    {"08P01", errors::statementFailed},  // too few parameters
    {"08", errors::connectionFailed},    {"57P", errors::connectionFailed},
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
  QString text = fullText(error);
  for (const Known& each : known) {
    if (!error.state.startsWith(QLatin1String(each.state))) continue;
    // the server folds a name before it looks for it; the statement has it as it was written
    if (!error.word.isEmpty() && !error.text.contains(error.word)) text.prepend(error.word + u": "_qs);
    return serverFailure(each.number, text, label);
  }
  return serverFailure(errors::statementFailed, text, label);
}

}  // namespace platform::sql::postgresql
