#pragma once
#include <QList>
#include <QString>

#include <stdexcept>

namespace hourbook {

/// One calendar of the machine: a folder of .ics files or one such file.
struct CalendarEntry {
  QString id;  // unique
  QString name;
  QString path;  // absolute
  bool readOnly = false;
  bool operator==(const CalendarEntry&) const = default;
};

/// Why the program cannot start with the configuration that it found; for the user to read.
class ConfigurationError : public std::runtime_error {
 public:
  explicit ConfigurationError(const QString& text) : std::runtime_error(text.toStdString()), text_(text) {}
  const QString& text() const { return text_; }

 private:
  QString text_;
};

/// What the machine is set up with, from `platform.ini`:
///
///     [mailbox]
///     name=Mailbox - Jane Doe
///     version=11.0.0.8169
///     [calendars]
///     size=1
///     1\id=work
///     1\name=Calendar
///     1\path=/home/jane/calendars/work
///     1\readonly=false
///     open=work
///     [components]
///     spreadsheet=11
///     datepickers=true
///
/// A relative path is taken from the configuration's folder. Without `open` no calendar's window is open.
/// `spreadsheet` lists the generations of the spreadsheet and chart component that count as installed, of 9,
/// 10 and 11, or is "none"; without it that is 11 alone. Without `datepickers` there are date pickers.
struct Configuration {
  QString folder;       // that holds platform.ini and the registry
  QString mailboxName;  // display name of the mailbox's top
  QString outlookVersion;
  QList<CalendarEntry> calendars;
  QString openCalendar;  // id
  QList<int> spreadsheetGenerations{11};
  bool datePickers = true;

  QString registryFile() const;
  /// Where mails are kept until the user sends them.
  QString draftFolder() const;

  /// Reads and checks `platform.ini` of a folder. Throws ConfigurationError.
  static Configuration read(const QString& folder);
  /// The folder that HOURBOOK_CONFIG names, else "hourbook" in the user's configuration folder.
  static QString defaultFolder();
  /// Where the window keeps its place: in "hourbook" in the user's state folder, which no setting names.
  static QString placesFile();
  /// Where reports that are under way are remembered: beside it.
  static QString journalFolder();
};

}  // namespace hourbook
