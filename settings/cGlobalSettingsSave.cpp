// How the common settings are saved. What was removed from a list is asked about row by row.
#include "database/modDBCode.h"
#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/dialogs/dialogs.h"
#include "platform/process/process.h"
#include "settings/cGlobalSettings.h"
#include "settings/frmResolveRemovedItem.h"
#include "shell/genTools.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/Present.h"

#include <QHash>

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::Failure;
using platform::ado::Recordset;
using platform::basic::Value;

namespace {

inline constexpr qint32 aspPage = 1;
inline constexpr qint32 objectDoesNotSupport = 445;

std::shared_ptr<Recordset> writable(const QString& table) {
  auto recordset = fncReturnRecordset(table, false);
  present(recordset);
  return recordset;
}

QString nameOf(Recordset& values) {
  return fncNullToEmpty(values[u"strName"_s].Value());
}

/// A row that holds the value already is not written again: saving a long list of which nothing changed costs
/// nothing.
void put(Recordset& row, const QString& column, const Value& value) {
  platform::ado::Field field = row[column];
  if (field.Value() != value) field.setValue(value);
}

void writeValue(Recordset& row, const QString& idField, cMetaData& meta) {
  put(row, u"strCategory"_s, meta.Category);
  put(row, u"strSuperCategory"_s, meta.SuperCategory);
  put(row, u"curRate"_s, meta.HourlyRate);
  put(row, u"blnEnabled"_s, meta.Enabled);
  row.Update();
  meta.ID = platform::basic::CLng(row[idField].Value());
}

/// Each value gets the first row of exactly its name, or a new one.
// kept: a name that changes in case alone is another name here, while a removed value is told without regard
// to case; so both rows stay
void saveValues(const cMetaDictionary& list, const QString& idField, Recordset& rows) {
  QHash<QString, std::shared_ptr<cMetaData>> missing;
  for (const auto& meta : list.MetaDic->Items()) missing.insert(meta->MetaName, meta);
  for (; !rows.isEOF() && !missing.isEmpty(); rows.MoveNext())
    if (const auto meta = missing.take(nameOf(rows))) writeValue(rows, idField, *meta);
  for (const auto& meta : list.MetaDic->Items()) {
    if (!missing.remove(meta->MetaName)) continue;
    rows.AddNew();
    rows[u"strName"_s].setValue(meta->MetaName);
    writeValue(rows, idField, *meta);
  }
}

/// What the user wants to be done with the reports of a value; to another value only with one chosen.
struct Resolution {
  qint16 outcome;
  QString moveTo;
};

Resolution resolve(const QString& value, const cMetaDictionary& list) {
  frmResolveRemovedItem form;
  form.lblValueToBeResolved.setCaption(value);
  form.lblConflict.setCaption(phrases().LNGCONFLICTVALUE);
  form.subFillDropDown(list.MetaDic->Keys());
  form.Show();
  return {form.intReturnValue, form.cmbMoveChoice.Text()};
}

void execute(platform::ado::Command& command, const QString& sql) {
  command.CommandText = sql;
  command.Execute();
}

/// The current row's value has been removed from its list.
void resolveRow(const cMetaDictionary& list, const QString& idField, Recordset& rows,
                platform::ado::Command& command) {
  const QString key = QString::number(platform::basic::CLng(rows[idField].Value()));
  const Resolution wanted = resolve(nameOf(rows), list);
  if (wanted.outcome == frmResolveRemovedItem::removeReports)
    execute(command, u"Delete from tblReports where "_s + idField + u" = "_s + key);
  else if (wanted.outcome == frmResolveRemovedItem::moveReports)
    execute(command, u"Update tblReports set "_s + idField + u" = "_s +
                         QString::number(list.MetaDic->Item(wanted.moveTo)->ID) + u" where "_s + idField +
                         u" = "_s + key);
  else
    return;
  rows.Delete();
}

void saveList(const cMetaDictionary& list, int n, platform::ado::Command& command) {
  const QString idField = u"intMeta%1ID"_s.arg(n);
  const auto rows = writable(u"tblMeta%1"_s.arg(n));
  saveValues(list, idField, *rows);
  if (rows->RecordCount() == 0) return;
  for (rows->MoveFirst(); !rows->isEOF(); rows->MoveNext())
    if (!list.MetaDic->Exists(nameOf(*rows))) resolveRow(list, idField, *rows, command);
}

}  // namespace

bool cGlobalSettings::SaveGlobalSettings() try {
  if (!fncCheckFilledOut()) {
    platform::dialogs::Dialogs::current().MsgBox(
        phrases().LNGALLVALUESNOTFILLEDOUT + platform::basic::vbCrLf + phrases().LNGFAILEDSAVESETTINGS,
        platform::dialogs::vbExclamation, gTitle);
    return false;
  }
  if (ReportTo == aspPage && !settingsValues().subSaveADRToXML)
    throw Failure(objectDoesNotSupport,
                  u"This version of the program cannot save the common settings for an ASP page."_s);
  const auto command = fncCreateCommand();
  int n = 0;
  for (const auto& list : MetaDataLists) saveList(*list, ++n, present(command));
  subSaveSettingsRow();
  subSaveCaptions();
  OtherSettings->ToRS(writable(u"tblOtherSettings"_s));
  if (ReportTo == aspPage) subGSToXML();
  subCloseDBObjects();
  return true;
} catch (const Failure& failure) {
  subHandleError(failure, u"fncSaveGlobalSettings"_s);
}

void cGlobalSettings::subSaveSettingsRow() {
  settings_ = writable(u"tblSettings"_s);
  if (settings_->isEOF())
    settings_->AddNew();
  else
    settings_->MoveFirst();
  Recordset& row = *settings_;
  row[u"intCostCarrier"_s].setValue(CostCarrier);
  row[u"intReportTo"_s].setValue(ReportTo);
  row[u"strReportToValue"_s].setValue(ReportToValue);
  row.Update();
}

/// Row by row in the order of the lists. A list without a caption is out of use and has no row, so that the
/// captions of the lists behind it move up.
void cGlobalSettings::subSaveCaptions() {
  metaLists_ = writable(u"tblMetaLists"_s);
  Recordset& row = *metaLists_;
  if (!row.isEOF()) row.MoveFirst();
  for (const auto& list : MetaDataLists) {
    if (list->Caption.isEmpty()) {
      if (row.isEOF()) continue;
      row.Delete();
    } else {
      if (row.isEOF()) row.AddNew();
      row[u"strMetaListCaption"_s].setValue(list->Caption);
      row[u"strMetaListCategoryCaption"_s].setValue(list->CategoryCaption);
      row[u"strMetaListSuperCategoryCaption"_s].setValue(list->SuperCategoryCaption);
      row.Update();
    }
    row.MoveNext();
  }
}

void cGlobalSettings::subGSToXML() {
  const QString folder = fncStripSlash(platform::process::Process::current().programFolder()) + u'\\';
  subLog(u"Saving the current Common Settings to xml in the path "_s + folder);
  const auto& save = settingsValues().subSaveADRToXML;
  if (!save)
    throw Failure(objectDoesNotSupport,
                  u"This version of the program cannot save the common settings for an ASP page."_s);
  for (int n = 1; n <= 3; ++n) {
    const auto names = fncReturnRecordset(u"Select strName from tblMeta%1"_s.arg(n), true);
    save(present(names), folder + u"HBMeta%1.xml"_s.arg(n));
  }
  save(present(settings_), folder + u"HBSettings.xml"_s);
  save(present(metaLists_), folder + u"HBMetaLists.xml"_s);
}

}  // namespace hourbook
