#pragma once
#include "platform/dialogs/dialogs.h"
#include "platform/outlook/items.h"
#include "platform/owc/editing.h"
#include "settings/cRowInfo.h"
#include "workspace/modDropDowns.h"
#include "workspace/modGetData.h"
#include "workspace/modRowEditing.h"
#include "workspaceworld.h"

namespace tests {

using platform::basic::Value;
using platform::owc::CellRect;

inline const QString marked = QStringLiteral(";Acme;Website;Design");
inline const QString notSaved = QStringLiteral(
    "Your changes were not saved.\" & vbCrLf & \"Please type exactly or select from the dropdown");

/// A list of the week from 13 May on in a form of any generation, edited as a user does through the sheet.
/// The failing store hands everything on until told otherwise.
class RowEditing {
 public:
  explicit RowEditing(qint16 generation = 11, const QString& locale = QStringLiteral("en_US")) {
    w.world.setLocale(locale);
    platform::outlook::Profile profile;
    profile.stores.append(store);
    profile.openFolder = w.folder;
    w.outlook->gOutlookApp = std::make_shared<platform::outlook::Application>(profile);
    w.outlook->gCalendarFolder = w.outlook->gOutlookApp->ActiveExplorer()->CurrentFolder();
    w.withDatePickers();
    w.loadForm(generation);
    w.form->exsThisWeek.Extender.place(0, 300, 9000, 3000);
    w.setPeriod(QDate(2024, 5, 13), QDate(2024, 5, 19));
    w.form->cmbFilterCalendar.setText(QStringLiteral("All appointments"));
  }
  platform::owc::Spreadsheet& sheet() { return w.form->exsThisWeek; }
  void select(const QString& address) { sheet().Range(address).Select(); }
  /// Types into a cell and ends with Enter: the next row is selected.
  void type(const QString& address, const QString& text) {
    select(address);
    const CellRect cell = sheet().ActiveCell().rect();
    platform::owc::Editing(sheet()).end(cell, text, CellRect{cell.row + 1, cell.column, 1, 1});
  }
  void paste(const QString& address, const QList<QStringList>& table) {
    select(address);
    platform::owc::Editing(sheet()).paste(sheet().Range(address).rect(), table);
  }
  void clear(const QString& address) {
    select(address);
    platform::owc::Editing(sheet()).clear(sheet().Range(address).rect());
  }
  QList<platform::calendar::Item> stored() {
    platform::calendar::Query query;
    query.zone = QTimeZone("Europe/Stockholm");
    return w.calendar->items(w.folder, query);
  }
  platform::calendar::Item stored(int position) { return stored().value(position); }
  int saves() const { return store->calls(platform::calendar::FailingStore::Operation::Save); }
  void failSaving() {
    store->failAlways(
        platform::calendar::FailingStore::Operation::Save,
        platform::Failure(platform::calendar::errAccessDenied, QStringLiteral("The calendar is read-only.")));
  }
  void expectReport(const char* procedure) {
    w.world.dialogs.expect(QString::fromLatin1(procedure), platform::dialogs::vbNo);
  }
  platform::forms::ComboBox& box(int n) {
    return n == 1 ? w.form->cmbMeta1 : n == 2 ? w.form->cmbMeta2 : w.form->cmbMeta3;
  }
  void choose(int n, const QString& value) {
    for (int i = 0; i < box(n).ListCount(); ++i)
      if (box(n).List(i) == value) return box(n).setListIndex(i);
    ADD_FAILURE() << "No such value: " << value.toStdString();
  }

  WorkspaceWorld w;
  std::shared_ptr<platform::calendar::FailingStore> store =
      std::make_shared<platform::calendar::FailingStore>(w.calendar);
};

/// Two appointments in rows 2 and 3.
class EditedList : public testing::Test, public RowEditing {
 protected:
  explicit EditedList(qint16 generation = 11, const QString& locale = QStringLiteral("en_US"))
      : RowEditing(generation, locale) {
    w.add(QStringLiteral("First"), at(13, 9), 60, marked);
    w.add(QStringLiteral("Second"), at(14, 9), 90, QStringLiteral(";Beta;Intranet;Support"));
    subGetData();
  }
};
class EditedListOf2K : public EditedList {
 protected:
  EditedListOf2K() : EditedList(9) {}
};
class EditedListOfEach : public testing::TestWithParam<int>, public RowEditing {
 protected:
  EditedListOfEach() : RowEditing(qint16(GetParam())) {
    w.add(QStringLiteral("First"), at(13, 9), 60, marked);
    w.add(QStringLiteral("Second"), at(14, 9), 90, QStringLiteral(";Beta;Intranet;Support"));
    subGetData();
  }
};
class EditedListOfTheNewerForms : public EditedListOfEach {};

}  // namespace tests
