#include "platform/basic/convert.h"
#include "settings/cMarking.h"
#include "settings/cRowInfo.h"
#include "shell/modErrorReport.h"
#include "tests/unit/settings/settingsworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

class Markings : public SettingsWorld {
 protected:
  Markings() { useLists({{u"Support"_s, u"A"_s}, {u"Acme"_s, u"B"_s}, {u"Phone"_s, u"C"_s}}); }
  static QStringList texts(const cMarking& marking) {
    QStringList positions;
    for (const auto& position : marking.colMarkings) positions.append(position->MetaName);
    return positions;
  }
  static cMarking markingOf(const QStringList& positions) {
    cMarking marking;
    for (int i = 0; i < positions.size(); ++i) marking.colMarkings.Item(i + 1)->MetaName = positions[i];
    return marking;
  }
  static QStringList read(const QString& categories) {
    cMarking marking;
    marking.BillingToMarkings(categories);
    return texts(marking);
  }
};

TEST_F(Markings, ANewOneHasAnEmptyPositionForEachList) {
  EXPECT_EQ(texts(cMarking()), (QStringList{{}, {}, {}}));
  EXPECT_FALSE(cMarking().IsComplete());
}

TEST_F(Markings, OneMadeBeforeTheListsHasNoPositionsAndIsComplete) {
  useLists({});
  const cMarking marking;
  useLists({{u"A"_s}});
  EXPECT_EQ(marking.colMarkings.Count(), 0);
  EXPECT_TRUE(marking.IsComplete());
  EXPECT_EQ(marking.MarkingCategories(), QString());
}

TEST_F(Markings, OneWithoutPersonalSettingsCannotBeMade) {
  settings.gPersonalSettings.reset();
  EXPECT_THROW(cMarking(), platform::Failure);
}

TEST_F(Markings, CategoriesBeginWithTheSeparatorAndJoinTheFilledPositions) {
  values.gListSeparator = u";"_s;
  EXPECT_EQ(markingOf({u"Support"_s, u"Acme"_s, u"Phone"_s}).MarkingCategories(), u";Support;Acme;Phone"_s);
  EXPECT_EQ(markingOf({{}, u"Acme"_s, {}}).MarkingCategories(), u";Acme"_s);
  EXPECT_EQ(markingOf({{}, {}, {}}).MarkingCategories(), QString());
  EXPECT_EQ(fncLastLogText(), u"Building a categories string from the currently selected markings"_s);
}

TEST_F(Markings, AMarkingWithAnEmptyLastPositionIsNotComplete) {
  const cMarking marking = markingOf({u"A"_s, u"B"_s, {}});
  EXPECT_EQ(marking.MarkingCategories(), u",A,B"_s);
  EXPECT_FALSE(marking.IsComplete());
  EXPECT_TRUE(markingOf({u"A"_s, u"B"_s, u"gone from its list"_s}).IsComplete());
}

TEST_F(Markings, AValueThatEndsInTheSeparatorLosesIt) {
  EXPECT_EQ(markingOf({u"A"_s, u"B,"_s, {}}).MarkingCategories(), u",A,B"_s);
}

TEST_F(Markings, ADoubledSeparatorVanishesWhole) {
  EXPECT_EQ(markingOf({u"A,"_s, u"B"_s, {}}).MarkingCategories(), u",AB"_s);
}

TEST_F(Markings, CategoriesFillThePositionsOfTheirLists) {
  EXPECT_EQ(read(u"A, B,C"_s), (QStringList{u"A"_s, u"B"_s, u"C"_s}));
  EXPECT_EQ(read(u"C,A"_s), (QStringList{u"A"_s, {}, u"C"_s}));
}

TEST_F(Markings, TheirOwnCategoriesReadBack) {
  const cMarking marking = markingOf({u"A"_s, u"B"_s, {}});
  EXPECT_EQ(read(marking.MarkingCategories()), (QStringList{u"A"_s, u"B"_s, {}}));
  EXPECT_EQ(fncLastLogText(), u"Splitting the categories string ,A,B"_s);
}

TEST_F(Markings, APieceIsComparedWithRegardToCase) {
  EXPECT_EQ(read(u"a,SUPPORT"_s), (QStringList{{}, {}, {}}));
}

TEST_F(Markings, ADisabledValueStillMatches) {
  settings.gPersonalSettings->MetaDataLists.Item(1)->AddMeta(u"Off"_s, {}, {}, 0, {}, false);
  EXPECT_EQ(read(u"Off"_s), (QStringList{u"Off"_s, {}, {}}));
}

TEST_F(Markings, OtherCategoriesAreIgnored) {
  EXPECT_EQ(read(u"Holiday,A,Blue"_s), (QStringList{u"A"_s, {}, {}}));
}

TEST_F(Markings, OfTwoPiecesOfOneListTheLaterStands) {
  EXPECT_EQ(read(u"A,Support"_s), (QStringList{u"Support"_s, {}, {}}));
}

TEST_F(Markings, ANameInTwoListsFillsBothPositions) {
  useLists({{u"A"_s}, {u"A"_s}});
  EXPECT_EQ(read(u"A"_s), (QStringList{u"A"_s, u"A"_s}));
}

TEST_F(Markings, AnEmptyTextLeavesThePositionsAsTheyAre) {
  cMarking marking = markingOf({u"A"_s, {}, {}});
  marking.BillingToMarkings({});
  EXPECT_EQ(texts(marking), (QStringList{u"A"_s, {}, {}}));
  marking.BillingToMarkings(u"B"_s);
  EXPECT_EQ(texts(marking), (QStringList{u"A"_s, u"B"_s, {}}));
}

TEST_F(Markings, ANameThatHoldsTheSeparatorCannotBeReadBack) {
  useLists({{u"A,B"_s}});
  EXPECT_EQ(read(markingOf({u"A,B"_s}).MarkingCategories()), QStringList{QString()});
}

TEST_F(Markings, APositionThatIsMissingIsReported) {
  useLists({});
  cMarking marking;
  useLists({{u"A"_s}});
  EXPECT_REPORTED(world, "BillingToMarkings", marking.BillingToMarkings(u"A"_s));
}

TEST_F(Markings, APositionWithoutAnObjectIsReportedWhenCategoriesAreBuilt) {
  cMarking marking;
  marking.colMarkings.Add(nullptr);
  EXPECT_REPORTED(world, "MarkingCategories", marking.MarkingCategories());
}

TEST_F(Markings, AnAppointmentIsStampedWithTheMomentAndNothingElse) {
  const auto appointment = addAppointment(u"Planning"_s);
  appointment->setCategories(u",A"_s);
  appointment->Save();
  outlook.gRowItems.Add(addAppointment(u"Another"_s), u"2"_s);
  outlook.gRowItems.Add(appointment, u"3"_s);
  cRowInfo row;
  row.RowNumber = 2;  // counted from the first row of the list, which is the sheet's row 2
  row.Marking->BillingToMarkings(u"B"_s);
  row.SavePostedInfo();
  EXPECT_EQ(stored(u"Planning"_s).billingInformation, u"5/15/2024 10:00:00 AM"_s);
  EXPECT_EQ(stored(u"Planning"_s).categoriesText, u",A"_s);
  EXPECT_EQ(stored(u"Another"_s).billingInformation, QString());
}

TEST_F(Markings, AStampThatCannotBeSavedFailsToTheCaller) {
  const auto appointment = addAppointment(u"Planning"_s);
  outlook.gRowItems.Add(appointment, u"2"_s);
  store->failAlways(platform::calendar::FailingStore::Operation::Save, platform::Failure(5, u"full"_s));
  cRowInfo row;
  row.RowNumber = 1;
  EXPECT_THROW(row.SavePostedInfo(), platform::Failure);
  EXPECT_EQ(stored(u"Planning"_s).billingInformation, QString());
}

TEST_F(Markings, ARowWithoutAnAppointmentCannotBeStamped) {
  EXPECT_THROW(cRowInfo().SavePostedInfo(), platform::Failure);
}

TEST_F(Markings, ANewRowHasAMarkingOfItsOwn) {
  const cRowInfo first, second;
  ASSERT_TRUE(first.Marking);
  EXPECT_NE(first.Marking, second.Marking);
  EXPECT_EQ(first.Marking->colMarkings.Count(), 3);
  EXPECT_LT(first.Posted.year(), 1900);
}

}  // namespace hourbook::tests
