#pragma once
#include "companions/settings/settingsstore.h"

#include <functional>

class QWidget;

namespace hourbook {

/// How the user is asked for something outside of the pages; a test answers itself. Empty answers mean
/// "none".
struct SettingsQuestions {
  std::function<QString(QWidget* parent, const QString& title, const QString& start)> folder;
  std::function<QString(QWidget* parent, const QString& title, const QString& start)> calendarFile;
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
  bool hasServerDriver = false;
  /// The lists that all users share, as far as they can be had.
  std::function<QList<NamedList>()> commonLists = [] { return QList<NamedList>(); };

  void load() {
    read = store.read();
    buffer = read.buffer;
  }
  ReportPlace place() const;
};

}  // namespace hourbook
