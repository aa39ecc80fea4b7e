#include "platform/locale/table.h"
#include "roweditingworld.h"
#include "settings/cMetaDictionary.h"
#include "settings/SettingsValues.h"

namespace tests {
namespace {

INSTANTIATE_TEST_SUITE_P(Generations, EditedListOfTheNewerForms, testing::Values(10, 11));

TEST_P(EditedListOfTheNewerForms, SaveTypedHoursAsMinutesAndTheWholeRow) {
  type(QStringLiteral("F2"), QStringLiteral("1.5"));
  EXPECT_EQ(stored(0).durationMinutes(), 90);
  EXPECT_EQ(stored(0).subject, QStringLiteral("First"));
  EXPECT_EQ(stored(0).categoriesText, marked);
  EXPECT_EQ(saves(), 1);
}

TEST_P(EditedListOfTheNewerForms, SaveATypedSubject) {
  type(QStringLiteral("A3"), QStringLiteral("Another"));
  EXPECT_EQ(stored(1).subject, QStringLiteral("Another"));
  EXPECT_EQ(stored(0).subject, QStringLiteral("First"));
}

TEST_P(EditedListOfTheNewerForms, SaveAListedMetaValueTypedByHand) {
  type(QStringLiteral("C2"), QStringLiteral("Intranet"));
  EXPECT_EQ(stored(0).categoriesText, QStringLiteral(";Acme;Intranet;Design"));
}

TEST_P(EditedListOfTheNewerForms, TakeBackAnUnlistedMetaValueWithoutAWord) {
  type(QStringLiteral("B2"), QStringLiteral("Nobody"));
  EXPECT_EQ(w.cell(QStringLiteral("B2")), QStringLiteral("Acme"));
  EXPECT_EQ(saves(), 0);
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}

TEST_P(EditedListOfTheNewerForms, TakeBackAClearedMetaValue) {
  clear(QStringLiteral("B2"));
  EXPECT_EQ(w.cell(QStringLiteral("B2")), QStringLiteral("Acme"));
  EXPECT_EQ(saves(), 0);
}

TEST_P(EditedListOfTheNewerForms, LeaveHoursThatAreNoNumberInTheCell) {
  type(QStringLiteral("F2"), QStringLiteral("abc"));
  EXPECT_EQ(w.cell(QStringLiteral("F2")), QStringLiteral("abc"));
  EXPECT_EQ(saves(), 0);
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}

TEST_P(EditedListOfTheNewerForms, SaveNothingForAnEditThatChangesNothing) {
  select(QStringLiteral("A2"));
  platform::owc::Editing(sheet()).end({2, 1, 1, 1}, std::nullopt, std::nullopt);
  type(QStringLiteral("A2"), QStringLiteral("First"));
  EXPECT_EQ(saves(), 0);
}

TEST_P(EditedListOfTheNewerForms, ChangeNothingForAnEditOfThePostedColumn) {
  type(QStringLiteral("G2"), QStringLiteral("2024-05-01"));
  EXPECT_EQ(w.cell(QStringLiteral("G2")), QStringLiteral("2024-05-01"));
  EXPECT_EQ(saves(), 0);
}

TEST_P(EditedListOfTheNewerForms, RecountAfterASave) {
  type(QStringLiteral("F2"), QStringLiteral("4"));
  EXPECT_EQ(w.form->lblHours.Caption(), QStringLiteral("5.5"));
}

TEST_P(EditedListOfTheNewerForms, RecountWhenTheSheetIsRecalculated) {
  w.form->lblHours.setCaption(QString());
  sheet().ActiveSheet.Calculate();
  EXPECT_EQ(w.form->lblHours.Caption(), QStringLiteral("2.5"));
  w.form->lblHours.setCaption(QString());
  w.workspace->gFetching = true;
  sheet().ActiveSheet.Calculate();
  EXPECT_EQ(w.form->lblHours.Caption(), QString());
}

TEST_P(EditedListOfTheNewerForms, DoNothingWhileTheListIsRebuilt) {
  w.workspace->gFetching = true;
  w.workspace->gCurrentRow = 0;
  type(QStringLiteral("A2"), QStringLiteral("Other"));
  EXPECT_EQ(saves(), 0);
  EXPECT_FALSE(w.form->cmbMeta1.Visible());
  EXPECT_EQ(w.workspace->gCurrentRow, 0);
}

TEST_P(EditedListOfTheNewerForms, LogWhatTheyReactTo) {
  select(QStringLiteral("A3"));
  w.startLog();
  type(QStringLiteral("A2"), QStringLiteral("Other"));
  const QStringList log = w.logged();
  EXPECT_TRUE(log.contains(QStringLiteral("Reacting to sheetchange")));
  EXPECT_TRUE(log.contains(QStringLiteral("Reacting to selectionchange")));
  EXPECT_TRUE(log.contains(QStringLiteral("Handling the row change event")));
  EXPECT_TRUE(log.contains(QStringLiteral("Saving the value Other to the appointment in the calendar")));
  EXPECT_TRUE(log.contains(QStringLiteral("Trying to determine where to place the combobox")));
}

TEST_P(EditedListOfTheNewerForms, KeepTheRowBeforeAndAfterTheEdit) {
  type(QStringLiteral("A2"), QStringLiteral("Other"));
  ASSERT_TRUE(w.workspace->gOldRow && w.workspace->gNewRow);
  EXPECT_EQ(w.workspace->gOldRow->Subject, QStringLiteral("First"));
  EXPECT_EQ(w.workspace->gNewRow->Subject, QStringLiteral("Other"));
  EXPECT_FALSE(w.workspace->gFetching);
}

TEST_P(EditedListOfTheNewerForms, LetATypedValueBeTakenBackByTheUser) {
  type(QStringLiteral("A2"), QStringLiteral("Other"));
  EXPECT_EQ(w.workspace->gCurrentRow, 3);
  platform::owc::Editing(sheet()).undo();
  EXPECT_EQ(stored(0).subject, QStringLiteral("First"));
  EXPECT_EQ(stored(1).subject, QStringLiteral("Second"));
  EXPECT_EQ(w.workspace->gCurrentRow, 3) << "the drop-downs are still those of row 3";
}

TEST_P(EditedListOfTheNewerForms, LetNothingOfTheFetchBeTakenBackByTheUser) {
  platform::owc::Editing(sheet()).undo();
  EXPECT_EQ(w.cell(QStringLiteral("G3")), QStringLiteral("Not Posted"));
}

TEST_P(EditedListOfTheNewerForms, SaveAPastedCellOfAnyRow) {
  type(QStringLiteral("A2"), QStringLiteral("Other"));
  paste(QStringLiteral("A3"), {{QStringLiteral("Pasted")}});
  EXPECT_EQ(stored(0).subject, QStringLiteral("Other"));
  EXPECT_EQ(stored(1).subject, QStringLiteral("Pasted"));
  EXPECT_EQ(stored(1).categoriesText, QStringLiteral(";Beta;Intranet;Support"));
}

TEST_P(EditedListOfTheNewerForms, SaveAValuePastedBackOverTheOneJustTyped) {
  type(QStringLiteral("B2"), QStringLiteral("Beta"));
  paste(QStringLiteral("B2"), {{QStringLiteral("Acme")}});
  EXPECT_EQ(stored(0).categoriesText, marked);
}

TEST_P(EditedListOfTheNewerForms, DoNotTakeARowReadBeforeTheLastFetchForTheOneOfNow) {
  select(QStringLiteral("A2"));
  platform::owc::Editing(sheet()).end({2, 1, 1, 1}, std::nullopt, std::nullopt);  // reads the old row
  w.add(QStringLiteral("Earlier"), at(13, 7), 30, marked);
  subGetData();
  paste(QStringLiteral("A2"), {{QStringLiteral("First")}});
  EXPECT_EQ(stored(0).subject, QStringLiteral("First"));
  EXPECT_EQ(stored(0).durationMinutes(), 30);
}

TEST_P(EditedListOfTheNewerForms, SaveAWholeMarkingPasted) {
  paste(QStringLiteral("B3:D3"),
        {{QStringLiteral("Acme"), QStringLiteral("Website"), QStringLiteral("Design")}});
  EXPECT_EQ(stored(1).categoriesText, marked);
}

TEST_P(EditedListOfTheNewerForms, TakeBackSeveralCellsOfWhichOneIsNotListed) {
  paste(QStringLiteral("A3"), {{QStringLiteral("Pasted"), QStringLiteral("Nobody")}});
  EXPECT_EQ(w.cell(QStringLiteral("A3")), QStringLiteral("Second"));
  EXPECT_EQ(w.cell(QStringLiteral("B3")), QStringLiteral("Beta"));
  EXPECT_EQ(saves(), 0);
}

TEST_P(EditedListOfTheNewerForms, TakeBackAChangeOfSeveralRows) {
  paste(QStringLiteral("A2"), {{QStringLiteral("x")}, {QStringLiteral("y")}});
  EXPECT_EQ(w.subjects(), (QStringList{QStringLiteral("First"), QStringLiteral("Second")}));
  clear(QStringLiteral("A2:F3"));
  EXPECT_EQ(w.subjects(), (QStringList{QStringLiteral("First"), QStringLiteral("Second")}));
  EXPECT_EQ(saves(), 0);
}

TEST_P(EditedListOfTheNewerForms, SaveClearedHoursAsNone) {
  clear(QStringLiteral("F2"));
  EXPECT_EQ(stored(0).durationMinutes(), 0);
}

TEST_P(EditedListOfTheNewerForms, SaveAnEmptiedSubject) {
  type(QStringLiteral("A2"), QString());
  EXPECT_EQ(stored(0).subject, QString());
}

TEST_P(EditedListOfTheNewerForms, SaveAValueTypedInAnotherCaseAsTheListSpellsIt) {
  type(QStringLiteral("B2"), QStringLiteral("BETA"));
  EXPECT_EQ(stored(0).categoriesText, QStringLiteral(";Beta;Website;Design"));
  EXPECT_EQ(w.cell(QStringLiteral("B2")), QStringLiteral("Beta"));
}

TEST_P(EditedListOfTheNewerForms, SaveSubjectsOfEveryKind) {
  const QStringList subjects{QString(10000, u'x'), QStringLiteral("<b>bold</b> & more"),
                             QStringLiteral("\u05E9\u05DC\u05D5\u05DD"), QStringLiteral("\U0001F600 party"),
                             QStringLiteral("a\\,b;c:\"d\"")};
  for (const QString& subject : subjects) {
    type(QStringLiteral("A2"), subject);
    EXPECT_EQ(stored(0).subject, subject);
  }
}

TEST_P(EditedListOfTheNewerForms, KeepLineBreaksInASubjectWhenAnotherCellIsEdited) {
  w.add(QStringLiteral("One\r\ntwo"), at(15, 9), 60, marked);
  subGetData();
  type(QStringLiteral("F4"), QStringLiteral("2"));
  EXPECT_EQ(stored(2).subject, QStringLiteral("One\r\ntwo"));
  EXPECT_EQ(stored(2).durationMinutes(), 120);
}

// Choosing in a drop-down

TEST_P(EditedListOfTheNewerForms, SaveAValueChosenInADropDown) {
  select(QStringLiteral("A3"));
  choose(3, QStringLiteral("Design"));
  EXPECT_EQ(stored(1).categoriesText, QStringLiteral(";Beta;Intranet;Design"));
  EXPECT_EQ(w.cell(QStringLiteral("D3")), QStringLiteral("Design"));
  EXPECT_EQ(w.workspace->gOldRow->Marking->colMarkings.Item(3)->MetaName, QStringLiteral("Support"));
}

TEST_P(EditedListOfTheNewerForms, LetAChosenValueBeTakenBackByTheUser) {
  select(QStringLiteral("A3"));
  choose(1, QStringLiteral("Acme"));
  platform::owc::Editing(sheet()).undo();
  EXPECT_EQ(stored(1).categoriesText, QStringLiteral(";Beta;Intranet;Support"));
}

TEST_P(EditedListOfTheNewerForms, TellAChoiceThatCannotReachTheSheet) {
  select(QStringLiteral("A3"));
  sheet().ActiveSheet.Protection.Enabled = false;
  sheet().Range(QStringLiteral("B3")).setLocked(true);
  sheet().ActiveSheet.Protection.Enabled = true;
  w.world.dialogs.expect(QStringLiteral("Unable to save this value!"), platform::dialogs::vbOK);
  choose(1, QStringLiteral("Acme"));
  EXPECT_EQ(w.world.dialogs.shown.last().options, platform::dialogs::vbCritical);
  EXPECT_EQ(w.world.dialogs.shown.last().title, QStringLiteral("Hourbook for Outlook Reporting"));
  EXPECT_EQ(saves(), 0);
  EXPECT_FALSE(w.workspace->gFetching);
}

// Rows far down

class LongList : public testing::TestWithParam<int>, public RowEditing {
 protected:
  LongList() : RowEditing(qint16(GetParam())) {
    for (int i = 0; i < 110; ++i)
      w.add(QStringLiteral("no %1").arg(i), at(13, 0).addSecs(i * 600), 60, marked);
    subGetData();
  }
};
INSTANTIATE_TEST_SUITE_P(Generations, LongList, testing::Values(10, 11));

TEST_P(LongList, SavesTheLastRowBefore100AndNoneFrom100On) {
  type(QStringLiteral("A99"), QStringLiteral("saved"));
  EXPECT_EQ(stored(97).subject, QStringLiteral("saved"));
  type(QStringLiteral("A100"), QStringLiteral("unsaved"));
  type(QStringLiteral("F101"), QStringLiteral("7"));
  EXPECT_EQ(w.cell(QStringLiteral("A100")), QStringLiteral("unsaved"));
  EXPECT_EQ(stored(98).subject, QStringLiteral("no 98"));
  EXPECT_EQ(stored(99).durationMinutes(), 60);
  EXPECT_EQ(saves(), 1);
}

TEST_P(LongList, SavesNoChoiceFromRow100On) {
  select(QStringLiteral("A105"));
  choose(1, QStringLiteral("Beta"));
  EXPECT_EQ(w.cell(QStringLiteral("B105")), QStringLiteral("Beta"));
  EXPECT_EQ(saves(), 0);
}

// Hours in other languages

class EditedListInGerman : public EditedList {
 protected:
  EditedListInGerman() : EditedList(11, QStringLiteral("de_DE")) {}
};

TEST_F(EditedListInGerman, TakesHoursWithACommaAndWithAPoint) {
  type(QStringLiteral("F2"), QStringLiteral("1,5"));
  EXPECT_EQ(stored(0).durationMinutes(), 90);
  type(QStringLiteral("F2"), QStringLiteral("2.25"));
  EXPECT_EQ(stored(0).durationMinutes(), 135);
}

TEST_F(EditedListInGerman, KeepsTheHoursOfTheListWhenAnotherCellIsEdited) {
  type(QStringLiteral("A3"), QStringLiteral("Other"));
  EXPECT_EQ(stored(1).durationMinutes(), 90);
}

TEST(HoursOfACell, AreANumberInEveryLanguageThatTheProgramKnows) {
  for (const char* name : {"en_US", "de_DE", "sv_SE", "fr_FR", "de_CH", "en_GB", "ru_RU", "tr_TR"}) {
    TestWorld world;
    world.setLocale(QString::fromLatin1(name));
    const QString sign = platform::locale::current().decimalSign();
    EXPECT_EQ(fncHoursNumber(Value(QStringLiteral("7.25"))), 7.25) << name;
    EXPECT_EQ(fncHoursNumber(Value(QString(QStringLiteral("7") + sign + QStringLiteral("25")))), 7.25)
        << name;
    EXPECT_EQ(fncHoursNumber(Value()), 0) << name;
    EXPECT_THROW(fncHoursNumber(Value(QStringLiteral("abc"))), platform::Failure) << name;
    EXPECT_THROW(fncHoursNumber(Value(QStringLiteral("nan"))), platform::Failure) << name;
    EXPECT_THROW(fncHoursNumber(Value(QString())), platform::Failure) << name;
  }
}

TEST_F(EditedList, SavesHoursOfEveryKindThatIsANumber) {
  const std::pair<const char*, int> kinds[] = {{"0", 0},       {"24", 1440}, {"0.01", 1},
                                               {"1e3", 60000}, {" 2 ", 120}, {"+1.5", 90},
                                               {".5", 30},     {"3.", 180},  {"1,000", 60000}};
  for (const auto& [typed, minutes] : kinds) {
    type(QStringLiteral("F2"), QString::fromLatin1(typed));
    EXPECT_EQ(stored(0).durationMinutes(), minutes) << typed;
  }
  EXPECT_EQ(stored(1).durationMinutes(), 90);
}

TEST_F(EditedList, LeavesHoursThatReadAsNoNumberInTheCell) {
  for (const char* typed : {"1:30", "1h", "1.2.3", "--1", "nan", "inf", "half", "\u0661"}) {
    type(QStringLiteral("F2"), QString::fromUtf8(typed));
    EXPECT_EQ(w.cell(QStringLiteral("F2")), QString::fromUtf8(typed));
  }
  EXPECT_EQ(saves(), 0);
}

class HoursThatNoAppointmentCanHave : public EditedList, public testing::WithParamInterface<const char*> {};
INSTANTIATE_TEST_SUITE_P(Kinds, HoursThatNoAppointmentCanHave, testing::Values("-1", "1e300"));

TEST_P(HoursThatNoAppointmentCanHave, AreToldAndNotSaved) {
  w.world.dialogs.expect(notSaved, platform::dialogs::vbOK);
  expectReport("fncSaveChanges");
  EXPECT_ENDS_PROCESS(type(QStringLiteral("F2"), QString::fromLatin1(GetParam())));
  EXPECT_EQ(stored(0).durationMinutes(), 60);
  EXPECT_EQ(saves(), 0);
  EXPECT_FALSE(w.workspace->gFetching);
}

TEST_F(EditedList, RoundsMinutesToWholeOnes) {
  type(QStringLiteral("F2"), QStringLiteral("1.33"));
  EXPECT_EQ(stored(0).durationMinutes(), 80);
}

/// kept: the hours of the list go to the calendar as they are shown.
TEST_F(EditedList, WritesTheHoursWithoutTheirLunchWhenAnotherCellIsEdited) {
  w.personal().RemoveLunch = true;
  w.personal().RemoveLunchHours = Value(0.75);
  w.add(QStringLiteral("Day"), at(15, 8), 480, marked);
  subGetData();
  type(QStringLiteral("A4"), QStringLiteral("Whole day"));
  EXPECT_EQ(stored(2).durationMinutes(), 435);
}

}  // namespace
}  // namespace tests
