#include "platform/basic/convert.h"
#include "platform/dialogs/dialogs.h"
#include "platform/outlook/items.h"
#include "settings/cGlobalSettings.h"
#include "shell/modRegistryEntry.h"
#include "workspace/modGetData.h"
#include "workspace/modReportFlow.h"
#include "workspaceworld.h"

namespace tests {
namespace {

using platform::basic::Value;
using platform::dialogs::vbNo;
using platform::dialogs::vbYes;

const QString complete = QStringLiteral(";Acme;Website;Design");
const QString sure = QStringLiteral(
    "You will not be able to change your reported time once you submit them to the database!\r\n"
    "Are you sure you want to do this?");

class Reporting : public testing::Test {
 protected:
  Reporting() {
    w.settings->gGlobalSettings = std::make_shared<cGlobalSettings>();
    w.settings->gGlobalSettings->OtherSettings = std::make_shared<cOtherSettings>();
    w.personal().ReportChoice = 1;
    w.reporting->subSendXMLReport = [this](platform::ado::Recordset& rows) {
      fetchingMeanwhile = w.workspace->gFetching;
      ++sent;
      for (rows.MoveFirst(); !rows.isEOF(); rows.MoveNext()) {
        rows[QStringLiteral("intResult")].setValue(Value(qint64(1)));
        rows.Update();
      }
    };
    w.withDatePickers();
    w.loadForm();
  }
  void answer(const QString& question, int code) { w.world.dialogs.expect(question, code); }
  void pressOK() { w.form->cmdOK.click(); }
  void fetch() { subGetData(); }

  WorkspaceWorld w;
  int sent = 0;
  bool fetchingMeanwhile = false;
};

TEST_F(Reporting, DoesNothingWithoutRows) {
  pressOK();
  EXPECT_EQ(sent, 0);
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}

TEST_F(Reporting, AsksFirst) {
  w.add(QStringLiteral("Work"), at(15, 9), 60, complete);
  fetch();
  answer(sure, vbNo);
  pressOK();
  ASSERT_EQ(w.world.dialogs.shown.size(), 1);
  EXPECT_EQ(w.world.dialogs.shown[0].text, sure);
  EXPECT_EQ(w.world.dialogs.shown[0].options, 36);
  EXPECT_EQ(w.world.dialogs.shown[0].title, QStringLiteral("Hourbook for Outlook Reporting"));
  EXPECT_EQ(sent, 0);
  EXPECT_EQ(w.cell(QStringLiteral("G2")), QStringLiteral("Not Posted"));
}

TEST_F(Reporting, StampsTheRowsAndStaysOpenForAnotherPeriod) {
  const auto key = w.add(QStringLiteral("Work"), at(15, 9), 60, complete);
  fetch();
  answer(sure, vbYes);
  answer(QStringLiteral("Would you like to report for another period?"), vbYes);
  pressOK();
  EXPECT_EQ(sent, 1);
  EXPECT_EQ(w.cell(QStringLiteral("G2")), QStringLiteral("OK"));
  EXPECT_FALSE(w.outlook->gRowItems.Item(QStringLiteral("2"))->BillingInformation().isEmpty());
}

TEST_F(Reporting, KeepsTheChangeHandlersOutMeanwhile) {
  w.add(QStringLiteral("Work"), at(15, 9), 60, complete);
  fetch();
  answer(sure, vbYes);
  answer(QStringLiteral("another period?"), vbYes);
  pressOK();
  EXPECT_TRUE(fetchingMeanwhile);
  EXPECT_FALSE(w.workspace->gFetching);
}

TEST_F(Reporting, SelectsTheFirstCellOfTheList) {
  w.form->exsThisWeek.Range(QStringLiteral("C1")).Select();
  pressOK();
  EXPECT_EQ(w.form->exsThisWeek.Selection().Address(), QStringLiteral("$A$1"));
}

TEST_F(Reporting, WorksOnTheMarkedRowsWhateverIsShown) {
  w.add(QStringLiteral("Marked"), at(15, 9), 60, complete);
  w.add(QStringLiteral("Unmarked"), at(15, 10));
  w.form->cmbFilterCalendar.setListIndex(1);
  answer(sure, vbNo);
  pressOK();
  EXPECT_EQ(w.form->cmbFilterCalendar.ListIndex(), 0);
  EXPECT_EQ(w.subjects(), QStringList{QStringLiteral("Marked")});
}

TEST_F(Reporting, FetchesTheMarkedRowsWhileTheFilterIsHiddenToo) {
  w.add(QStringLiteral("Marked"), at(15, 9), 60, complete);
  w.form->cmbFilterCalendar.setListIndex(1);
  w.form->cmbFilterCalendar.setVisible(false);
  answer(sure, vbNo);
  pressOK();
  EXPECT_EQ(w.subjects(), QStringList{QStringLiteral("Marked")});
}

TEST_F(Reporting, SaysNothingWhenAllRowsArePostedAlready) {
  auto item = w.appointment(QStringLiteral("Done"), at(15, 9), 60, complete);
  item.billingInformation = QStringLiteral("2024-05-14");
  w.calendar->add(w.folder, item);
  fetch();
  answer(sure, vbYes);
  pressOK();
  EXPECT_EQ(sent, 0);
  EXPECT_EQ(w.world.dialogs.shown.size(), 1);
}

/// A calendar whose files take a while to be looked at: a glance does not see what others have changed.
class CalendarLookedAtSlowly : public platform::calendar::FailingStore {
 public:
  using FailingStore::FailingStore;
  QString othersTag(const QString& folder, platform::calendar::Look look) override {
    const QString now = FailingStore::othersTag(folder, look);
    if (look == platform::calendar::Look::Thorough || seen.isEmpty()) seen = now;
    return seen;
  }
  QString seen;
};

class ReportingWithOthers : public Reporting {
 protected:
  ReportingWithOthers() {
    platform::outlook::Profile profile;
    profile.stores.append(store);
    profile.openFolder = w.folder;
    w.outlook->gOutlookApp = std::make_shared<platform::outlook::Application>(profile);
    w.outlook->gCalendarFolder = w.outlook->gOutlookApp->ActiveExplorer()->CurrentFolder();
    key = w.add(QStringLiteral("Work"), at(15, 9), 60, complete);
    fetch();
    QObject::connect(w.form.get(), &ReportForm::listFetched, w.form.get(), [this] { ++fetches; });
    w.reporting->subSendXMLReport = [this](platform::ado::Recordset& rows) {
      for (rows.MoveFirst(); !rows.isEOF(); rows.MoveNext()) {
        reported.append(platform::basic::CStr(rows[QStringLiteral("strSubject")].Value()) + u' ' +
                        platform::basic::CStr(rows[QStringLiteral("intHours")].Value()));
        rows[QStringLiteral("intResult")].setValue(Value(qint64(1)));
        rows.Update();
      }
    };
  }
  void theyMakeItLonger() {
    platform::calendar::Change change;
    change.durationMinutes = 180;
    w.calendar->changeByAnother(w.folder, key, change);
  }
  std::shared_ptr<CalendarLookedAtSlowly> store = std::make_shared<CalendarLookedAtSlowly>(w.calendar);
  platform::calendar::ItemKey key;
  QStringList reported;
  int fetches = 0;
};

TEST_F(ReportingWithOthers, ReportsWhatStandsInTheCalendarAndNotWhatStoodInTheList) {
  theyMakeItLonger();
  answer(sure, vbYes);
  answer(QStringLiteral("another period?"), vbYes);
  pressOK();
  EXPECT_EQ(reported, QStringList{QStringLiteral("Work 3")});
  EXPECT_EQ(fetches, 1);
}

TEST_F(ReportingWithOthers, AsksOverTheRowsThatStandInTheCalendar) {
  theyMakeItLonger();
  class Asking : public platform::dialogs::ScriptedDialogs {
   public:
    int MsgBox(const QString&, int, const QString&) override {
      shownThen = hours();
      return vbNo;
    }
    std::function<QString()> hours;
    QString shownThen;
  } dialogs;
  dialogs.hours = [this] { return w.cell(QStringLiteral("F2")); };
  const platform::dialogs::ScopedDialogs inForce(dialogs);
  pressOK();
  EXPECT_EQ(dialogs.shownThen, QStringLiteral("3"));
}

TEST_F(ReportingWithOthers, AsksNothingWhereOthersHaveRemovedTheRows) {
  w.calendar->removeByAnother(w.folder, key);
  pressOK();
  EXPECT_EQ(reported, QStringList());
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}

TEST_F(ReportingWithOthers, FetchesNothingWhereNobodyHasChangedAnything) {
  answer(sure, vbNo);
  pressOK();
  EXPECT_EQ(fetches, 0);
}

TEST_F(ReportingWithOthers, ReportsThePeriodThatTheListShows) {
  w.setPeriod(QDate(2024, 6, 1), QDate(2024, 6, 30));
  theyMakeItLonger();
  answer(sure, vbYes);
  answer(QStringLiteral("another period?"), vbYes);
  pressOK();
  EXPECT_EQ(reported, QStringList{QStringLiteral("Work 3")});
}

TEST_F(ReportingWithOthers, GoesOnWhereTheCalendarCannotSayWhetherItHasChanged) {
  store->failAlways(platform::calendar::FailingStore::Operation::OthersTag,
                    platform::Failure(platform::calendar::errStoreBroken, QStringLiteral("Gone.")));
  answer(sure, vbNo);
  pressOK();
  EXPECT_EQ(fetches, 0);
}

TEST_F(ReportingWithOthers, EndsWhereTheCalendarHasChangedAndCannotBeRead) {
  theyMakeItLonger();
  store->failAlways(platform::calendar::FailingStore::Operation::Items,
                    platform::Failure(platform::calendar::errStoreBroken, QStringLiteral("Gone.")));
  w.world.dialogs.expect(QStringLiteral("Sub routine : cmdOK_Click"), vbNo);
  EXPECT_ENDS_PROCESS(pressOK());
  EXPECT_EQ(reported, QStringList());
}

TEST_F(ReportingWithOthers, ShowsThatItLooksAtTheCalendar) {
  w.screen->pointers.clear();
  answer(sure, vbNo);
  pressOK();
  EXPECT_EQ(w.screen->pointers, (QList<int>{11, 0}));
}

TEST_F(Reporting, EndsTheProgramWhenNoOtherPeriodIsWanted) {
  w.add(QStringLiteral("Work"), at(15, 9), 60, complete);
  fetch();
  answer(sure, vbYes);
  answer(QStringLiteral("another period?"), vbNo);
  EXPECT_ENDS_PROCESS(pressOK());
}

TEST_F(Reporting, EndsTheProgramUnderItsNameWithoutAForm) {
  w.workspace->gReportForm.reset();
  w.world.dialogs.expect(QStringLiteral("Sub routine : cmdOK_Click"), vbNo);
  EXPECT_ENDS_PROCESS(cmdOK_Click());
}

TEST_F(Reporting, KeepsTheWishForTheGridWhereThereIsNone) {
  w.personal().StartGrid = true;
  w.add(QStringLiteral("Work"), at(15, 9), 60, complete);
  fetch();
  answer(sure, vbYes);
  answer(QStringLiteral("another period?"), vbNo);
  EXPECT_ENDS_PROCESS(pressOK());
  EXPECT_TRUE(w.personal().StartGrid);
  EXPECT_EQ(
      fncGetRegistryValue(QStringLiteral("Settings"), QStringLiteral("StartGrid"), QStringLiteral("none")),
      QStringLiteral("none"));
}

}  // namespace
}  // namespace tests
