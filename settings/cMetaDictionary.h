#pragma once
#include "platform/ado/recordset.h"
#include "platform/forms/controls.h"
#include "platform/scripting/dictionary.h"
#include "settings/cMetaData.h"

#include <memory>

namespace hourbook {

/// One meta list: values by name, unique without regard to case, in the order of display.
class cMetaDictionary {
 public:
  cMetaDictionary();

  std::shared_ptr<platform::scripting::Dictionary<std::shared_ptr<cMetaData>>> MetaDic;
  QString Caption;  // heading; for the personal settings the list's name
  QString CategoryCaption;
  QString SuperCategoryCaption;
  qint16 Index = 0;  // 1 to 3 in the common settings

  /// The list's name: its heading.
  const QString& MetaName() const { return Caption; }

  /// Adds a value. An empty name, and a name that is there already, add nothing.
  void AddMeta(const QString& MetaName, const QString& MetaCategory = {},
               const platform::basic::Currency& HourlyRate = {}, qint32 ID = 0,
               const QString& SuperCategory = {}, bool Enabled = false);
  /// Adds the rows from the current one to the end. Throws what the recordset and its conversions throw.
  void ReadFromRecordset(platform::ado::Recordset& MetaRecordset);
  void FillCombo(platform::forms::ComboBox& lstListCombo) const;
  /// A value without Null: 0 for a number, else the empty text, which `varValue` then takes too.
  platform::basic::Value fncSafeValue(platform::basic::Value& varValue, bool blnNumeric) const;
};

using MetaDataCollection = platform::basic::Collection<std::shared_ptr<cMetaDictionary>>;

}  // namespace hourbook
