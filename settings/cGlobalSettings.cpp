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

/// kept: a slash at the end stays
QString withoutBackslash(QString path) {
  if (path.endsWith(u'\\')) path.chop(1);
  return path;
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
  const Source source{blnReadOnly, blnXML, withoutBackslash(strPath)};
  if (blnXML && !settingsValues().fncXMLFileToRS)
    throw Failure(
        objectDoesNotSupport,
        QStringLiteral("This version of the program cannot read common settings from an ASP page: ") +
            source.address);
  MetaDataLists = {};
  settings_ = fncFetch(source, QStringLiteral("tblSettings"), QStringLiteral("HBSettings.xml"));
  if (!settings_) return;
  subReadSettingsRow();
  // kept: writable whatever was asked for, so that a new database gets the rows it lacks
  metaLists_ = fncFetch({false, source.xml, source.address}, QStringLiteral("tblMetaLists"),
                        QStringLiteral("HBMetaLists.xml"));
  for (qint16 n = 1; n <= 3; ++n) subReadMetaList(n, source);
  OtherSettings->FromRS(fncReturnRecordset(QStringLiteral("tblOtherSettings"), blnReadOnly));
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("subSetupDBObjects"));
}

/// Null when there is nothing: an address that gave an empty text leads to a recordset that is not open.
cGlobalSettings::RecordsetPointer cGlobalSettings::fncFetch(const Source& source, const QString& strTable,
                                                            const QString& strFile) const {
  if (!source.xml) return fncReturnRecordset(strTable, source.readOnly, false);
  const RecordsetPointer found = settingsValues().fncXMLFileToRS(source.address + u'/' + strFile);
  return found && found->State() == platform::ado::adStateOpen ? found : nullptr;
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

void cGlobalSettings::subReadMetaList(qint16 n, const Source& source) {
  const auto values = fncFetch(source, QStringLiteral("select * from tblMeta%1 order by strName").arg(n),
                               QStringLiteral("HBMeta%1.xml").arg(n));
  auto list = std::make_shared<cMetaDictionary>();
  if (values) list->ReadFromRecordset(*values);
  list->Index = n;
  subReadCaptions(*list, n);
  MetaDataLists.Add(list, QStringLiteral("Meta") + QString::number(n));
  if (!present(metaLists_).isEOF()) metaLists_->MoveNext();
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
