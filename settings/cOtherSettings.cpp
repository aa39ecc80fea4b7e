#include "settings/cOtherSettings.h"

#include "outlook/modItemProperties.h"
#include "platform/basic/convert.h"
#include "settings/cSimpleList.h"
#include "shell/genTools.h"
#include "shell/modErrorReport.h"
#include "shell/modScriptingDic.h"
#include "shell/Present.h"
#include "shell/Tolerate.h"

namespace hourbook {

using namespace platform::basic;
using platform::ado::Recordset;
using Setting = platform::basic::Value;

cOtherSettings::cOtherSettings() : dicValues(fncCreateDic<Setting>()) {}

void cOtherSettings::FromRS(const std::shared_ptr<Recordset>& adrRS) {
  // kept: the text of the log is misspelt
  subLog(QStringLiteral("Looping through dababase tables to find all Other Settings"));
  dicValues = fncCreateDic<Setting>();
  if (!adrRS) return;
  for (; !adrRS->isEOF(); adrRS->MoveNext())
    SetValue(fncNullToEmpty(adrRS->Fields().Item(1).Value()), adrRS->Fields().Item(2).Value());
}

void cOtherSettings::SetValue(const QString& PropName, const Setting& Value) {
  dicValues->setItem(PropName, Value);
}

Setting cOtherSettings::GetValue(const QString& PropName, int intDataType) const {
  subLog(QStringLiteral("Reading the value of the Other Setting ") + PropName);
  const bool present = dicValues->Exists(PropName);
  const Setting value = present ? dicValues->Item(PropName) : Setting();
  switch (intDataType) {
    case vbInteger:
      return present && IsNumeric(value) ? CInt(value) : qint16(0);
    case vbDate:
      return present ? CDate(value) : Date();
    case vbString:
      return present ? fncNullToEmpty(value) : QString();
    case vbBoolean: {
      bool on = false;
      if (present) tolerate([&] { on = CBool(value); });
      return on;
    }
    default:
      return {};
  }
}

void cOtherSettings::ToRS(const std::shared_ptr<Recordset>& adrRS) const {
  subLog(QStringLiteral("Saving other settings to database"));
  cSimpleList stored;
  stored.FromRS(adrRS);
  for (const QString& name : dicValues->Keys()) {
    Recordset& table = present(adrRS);
    if (!stored.DicList->Exists(name)) {
      table.AddNew();
      table.Fields().Item(1).setValue(name);
    } else {
      if (table.RecordCount() != 0) table.MoveFirst();
      table.Find(QStringLiteral("strPropName = '") + name + QStringLiteral("'"));
    }
    QString text = fncNullToEmpty(dicValues->Item(name));
    // kept: the memo column holds no empty texts, so one reads back as a blank
    if (text.isEmpty()) text = QStringLiteral(" ");
    subLog(QStringLiteral("Setting field ") + name + QStringLiteral(" to the value ") + text);
    table.Fields().Item(QStringLiteral("strPropValue")).setValue(text);
    table.Update();
  }
}

}  // namespace hourbook
