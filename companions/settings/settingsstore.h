#pragma once
#include "companions/settings/appointmentcopy.h"
#include "companions/settings/buffer.h"
#include "platform/files/atomicfile.h"

#include <functional>
#include <optional>

namespace hourbook {

/// What was read, and what the user should know about single fields of it.
struct ReadSettings {
  SettingsBuffer buffer;
  QList<FieldText> notes;
  bool hasSettings = false;                              // the registry held personal settings
  bool hasConfiguration = false;                         // platform.ini was there
  KeptSettings::State kept = KeptSettings::State::None;  // in the open calendar
};

/// The places in which the personal settings stand: platform.ini, the registry, the settings appointment of
/// the open calendar, and for a server with a password the connection file. The shared values of shell,
/// outlook, database and settings must be in force, and the components of the file system and the databases.
class SettingsStore {
 public:
  /// `folder` is the configuration's.
  explicit SettingsStore(QString folder);

  /// Throws platform::Failure when a file cannot be read or is none of its kind; nothing is changed then.
  ReadSettings read();
  /// What another program has changed since read(), for the user to read; empty: nothing.
  QStringList changedOutside();
  /// From now on that counts as read.
  void acceptOutside();

  /// Writes what differs from what was read, then calls `last`. When anything fails, `last` included,
  /// everything is as it was before; the failure comes on, with what could not be taken back.
  void save(const SettingsBuffer& buffer, const std::function<void()>& last = {});

  /// The settings kept in a calendar, put into the buffer where they are intact.
  KeptSettings takeOver(SettingsBuffer& buffer, const CalendarEntry& calendar);
  /// The calendar whose settings the copy of this buffer would replace though nobody has seen them here: one
  /// that was not open before, with settings of its own that were not taken over.
  std::optional<CalendarEntry> replacedCopy(const SettingsBuffer& buffer) const;
  /// As the report program would get the target.
  QString reportValue(const SettingsBuffer& buffer) const;

  QString folder() const { return folder_; }
  /// Where the connection file stands.
  QString connectionFolder() const;
  CalendarEntry absolute(CalendarEntry entry) const;

 private:
  struct Outside {
    platform::files::ReadResult configuration, registry;
    QString keptTag;
  };
  Outside look();
  QString keptTagOf(const SettingsBuffer& buffer) const;
  void readConfiguration(ReadSettings& read);
  void readRegistry(ReadSettings& read);
  void readTarget(ReadSettings& read, const QString& value) const;
  void readServer(ReadSettings& read, const QString& text) const;
  void readKept(ReadSettings& read);
  bool isServerAsStored(const SettingsBuffer& buffer) const;
  void steps(Undo& undo, const SettingsBuffer& buffer);
  void writeConfiguration(Undo& undo, const SettingsBuffer& buffer) const;
  void writeConnectionFile(Undo& undo, const SettingsBuffer& buffer) const;
  void writeKept(Undo& undo, const SettingsBuffer& buffer) const;
  void writeRegistry(Undo& undo, const SettingsBuffer& buffer) const;
  void fill(cPersonalSettings& settings, const SettingsBuffer& buffer) const;
  void take(SettingsBuffer& buffer, QList<FieldText>& notes, const cPersonalSettings& settings) const;
  QString configurationFile() const;
  QString registryFile() const;

  QString folder_;
  Outside outside_;
  ReadSettings read_;
  QString storedValue_;     // ReportValue of the registry, for a server
  QString takenFrom_;       // path of the calendar whose settings were taken over last
  bool overwrite_ = false;  // what another program has written since is to go
};

}  // namespace hourbook
