#pragma once
#include "platform/dao/dao.h"

namespace hourbook {

/// The state of the database that a column came with. Databases of each state are in use.
enum class SchemaState {
  First,          // as a new Access database is made
  OtherSettings,  // with tblOtherSettings and the persons' category
  Enabled,        // with values that can be put out of use
  Body            // with the appointment's text; the present one
};

struct SchemaColumn {
  QString strName;
  int intType = platform::dao::dbText;
  QString strCaption;  // in the program's language; may be empty
  SchemaState since = SchemaState::First;
  bool operator==(const SchemaColumn&) const = default;
};

/// The first column is the key, a counter.
struct SchemaTable {
  QString strName;
  QList<SchemaColumn> columns;
  /// Those of a state alone, in their order.
  QList<SchemaColumn> columnsOf(SchemaState state) const;
};

/// All tables in the order of their creation, in the present state. The one place where they are told:
/// creation and upgrades of all kinds of database follow it, and the creation scripts are tested against it.
QList<SchemaTable> fncSchemaTables();
SchemaTable fncSchemaTable(const QString& strTable);
/// In the order of their creation. On one field that bears the same name on both sides; nothing cascades.
QList<platform::sql::Relation> fncSchemaRelations();

/// Size of every text column.
inline constexpr int textColumnSize = 255;
inline constexpr int metaListCount = 3;

}  // namespace hourbook
