#include "journey.h"
#include "unprivileged.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTest>

#include <csignal>
#include <sys/resource.h>

namespace tests {
namespace {

using namespace Qt::StringLiterals;

const QDate july8(2024, 7, 8), july14(2024, 7, 14);
const QStringList marking{u"Acme AB"_s, u"Website"_s, u"Travel"_s};

/// Of every script, which QTest knows no keys for.
void typeText(QWidget* widget, const QString& text) {
  for (const QChar letter : text) {
    QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(letter));
    QApplication::sendEvent(widget, &press);
  }
}

/// A week with two appointments of the test's own around the series of Wednesday; every row is listed.
struct EditingJourney {
  EditingJourney() {
    j.add(u"first"_s, {u"First"_s, u"20240708T090000"_s, 60, marking});
    j.add(u"second"_s, {u"Second"_s, u"20240709T090000"_s, 90, marking});
    j.start();
    j.fetch(july8, july14);
    row = int(j.subjects().indexOf(u"First"_s));
    EXPECT_GE(row, 0);
    before = outside::files(j.calendar());
  }
  QAbstractItemView& list() { return *qobject_cast<QAbstractItemView*>(j.control("exsThisWeek")); }
  void go(int row, int column) {
    list().setFocus();
    const QModelIndex cell = list().model()->index(row, column);
    list().scrollTo(cell);
    list().setCurrentIndex(cell);
  }
  void type(int row, int column, const QString& text) {
    go(row, column);
    typeText(&list(), text.left(1));
    typeText(QApplication::focusWidget(), text.mid(1));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  }
  /// In the list that Alt and the arrow drop down from a cell.
  void choose(int row, int column, const QString& value) {
    go(row, column);
    QTest::keyClick(&list(), Qt::Key_Down, Qt::AltModifier);
    const QString name = u"cmbMeta%1"_s.arg(column);
    auto* box = qobject_cast<QComboBox*>(j.control(name.toLatin1()));
    ASSERT_NE(box, nullptr);
    ASSERT_TRUE(box->view()->isVisible());
    QTest::keyClick(box->view(), Qt::Key_Home);
    for (int i = 0; i < box->findText(value); ++i) QTest::keyClick(box->view(), Qt::Key_Down);
    QTest::keyClick(box->view(), Qt::Key_Return);
  }
  QStringList changedFiles() { return outside::changed(before, outside::files(j.calendar())); }

  Journey j;
  int row = 0;
  QMap<QString, QByteArray> before;
};

TEST(EditingJourneys, HoursThatAreTypedAreTheLengthOfTheAppointment) {
  EditingJourney e;
  e.type(e.row, 5, u"2.5"_s);
  EXPECT_EQ(e.j.event(u"first"_s).minutes, u"150"_s);
  EXPECT_EQ(e.j.event(u"first"_s).summary, u"First"_s);
  EXPECT_EQ(e.changedFiles(), QStringList{u"first.ics"_s});
  EXPECT_TRUE(
      outside::content(e.j.calendar() + u"/first.ics"_s).contains("X-ANOTHER-MAKER;X-PARAM=1:kept as it is"));
}

TEST(EditingJourneys, ASubjectThatIsTypedIsTheOneOfTheAppointment) {
  EditingJourney e;
  e.type(e.row, 0, u"Größe; \"Maß\", <b> & שלום"_s);
  EXPECT_EQ(e.j.event(u"first"_s).summary, u"Größe; \"Maß\", <b> & שלום"_s);
  EXPECT_EQ(e.j.event(u"first"_s).categories, u"Acme AB|Website|Travel"_s);
  EXPECT_EQ(e.j.event(u"first"_s).minutes, u"60"_s);
  EXPECT_EQ(e.changedFiles(), QStringList{u"first.ics"_s});
}

TEST(EditingJourneys, AValueChosenByTheKeyboardIsACategoryOfTheAppointment) {
  EditingJourney e;
  e.choose(e.row, 1, u"Fjord Shipping AS"_s);
  EXPECT_EQ(e.j.event(u"first"_s).categories, u"Fjord Shipping AS|Website|Travel"_s);
  EXPECT_EQ(e.changedFiles(), QStringList{u"first.ics"_s});
  e.j.fetch(july8, july14);
  EXPECT_TRUE(e.j.rows().value(e.row).startsWith(u"First|Fjord Shipping AS|Website|Travel|"_s));
}

TEST(EditingJourneys, AValueThatIsNotInItsListIsTakenBackWithoutAWord) {
  EditingJourney e;
  e.type(e.row, 1, u"Nobody at all"_s);
  EXPECT_TRUE(e.j.rows().value(e.row).startsWith(u"First|Acme AB|"_s));
  EXPECT_EQ(e.changedFiles(), QStringList{});
}

TEST(EditingJourneys, AnUnlistedTextInADropDownIsGivenBack) {
  EditingJourney e;
  e.go(e.row, 0);
  auto* box = qobject_cast<QComboBox*>(e.j.control("cmbMeta2"));
  ASSERT_NE(box, nullptr);
  box->setFocus();
  box->lineEdit()->selectAll();
  QTest::keyClicks(box, u"Nothing"_s);
  QTest::keyClick(box, Qt::Key_Return);
  EXPECT_EQ(box->currentText(), u"Website"_s);
  EXPECT_EQ(e.changedFiles(), QStringList{});
}

TEST(EditingJourneys, WhatWasTypedCanBeTakenBack) {
  EditingJourney e;
  e.type(e.row, 0, u"Other"_s);
  EXPECT_EQ(e.j.event(u"first"_s).summary, u"Other"_s);
  QTest::keySequence(&e.list(), QKeySequence::Undo);
  EXPECT_EQ(e.j.event(u"first"_s).summary, u"First"_s);
  EXPECT_EQ(e.j.subjects().value(e.row), u"First"_s);
  EXPECT_EQ(e.j.event(u"second"_s).summary, u"Second"_s);
}

TEST(EditingJourneys, HoursThatAreNoNumberStayInTheCellAlone) {
  EditingJourney e;
  e.type(e.row, 5, u"abc"_s);
  EXPECT_TRUE(e.j.rows().value(e.row).endsWith(u"|abc|Not Posted"_s));
  EXPECT_EQ(e.changedFiles(), QStringList{});
}

TEST(EditingJourneys, AnOccurrenceChangesItsSeriesAndTheListShowsIt) {
  EditingJourney e;
  const int occurrence = int(e.j.subjects().indexOf(u"Projekt-Jour-fixe"_s));
  ASSERT_GE(occurrence, 0);
  e.choose(occurrence, 1, u"Acme AB"_s);
  EXPECT_TRUE(e.j.rows().value(occurrence).startsWith(u"Projekt-Jour-fixe|Acme AB|"_s));
  ASSERT_EQ(e.changedFiles().size(), 1);
  int masters = 0;
  for (const outside::Event& event : e.j.events())
    if (event.summary == u"Projekt-Jour-fixe" && event.repeats == u"yes") {
      ++masters;
      EXPECT_TRUE(event.categories.startsWith(u"Acme AB|"_s)) << qPrintable(event.categories);
    }
  EXPECT_EQ(masters, 1);
  e.j.fetch(july8.addDays(-7), july14.addDays(-7));
  EXPECT_TRUE(e.j.rows().filter(u"Projekt-Jour-fixe|Acme AB|"_s).size() == 1);
}

TEST(EditingJourneys, RowsFrom100OnAreNotSaved) {
  Journey j;
  for (int i = 0; i < 105; ++i) {
    const QTime start = QTime(8, 0).addSecs(i * 300);
    j.add(u"n%1"_s.arg(i), {u"Number %1"_s.arg(i), u"20240712T"_s + start.toString(u"HHmmss"), 30, marking});
  }
  j.start();
  j.fetch(QDate(2024, 7, 12), QDate(2024, 7, 12));
  auto* list = qobject_cast<QAbstractItemView*>(j.control("exsThisWeek"));
  const auto before = outside::files(j.calendar());
  const auto type = [&](int sheetRow) {
    list->setFocus();
    list->setCurrentIndex(list->model()->index(sheetRow - 2, 0));
    QTest::keyClicks(list, u"x"_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  };
  type(100);
  EXPECT_EQ(j.subjects().value(98), u"x"_s);
  EXPECT_EQ(outside::changed(before, outside::files(j.calendar())), QStringList{});
  type(99);
  EXPECT_EQ(outside::changed(before, outside::files(j.calendar())).size(), 1);
}

TEST(EditingJourneys, AnAppointmentThatSomebodyElseHasChangedMeanwhileIsNotOverwritten) {
  EditingJourney e;
  const QString file = e.j.calendar() + u"/first.ics"_s;
  const QByteArray changed = outside::content(file).replace("SUMMARY:First", "SUMMARY:First, moved");
  outside::write(file, changed);
  e.j.world.dialogs.expect(u"Your changes were not saved."_s, platform::dialogs::vbOK);
  e.j.world.dialogs.expect(errorReport, platform::dialogs::vbNo);
  EXPECT_ENDS_PROCESS(e.type(e.row, 0, u"Other"_s));
  EXPECT_EQ(outside::content(file), changed);
  const QString told = e.j.world.dialogs.shown.last().text;
  EXPECT_TRUE(told.contains(u"Subject: to be written \"Other\", in the calendar now \"First, moved\""_s))
      << qPrintable(told);
  EXPECT_TRUE(told.contains(u"first.ics"_s)) << qPrintable(told);
  EXPECT_EQ(e.j.subjects().value(e.row), u"First, moved"_s) << "behind the box stands what is true";
}

// The calendar goes wrong while the window is open

/// No file may grow over this many bytes: the system then answers as it does when a disk fills up.
class FullDisk {
 public:
  explicit FullDisk(rlim_t room) : before_(std::signal(SIGXFSZ, SIG_IGN)) {
    EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &limit_), 0);
    const rlimit little{room, limit_.rlim_max};
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &little), 0);
  }
  ~FullDisk() {
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit_), 0);
    std::signal(SIGXFSZ, before_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  void (*before_)(int);
  rlimit limit_{};
};

/// Types a subject that cannot be saved: told, put back in the list, and the report names what is the matter.
void expectSubjectIsNotSaved(EditingJourney& e, const QString& named = u"first.ics"_s,
                             const QString& shownThen = u"First"_s) {
  e.j.world.dialogs.expect(u"Your changes were not saved."_s, platform::dialogs::vbOK);
  e.j.world.dialogs.expect(errorReport, platform::dialogs::vbNo);
  EXPECT_ENDS_PROCESS(e.type(e.row, 0, u"Other"_s));
  EXPECT_TRUE(e.j.world.dialogs.shown.last().text.contains(u"fncSaveChanges"_s));
  EXPECT_TRUE(e.j.world.dialogs.shown.last().text.contains(named))
      << qPrintable(e.j.world.dialogs.shown.last().text);
  EXPECT_EQ(e.j.subjects().value(e.row), shownThen);
}

TEST(EditingJourneys, AChangeInACalendarThatHasBecomeReadOnlyIsNotSavedAndTold) {
  EditingJourney e;
  const Unprivileged user(e.j.home());
  protect(e.j.calendar());
  expectSubjectIsNotSaved(e, e.j.calendar());
  EXPECT_EQ(e.changedFiles(), QStringList{});
  unprotect(e.j.calendar());
}

TEST(EditingJourneys, AChangeOfAnAppointmentThatHasBecomeReadOnlyIsNotSavedAndTold) {
  EditingJourney e;
  const Unprivileged user(e.j.home());
  protect(e.j.calendar() + u"/first.ics"_s);
  expectSubjectIsNotSaved(e);
  EXPECT_EQ(e.changedFiles(), QStringList{});
}

TEST(EditingJourneys, AChangeInACalendarThatHasVanishedIsNotSavedAndTold) {
  EditingJourney e;
  const QString away = e.j.calendar() + u"-away"_s;
  ASSERT_TRUE(QFile::rename(e.j.calendar(), away));
  e.j.world.dialogs.expect(u"Your changes were not saved."_s, platform::dialogs::vbOK);
  e.j.world.dialogs.expect(errorReport, platform::dialogs::vbNo);
  EXPECT_ENDS_PROCESS(e.type(e.row, 0, u"Other"_s));
  EXPECT_EQ(e.j.subjects().value(e.row), u"First"_s);
  EXPECT_FALSE(QFile::exists(e.j.calendar())) << "a calendar must not be made anew with one appointment";
  EXPECT_EQ(outside::changed(e.before, outside::files(away)), QStringList{});
}

TEST(EditingJourneys, AChangeOfAnAppointmentThatSomebodyElseHasDeletedDoesNotBringItBack) {
  EditingJourney e;
  ASSERT_TRUE(QFile::remove(e.j.calendar() + u"/first.ics"_s));
  expectSubjectIsNotSaved(
      e, u"It stands in the calendar no longer. This was to be written:\r\nSubject: \"Other\""_s,
      u"Second"_s);
  EXPECT_EQ(e.changedFiles(), QStringList{u"first.ics"_s});
  EXPECT_FALSE(QFile::exists(e.j.calendar() + u"/first.ics"_s));
}

TEST(EditingJourneys, AChangeOnAFullDiskLeavesTheAppointmentWholeAndIsTold) {
  for (const rlim_t room : {0, 1, 100}) {
    EditingJourney e;
    {
      const FullDisk disk(room);
      expectSubjectIsNotSaved(e);
    }
    EXPECT_EQ(e.changedFiles(), QStringList{}) << room;
  }
}

TEST(EditingJourneys, AValueChosenOnAFullDiskIsGivenBack) {
  EditingJourney e;
  e.j.world.dialogs.expect(errorReport, platform::dialogs::vbNo);
  {
    const FullDisk disk(0);
    EXPECT_ENDS_PROCESS(e.choose(e.row, 1, u"Fjord Shipping AS"_s));
  }
  EXPECT_TRUE(e.j.rows().value(e.row).startsWith(u"First|Acme AB|"_s));
  EXPECT_EQ(e.changedFiles(), QStringList{});
}

// An edit that is open

TEST(EditingJourneys, HoursThatAreBeingTypedAreSavedBeforeF5FetchesAnew) {
  EditingJourney e;
  e.go(e.row, 5);
  typeText(&e.list(), u"2"_s);
  typeText(QApplication::focusWidget(), u".5"_s);
  e.j.add(u"before"_s, {u"Before"_s, u"20240708T080000"_s, 60, marking});
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_F5);
  EXPECT_EQ(e.j.subjects().value(e.row), u"Before"_s);
  EXPECT_EQ(e.j.event(u"first"_s).minutes, u"150"_s);
  EXPECT_EQ(e.j.event(u"before"_s).minutes, u"60"_s);
}

TEST(EditingJourneys, HoursThatAreBeingTypedAreSavedWhenTheWindowIsClosed) {
  EditingJourney e;
  e.go(e.row, 5);
  typeText(&e.list(), u"2"_s);
  typeText(QApplication::focusWidget(), u".5"_s);
  EXPECT_ENDS_PROCESS(e.j.window()->close());
  EXPECT_EQ(e.j.event(u"first"_s).minutes, u"150"_s);
  EXPECT_EQ(e.changedFiles(), QStringList{u"first.ics"_s});
}

TEST(EditingJourneys, TwoQuickEditsOfOneAppointmentAreBothSaved) {
  EditingJourney e;
  e.type(e.row, 0, u"Other"_s);
  e.type(e.row, 5, u"2"_s);
  e.type(e.row + 1, 5, u"4"_s);
  EXPECT_EQ(e.j.event(u"first"_s).summary, u"Other"_s);
  EXPECT_EQ(e.j.event(u"first"_s).minutes, u"120"_s);
  EXPECT_EQ(e.j.event(u"second"_s).summary, u"Second"_s);
  EXPECT_EQ(e.j.event(u"second"_s).minutes, u"240"_s);
}

TEST(EditingJourneys, AnAppointmentThatHasBeenReportedKeepsItsStampWhenItIsEdited) {
  EditingJourney e;
  e.j.reportAndStay();
  e.j.fetch(july8, july14);
  const QString stamp = e.j.event(u"first"_s).stamp;
  ASSERT_FALSE(stamp.isEmpty());
  e.type(e.row, 5, u"3"_s);
  EXPECT_EQ(e.j.event(u"first"_s).minutes, u"180"_s);
  EXPECT_EQ(e.j.event(u"first"_s).stamp, stamp);
}

TEST(EditingJourneys, HoursWithACommaAreTheSameAsWithAPointWhereThatIsTheDecimalSign) {
  Journey j({u"de_DE"_s, "Europe/Berlin"});
  j.add(u"first"_s, {u"First"_s, u"20240708T090000"_s, 90, marking});
  j.start();
  j.fetch(july8, july8);
  ASSERT_EQ(j.subjects(), QStringList{u"First"_s});
  auto* list = qobject_cast<QAbstractItemView*>(j.control("exsThisWeek"));
  const auto type = [&](int column, const QString& text) {
    list->setFocus();
    list->setCurrentIndex(list->model()->index(0, column));
    QTest::keyClicks(list, text.left(1));
    QTest::keyClicks(QApplication::focusWidget(), text.mid(1));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  };
  type(0, u"Renamed"_s);  // writes the list's "1.5" again
  EXPECT_EQ(j.event(u"first"_s).minutes, u"90"_s);
  type(5, u"2,25"_s);
  EXPECT_EQ(j.event(u"first"_s).minutes, u"135"_s);
}

}  // namespace
}  // namespace tests
