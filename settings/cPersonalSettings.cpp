#include "settings/cPersonalSettings.h"

#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/process/process.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/modGetDefaultFolders.h"

namespace hourbook {

using namespace platform::basic;
using platform::Failure;

namespace {

QString wholeFile(const QString& path) {
  const auto stream = shellValues().gFileSystem->OpenTextFile(path);
  const QString content = stream->AtEndOfStream() ? QString() : stream->ReadAll();
  stream->Close();
  return content;
}

QString onOneLine(QString text) {
  return text.remove(u'\r').remove(u'\n');
}

void addList(MetaDataCollection& lists, const QString& line) {
  const QString name = line.section(u':', 0, 0);
  if (name.isEmpty()) return;
  auto list = std::make_shared<cMetaDictionary>();
  lists.Add(list);
  list->Caption = name;
  for (const QString& value : Split(line.mid(name.size() + 1), QStringLiteral(";"))) list->AddMeta(value);
}

}  // namespace

cPersonalSettings::cPersonalSettings() try {
  subSetupFS();
  subLog(QStringLiteral("Checking for HourbookConnection.txt"));
  const QString folder = fncReadReportPath();
  const QString connectionFile = fncStripSlash(folder) + QStringLiteral("\\HourbookConnection.txt");
  if (shellValues().gFileSystem->FileExists(connectionFile)) {
    ReportChoice = 3;
    ReportValue = wholeFile(connectionFile);
  } else {
    subLog(QStringLiteral("Assuming Access database"));
    ReportChoice = 2;
    ReportValue = fncStripSlash(folder) + u'\\';
  }
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("cPersonalSettings.Class_Initialize"));
}

QString cPersonalSettings::fncReadReportPath() const {
  const QString file = fncHourbooksFolder() + QStringLiteral("\\ReportPath.txt");
  subSetupFS();
  if (shellValues().gFileSystem->FileExists(file)) return onOneLine(wholeFile(file));
  return fncStripSlash(platform::process::Process::current().programFolder()) + u'\\';
}

QString cPersonalSettings::fncHourbooksFolder() const {
  return fncLocalCubePathOnly().replace(QStringLiteral("OLAP Cubes"), QStringLiteral("My Hourbooks"));
}

// A connection text out of a file may hold line breaks, and the settings could not be read back with them.
QString cPersonalSettings::fncBuildBody() const {
  return CStr(ReportChoice) + vbCrLf + onOneLine(ReportValue) + vbCrLf + CStr(PersonalRate) + vbCrLf +
         CStr(FilterEvents) + vbCrLf + CStr(FilterPrivate) + vbCrLf + CStr(FilterRecurring) + vbCrLf +
         fncMetadataList();
}

QString cPersonalSettings::fncJoinDic(const QStringList& objDic, const QString& strDelimiter) const {
  QString joined;
  for (const QString& element : objDic) joined += element + strDelimiter;
  return joined;
}

QString cPersonalSettings::fncMetadataList() const {
  QString lines;
  for (const auto& list : MetaDataLists)
    if (!list->MetaName().isEmpty())
      lines += list->MetaName() + u':' + fncJoinDic(list->MetaDic->Keys(), QStringLiteral(";")) + vbCrLf;
  return lines;
}

void cPersonalSettings::subPopulateMetadataList(const QString& strMetadataList) try {
  subReadLists(Split(strMetadataList, vbCrLf), 0);
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("subPopulateMetadataList"));
}

void cPersonalSettings::subReadLists(const QStringList& lines, qsizetype first) {
  if (lines.size() < 2) return;
  MetaDataLists = {};
  // What stands behind the closing line break is no line.
  for (qsizetype i = first; i < lines.size() - 1; ++i) addList(MetaDataLists, lines[i]);
}

void cPersonalSettings::FromString(const QString& strToRead) try {
  const QStringList lines = Split(strToRead, vbCrLf);
  if (lines.size() > settingLines && IsNumeric(lines[0])) subTakeLines(lines);
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("FromString"));
}

void cPersonalSettings::subTakeLines(const QStringList& lines) {
  ReportChoice = CInt(lines[0]);
  ReportValue = lines[1];
  // kept: read as a whole number, so decimals are lost on this way
  PersonalRate = CCur(CInt(lines[2]));
  FilterEvents = CBool(lines[3]);
  FilterPrivate = CBool(lines[4]);
  FilterRecurring = CBool(lines[5]);
  subReadLists(lines, settingLines);
}

}  // namespace hourbook
