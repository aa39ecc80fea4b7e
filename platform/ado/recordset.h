#pragma once
#include "platform/ado/connection.h"
#include "platform/basic/value.h"

namespace platform::ado {

class Recordset;

/// One column of a recordset, at the current row.
class Field {
 public:
  Field(Recordset& recordset, int position) : recordset_(recordset), position_(position) {}
  QString Name() const;
  int Type() const;  // DataType
  int DefinedSize() const;
  basic::Value Value() const;  // Failure 3021 without a current row
  /// Converted to the column's type at once, by the rules of the language but with "." as the decimal sign of
  /// a number in a text, whatever the locale; Failure 3421 when it cannot be. Reaches the database with
  /// Update.
  void setValue(const basic::Value& value);

 private:
  Recordset& recordset_;
  int position_;
};

class Fields {
 public:
  explicit Fields(Recordset& recordset) : recordset_(recordset) {}
  int Count() const;
  Field Item(int position) const;         // from 0; Failure 3265 outside
  Field Item(const QString& name) const;  // without regard to case; Failure 3265
  /// Only while the recordset is closed and without a connection. `attributes` -1: may hold Null.
  void Append(const QString& name, int type, int size = 0, int attributes = adFldUnspecified);

 private:
  Recordset& recordset_;
};

/// `ADODB.Recordset` with a client cursor: rows are read once at Open. Over a connection, Update writes the
/// pending row of a table by its key and reads an auto-increment key back; without one (fields appended by
/// hand) it is a plain table in memory. `Cancel` drops a pending new row or change, `Close` too; moving to
/// another row or beginning a new one writes it first. A failing Update keeps it pending. A recordset over a
/// connection that is not opened writable refuses changes with Failure 3251, and so does one opened for batch
/// updates, since there is no UpdateBatch.
///
/// A column of the type adDBDate holds a day: the time of day of what it is given is dropped.
class Recordset {
 public:
  Recordset();
  virtual ~Recordset();
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;

  void setActiveConnection(std::shared_ptr<Connection> connection);
  void setSource(const QString& tableOrSelect);
  QString Source() const;
  int CursorLocation = adUseServer;
  int CursorType = adOpenForwardOnly;
  int LockType = adLockReadOnly;

  void Open();
  void Close();
  int State() const;
  bool isEOF() const;
  bool isBOF() const;
  virtual int RecordCount() const;
  void MoveFirst();  // Failure 3021 when there are no rows
  void MoveNext();   // Failure 3021 at the end
  /// Moves to the first row at or behind the current one that matches "name = 'text'" (or = number); to the
  /// end when there is none. Texts compare without regard to case, blanks at the end included. A quote inside
  /// the text makes the criterion unreadable: Failure 3001. At the end or in an empty recordset: Failure
  /// 3021.
  void Find(const QString& criteria);
  void AddNew();
  void AddNew(const QString& field, const basic::Value& value);  // and writes it at once
  void Update();
  void Delete();
  void Cancel();
  ado::Fields Fields() { return ado::Fields(*this); }
  Field operator[](const QString& name) { return Fields().Item(name); }

 private:
  friend class Field;
  friend class ado::Fields;
  void writePending();
  struct Data;
  std::unique_ptr<Data> d_;
};

}  // namespace platform::ado
