// The two places in which the personal settings are kept: the registry, and the appointment of 1 January
// 2050.
#include "outlook/modItemProperties.h"
#include "outlook/modOutlookSession.h"
#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/process/process.h"
#include "settings/cPersonalSettings.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/modRegistryEntry.h"
#include "shell/Tolerate.h"

namespace hourbook {

using namespace platform::basic;
using platform::Failure;
using platform::outlook::AppointmentItem;

namespace {

const QString section = QStringLiteral("Settings");
const QString none = QStringLiteral("NULL");
/// Longest text that an appointment's categories take.
inline constexpr qsizetype longestCategories = 4000;

QString registryText(const QString& key, const QString& defaultValue) {
  return fncGetRegistryValue(section, key, defaultValue);
}

bool registryBoolean(const QString& key) {
  return CBool(registryText(key, QStringLiteral("true")));
}

QString databaseIn(const QString& folder) {
  return platform::scripting::systemPath(fncStripSlash(folder) + QStringLiteral("\\Hourbook3.mdb"));
}

bool programExists(const QString& name) {
  return shellValues().gFileSystem->FileExists(
      fncProgramPath(platform::process::Process::current().programFolder(), name));
}

/// What fits, without half a character at its end.
QString fittingCategories(const QString& metaLines) {
  QString fitting = metaLines.left(longestCategories);
  if (!fitting.isEmpty() && fitting.back().isHighSurrogate()) fitting.chop(1);
  return fitting;
}

/// A piece that is missing would join two halves of other lines into names that nobody gave, and a report
/// would save them.
void requireWhole(AppointmentItem& appointment) {
  const qint16 last = CInt(fncGetOutlookValue(appointment, section + QStringLiteral("Count"), vbInteger));
  for (qint32 index = 0; last > 0 && index <= last; ++index) {
    const QString piece = section + QString::number(index);
    if (!appointment.userProperties().Find(piece))
      throw Failure(platform::failure::typeMismatch,
                    QStringLiteral("The settings appointment is incomplete: \"%1\" is missing.").arg(piece));
  }
}

void saveToAppointment(AppointmentItem& appointment, const QString& body, const QString& metaLines) {
  tolerate([&] { appointment.setBody(body); });
  tolerate([&] { subFixLongProperty(appointment, body, section); });
  tolerate([&] { appointment.setCategories(fittingCategories(metaLines)); });
  tolerate([&] { appointment.Save(); });
}

}  // namespace

bool cPersonalSettings::GetValuesFromSettings() try {
  subLog(QStringLiteral("Reading Hourbook settings from Registry!"));
  const QString choice = registryText(QStringLiteral("ReportChoice"), none);
  if (choice == none) {
    subReadExistingSettingAppointment2050();
    return true;
  }
  ReportChoice = CLng(choice);
  const QString value = registryText(QStringLiteral("ReportValue"), none);
  if (value != none) ReportValue = value;
  PersonalRate = CCur(registryText(QStringLiteral("PersonalRate"), QStringLiteral("0")));
  FilterEvents = registryBoolean(QStringLiteral("FilterEvents"));
  FilterPrivate = registryBoolean(QStringLiteral("FilterPrivate"));
  FilterRecurring = registryBoolean(QStringLiteral("FilterRecurring"));
  subPopulateMetadataList(registryText(QStringLiteral("MetadataList"), QString()));
  Convert24 = registryBoolean(QStringLiteral("Convert24"));
  Convert24Hours = registryText(QStringLiteral("Convert24Hours"), QStringLiteral("8"));
  RemoveLunch = registryBoolean(QStringLiteral("RemoveLunch"));
  RemoveLunchHours = registryText(QStringLiteral("RemoveLunchHours"), CStr(Value(0.75)));
  CreateLocalCube = registryBoolean(QStringLiteral("CreateLocalCube"));
  StartGrid = registryBoolean(QStringLiteral("StartGrid"));
  WriteSubject = registryBoolean(QStringLiteral("WriteSubject"));
  return true;
} catch (const Failure& failure) {
  // The caller tells the user that there are no settings; the log says why.
  subLog(failure.description());
  return false;
}

void cPersonalSettings::subReadExistingSettingAppointment2050() try {
  subLog(QStringLiteral("Getting settings from appointment on 1 jan 2050"));
  const auto appointment = fncGetSettingAppointment();
  if (!appointment) return;
  const QStringList lines = Split(fncGetLongProperty(*appointment, section), vbCrLf);
  requireWhole(*appointment);
  if (lines.size() > settingLines) {
    if (!IsNumeric(lines[0])) return;
    constexpr qint16 access = 2;
    if (CInt(lines[0]) == access && !fncIsPlausible(lines[1])) return;
    subTakeLines(lines);
  }
  const auto property = [&](const QString& name, int type) {
    return fncGetOutlookValue(*appointment, name, type);
  };
  Convert24 = CBool(property(QStringLiteral("blnConvert24"), vbBoolean));
  Convert24Hours = property(QStringLiteral("intConvert24Hours"), vbInteger);
  RemoveLunch = CBool(property(QStringLiteral("blnRemoveLunch"), vbBoolean));
  RemoveLunchHours = property(QStringLiteral("intRemoveLunchHours"), vbInteger);
  CreateLocalCube = CBool(property(QStringLiteral("blnCreateLocalCube"), vbBoolean));
  StartGrid = CBool(property(QStringLiteral("blnStartGrid"), vbBoolean));
  WriteSubject = CBool(property(QStringLiteral("blnWriteSubject"), vbBoolean));
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("subReadExistingSettingAppointment2050"));
}

bool cPersonalSettings::fncIsSingleUser() {
  subSetupFS();
  return programExists(QStringLiteral("HBPersonalSettingsSingle"));
}

/// May the database of another machine's settings be used here? A single-user installation has its own in the
/// user's folder, any other has a shared one elsewhere.
bool cPersonalSettings::fncIsPlausible(const QString& strStoredFolder) const {
  subSetupFS();
  const QString stored = databaseIn(strStoredFolder);
  const bool isOwn = compareText(stored, databaseIn(fncHourbooksFolder())) == 0;
  const bool exists = shellValues().gFileSystem->FileExists(stored);
  if (fncIsSingleUser()) return isOwn && exists;
  return programExists(QStringLiteral("HBPersonalSettings")) && exists && !isOwn;
}

void cPersonalSettings::SaveSettings() const try {
  subLog(QStringLiteral("Saving personal settings to setting appointment of 1/1/2050"));
  const QString body = fncBuildBody();
  const QString metaLines = fncMetadataList();
  if (const auto appointment = fncGetSettingAppointment()) saveToAppointment(*appointment, body, metaLines);
  subLog(QStringLiteral("Saving personal settings to registry"));
  const auto save = [](const QString& key, const Value& value) {
    fncSaveRegistryValue(section, key, CStr(value));
  };
  save(QStringLiteral("ReportChoice"), ReportChoice);
  save(QStringLiteral("ReportValue"), ReportValue);
  save(QStringLiteral("PersonalRate"), PersonalRate);
  save(QStringLiteral("FilterEvents"), FilterEvents);
  save(QStringLiteral("FilterPrivate"), FilterPrivate);
  save(QStringLiteral("FilterRecurring"), FilterRecurring);
  save(QStringLiteral("MetadataList"), metaLines);
  save(QStringLiteral("Convert24"), Convert24);
  save(QStringLiteral("Convert24Hours"), Convert24Hours);
  save(QStringLiteral("StartGrid"), StartGrid);
  save(QStringLiteral("RemoveLunch"), RemoveLunch);
  save(QStringLiteral("RemoveLunchHours"), RemoveLunchHours);
  save(QStringLiteral("CreateLocalCube"), CreateLocalCube);
  save(QStringLiteral("WriteSubject"), WriteSubject);
  save(QStringLiteral("PaneWidth"), PaneWidth);
  save(QStringLiteral("PaneHeight"), PaneHeight);
  save(QStringLiteral("PaneDockPos"), PaneDockPos);
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("SaveSettings"));
}

}  // namespace hourbook
