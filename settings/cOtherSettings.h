#pragma once
#include "platform/ado/recordset.h"
#include "platform/scripting/dictionary.h"

#include <memory>

namespace hourbook {

/// An open-ended store of named values, kept in `tblOtherSettings`.
class cOtherSettings {
 public:
  cOtherSettings();

  std::shared_ptr<platform::scripting::Dictionary<platform::basic::Value>> dicValues;

  /// Replaces the values by the rows of a recordset (null: none). Of a name that comes twice the last row
  /// counts.
  void FromRS(const std::shared_ptr<platform::ado::Recordset>& adrRS);
  void SetValue(const QString& PropName, const platform::basic::Value& Value);
  /// The value as 2 integer, 7 date, 8 text, 11 boolean; the type's zero when it is absent. Empty for other
  /// types.
  platform::basic::Value GetValue(const QString& PropName, int intDataType) const;
  /// Adds and changes rows; rows of other names stay.
  void ToRS(const std::shared_ptr<platform::ado::Recordset>& adrRS) const;
};

}  // namespace hourbook
