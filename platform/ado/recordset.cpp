#include "platform/ado/recordset.h"

#include "platform/ado/fieldtype.h"
#include "platform/basic/failure.h"
#include "platform/sql/errors.h"

#include <QSet>

namespace platform::ado {

namespace {

const QString source = QStringLiteral("ADODB.Recordset");

[[noreturn]] void noCurrentRecord() {
  throw Failure(
      adErrNoCurrentRecord,
      QStringLiteral("Either BOF or EOF is True, or the current record has been deleted. Requested operation "
                     "requires a current record."),
      source);
}

}  // namespace

struct Recordset::Data {
  struct Column {
    QString name;
    int type = adVarWChar;
    int size = 0;
    bool key = false;
    bool autoIncrement = false;
  };
  enum class Edit { None, New, Change };

  std::shared_ptr<Connection> connection;
  QString source;
  QString table;  // that changes go to; empty when there is none
  QList<Column> columns;
  QList<QList<basic::Value>> rows;
  bool open = false;
  bool connected = false;
  bool writable = false;
  bool batch = false;  // changes would wait for an UpdateBatch
  qsizetype at = 0;
  bool onDeleted = false;  // the current row was deleted; `at` is the one behind it
  Edit edit = Edit::None;
  QList<basic::Value> pending;
  QSet<int> touched;

  void requireOpen() const;
  void requireWritable() const;
  void refuseBatch() const;
  bool hasCurrent() const { return open && !onDeleted && at < rows.size(); }
  int position(const QString& name) const;
  int find(const QString& name) const;
  basic::Value value(int column) const;
  void set(int column, const basic::Value& value);
  void dropEdit();
  void readSelect();
  void writeNew();
  void writeChange();
  QString where(const QList<basic::Value>& row, QList<basic::Value>& parameters) const;
};

void Recordset::Data::requireOpen() const {
  if (!open)
    throw Failure(adErrObjectClosed, QStringLiteral("Operation is not allowed when the object is closed."),
                  ado::source);
}

void Recordset::Data::refuseBatch() const {
  if (batch)
    throw Failure(
        adErrFeatureNotAvailable,
        QStringLiteral("This recordset was opened for changes that are sent together (UpdateBatch), "
                       "which this version cannot do. They would never reach the database."),
        ado::source);
}

void Recordset::Data::requireWritable() const {
  requireOpen();
  refuseBatch();
  if (connected && !writable)
    throw Failure(
        adErrFeatureNotAvailable,
        QStringLiteral(
            "Current Recordset does not support updating. This may be a limitation of the provider, "
            "or of the selected locktype."),
        ado::source);
}

int Recordset::Data::position(const QString& name) const {
  for (int i = 0; i < columns.size(); ++i)
    if (columns[i].name.compare(name, Qt::CaseInsensitive) == 0) return i;
  return -1;
}

int Recordset::Data::find(const QString& name) const {
  const int found = position(name);
  if (found < 0)
    throw Failure(
        adErrItemNotFound,
        QStringLiteral("Item cannot be found in the collection corresponding to the requested name or "
                       "ordinal. (%1)")
            .arg(name),
        ado::source);
  return found;
}

basic::Value Recordset::Data::value(int column) const {
  requireOpen();
  if (edit != Edit::None) return pending[column];
  if (!hasCurrent()) noCurrentRecord();
  return rows[at][column];
}

void Recordset::Data::set(int column, const basic::Value& value) {
  requireWritable();
  if (edit == Edit::None && !hasCurrent()) noCurrentRecord();
  const Column& field = columns[column];
  const basic::Value converted = convertTo(field.type, value);
  const QString* text = std::get_if<QString>(&converted);
  // a text column's size; the other types have none that a value could exceed
  if (text && field.size > 0 && field.type == adVarWChar && text->size() > field.size) {
    if (connected)
      throw Failure(
          sql::errors::fieldTooSmall,
          QStringLiteral("The field is too small to accept the amount of data you attempted to add. Try "
                         "inserting or pasting less data. (Field '%1')")
              .arg(field.name),
          ado::source);
    throw Failure(
        adErrMultipleStep,
        QStringLiteral("Multiple-step operation generated errors. Check each status value. (Field '%1' takes "
                       "%2 characters.)")
            .arg(field.name)
            .arg(field.size),
        ado::source);
  }
  if (edit == Edit::None) {
    pending = rows[at];
    edit = Edit::Change;
  }
  pending[column] = converted;
  touched.insert(column);
}

void Recordset::Data::dropEdit() {
  edit = Edit::None;
  pending.clear();
  touched.clear();
}

namespace {

/// A table by its name comes in the order of its key. A server would give changed rows last otherwise.
template <class IsKey>
QString wholeTable(const QString& name, const QList<sql::Column>& columns, IsKey isKey) {
  QStringList keys;
  for (const sql::Column& column : columns)
    if (isKey(column)) keys.append(u'[' + column.name + u']');
  const QString statement = u"select * from ["_qs + name + u']';
  return keys.isEmpty() ? statement : statement + u" order by "_qs + keys.join(u", "_qs);
}

}  // namespace

void Recordset::Data::readSelect() {
  sql::Session& session = connection->session();
  const bool select = isSelect(source);
  QString name = select ? tableOfSelect(source) : source.trimmed();
  if (!select && name.startsWith(u'[') && name.endsWith(u']')) name = name.mid(1, name.size() - 2);
  const QList<sql::Column> origin = name.isEmpty() ? QList<sql::Column>() : session.columns(name);
  // a table that has none is known by its counter
  const bool keyed = std::any_of(origin.begin(), origin.end(), [](const auto& c) { return c.primaryKey; });
  const auto isKey = [&](const sql::Column& c) { return keyed ? c.primaryKey : c.autoIncrement; };
  const sql::Result result = session.execute(select ? source : wholeTable(name, origin, isKey));
  table = origin.isEmpty() ? QString() : name;
  for (const sql::Column& given : result.columns) {
    Column column{given.name, dataTypeOf(given.type), given.size};
    for (const sql::Column& known : origin)
      if (known.name.compare(given.name, Qt::CaseInsensitive) == 0)
        column = {given.name, dataTypeOf(known.type), known.size, isKey(known), known.autoIncrement};
    columns.append(column);
  }
  rows = result.rows;
}

void Recordset::Data::writeNew() {
  QStringList names, marks;
  QList<basic::Value> parameters;
  for (int i = 0; i < columns.size(); ++i) {
    if (!touched.contains(i)) continue;
    names.append(u'[' + columns[i].name + u']');
    marks.append(QStringLiteral("?"));
    parameters.append(pending[i]);
  }
  const QString into = u"insert into ["_qs + table + u"] "_qs;
  const sql::Result result = connection->session().execute(
      names.isEmpty() ? into + u"default values"_qs
                      : into + u'(' + names.join(u", "_qs) + u") values ("_qs + marks.join(u", "_qs) + u')',
      parameters);
  for (int i = 0; i < columns.size(); ++i) {
    if (columns[i].autoIncrement && !touched.contains(i))
      pending[i] = convertTo(columns[i].type, result.lastId);
    // a Yes/No column knows no Null
    if (columns[i].type == adBoolean && basic::IsNull(pending[i])) pending[i] = false;
  }
}

QString Recordset::Data::where(const QList<basic::Value>& row, QList<basic::Value>& parameters) const {
  QStringList conditions;
  for (int i = 0; i < columns.size(); ++i) {
    if (!columns[i].key) continue;
    conditions.append(u'[' + columns[i].name + u"] = ?"_qs);
    parameters.append(row[i]);
  }
  if (table.isEmpty() || conditions.isEmpty())
    throw Failure(adErrNoKeyColumn,
                  QStringLiteral("Insufficient key column information for updating or refreshing."),
                  ado::source);
  return u" where "_qs + conditions.join(u" and "_qs);
}

void Recordset::Data::writeChange() {
  QStringList sets;
  QList<basic::Value> parameters;
  for (int i = 0; i < columns.size(); ++i) {
    if (!touched.contains(i)) continue;
    sets.append(u'[' + columns[i].name + u"] = ?"_qs);
    parameters.append(pending[i]);
  }
  if (sets.isEmpty()) return;
  const QString condition = where(rows[at], parameters);
  const sql::Result result = connection->session().execute(
      u"update ["_qs + table + u"] set "_qs + sets.join(u", "_qs) + condition, parameters);
  if (result.affected == 0)
    throw Failure(
        adErrRowNotLocated,
        QStringLiteral("Row cannot be located for updating. Some values may have been changed since it was "
                       "last read."),
        ado::source);
}

// ---- Recordset

Recordset::Recordset() : d_(std::make_unique<Data>()) {}
Recordset::~Recordset() = default;

void Recordset::setActiveConnection(std::shared_ptr<Connection> connection) {
  d_->connection = std::move(connection);
}
void Recordset::setSource(const QString& tableOrSelect) {
  d_->source = tableOrSelect;
}
QString Recordset::Source() const {
  return d_->source;
}

void Recordset::Open() {
  if (d_->open)
    throw Failure(adErrObjectOpen, QStringLiteral("Operation is not allowed when the object is open."),
                  source);
  d_->at = 0;
  if (d_->connection) {
    d_->columns.clear();
    d_->rows.clear();
    d_->connected = true;
    d_->writable = LockType != adLockReadOnly;
    d_->batch = LockType == adLockBatchOptimistic;
    d_->readSelect();
  } else if (d_->columns.isEmpty()) {
    throw Failure(
        adErrInvalidConnection,
        QStringLiteral("The connection cannot be used to perform this operation. It is either closed or "
                       "invalid in this context."),
        source);
  }
  d_->open = true;
}

void Recordset::Close() {
  d_->requireOpen();
  d_->dropEdit();
  d_->rows.clear();
  d_->onDeleted = false;
  d_->open = false;
}

int Recordset::State() const {
  return d_->open ? adStateOpen : adStateClosed;
}

bool Recordset::isEOF() const {
  d_->requireOpen();
  if (d_->edit == Data::Edit::New || d_->onDeleted) return false;
  return d_->at >= d_->rows.size();
}

bool Recordset::isBOF() const {
  d_->requireOpen();
  return d_->rows.isEmpty() && d_->edit != Data::Edit::New && !d_->onDeleted;
}

int Recordset::RecordCount() const {
  d_->requireOpen();
  return static_cast<int>(d_->rows.size());
}

void Recordset::MoveFirst() {
  d_->requireOpen();
  writePending();
  if (d_->rows.isEmpty()) noCurrentRecord();
  d_->onDeleted = false;
  d_->at = 0;
}

void Recordset::MoveNext() {
  d_->requireOpen();
  writePending();
  if (d_->onDeleted) {
    d_->onDeleted = false;
    return;
  }
  if (d_->at >= d_->rows.size()) noCurrentRecord();
  ++d_->at;
}

void Recordset::Find(const QString& criteria) {
  d_->requireOpen();
  const Criterion criterion = parseCriterion(criteria);
  const int column = d_->find(criterion.field);
  writePending();
  if (!d_->hasCurrent()) noCurrentRecord();
  while (d_->at < d_->rows.size() && !criterion.matches(d_->rows[d_->at][column])) ++d_->at;
}

void Recordset::AddNew() {
  d_->requireWritable();
  Update();
  if (d_->connected && d_->table.isEmpty())
    throw Failure(
        adErrFeatureNotAvailable,
        QStringLiteral(
            "Current Recordset does not support updating. This may be a limitation of the provider, "
            "or of the selected locktype."),
        source);
  d_->pending = QList<basic::Value>(d_->columns.size(), basic::Null{});
  d_->touched.clear();
  d_->edit = Data::Edit::New;
}

void Recordset::AddNew(const QString& field, const basic::Value& value) {
  AddNew();
  try {
    d_->set(d_->find(field), value);
  } catch (const Failure&) {
    d_->dropEdit();
    throw;
  }
  Update();
}

void Recordset::Update() {
  d_->requireOpen();
  d_->refuseBatch();
  writePending();
}

void Recordset::writePending() {
  if (d_->edit == Data::Edit::None) return;
  if (d_->edit == Data::Edit::New) {
    if (d_->connected) d_->writeNew();
    d_->rows.append(d_->pending);
    d_->at = d_->rows.size() - 1;
    d_->onDeleted = false;
  } else {
    if (d_->connected) d_->writeChange();
    d_->rows[d_->at] = d_->pending;
  }
  d_->dropEdit();
}

void Recordset::Delete() {
  d_->requireWritable();
  if (d_->edit == Data::Edit::New) {
    d_->dropEdit();
    return;
  }
  if (!d_->hasCurrent()) noCurrentRecord();
  d_->dropEdit();
  if (d_->connected) {
    QList<basic::Value> parameters;
    const QString condition = d_->where(d_->rows[d_->at], parameters);
    if (d_->connection->session()
            .execute(u"delete from ["_qs + d_->table + u']' + condition, parameters)
            .affected == 0)
      throw Failure(
          adErrRowNotLocated,
          QStringLiteral("Row cannot be located for updating. Some values may have been changed since it was "
                         "last read."),
          source);
  }
  d_->rows.removeAt(d_->at);
  d_->onDeleted = true;
}

void Recordset::Cancel() {
  d_->requireOpen();
  d_->dropEdit();
}

// ---- Fields, Field

int Fields::Count() const {
  return static_cast<int>(recordset_.d_->columns.size());
}

Field Fields::Item(int position) const {
  if (position < 0 || position >= Count())
    throw Failure(
        adErrItemNotFound,
        QStringLiteral("Item cannot be found in the collection corresponding to the requested name or "
                       "ordinal. (%1)")
            .arg(position),
        source);
  return {recordset_, position};
}

Field Fields::Item(const QString& name) const {
  return {recordset_, recordset_.d_->find(name)};
}

void Fields::Append(const QString& name, int type, int size, int attributes) {
  Q_UNUSED(attributes)  // every column may hold Null, as -1 says
  Recordset::Data& data = *recordset_.d_;
  if (data.open)
    throw Failure(adErrObjectOpen, QStringLiteral("Operation is not allowed when the object is open."),
                  source);
  if (data.connection)
    throw Failure(adErrIllegalOperation, QStringLiteral("Operation is not allowed in this context."), source);
  if (data.position(name) >= 0)
    throw Failure(sql::errors::duplicateField, QStringLiteral("The field '%1' is there already.").arg(name),
                  source);
  data.columns.append({name, type, size});
}

QString Field::Name() const {
  return recordset_.d_->columns[position_].name;
}
int Field::Type() const {
  return recordset_.d_->columns[position_].type;
}
int Field::DefinedSize() const {
  return recordset_.d_->columns[position_].size;
}
basic::Value Field::Value() const {
  return recordset_.d_->value(position_);
}
void Field::setValue(const basic::Value& value) {
  recordset_.d_->set(position_, value);
}

}  // namespace platform::ado
