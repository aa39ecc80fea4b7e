#pragma once
#include "platform/ado/recordset.h"
#include "platform/forms/controls.h"
#include "platform/scripting/dictionary.h"

#include <memory>

namespace hourbook {

/// A list of unique texts (without regard to case) that moves between a control, an array, a recordset and a
/// text.
class cSimpleList {
 public:
  cSimpleList();

  std::shared_ptr<platform::scripting::Dictionary<QString>> DicList;

  QString ToString() const;
  void FromString(const QString& JoinedList);
  void AddToComboOrList(platform::forms::ComboBox& cmbCombo, const QString& strDefaultValue) const;
  /// An item at random. Failure 9 when there is none.
  QString RandomItem() const;
  void FromRS(const std::shared_ptr<platform::ado::Recordset>& adrRS);
  void FromArray(const QStringList& ArrayToSplit);
  void FromComboOrList(const platform::forms::ComboBox& cmbCombo);
  QStringList ToArray() const;
  /// Makes the table's second column equal to the list.
  void ToRS(const std::shared_ptr<platform::ado::Recordset>& adrRS) const;

 private:
  void subAddOnce(const QString& item);
};

}  // namespace hourbook
