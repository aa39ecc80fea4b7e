#pragma once
#include "companions/settings/settingsstore.h"

#include <functional>

class QWidget;

namespace hourbook {

struct DatabaseValues;

/// How the user is asked for something outside of the pages; a test answers itself. Empty answers mean
/// "none".
struct SettingsQuestions {
  std::function<QString(QWidget* parent, const QString& title, const QString& start)> folder;
  std::function<QString(QWidget* parent, const QString& title, const QString& start)> calendarFile;
  /// What asks for the kind of a new database, and for a server; fills the hooks that it answers.
  std::function<void(DatabaseValues&)> databaseForms;
  /// One of several answers by its number; -1 when none was given.
  std::function<int(QWidget* parent, const QString& text, const QStringList& answers)> choice;
};
/// With the desktop's own dialogs.
SettingsQuestions desktopQuestions();

/// What the pages of the personal part share while the window is open.
struct SettingsSession {
  SettingsStore& store;
  SettingsQuestions questions;
  ReadSettings read;      // as it stands on the disk
  SettingsBuffer buffer;  // as the window holds it
  std::function<bool(const QString& provider)> hasDriver;
  /// The lists that all users share, as far as they can be had.
  std::function<QList<NamedList>()> commonLists = [] { return QList<NamedList>(); };

  void load() {
    read = store.read();
    buffer = read.buffer;
  }
  ReportPlace place() const;
  bool hasServerDriver() const { return hasDriver(providerOf(connectionText(buffer))); }
};

}  // namespace hourbook
