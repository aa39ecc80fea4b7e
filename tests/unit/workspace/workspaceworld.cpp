#include "workspaceworld.h"

#include "platform/forms/controls.h"
#include "platform/scripting/dictionary.h"
#include "platform/scripting/filesystem.h"
#include "shell/modLanguage.h"
#include "workspace/modReportForm.h"

#include <QFile>

namespace tests {

namespace calendar = platform::calendar;

namespace {

std::shared_ptr<platform::outlook::Application> outlookOver(std::shared_ptr<calendar::Store> store,
                                                            const QString& folder) {
  platform::outlook::Profile profile;
  profile.stores.append(std::move(store));
  profile.openFolder = folder;
  return std::make_shared<platform::outlook::Application>(profile);
}

}  // namespace

WorkspaceWorld::WorkspaceWorld() {
  world.components.add<platform::scripting::DictionaryComponent>(QStringLiteral("Scripting.Dictionary"), [] {
    return std::make_shared<platform::scripting::DictionaryComponent>();
  });
  world.components.add<platform::scripting::FileSystemObject>(
      QStringLiteral("Scripting.FileSystemObject"),
      [] { return std::make_shared<platform::scripting::FileSystemObject>(); });
  shell->documentsFolder = world.programFolder();
  shell->gListSeparator = QStringLiteral(";");
  LoadLanguages(4);
  settings->gPersonalSettings = std::make_shared<cPersonalSettings>();
  setLists({QStringLiteral("Customer:Acme;Beta;"), QStringLiteral("Project:Website;Intranet;"),
            QStringLiteral("Task:Design;Support;")});
  folder = calendar->addFolder(
      {QStringLiteral("cal"), QStringLiteral("Calendar"), QStringLiteral("Mailbox - Jane Doe"), true, false});
  outlook->gOutlookApp = outlookOver(calendar, folder);
  outlook->gCalendarFolder = outlook->gOutlookApp->ActiveExplorer()->CurrentFolder();
}

void WorkspaceWorld::setLists(const QStringList& lists) {
  personal().subPopulateMetadataList(lists.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n"));
}

void WorkspaceWorld::withDatePickers() {
  world.components.add<platform::forms::DTPicker>(QStringLiteral("MSComCtl2.DTPicker"), [] {
    return std::make_shared<platform::forms::DTPicker>(QString());
  });
}

ReportForm& WorkspaceWorld::makeForm(qint16 generation) {
  workspace->gOWCVersion = generation;
  form = std::make_shared<ReportForm>(reportFormVariant(generation));
  screen = std::make_unique<NotedScreen>(*form);
  form->setScreen(screen.get());
  subConnectEvents(*form);
  workspace->gReportForm = form;
  return *form;
}

ReportForm& WorkspaceWorld::loadForm(qint16 generation) {
  makeForm(generation);
  form->Load();
  return *form;
}

void WorkspaceWorld::setPeriod(const QDate& first, const QDate& last) {
  form->dtpStartDate->setValue(Date::of(first));
  form->dtpEndDate->setValue(Date::of(last));
}

calendar::Item WorkspaceWorld::appointment(const QString& subject, const QDateTime& start, int minutes,
                                           const QString& categories) const {
  calendar::Item item;
  item.subject = subject;
  item.start = start;
  item.end = start.addSecs(qint64(minutes) * 60);
  if (!categories.isEmpty()) {
    item.categoriesText = categories;
    item.categories = categories.split(u';', Qt::SkipEmptyParts);
  }
  return item;
}

calendar::ItemKey WorkspaceWorld::add(const QString& subject, const QDateTime& start, int minutes,
                                      const QString& categories) {
  return calendar->add(folder, appointment(subject, start, minutes, categories));
}

calendar::ItemKey WorkspaceWorld::addAllDay(const QString& subject, const QDate& day, int days,
                                            const QString& categories) {
  const QTimeZone zone("Europe/Stockholm");
  calendar::Item item = appointment(subject, QDateTime(day, QTime(0, 0), zone), days * 1440, categories);
  item.end = QDateTime(day.addDays(days), QTime(0, 0), zone);
  item.allDay = true;
  return calendar->add(folder, item);
}

QString WorkspaceWorld::cell(const QString& address) const {
  return form->exsThisWeek.Range(address).Text();
}

QStringList WorkspaceWorld::subjects() {
  QStringList found;
  for (int row = 2; row <= workspace->gLastRow; ++row) found.append(cell(QStringLiteral("A%1").arg(row)));
  return found;
}

void WorkspaceWorld::startLog() {
  shell->gLogToFile = true;
  world.process.folder = world.programFolder();
}

QStringList WorkspaceWorld::logged() const {
  QFile log(world.programFolder() + QStringLiteral("/NorrdalenLog.txt"));
  if (!log.open(QIODevice::ReadOnly)) return {};
  QStringList texts;
  for (const QString& line : QString::fromUtf8(log.readAll()).split(QStringLiteral("\r\n")))
    texts.append(line.section(u'\t', 2));
  return texts;
}

}  // namespace tests
