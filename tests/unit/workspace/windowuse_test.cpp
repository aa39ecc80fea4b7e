#include "reportwindow.h"

#include <QAbstractItemView>
#include <QDateEdit>
#include <QDir>
#include <QPushButton>
#include <QTableView>

namespace tests {
namespace {

class UsedWindow : public Window {
 protected:
  void addMarked(int number) {
    for (int i = 0; i < number; ++i)
      w.add(QStringLiteral("Appointment %1").arg(i + 1), at(15, 0).addSecs(i * 5), 5, complete);
  }
  QString status() const { return control<QLabel>("status")->text(); }
  QTableView& list() const { return *control<QTableView>("exsThisWeek"); }
};

TEST_F(UsedWindow, BeginsWithTheKeyboardInItsFirstField) {
  open();
  EXPECT_EQ(window->focusWidget(), control("dtpStartDate"));
}

TEST_F(UsedWindow, BeginsWithTheKeyboardInTheYearWithoutDatePickers) {
  open(false);
  ASSERT_NE(window->focusWidget(), nullptr);
  EXPECT_TRUE(window->focusWidget() == control("cmbYear") ||
              control("cmbYear")->isAncestorOf(window->focusWidget()));
}

TEST_F(UsedWindow, FetchesOnF5AsTheButtonDoes) {
  open();
  w.add(QStringLiteral("New"), at(15, 9), 60, complete);
  QTest::keyClick(window, Qt::Key_F5);
  EXPECT_EQ(w.subjects(), QStringList{QStringLiteral("New")});
  w.form->cmdGetValues.setEnabled(false);
  w.add(QStringLiteral("Newer"), at(15, 10), 60, complete);
  QTest::keyClick(window, Qt::Key_F5);
  EXPECT_EQ(w.subjects().size(), 1);
}

TEST_F(UsedWindow, ExplainsWhatItsCaptionsDoNotTell) {
  open();
  EXPECT_EQ(control("cmdGetValues")->toolTip(), QStringLiteral("Get values (F5)"));
  EXPECT_EQ(control("cmdOK")->toolTip(), QStringLiteral("Report your time"));
  EXPECT_EQ(control("cmdCancel")->toolTip(), QStringLiteral("Exit"));
  EXPECT_EQ(control("cmbFilterCalendar")->toolTip(), QStringLiteral("Filter options"));
  EXPECT_EQ(control("tbsViews")->toolTip(), QStringLiteral("Show the statistics"));
}

TEST_F(UsedWindow, FetchesForADateThatIsTyped) {
  w.add(QStringLiteral("On Monday"), at(13, 9), 60, complete);
  open();
  auto* start = control<QDateEdit>("dtpStartDate");
  start->setFocus();
  start->setSelectedSection(QDateTimeEdit::MonthSection);
  QTest::keyClicks(start, QStringLiteral("5/13/2024"));
  QTest::keyClick(window, Qt::Key_F5);
  EXPECT_EQ(w.subjects(), QStringList{QStringLiteral("On Monday")});
}

TEST_F(UsedWindow, ShowsThePicturesOfTheDesktopOnItsButtonsWhereThereAreAny) {
  QTemporaryDir themes;
  QDir(themes.path()).mkpath(QStringLiteral("own/16x16/actions"));
  QFile index(themes.filePath(QStringLiteral("own/index.theme")));
  ASSERT_TRUE(index.open(QIODevice::WriteOnly));
  index.write("[Icon Theme]\nName=Own\nDirectories=16x16/actions\n[16x16/actions]\nSize=16\nType=Fixed\n");
  index.close();
  QImage picture(16, 16, QImage::Format_ARGB32);
  picture.fill(Qt::red);
  ASSERT_TRUE(picture.save(themes.filePath(QStringLiteral("own/16x16/actions/document-print.png"))));
  const QStringList paths = QIcon::themeSearchPaths();
  const QString theme = QIcon::themeName();
  QIcon::setThemeSearchPaths({themes.path()});
  QIcon::setThemeName(QStringLiteral("own"));
  open();
  EXPECT_FALSE(control<QPushButton>("cmdPrint")->icon().isNull());
  EXPECT_TRUE(control<QPushButton>("cmdGetValues")->icon().isNull()) << "this desktop has no such picture";
  EXPECT_EQ(control<QPushButton>("cmdGetValues")->text(), QStringLiteral("&Get values"));
  letGo();
  QIcon::setThemeName(theme);
  QIcon::setThemeSearchPaths(paths);
}

TEST_F(UsedWindow, ShowsAListOf198RowsWithoutAMessage) {
  addMarked(198);
  open();
  EXPECT_EQ(list().model()->rowCount(), 198);
  EXPECT_TRUE(status().startsWith(QStringLiteral("Appointments: 198 · Marked appointments: 198 · Posted: 0")))
      << status().toStdString();
}

class FullWindow : public UsedWindow, public testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(Appointments, FullWindow, testing::Values(199, 200, 10'000));

TEST_P(FullWindow, StopsAfterItsLastRowAndSaysSo) {
  addMarked(GetParam());
  w.world.dialogs.expect(QStringLiteral("The period you choose has more than 99 appointments"), 1);
  open();
  EXPECT_EQ(list().model()->rowCount(), 199);
  EXPECT_TRUE(status().startsWith(QStringLiteral("Appointments: 199 · Marked appointments: 199 · Posted: 0")))
      << status().toStdString();
  list().scrollToBottom();
  EXPECT_FALSE(list().viewport()->grab().isNull());
}

TEST_F(UsedWindow, PassesByTenThousandAppointmentsThatAreNotToBeListed) {
  for (int i = 0; i < 10'000; ++i) w.add(QStringLiteral("Unmarked"), at(15, 0).addSecs(i * 5), 5);
  w.add(QStringLiteral("Marked"), at(15, 23), 5, complete);
  open();
  EXPECT_EQ(w.subjects(), QStringList{QStringLiteral("Marked")});
}

TEST_F(UsedWindow, KeepsEachRowOneLineHighWhateverItsSubject) {
  const QStringList subjects{
      QString(10'000, u'x'),
      QStringLiteral("one\r\ntwo\nthree"),
      QStringLiteral("<h1>big</h1> & <script>alert(1)</script>"),
      QStringLiteral("\u05E9\u05DC\u05D5\u05DD \u0645\u0631\u062D\u0628\u0627 mixed"),
      QString::fromUtf8("\xF0\x9F\x98\x80\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x92\xBB"),
      QString()};
  for (qsizetype i = 0; i < subjects.size(); ++i) w.add(subjects[i], at(15, 8 + int(i)), 60, complete);
  open();
  QCoreApplication::processEvents();
  ASSERT_EQ(list().model()->rowCount(), subjects.size());
  for (int row = 1; row < list().model()->rowCount(); ++row)
    EXPECT_EQ(list().rowHeight(row), list().rowHeight(0)) << row;
  EXPECT_EQ(w.subjects(), subjects);
  const QString folder = qEnvironmentVariable("HOURBOOK_PICTURES");
  if (!folder.isEmpty()) window->grab().save(folder + QStringLiteral("/subjects.png"));
}

}  // namespace
}  // namespace tests
