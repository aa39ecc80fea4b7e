#pragma once
#include "platform/basic/value.h"
#include "settings/cMetaDictionary.h"
#include "settings/SettingsValues.h"

namespace platform::outlook {
class AppointmentItem;
}

namespace hourbook {

/// What belongs to one user. Stored in the registry and on the settings appointment.
class cPersonalSettings {
 public:
  /// Finds the place of the reports by the connection file; the rest are defaults.
  cPersonalSettings();

  MetaDataCollection MetaDataLists;  // the lists in use, one to three
  platform::basic::Currency PersonalRate;
  bool FilterPrivate = false;
  bool FilterRecurring = false;
  bool FilterEvents = false;
  platform::basic::Date DateLastReport;
  qint32 ReportChoice = 2;  // 1 ASP page, 2 Access, 3 SQL Server, 4 billing system
  QString ReportValue;      // for 2 the database's folder with "\" at its end, for 3 a connection string
  bool Convert24 = false;
  platform::basic::Value Convert24Hours = qint16(8);  // text when it came from the registry
  bool RemoveLunch = false;
  platform::basic::Value RemoveLunchHours = 0.75;  // likewise
  bool CreateLocalCube = false;
  bool StartGrid = false;
  bool WriteSubject = false;
  qint16 PaneWidth = 185;
  qint16 PaneHeight = 600;
  qint16 PaneDockPos = 2;

  /// Writes everything to the settings appointment, where there is one, and to the registry.
  void SaveSettings() const;
  /// Reads the registry, or where that has no settings the settings appointment.
  bool GetValuesFromSettings();
  /// Takes over a settings text as `fncBuildBody` makes it.
  void FromString(const QString& strToRead);
  QString fncBuildBody() const;
  /// Every element followed by the delimiter.
  QString fncJoinDic(const QStringList& objDic, const QString& strDelimiter) const;
  /// One line for each named list: its name, ":", and each value followed by ";".
  QString fncMetadataList() const;
  /// Makes the lists anew from such lines; a text of no more than one line changes nothing.
  void subPopulateMetadataList(const QString& strMetadataList);
  /// The folder of the connection file and the database, as `ReportPath.txt` names it, else the program's
  /// own.
  QString fncReadReportPath() const;
  /// The user's folder "My Hourbooks": where `ReportPath.txt` is looked for, and where the database of a
  /// single-user installation stands.
  QString fncHourbooksFolder() const;
  /// Is the settings program beside this one that of a single-user installation
  /// (`HBPersonalSettingsSingle`)? Any other is `HBPersonalSettings`.
  static bool fncIsSingleUser();

 private:
  static constexpr qsizetype settingLines = 6;  // of a settings text, before the lists
  void subReadExistingSettingAppointment2050();
  void subTakeLines(const QStringList& lines);
  void subReadLists(const QStringList& lines, qsizetype first);
  bool fncIsPlausible(const QString& strStoredFolder) const;
};

}  // namespace hourbook
