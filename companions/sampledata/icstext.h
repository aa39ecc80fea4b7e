#pragma once
#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace sampledata {

/// Builds the text of one .ics file, line by line: CR LF, folded at 75 octets, values escaped.
class IcsText {
 public:
  IcsText();
  void begin(const char* component);
  void end(const char* component);
  /// `head` is the property with its parameters; the value is taken as it stands.
  void raw(const QByteArray& head, const QByteArray& value);
  void text(const QByteArray& head, const QString& value);
  /// In the zone: "TZID" form, or "Z" when the zone is UTC; floating when `zoneId` is empty.
  void moment(const QByteArray& property, const QDateTime& wall, const QByteArray& zoneId);
  void day(const QByteArray& property, const QDate& date);
  QByteArray finish();

 private:
  void line(const QByteArray& text);
  QByteArray content_;
};

QByteArray escapedText(const QString& value);

}  // namespace sampledata
