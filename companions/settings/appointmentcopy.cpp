#include "companions/settings/appointmentcopy.h"

#include "companions/settings/guarded.h"
#include "companions/settings/steps.h"
#include "companions/settings/texts.h"
#include "outlook/modItemProperties.h"
#include "outlook/modOutlookSession.h"
#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/calendar/icalendar/icalendarstore.h"
#include "platform/outlook/application.h"
#include "settings/cPersonalSettings.h"
#include "shell/Tolerate.h"

#include <QFileInfo>

namespace hourbook {

using namespace Qt::StringLiterals;
using namespace platform::basic;
using namespace platform::outlook;
using platform::Failure;
using State = KeptSettings::State;

namespace {

const QString longProperty = u"Settings"_s;
inline constexpr qsizetype firstLines = 6;
/// Longest text that an appointment's categories take.
inline constexpr qsizetype longestCategories = 4000;

[[noreturn]] void torn(const QString& reason) {
  throw Failure(platform::failure::typeMismatch, reason);
}

QString pieceOf(AppointmentItem& item, const QString& name) {
  const auto property = item.userProperties().Find(name);
  if (!property) torn(texts::pieceMissing.arg(name));
  return CStr(property->Value());
}

/// The text of all pieces; unlike the report program's reading, a piece that is missing is told.
QString wholeText(AppointmentItem& item) {
  const QString count = pieceOf(item, longProperty + u"Count"_s);
  if (!IsNumeric(count)) torn(texts::pieceMissing.arg(longProperty + u"Count"_s));
  QString text;
  for (qint32 index = 0; index <= CLng(count); ++index)
    text += pieceOf(item, longProperty + QString::number(index));
  return text;
}

bool isBoolean(const QString& text) {
  return !tolerate([&] { CBool(text); }) && !IsNumeric(text);
}

void requireWhole(const QString& text) {
  const QStringList lines = Split(text, vbCrLf);
  if (lines.size() <= firstLines) torn(texts::linesMissing);
  if (!lines.last().isEmpty()) torn(texts::endMissing);
  if (!IsNumeric(lines[0])) torn(texts::lineUnreadable.arg(1).arg(lines[0]));
  if (!IsNumeric(lines[2])) torn(texts::lineUnreadable.arg(3).arg(lines[2]));
  for (const int number : {4, 5, 6})
    if (!isBoolean(lines[number - 1])) torn(texts::lineUnreadable.arg(number).arg(lines[number - 1]));
}

std::shared_ptr<cPersonalSettings> settingsIn(AppointmentItem& item, const QString& text) {
  std::shared_ptr<cPersonalSettings> settings;
  guarded([&] {
    settings = std::make_shared<cPersonalSettings>();
    settings->FromString(text);
  });
  const auto property = [&](const QString& name, int type) { return fncGetOutlookValue(item, name, type); };
  settings->Convert24 = CBool(property(u"blnConvert24"_s, vbBoolean));
  settings->Convert24Hours = property(u"intConvert24Hours"_s, vbInteger);
  settings->RemoveLunch = CBool(property(u"blnRemoveLunch"_s, vbBoolean));
  settings->RemoveLunchHours = property(u"intRemoveLunchHours"_s, vbInteger);
  settings->CreateLocalCube = CBool(property(u"blnCreateLocalCube"_s, vbBoolean));
  settings->StartGrid = CBool(property(u"blnStartGrid"_s, vbBoolean));
  settings->WriteSubject = CBool(property(u"blnWriteSubject"_s, vbBoolean));
  return settings;
}

void setProperties(AppointmentItem& item, const cPersonalSettings& settings) {
  const auto set = [&](const QString& name, int type, const Value& value) {
    item.userProperties().Add(name, type)->setValue(value);
  };
  set(u"blnConvert24"_s, olYesNo, settings.Convert24);
  set(u"intConvert24Hours"_s, olNumber, CDbl(settings.Convert24Hours));
  set(u"blnRemoveLunch"_s, olYesNo, settings.RemoveLunch);
  set(u"intRemoveLunchHours"_s, olNumber, CDbl(settings.RemoveLunchHours));
  set(u"blnCreateLocalCube"_s, olYesNo, settings.CreateLocalCube);
  set(u"blnStartGrid"_s, olYesNo, settings.StartGrid);
  set(u"blnWriteSubject"_s, olYesNo, settings.WriteSubject);
}

void fill(AppointmentItem& item, const cPersonalSettings& settings) {
  const QString body = settings.fncBuildBody();
  item.setBody(body);
  subFixLongProperty(item, body, longProperty);
  item.setCategories(settings.fncMetadataList().left(longestCategories));
  setProperties(item, settings);
}

}  // namespace

AppointmentCopy::AppointmentCopy(const CalendarEntry& calendar) : calendar_(calendar) {}

AppointmentCopy::~AppointmentCopy() = default;

QString AppointmentCopy::fileOf(const QString& place) const {
  if (!QFileInfo(calendar_.path).isDir()) return calendar_.path;
  return calendar_.path + u'/' + place.section(u'#', 0, 0);
}

KeptSettings AppointmentCopy::read() try {
  using namespace platform::calendar;
  if (!folder_) {
    store_ = std::make_shared<IcalendarStore>(QList<IcalendarFolder>{
        {calendar_.id, calendar_.name, QString(), calendar_.path, calendar_.readOnly}});
    folder_ = std::make_shared<MAPIFolder>(store_, store_->folders().first());
  }
  const Shared<OutlookValues>::Scope outlook;
  outlookValues().gCalendarFolder = folder_;
  KeptSettings kept;
  std::shared_ptr<AppointmentItem> item;
  guarded([&] { item = fncGetSettingAppointment(); });
  if (!item) return kept;
  kept.tag = item->stored().tag;
  const auto failure = tolerate([&] {
    kept.text = wholeText(*item);
    requireWhole(kept.text);
    kept.settings = settingsIn(*item, kept.text);
  });
  kept.state = failure ? State::Torn : State::Intact;
  if (failure) kept.reason = failure->description();
  return kept;
} catch (const Failure& failure) {
  return {State::Unreachable, failure.description(), {}, {}, {}};
}

void AppointmentCopy::write(Undo& undo, const cPersonalSettings& settings) {
  const KeptSettings kept = read();
  if (kept.state == State::Unreachable) throw Failure(platform::failure::permissionDenied, kept.reason);
  const Shared<OutlookValues>::Scope outlook;
  outlookValues().gCalendarFolder = folder_;
  auto item = fncGetSettingAppointment();
  const bool isNew = !item;
  const bool ownFile = isNew && QFileInfo(calendar_.path).isDir();
  platform::files::ReadResult before;
  if (!ownFile) before = platform::files::readFile(fileOf(isNew ? QString() : item->stored().key.place));
  if (isNew) {
    item = folder_->Items().Add();
    item->setSubject(settingAppointmentName);
    item->setStart(Date::of(2050, 1, 1));
    item->setAllDayEvent(true);
  }
  fill(*item, settings);
  item->Save();
  const QString file = fileOf(item->stored().key.place);
  const auto after = platform::files::readFile(file).fingerprint;
  undo.add([file, ownFile, before, after] {
    const auto result = ownFile ? platform::files::removeFile(file, after)
                                : platform::files::replaceFile(file, before.bytes, after);
    if (result.outcome != platform::files::Outcome::Written)
      throw Failure(platform::failure::permissionDenied, result.error);
  });
}

}  // namespace hourbook
