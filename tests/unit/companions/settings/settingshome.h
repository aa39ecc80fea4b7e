#pragma once
#include "app/components.h"
#include "companions/settings/settingsstore.h"
#include "database/DatabaseValues.h"
#include "outlook/OutlookValues.h"
#include "platform/ado/registration.h"
#include "platform/locale/locale.h"
#include "platform/sql/sqlite/session.h"
#include "settings/SettingsValues.h"
#include "shell/modLanguage.h"
#include "tests/support/quickfolder.h"
#include "tests/support/testworld.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>

namespace hourbook::tests {

/// A machine on which nobody has set up anything yet: an empty home with a calendar in it.
class SettingsHome : public testing::Test {
 protected:
  SettingsHome() : home(::tests::quickFolder(u"settings"_qs)) {
    registerComponents(world.components, {});
    useDrivers({});
    LoadLanguages(fncGetlocalLanguage());
    shellValues().gListSeparator = platform::locale::current().listSeparator();
    shellValues().documentsFolder = path(u"documents"_qs);
    QDir(home.path()).mkpath(u"calendar"_qs);
    QDir(home.path()).mkpath(u"database"_qs);
  }

  /// The embedded database, and these others by provider: whatever an installation has.
  void useDrivers(const QMap<QString, std::shared_ptr<platform::sql::Driver>>& others) {
    const auto drivers = std::make_shared<platform::sql::Drivers>();
    drivers->add(u"Microsoft.Jet.OLEDB.4.0"_qs, std::make_shared<platform::sql::sqlite::SqliteDriver>());
    for (auto it = others.cbegin(); it != others.cend(); ++it) drivers->add(it.key(), it.value());
    platform::ado::registerComponents(world.components, drivers);
  }

  QString path(const QString& name) const { return home.filePath(name); }
  QString config() const { return path(u"config"_qs); }
  QString configFile(const QString& name) const { return config() + u'/' + name; }

  static void write(const QString& file, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(file).absolutePath());
    QFile target(file);
    ASSERT_TRUE(target.open(QIODevice::WriteOnly)) << qPrintable(file);
    target.write(bytes);
  }
  static QByteArray content(const QString& file) {
    QFile source(file);
    return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
  }
  /// Every file of the home with its content, lock files left out.
  QMap<QString, QByteArray> everything() const {
    QMap<QString, QByteArray> files;
    QDirIterator entries(home.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
      entries.next();
      files.insert(entries.filePath(), content(entries.filePath()));
    }
    return files;
  }

  /// What someone types who sets up one calendar and makes a new database.
  SettingsBuffer filledIn(SettingsStore& store) {
    SettingsBuffer buffer = store.read().buffer;
    buffer.personName = u"Jane Doe"_qs;
    buffer.calendars = {{u"calendar"_qs, u"Work"_qs, path(u"calendar"_qs), false}};
    buffer.openCalendar = u"calendar"_qs;
    buffer.databaseFolder = path(u"database"_qs);
    buffer.makeDatabase = true;
    buffer.personalRate = u"450.5"_qs;
    buffer.lists = {{u"Customer"_qs, {u"Acme"_qs, u"Bolt"_qs}}, {u"Task"_qs, {u"Support"_qs}}};
    return buffer;
  }

  ::tests::TestWorld world;
  Shared<ShellValues>::Scope shell;
  Shared<OutlookValues>::Scope outlook;
  Shared<DatabaseValues>::Scope database;
  Shared<SettingsValues>::Scope settings;
  QTemporaryDir home;
};

}  // namespace hourbook::tests
