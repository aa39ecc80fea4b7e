#pragma once
#include "companions/settings/personalpage.h"

class QGroupBox;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace hourbook {

/// The person's rate, and the lists to mark with: one to three, each with its values in the order of display.
class ListsPage : public PersonalPage {
  Q_OBJECT

 public:
  explicit ListsPage(SettingsSession& session);
  QString title() const override;
  void reload() override;
  void aboutToShow() override;

 protected:
  QList<FieldText> problems() override;
  void bringUp(const FieldText& problem) override;

 private:
  void makeControls();
  void layOut();
  QWidget* listGroup();
  void connectControls();
  void connectValues();
  NamedList* current();
  void addList();
  void removeList();
  void addValue();
  void removeValue();
  void moveValue(int by);
  void renameValue(int row);
  void takeCommon();
  void showLists();
  void showList();
  void showValues(int row);
  void showState();

  QLineEdit *txtPersonalRate, *txtListName, *txtNewValue;
  QListWidget *lstLists, *lstValues;
  QGroupBox* fraList;
  QPushButton *cmdAddList, *cmdRemoveList, *cmdTakeCommon, *cmdAddValue, *cmdRemoveValue, *cmdUp, *cmdDown;
  ProblemLabel *lblNewValue, *lblCommon;
};

}  // namespace hourbook
