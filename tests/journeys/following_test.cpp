#include "journey.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QTest>

namespace tests {
namespace {

using namespace Qt::StringLiterals;

const QDate july1(2024, 7, 1), july8(2024, 7, 8), july14(2024, 7, 14);
const QStringList marking{u"Acme AB"_s, u"Website"_s, u"Travel"_s};

/// A week in July, shown in the window while another program is at work in the calendar. In a folder each
/// appointment has a file of its own; else one file holds them all.
class FollowingJourney : public testing::TestWithParam<bool> {
 protected:
  FollowingJourney() {
    if (!isFolder()) makeOneFile();
    put(u"first"_s, entry(u"first"_s, u"First"_s, 8));
    put(u"second"_s, entry(u"second"_s, u"Second"_s, 9));
    j.start();
    j.fetch(july8, july14);
    j.tick();  // what is looked at in the background has been looked at
    QObject::connect(&hourbook::reportForm(), &hourbook::ReportForm::listFetched, &hourbook::reportForm(),
                     [this] { ++fetches; });
  }
  static bool isFolder() { return GetParam(); }
  QString file() const { return j.folder() + u"/all.ics"_s; }
  QString fileOf(const QString& uid) const {
    return isFolder() ? j.calendar() + u'/' + uid + u".ics"_s : file();
  }

  static QByteArray entry(const QString& uid, const QString& subject, int day, int minutes = 60,
                          const QString& time = u"090000"_s) {
    return u"BEGIN:VEVENT\r\nUID:%1\r\nDTSTAMP:20240401T000000Z\r\nSUMMARY:%2\r\n"
           "DTSTART:202407%3T%4Z\r\nDURATION:PT%5M\r\nCATEGORIES:%6\r\nEND:VEVENT\r\n"_s.arg(uid, subject)
               .arg(day, 2, 10, QChar(u'0'))
               .arg(time)
               .arg(minutes)
               .arg(marking.join(u','))
               .toUtf8();
  }
  static QByteArray calendarOf(const QByteArray& entries) {
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Another maker//Calendar 7//SV\r\n" + entries +
           "END:VCALENDAR\r\n";
  }
  void makeOneFile() {
    outside::write(file(), calendarOf({}));
    const QString ini = j.configuration() + u"/platform.ini"_s;
    outside::write(ini, outside::content(ini).replace(j.calendar().toUtf8(), file().toUtf8()));
  }
  /// Writes one entry, in place of the one it had.
  void put(const QString& uid, const QByteArray& text) {
    if (isFolder()) {
      outside::write(fileOf(uid), calendarOf(text));
      return;
    }
    entries[uid] = text;
    QByteArray all;
    for (const QByteArray& one : std::as_const(entries)) all += one;
    outside::write(file(), calendarOf(all));
  }
  void take(const QString& uid) {
    if (isFolder()) {
      ASSERT_TRUE(QFile::remove(fileOf(uid)));
      return;
    }
    entries.remove(uid);
    put(u"second"_s, entries.value(u"second"_s));
  }
  /// The subjects of the test's own; the sample has a series on Wednesdays.
  QStringList subjects() const {
    QStringList found = j.subjects();
    found.removeAll(u"Projekt-Jour-fixe"_s);
    return found;
  }
  void twoTicks() {
    j.tick();
    j.tick();
  }
  QAbstractItemView& list() const { return *qobject_cast<QAbstractItemView*>(j.control("exsThisWeek")); }
  void go(const QString& subject, int column) const {
    list().setFocus();
    list().setCurrentIndex(list().model()->index(int(j.subjects().indexOf(subject)), column));
  }
  QComboBox& box(const char* name) const { return *qobject_cast<QComboBox*>(j.control(name)); }
  void type(const QString& text) const {
    QTest::keyClicks(&list(), text.left(1));
    QTest::keyClicks(QApplication::focusWidget(), text.mid(1));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  }
  QString row(const QString& subject) const { return j.rows().value(j.subjects().indexOf(subject)); }

  Journey j;
  QMap<QString, QByteArray> entries;
  int fetches = 0;
};
INSTANTIATE_TEST_SUITE_P(Calendars, FollowingJourney, testing::Bool(),
                         [](const auto& info) { return info.param ? "Folder" : "OneFile"; });

TEST_P(FollowingJourney, AnEntryThatIsChangedInItsPlaceIsShown) {
  put(u"first"_s, entry(u"first"_s, u"First, moved"_s, 8, 150));
  twoTicks();
  EXPECT_EQ(subjects(), (QStringList{u"First, moved"_s, u"Second"_s}));
  EXPECT_EQ(row(u"First, moved"_s).section(u'|', 5, 5), u"2.5"_s);
  EXPECT_EQ(fetches, 1);
}

TEST_P(FollowingJourney, AFileThatIsExchangedIsShown) {
  const QByteArray changed = outside::content(fileOf(u"first"_s)).replace("SUMMARY:First", "SUMMARY:Fifth");
  outside::write(j.home() + u"/new"_s, changed);
  ASSERT_EQ(::rename(QFile::encodeName(j.home() + u"/new"_s).constData(),
                     QFile::encodeName(fileOf(u"first"_s)).constData()),
            0);
  twoTicks();
  EXPECT_EQ(subjects(), (QStringList{u"Fifth"_s, u"Second"_s}));
}

TEST_P(FollowingJourney, EntriesThatComeAndGoAreShown) {
  put(u"third"_s, entry(u"third"_s, u"Third"_s, 8, 60, u"080000"_s));
  twoTicks();
  EXPECT_EQ(subjects(), (QStringList{u"Third"_s, u"First"_s, u"Second"_s}));
  take(u"first"_s);
  twoTicks();
  EXPECT_EQ(subjects(), (QStringList{u"Third"_s, u"Second"_s}));
}

TEST_P(FollowingJourney, AnEntryThatMovesOutOfThePeriodGoes) {
  put(u"first"_s, entry(u"first"_s, u"First"_s, 20));
  twoTicks();
  EXPECT_EQ(subjects(), QStringList{u"Second"_s});
}

TEST_P(FollowingJourney, AFileThatGetsAnotherNameKeepsItsRowAndTheSelection) {
  if (!isFolder()) return;
  go(u"Second"_s, 5);
  ASSERT_TRUE(QFile::rename(fileOf(u"second"_s), j.calendar() + u"/renamed.ics"_s));
  twoTicks();
  EXPECT_EQ(subjects(), (QStringList{u"First"_s, u"Second"_s}));
  EXPECT_EQ(list().currentIndex(), list().model()->index(int(j.subjects().indexOf(u"Second"_s)), 5));
  type(u"2"_s);
  EXPECT_EQ(j.event(u"second"_s).minutes, u"120"_s);
}

TEST_P(FollowingJourney, ADropDownThatIsOpenIsNotTornAway) {
  go(u"Second"_s, 1);
  QTest::keyClick(&list(), Qt::Key_Down, Qt::AltModifier);
  QComboBox& open = box("cmbMeta1");
  ASSERT_TRUE(open.view()->isVisible());
  put(u"third"_s, entry(u"third"_s, u"Third"_s, 8, 60, u"080000"_s));
  twoTicks();
  EXPECT_TRUE(open.view()->isVisible());
  EXPECT_EQ(subjects(), (QStringList{u"First"_s, u"Second"_s}));
  QTest::keyClick(open.view(), Qt::Key_Home);
  for (int i = 0; i < open.findText(u"Fjord Shipping AS"_s); ++i) QTest::keyClick(open.view(), Qt::Key_Down);
  QTest::keyClick(open.view(), Qt::Key_Return);
  twoTicks();
  EXPECT_EQ(subjects(), (QStringList{u"Third"_s, u"First"_s, u"Second"_s}));
  EXPECT_TRUE(row(u"Second"_s).startsWith(u"Second|Fjord Shipping AS|"_s)) << qPrintable(row(u"Second"_s));
  EXPECT_EQ(box("cmbMeta1").currentText(), u"Fjord Shipping AS"_s);
  for (const outside::Event& event : outside::events(isFolder() ? j.calendar() : file())) {
    if (event.uid != u"second" && event.uid != u"first") continue;
    EXPECT_EQ(event.categories.startsWith(u"Fjord Shipping AS"_s), event.uid == u"second")
        << qPrintable(event.uid + u' ' + event.categories);
  }
}

TEST_P(FollowingJourney, TheUsersOwnEditsFetchNothing) {
  go(u"First"_s, 5);
  type(u"2.5"_s);
  twoTicks();
  go(u"Second"_s, 0);
  type(u"Other"_s);
  twoTicks();
  EXPECT_EQ(subjects(), (QStringList{u"First"_s, u"Other"_s}));
  EXPECT_EQ(fetches, 0);
}

TEST_P(FollowingJourney, TheUsersOwnReportFetchesNothing) {
  j.reportAndStay();
  fetches = 0;
  const QStringList shown = j.rows();
  EXPECT_TRUE(j.statuses().contains(u"OK"_s)) << qPrintable(j.statuses().join(u' '));
  twoTicks();
  EXPECT_EQ(fetches, 0);
  EXPECT_EQ(j.rows(), shown);
}

TEST_P(FollowingJourney, WhatIsReportedStandsInTheCalendar) {
  put(u"first"_s, entry(u"first"_s, u"First, longer"_s, 8, 210));
  j.reportAndStay();
  EXPECT_EQ(j.sql(u"select strSubject || ' ' || numHours from tblReports where strSubject like 'First%'"_s),
            QStringList{u"First, longer 3.5"_s});
}

TEST_P(FollowingJourney, ACalendarThatIsGoneLeavesTheListAsItIsUntilItIsBack) {
  const QString path = isFolder() ? j.calendar() : file();
  ASSERT_TRUE(QFile::rename(path, path + u"-away"_s));
  twoTicks();
  EXPECT_EQ(subjects(), (QStringList{u"First"_s, u"Second"_s}));
  EXPECT_TRUE(j.world.dialogs.shown.isEmpty());
  ASSERT_TRUE(QFile::rename(path + u"-away"_s, path));
  twoTicks();
  EXPECT_EQ(subjects(), (QStringList{u"First"_s, u"Second"_s}));
  put(u"first"_s, entry(u"first"_s, u"First, moved"_s, 8));
  twoTicks();
  EXPECT_EQ(subjects(), (QStringList{u"First, moved"_s, u"Second"_s}));
}

TEST_P(FollowingJourney, WhatChangedWhileTheCalendarWasGoneIsShown) {
  const QString path = isFolder() ? j.calendar() : file();
  ASSERT_TRUE(QFile::rename(path, path + u"-away"_s));
  twoTicks();
  const QString first = isFolder() ? path + u"-away/first.ics"_s : path + u"-away"_s;
  outside::write(first, outside::content(first).replace("SUMMARY:First", "SUMMARY:First, moved"));
  ASSERT_TRUE(QFile::rename(path + u"-away"_s, path));
  twoTicks();
  EXPECT_EQ(subjects(), (QStringList{u"First, moved"_s, u"Second"_s}));
}

TEST_P(FollowingJourney, ADayThatIsChosenAndNotFetchedYetIsNotShown) {
  j.pick("dtpStartDate", july1);
  put(u"first"_s, entry(u"first"_s, u"First, moved"_s, 8));
  twoTicks();
  EXPECT_EQ(subjects(), (QStringList{u"First, moved"_s, u"Second"_s}));
}

}  // namespace
}  // namespace tests
