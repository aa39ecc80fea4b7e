#include "bench/pairs.h"
#include "bench/roads.h"
#include "outlook/OutlookValues.h"
#include "platform/automation/components.h"
#include "platform/calendar/icalendar/icalendarstore.h"
#include "platform/files/atomicfile.h"
#include "platform/forms/controls.h"
#include "platform/locale/locale.h"
#include "platform/scripting/dictionary.h"
#include "platform/scripting/filesystem.h"
#include "settings/cPersonalSettings.h"
#include "settings/SettingsValues.h"
#include "shell/modLanguage.h"
#include "shell/ShellValues.h"
#include "workspace/frm2003Report.h"
#include "workspace/modGetData.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

#include <QApplication>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStandardItemModel>
#include <QTableView>
#include <QTemporaryDir>

namespace bench {

using namespace Qt::StringLiterals;

namespace {

constexpr int rows = 98, columns = 7, hoursColumn = 5, editsOfARound = 10;
const QDate monday(2024, 6, 10);

QString fileOf(const QString& folder, int row) {
  return folder + u"/row-%1.ics"_s.arg(row, 3, 10, QChar(u'0'));
}

QByteArray appointment(int row) {
  const QByteArray number = QByteArray::number(row);
  const QByteArray minute = QByteArray::number(row % 60).rightJustified(2, '0');
  return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Another maker//Calendar 7//SV\r\nBEGIN:VEVENT\r\n"
         "UID:row-" +
         number + "\r\nDTSTAMP:20240401T000000Z\r\nSUMMARY:Weekly planning with the customer " + number +
         "\r\nDTSTART:20240610T" + (row < 60 ? "07" : "08") + minute +
         "00Z\r\nDURATION:PT1H\r\nCATEGORIES:Acme,Phone\r\nDESCRIPTION:" + QByteArray(600, 'n') +
         "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
}

/// The report window with a list over a folder of one file an appointment.
struct Program {
  Program() : componentsInForce(components), locale(u"en_US"_s) {
    components.add<platform::scripting::FileSystemObject>(u"Scripting.FileSystemObject"_s, [] {
      return std::make_shared<platform::scripting::FileSystemObject>();
    });
    components.add<platform::scripting::DictionaryComponent>(u"Scripting.Dictionary"_s, [] {
      return std::make_shared<platform::scripting::DictionaryComponent>();
    });
    components.add<platform::forms::DTPicker>(
        u"MSComCtl2.DTPicker"_s, [] { return std::make_shared<platform::forms::DTPicker>(QString()); });
    hourbook::LoadLanguages(4);
    shell->gListSeparator = u","_s;
    settings->gPersonalSettings = std::make_shared<hourbook::cPersonalSettings>();
    settings->gPersonalSettings->subPopulateMetadataList(u"Customer:Acme;Beta;\r\nTask:Phone;Travel;\r\n"_s);
    for (int row = 0; row < rows; ++row)
      platform::files::replaceFile(fileOf(folder.path(), row), appointment(row));
    openCalendar();
    workspace->gOWCVersion = 11;
    workspace->gReportForm = hourbook::frm2003Report();
    hourbook::ReportForm& form = *workspace->gReportForm;
    form.Load();
    form.Show();
    form.dtpStartDate->setValue(platform::basic::Date::of(monday));
    form.dtpEndDate->setValue(platform::basic::Date::of(monday));
    hourbook::subGetData();
    for (QWidget* top : QApplication::topLevelWidgets())
      if (top->objectName() == form.Name()) list = top->findChild<QTableView*>(u"exsThisWeek"_s);
    if (!list || workspace->gLastRow != rows + 1) qFatal("the list is not as it should be");
  }
  void openCalendar() {
    platform::outlook::Profile profile;
    profile.stores.append(
        std::make_shared<platform::calendar::IcalendarStore>(QList<platform::calendar::IcalendarFolder>{
            {u"bench"_s, u"Bench"_s, u"Bench"_s, folder.path(), false}}));
    profile.openFolder = u"bench"_s;
    outlook->gOutlookApp = std::make_shared<platform::outlook::Application>(profile);
    outlook->gCalendarFolder = outlook->gOutlookApp->ActiveExplorer()->CurrentFolder();
  }

  platform::automation::Components components;
  platform::automation::ScopedComponents componentsInForce;
  platform::locale::ScopedLocale locale;
  QTemporaryDir folder;
  hourbook::Shared<hourbook::ShellValues>::Scope shell;
  hourbook::Shared<hourbook::OutlookValues>::Scope outlook;
  hourbook::Shared<hourbook::SettingsValues>::Scope settings;
  hourbook::Shared<hourbook::WorkspaceValues>::Scope workspace;
  QTableView* list = nullptr;
};

/// A bare table that writes the row's file anew, as durable.
struct BareTable {
  BareTable() : model(rows, columns) {
    for (int row = 0; row < rows; ++row) {
      for (int column = 0; column < columns; ++column)
        model.setItem(row, column, new QStandardItem(u"Text %1"_s.arg(row)));
      platform::files::replaceFile(fileOf(folder.path(), row), appointment(row));
    }
    view.setModel(&model);
    view.resize(900, 400);
    view.show();
    QObject::connect(&model, &QStandardItemModel::itemChanged, [this](const QStandardItem* item) {
      platform::files::replaceFile(fileOf(folder.path(), item->row()),
                                   appointment(item->row()).replace("PT1H", item->text().toLatin1()));
    });
  }
  QTemporaryDir folder;
  QStandardItemModel model;
  QTableView view;
};

void press(QWidget* widget, int key, const QString& text) {
  QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
  QApplication::sendEvent(widget, &down);
}

/// Types into a cell, ends with Enter and waits until the window has been painted anew.
void type(QTableView& view, int row, const QString& text) {
  view.setFocus();
  view.setCurrentIndex(view.model()->index(row, hoursColumn));
  press(&view, 0, text.left(1));
  QLineEdit* editor = nullptr;
  for (QLineEdit* found : view.findChildren<QLineEdit*>())
    if (found->isVisible()) editor = found;
  if (!editor) qFatal("no editor opened");
  for (const QChar letter : text.mid(1)) press(editor, 0, letter);
  press(editor, Qt::Key_Return, u"\r"_s);
  QCoreApplication::processEvents();
}

void typeRound(QTableView& view, int round) {
  for (int edit = 0; edit < editsOfARound; ++edit) type(view, edit * 3, u"%1.5"_s.arg(round % 7 + 1));
}

bool holds(const QString& path, const QByteArray& text) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) && file.readAll().contains(text);
}

}  // namespace

void measureEditing() {
  Program program;
  BareTable bare;
  QCoreApplication::processEvents();
  int ours = 0, floor = 0;
  compare(
      u"type hours in %1 rows, each saved"_s.arg(editsOfARound), 15,
      [&] { typeRound(*program.list, ours++); }, [&] { typeRound(bare.view, floor++); });
  const int last = (ours - 1) % 7 + 1;
  if (holds(fileOf(program.folder.path(), 0), "PT1H\r\n")) qFatal("nothing was saved");
  if (!holds(fileOf(bare.folder.path(), 0), QByteArray::number(last) + ".5"))
    qFatal("the floor saved nothing");
}

}  // namespace bench
