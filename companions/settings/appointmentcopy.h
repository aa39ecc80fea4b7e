#pragma once
#include "app/Configuration.h"
#include "companions/settings/undo.h"

#include <QString>

#include <memory>

namespace platform::outlook {
class AppointmentItem;
class MAPIFolder;
}  // namespace platform::outlook
namespace platform::calendar {
class Store;
}

namespace hourbook {

class cPersonalSettings;

/// What a settings appointment holds.
struct KeptSettings {
  enum class State { None, Intact, Torn, Unreachable };
  State state = State::None;
  QString reason;                               // of Torn and Unreachable
  QString text;                                 // the settings text, as its pieces give it
  QString tag;                                  // changes with what is stored
  std::shared_ptr<cPersonalSettings> settings;  // only of an intact one
};

/// The appointment of 1 January 2050 in one calendar, which carries the personal settings from machine to
/// machine.
class AppointmentCopy {
 public:
  /// The calendar's path is absolute.
  explicit AppointmentCopy(const CalendarEntry& calendar);
  ~AppointmentCopy();

  KeptSettings read();
  /// Writes the settings in the forms that the report program reads, into the appointment that is there or a
  /// new one. Throws platform::Failure with the calendar as it was.
  void write(Undo& undo, const cPersonalSettings& settings);

 private:
  QString fileOf(const QString& place) const;

  CalendarEntry calendar_;
  std::shared_ptr<platform::calendar::Store> store_;
  std::shared_ptr<platform::outlook::MAPIFolder> folder_;
};

}  // namespace hourbook
