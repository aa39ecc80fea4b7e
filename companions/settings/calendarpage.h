#pragma once
#include "companions/settings/personalpage.h"

class QCheckBox;
class QGroupBox;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace hourbook {

/// Whose calendars there are and which of them is reported from.
class CalendarPage : public PersonalPage {
  Q_OBJECT

 public:
  explicit CalendarPage(SettingsSession& session);
  QString title() const override;
  void reload() override;

 Q_SIGNALS:
  /// Settings that the calendar kept were put into the buffer: all pages show others now.
  void takenOver();

 protected:
  QList<FieldText> problems() override;
  void bringUp(const FieldText& problem) override;

 private:
  void makeControls();
  void layOut();
  QWidget* detailGroup();
  void connectControls();
  void connectDetails();
  CalendarEntry* current();
  void addCalendar(const QString& path);
  void addChosen(bool folder);
  void removeCalendar();
  void choosePath();
  void takeOver();
  void showList();
  void showRow(int row);
  void showDetails();
  void showKeep();
  void lookAtPath();
  QString newId(const QString& name) const;

  QLineEdit *txtPersonName, *txtCalendarName, *txtCalendarPath;
  QListWidget* lstCalendars;
  QGroupBox* fraCalendar;
  QPushButton *cmdAddFolder, *cmdAddFile, *cmdRemove, *cmdChoosePath, *cmdTakeOver;
  QCheckBox *chkReadOnly, *chkOpen, *chkKeep;
};

}  // namespace hourbook
