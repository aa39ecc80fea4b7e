#pragma once
#include "app/Configuration.h"

#include <QByteArray>

#include <optional>

namespace hourbook {

/// What `platform.ini` tells, or is to tell, before anybody has checked whether it can be used: a calendar
/// that has vanished is named here all the same. Paths are as written, so that a relative one stays relative.
struct ConfigurationDraft {
  QString mailboxName;
  QList<CalendarEntry> calendars;
  QString openCalendar;  // id
  bool operator==(const ConfigurationDraft&) const = default;
};

/// Reads what can be read; what is missing or is none of its kind stays empty. Nothing when the bytes are no
/// INI file; `error` says why.
std::optional<ConfigurationDraft> readDraft(const QByteArray& bytes, QString* error);

/// The file with the draft in it, in the form that Configuration::read takes. Comments, other sections and
/// keys that are not known here stay, those of a calendar with the calendar of that id. Nothing when the file
/// has a form in which that is not possible, or the draft holds a text that the file cannot; `error` says
/// why.
std::optional<QByteArray> withDraft(const QByteArray& bytes, const ConfigurationDraft& draft, QString* error);

}  // namespace hourbook
