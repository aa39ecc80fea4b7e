#include "platform/basic/convert.h"
#include "platform/basic/failure.h"
#include "platform/outlook/items.h"

using namespace Qt::StringLiterals;

// A property stands in the store as text: numbers with a point, moments as "yyyy-MM-ddTHH:mm:ss" on the
// user's clock, "TRUE" and "FALSE". What another program wrote differently comes out as the text that it is.
namespace platform::outlook {

namespace {

constexpr auto momentFormat = "yyyy-MM-dd'T'HH:mm:ss";

QString valueOfNew(int type) {
  switch (type) {
    case olNumber:
      return u"0"_s;
    case olYesNo:
      return u"FALSE"_s;
    case olDateTime:
      return u"4501-01-01T00:00:00"_s;  // "none"
    default:
      return u""_s;
  }
}

QString encoded(const basic::Value& value, int type) {
  switch (type) {
    case olNumber:
      return QString::number(basic::CDbl(value), 'g', QLocale::FloatingPointShortest);
    case olYesNo:
      return basic::CBool(value) ? u"TRUE"_s : u"FALSE"_s;
    case olDateTime: {
      const basic::Date date = basic::CDate(value);
      return QDateTime(date.date(), date.time(), Qt::UTC).toString(QLatin1StringView(momentFormat));
    }
    default: {
      const QString text = basic::CStr(value);
      return text.isNull() ? u""_s : text;
    }
  }
}

basic::Value decodedDate(const QString& text) {
  const QDate day = QDate::fromString(text.left(10), Qt::ISODate);
  const QTime time = text.size() > 10 ? QTime::fromString(text.mid(11, 8), u"HH:mm:ss") : QTime(0, 0);
  if (!day.isValid() || !time.isValid()) return text;
  return basic::Date::of(day, time);
}

basic::Value decoded(const calendar::UserProperty& property) {
  const QString text = property.value.trimmed();
  switch (property.type) {
    case olNumber: {
      bool ok = false;
      const double number = text.toDouble(&ok);
      return ok ? basic::Value(number) : basic::Value(property.value);
    }
    case olYesNo:
      if (text.compare(u"TRUE"_s, Qt::CaseInsensitive) == 0 || text == u"1" || text == u"-1") return true;
      if (text.compare(u"FALSE"_s, Qt::CaseInsensitive) == 0 || text == u"0") return false;
      return property.value;
    case olDateTime:
      return decodedDate(text);
    default:
      return property.value;
  }
}

std::optional<std::pair<QString, calendar::UserProperty>> lookedUp(
    const QMap<QString, calendar::UserProperty>& properties, const QString& name) {
  for (auto property = properties.cbegin(); property != properties.cend(); ++property)
    if (property.key().compare(name, Qt::CaseInsensitive) == 0)
      return std::pair(property.key(), property.value());
  return std::nullopt;
}

}  // namespace

basic::Value UserProperty::Value() const {
  const auto found = item_.findProperty(name_);
  return found ? decoded(found->second) : basic::Value();
}

void UserProperty::setValue(const basic::Value& value) {
  const auto found = item_.findProperty(name_);
  const int type = found ? found->second.type : olText;
  item_.change_.userProperties.insert(name_, {type, encoded(value, type)});
}

std::unique_ptr<UserProperty> UserProperties::Find(const QString& name) const {
  const auto found = item_.findProperty(name);
  return found ? std::make_unique<UserProperty>(item_, found->first) : nullptr;
}

std::unique_ptr<UserProperty> UserProperties::Add(const QString& name, int type) {
  if (auto present = Find(name)) return present;
  if (name.isEmpty() || (type != olText && type != olNumber && type != olDateTime && type != olYesNo))
    throw Failure(failure::invalidProcedureCall,
                  u"A property \"%1\" of type %2 cannot be added."_s.arg(name).arg(type),
                  u"UserProperties"_s);
  item_.change_.userProperties.insert(name, {type, valueOfNew(type)});
  return std::make_unique<UserProperty>(item_, name);
}

std::optional<std::pair<QString, calendar::UserProperty>> AppointmentItem::findProperty(
    const QString& name) const {
  const auto pending = lookedUp(change_.userProperties, name);
  return pending ? pending : lookedUp(item_.userProperties, name);
}

}  // namespace platform::outlook
