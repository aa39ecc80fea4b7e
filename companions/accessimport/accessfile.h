#pragma once
#include "platform/basic/value.h"
#include "platform/sql/driver.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

namespace accessimport {

struct AccessColumn {
  QString name;
  platform::sql::Type type = platform::sql::Type::Text;
  int size = 0;         // characters, for Text
  QString foreignKind;  // not empty: a kind that has no place in our file ("OLE"), as the reader names it
  QString caption;
};

/// A database in Access's own format, read through the programs of mdbtools; the file itself is only ever
/// opened for reading. All failures are platform::Failure that name the file.
///
/// An empty text cannot be told from an absent one there: both come as Null.
class AccessFile {
 public:
  /// Refuses what is no Access database, what Access has open at this moment, and what is protected by a
  /// password (its rows might be scrambled).
  explicit AccessFile(QString path);

  /// The user's own tables.
  QStringList tables() const { return tables_; }
  bool has(const QString& table) const { return tables_.contains(table, Qt::CaseInsensitive); }
  QList<AccessColumn> columns(const QString& table) const;
  /// How many rows the file says that the table has.
  int rowCount(const QString& table) const;
  /// Each row, with the values in the order of `columns`. A row that cannot be understood is a failure.
  void rows(const QString& table, const QList<AccessColumn>& columns,
            const std::function<void(const QList<platform::basic::Value>&)>& take) const;

 private:
  QByteArray run(const QString& program, const QStringList& arguments) const;
  void makeConversions() const;
  void refuseIfOpen() const;
  void refuseIfProtected() const;
  QMap<QString, QString> captions(const QString& table) const;
  [[noreturn]] void fail(const QString& text) const;

  QString path_;
  QStringList tables_;
  QTemporaryDir conversions_;
};

}  // namespace accessimport
