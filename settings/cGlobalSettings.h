#pragma once
#include "database/ReportTarget.h"
#include "platform/ado/recordset.h"
#include "settings/cMetaDictionary.h"
#include "settings/cOtherSettings.h"
#include "settings/SettingsValues.h"

#include <memory>

namespace hourbook {

/// What all users of an installation share. While it lives, its `ReportTo` and `ReportToValue` are the target
/// that the connection code reads and sets.
class cGlobalSettings : public ReportTarget {
 public:
  cGlobalSettings();
  ~cGlobalSettings();
  cGlobalSettings(const cGlobalSettings&) = delete;
  cGlobalSettings& operator=(const cGlobalSettings&) = delete;

  qint32 CostCarrier = 0;            // 0 not set, 1 the person's rate, 2 to 4 the rate of list 1 to 3
  MetaDataCollection MetaDataLists;  // "Meta1", "Meta2", "Meta3": all three after a successful read
  std::shared_ptr<cOtherSettings> OtherSettings;

  /// Saves everything and makes the lists' tables equal to the lists, asking through `frmResolveRemovedItem`
  /// about each stored value that is no longer there. False after a message when something mandatory is
  /// missing; nothing was written then. Any other failure ends the process. There is no transaction of its
  /// own.
  bool SaveGlobalSettings();
  /// True when everything that reporting needs is set.
  bool fncCheckFilledOut() const;
  /// Reads everything; true when the lists were found.
  bool ReadGlobalSettings(qint32 ReportOption, const QString& Path);
  /// Saves the XML copies into the program's folder. The rows of settings and captions must be open.
  void subGSToXML();
  void subSetupDBObjects(bool blnReadOnly, bool blnXML, const QString& strPath);
  /// Lets the shared connection go.
  void subCloseDBObjects();

 private:
  using RecordsetPointer = std::shared_ptr<platform::ado::Recordset>;
  /// Where a read takes its recordsets from.
  struct Source {
    bool readOnly;
    bool xml;
    QString address;
  };
  RecordsetPointer fncFetch(const Source& source, const QString& strTable, const QString& strFile) const;
  void subReadSettingsRow();
  void subReadMetaList(qint16 n, const Source& source);
  void subReadCaptions(cMetaDictionary& list, qint16 n);

  void subSaveSettingsRow();
  void subSaveCaptions();

  RecordsetPointer settings_;
  RecordsetPointer metaLists_;
};

}  // namespace hourbook
