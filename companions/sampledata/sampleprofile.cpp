#include "companions/sampledata/sampleprofile.h"

#include "companions/sampledata/sampledatabase.h"
#include "companions/sampledata/samplelists.h"
#include "platform/basic/failure.h"
#include "platform/files/atomicfile.h"
#include "platform/registry/ini/inifile.h"

#include <QDir>

namespace sampledata {

using namespace Qt::StringLiterals;
using platform::Failure;

namespace {

void requireEmpty(const QString& folder) {
  const QDir dir(folder);
  if (dir.exists() && !dir.isEmpty())
    throw Failure(
        platform::failure::permissionDenied,
        u"The folder %1 is not empty. A sample profile is only made in an empty one."_s.arg(folder));
  for (const QString& part : {u"calendar"_s, u"database"_s, u"config"_s})
    if (!QDir().mkpath(folder + u'/' + part))
      throw Failure(platform::failure::pathNotFound, u"The folder %1/%2 cannot be made."_s.arg(folder, part));
}

void write(const QString& path, const QByteArray& content) {
  const platform::files::WriteResult result = platform::files::replaceFile(path, content);
  if (result.outcome != platform::files::Outcome::Written)
    throw Failure(platform::failure::permissionDenied, result.error);
}

QString quoted(const QString& text) {
  QString escaped = text;
  escaped.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s);
  return u'"' + escaped + u'"';
}

void writeConfiguration(const QString& folder) {
  const QString text =
      u"[mailbox]\nname=%1\nversion=11.0.0.8169\n\n"
      "[calendars]\nopen=calendar\nsize=1\n1\\id=calendar\n1\\name=Calendar\n"
      "1\\path=%2\n1\\readonly=false\n"_s.arg(quoted(u"Mailbox - "_s + personName()),
                                              quoted(folder + u"/calendar"_s));
  write(folder + u"/config/platform.ini"_s, text.toUtf8());
}

void writeRegistry(const QString& folder) {
  const QString key = u"Software\\Norrdalen\\Hourbook for Outlook\\Settings"_s;
  const QList<QPair<QString, QString>> values{
      {u"ReportChoice"_s, u"2"_s},      {u"ReportValue"_s, folder + u"/database\\"_s},
      {u"PersonalRate"_s, u"450"_s},    {u"FilterEvents"_s, u"True"_s},
      {u"FilterPrivate"_s, u"True"_s},  {u"FilterRecurring"_s, u"False"_s},
      {u"MetadataList"_s, metaLines()}, {u"Convert24"_s, u"True"_s},
      {u"Convert24Hours"_s, u"8"_s},    {u"RemoveLunch"_s, u"False"_s},
      {u"RemoveLunchHours"_s, u"1"_s},  {u"CreateLocalCube"_s, u"False"_s},
      {u"StartGrid"_s, u"False"_s},     {u"WriteSubject"_s, u"True"_s}};
  platform::registry::IniRegistry registry(folder + u"/config/registry.ini"_s);
  int code = registry.openKey(key);
  for (const auto& [name, value] : values)
    if (code == 0) code = registry.setValue(key, name, value);
  if (code != 0) throw Failure(platform::failure::permissionDenied, registry.lastError());
}

}  // namespace

void makeProfile(const QString& folder, const Plan& plan) {
  requireEmpty(folder);
  const SampleCalendar calendar = makeCalendar(plan);
  for (const CalendarFile& file : calendar.files) write(folder + u"/calendar/"_s + file.name, file.content);
  makeDatabase(folder + u"/database"_s, calendar.posted);
  writeConfiguration(folder);
  writeRegistry(folder);
}

}  // namespace sampledata
