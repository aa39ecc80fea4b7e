#include "platform/sql/servererrors.h"

#include "platform/sql/errors.h"

namespace platform::sql {

namespace {

struct Meaning {
  qint32 number;
  const char* text;
};
constexpr Meaning meanings[] = {
    {errors::tableNotFound, "The database engine cannot find the input table or query"},
    {errors::noSuchColumn, "No value given for one or more required parameters"},
    {errors::tableExists, "The table already exists"},
    {errors::duplicateField, "Cannot define a field more than once"},
    {errors::objectExists, "The object already exists"},
    {errors::databaseExists, "The database already exists"},
    {errors::primaryKeyExists, "The definition cannot be carried out"},
    {errors::noPermission, "You do not have the necessary permissions"},
    {errors::fieldTooSmall,
     "The field is too small to accept the amount of data you attempted to add. Try inserting or pasting "
     "less data."},
    {failure::overflow, "Overflow"},
    {errors::unreadableValue, "Data type conversion error"},
    {errors::readOnly, "Cannot update. The database is read-only"},
    {errors::locked, "The record or table is in use by another program"},
    {errors::diskFull, "Not enough space on disk"},
    {errors::diskError, "Disk or network error"},
    {errors::damaged, "The database is damaged"},
    {errors::connectionFailed, "The connection is broken"},
    {errors::timeout, "The server did not answer in time"},
    {errors::duplicateKey,
     "The changes you requested to the table were not successful because they would create duplicate values "
     "in the index, primary key, or relationship"},
    {errors::relatedRecords,
     "The record cannot be deleted or changed because other tables include related records."},
    {errors::relatedRecordRequired,
     "You cannot add or change a record because a related record is required."},
    {errors::valueRequired, "The field cannot contain a Null value"},
};

QString in(const QString& label) {
  return QStringLiteral(" (%1)").arg(label);
}

}  // namespace

Failure serverFailure(qint32 number, const QString& serversText, const QString& label) {
  QString text;
  for (const Meaning& meaning : meanings)
    if (meaning.number == number) text = QString::fromLatin1(meaning.text);
  if (!text.isEmpty()) text += text.endsWith(u'.') ? u" "_qs : u": "_qs;
  return {number, text + serversText + in(label)};
}

Failure zeroLengthFailure(const QString& constraint, const QString& label) {
  return {
      errors::zeroLength,
      QStringLiteral("Field '%1' cannot be a zero-length string.")
              .arg(constraint.chopped(constraint.endsWith(zeroLengthSuffix) ? zeroLengthSuffix.size() : 0)) +
          in(label)};
}

}  // namespace platform::sql
