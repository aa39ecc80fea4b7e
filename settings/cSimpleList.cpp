#include "settings/cSimpleList.h"

#include "platform/basic/text.h"
#include "shell/genTools.h"
#include "shell/modErrorReport.h"
#include "shell/modScriptingDic.h"
#include "shell/Present.h"
#include "shell/Tolerate.h"

#include <QRandomGenerator>

namespace hourbook {

using platform::ado::Recordset;
using platform::basic::Trim;
using platform::basic::vbCrLf;

namespace {

/// Column that holds the texts; the one before it is the key.
inline constexpr int textColumn = 1;

void addMissing(Recordset& recordset, const cSimpleList& wanted, const cSimpleList& stored) {
  for (const QString& item : wanted.ToArray()) {
    if (stored.DicList->Exists(item)) continue;
    recordset.AddNew();
    recordset.Fields().Item(textColumn).setValue(item);
    recordset.Update();
  }
}

void removeOthers(Recordset& recordset, const cSimpleList& wanted, const cSimpleList& stored) {
  const QString column = recordset.Fields().Item(textColumn).Name();
  for (const QString& item : stored.ToArray()) {
    if (wanted.DicList->Exists(item)) continue;
    recordset.MoveFirst();
    // kept: an apostrophe in the item makes this fail, since nothing is quoted
    recordset.Find(column + QStringLiteral(" = '") + item + QStringLiteral("'"));
    if (!recordset.isEOF()) recordset.Delete();
  }
}

}  // namespace

cSimpleList::cSimpleList() : DicList(fncCreateDic<QString>()) {}

void cSimpleList::subAddOnce(const QString& item) {
  auto& list = present(DicList);
  if (!list.Exists(item)) list.Add(item, item);
}

QString cSimpleList::ToString() const {
  return Trim(ToArray().join(vbCrLf));
}

void cSimpleList::FromString(const QString& JoinedList) try {
  for (const QString& piece : platform::basic::Split(JoinedList, vbCrLf))
    if (!piece.isEmpty()) subAddOnce(piece);
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("cSimpleList.FromString"));
}

void cSimpleList::AddToComboOrList(platform::forms::ComboBox& cmbCombo,
                                   const QString& strDefaultValue) const {
  const QString remembered = cmbCombo.Text();
  cmbCombo.Clear();
  for (const QString& item : DicList->Items())
    if (!Trim(item).isEmpty()) cmbCombo.AddItem(item);
  const QString chosen = strDefaultValue.isEmpty() ? remembered : strDefaultValue;
  if (chosen.isEmpty() || !tolerate([&] { cmbCombo.setText(chosen); })) return;
  // A drop-down list takes no free text.
  for (int index = 0; index < cmbCombo.ListCount(); ++index) {
    if (cmbCombo.List(index) != chosen) continue;
    cmbCombo.setListIndex(index);
    return;
  }
}

QString cSimpleList::RandomItem() const {
  const QStringList items = ToArray();
  if (items.isEmpty())
    throw platform::Failure(platform::failure::subscriptOutOfRange, QStringLiteral("Subscript out of range"));
  return items[QRandomGenerator::global()->bounded(items.size())];
}

void cSimpleList::FromRS(const std::shared_ptr<Recordset>& adrRS) {
  if (!adrRS) return;
  for (; !adrRS->isEOF(); adrRS->MoveNext())
    subAddOnce(fncNullToEmpty(adrRS->Fields().Item(textColumn).Value()));
}

void cSimpleList::FromArray(const QStringList& ArrayToSplit) {
  DicList = fncCreateDic<QString>();
  for (const QString& item : ArrayToSplit) subAddOnce(item);
}

void cSimpleList::FromComboOrList(const platform::forms::ComboBox& cmbCombo) {
  for (int index = 0; index < cmbCombo.ListCount(); ++index) subAddOnce(cmbCombo.List(index));
}

QStringList cSimpleList::ToArray() const {
  return DicList->Items();
}

void cSimpleList::ToRS(const std::shared_ptr<Recordset>& adrRS) const try {
  cSimpleList stored;
  stored.FromRS(adrRS);
  Recordset& table = present(adrRS);
  addMissing(table, *this, stored);
  if (table.RecordCount() > DicList->Count()) removeOthers(table, *this, stored);
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("cSimpleList.ToRS"));
}

}  // namespace hourbook
