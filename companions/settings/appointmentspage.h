#pragma once
#include "companions/settings/personalpage.h"

class QCheckBox;
class QFormLayout;
class QLineEdit;

namespace hourbook {

/// Which appointments the list shows, how hours are derived, and where the program begins.
class AppointmentsPage : public PersonalPage {
  Q_OBJECT

 public:
  explicit AppointmentsPage(SettingsSession& session);
  QString title() const override;
  void reload() override;

 protected:
  QList<FieldText> problems() override;

 private:
  void makeControls();
  void layOut();
  void connectControls();

  QCheckBox *chkPrivate, *chkRecurring, *chkEvents, *chkConvert24, *chkRemoveLunch, *chkStartGrid;
  QLineEdit *txtConvert24Hours, *txtRemoveLunchHours;
};

}  // namespace hourbook
