#include "settings/cGlobalSettings.h"

#include "database/DatabaseValues.h"
#include "database/modDBCode.h"
#include "platform/basic/convert.h"
#include "platform/process/process.h"
#include "shell/genTools.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/Present.h"
#include "shell/Tolerate.h"

namespace hourbook {

using platform::Failure;
using platform::ado::Recordset;
using platform::basic::CLng;
using platform::basic::CStr;

namespace {

inline constexpr qint32 aspPage = 1;
inline constexpr qint32 objectDoesNotSupport = 445;

QString defaultCaption(qint16 n) {
  if (n == 1) return phrases().LNGCUSTOMER;
  return n == 2 ? phrases().LNGTASK : QString();
}

}  // namespace

cGlobalSettings::cGlobalSettings() : OtherSettings(std::make_shared<cOtherSettings>()) {
  ReportToValue = fncStripSlash(platform::process::Process::current().programFolder());
  databaseValues().target = this;
}

cGlobalSettings::~cGlobalSettings() {
  if (Shared<DatabaseValues>::exists() && databaseValues().target == this) databaseValues().target = nullptr;
}

bool cGlobalSettings::fncCheckFilledOut() const {
  if (MetaDataLists.Count() < 1 || MetaDataLists.Item(1)->MetaDic->Count() < 1) return false;
  return ReportTo != 0 && CostCarrier != 0 && !ReportToValue.isEmpty();
}

bool cGlobalSettings::ReadGlobalSettings(qint32 ReportOption, const QString& Path) try {
  ReportTo = ReportOption;
  subSetupDBObjects(true, ReportOption == aspPage, Path);
  subCloseDBObjects();
  return MetaDataLists.Count() >= 1;
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("fncReadGlobalSettings"));
}

void cGlobalSettings::subSetupDBObjects(bool blnReadOnly, bool blnXML, const QString& strPath) try {
  if (blnXML)
    throw Failure(
        objectDoesNotSupport,
        QStringLiteral("This version of the program cannot read common settings from an ASP page: ") +
            fncStripSlash(strPath));
  MetaDataLists = {};
  settings_ = fncReturnRecordset(QStringLiteral("tblSettings"), blnReadOnly, false);
  if (!settings_) return;
  subReadSettingsRow();
  metaLists_ = fncReturnRecordset(QStringLiteral("tblMetaLists"), false);
  for (qint16 n = 1; n <= 3; ++n) subReadMetaList(n, blnReadOnly);
  OtherSettings->FromRS(fncReturnRecordset(QStringLiteral("tblOtherSettings"), blnReadOnly));
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("subSetupDBObjects"));
}

void cGlobalSettings::subReadSettingsRow() {
  tolerate([this] { settings_->RecordCount(); });
  if (settings_->isEOF()) {
    CostCarrier = 0;
    return;
  }
  const auto field = [this](int position) { return settings_->Fields().Item(position).Value(); };
  CostCarrier = CLng(field(1));
  ReportTo = CLng(field(2));
  ReportToValue = CStr(field(3));
}

void cGlobalSettings::subReadMetaList(qint16 n, bool blnReadOnly) {
  const auto values =
      fncReturnRecordset(QStringLiteral("select * from tblMeta%1 order by strName").arg(n), blnReadOnly);
  auto list = std::make_shared<cMetaDictionary>();
  if (values) list->ReadFromRecordset(*values);
  list->Index = n;
  subReadCaptions(*list, n);
  MetaDataLists.Add(list, QStringLiteral("Meta") + QString::number(n));
  if (!metaLists_->isEOF()) metaLists_->MoveNext();
}

void cGlobalSettings::subReadCaptions(cMetaDictionary& list, qint16 n) {
  Recordset& captions = present(metaLists_);
  if (captions.isEOF()) {
    list.Caption = defaultCaption(n);
    // A new database lacks the row; one that cannot be written to goes on without it.
    const auto failure = tolerate([&] {
      captions.AddNew(QStringLiteral("strMetaListCaption"), list.Caption);
      captions.Update();
    });
    if (failure) tolerate([&] { captions.Cancel(); });
    return;
  }
  const auto field = [&captions](const QString& name) { return captions.Fields().Item(name).Value(); };
  list.Caption = CStr(field(QStringLiteral("strMetaListCaption")));
  list.CategoryCaption = fncNullToEmpty(field(QStringLiteral("strMetaListCategoryCaption")));
  list.SuperCategoryCaption = fncNullToEmpty(field(QStringLiteral("strMetaListSuperCategoryCaption")));
}

void cGlobalSettings::subCloseDBObjects() {
  tolerate([this] {
    if (settings_) settings_->Close();
  });
  auto& connection = databaseValues().gConnection;
  tolerate([&] {
    if (connection) connection->Close();
  });
  settings_.reset();
  connection.reset();
}

}  // namespace hourbook
