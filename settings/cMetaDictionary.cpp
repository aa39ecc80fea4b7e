#include "settings/cMetaDictionary.h"

#include "platform/basic/convert.h"
#include "shell/genTools.h"
#include "shell/modErrorReport.h"
#include "shell/modScriptingDic.h"
#include "shell/Present.h"

namespace hourbook {

using platform::ado::Recordset;
using platform::basic::Value;

namespace {

Value fieldValue(Recordset& recordset, const QString& name) {
  return recordset.Fields().Item(name).Value();
}

}  // namespace

cMetaDictionary::cMetaDictionary() : MetaDic(fncCreateDic<std::shared_ptr<cMetaData>>()) {}

void cMetaDictionary::AddMeta(const QString& MetaName, const QString& MetaCategory,
                              const platform::basic::Currency& HourlyRate, qint32 ID,
                              const QString& SuperCategory, bool Enabled) {
  if (MetaName.isEmpty()) return;
  auto meta = std::make_shared<cMetaData>();
  meta->MetaName = MetaName;
  meta->Category = MetaCategory;
  meta->HourlyRate = HourlyRate;
  meta->ID = ID;
  meta->SuperCategory = SuperCategory;
  meta->Enabled = Enabled;
  // Of two equal names the first stands.
  if (!MetaDic->Exists(MetaName)) MetaDic->Add(MetaName, std::move(meta));
}

void cMetaDictionary::ReadFromRecordset(Recordset& MetaRecordset) {
  using namespace platform::basic;
  const auto safeField = [&](const char16_t* name, bool numeric) {
    Value value = fieldValue(MetaRecordset, QString::fromUtf16(name));
    return fncSafeValue(value, numeric);
  };
  // A copy of the list that holds the names alone has one field.
  const bool namesOnly = MetaRecordset.Fields().Count() == 1;
  for (qint32 number = 1; !MetaRecordset.isEOF(); ++number) {
    qint32 id = number;
    Currency rate;
    QString category;
    QString superCategory;
    bool enabled = true;
    if (!namesOnly) {
      id = CLng(MetaRecordset.Fields().Item(0).Value());
      rate = CCur(safeField(u"curRate", true));
      category = CStr(safeField(u"strCategory", false));
      superCategory = CStr(safeField(u"strSuperCategory", false));
      enabled = CBool(safeField(u"blnEnabled", false));
    }
    AddMeta(CStr(safeField(u"strName", false)), category, rate, id, superCategory, enabled);
    MetaRecordset.MoveNext();
  }
}

void cMetaDictionary::FillCombo(platform::forms::ComboBox& lstListCombo) const try {
  lstListCombo.Clear();
  for (const QString& name : present(MetaDic).Keys()) lstListCombo.AddItem(name);
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("cMetaDictionary.subFillcombo"));
}

Value cMetaDictionary::fncSafeValue(Value& varValue, bool blnNumeric) const {
  const bool isNull = platform::basic::IsNull(varValue);
  if (blnNumeric) return isNull ? Value(qint16(0)) : varValue;
  if (isNull) varValue = QString();
  return platform::basic::CStr(varValue);
}

}  // namespace hourbook
