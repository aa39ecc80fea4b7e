#include "tests/unit/companions/common/commonworld.h"

namespace hourbook::tests {

using platform::basic::Currency;

namespace {

CommonValue valueOf(const QString& name) {
  CommonValue value;
  value.name = name;
  value.was = name;
  return value;
}

}  // namespace

class Buffer : public CommonWorld {
 protected:
  Buffer() {
    CommonContent& content = buffer.stored;
    content.costCarrier = 2;
    content.reportTo = 2;
    content.reportToValue = u"C:\\Hours\\Hourbook3.mdb"_s;
    content.lists[0].caption = u"Customer"_s;
    content.lists[0].values = {valueOf(u"Acme"_s), valueOf(u"Zeta"_s)};
    content.lists[1].caption = u"Task"_s;
    content.lists[1].values = {valueOf(u"Support"_s)};
    buffer.edited = content;
    buffer.billingPossible = true;
  }
  /// All problems as texts.
  QStringList problems() const {
    QStringList texts;
    for (const CommonProblem& problem : buffer.problems()) texts.append(problem.text);
    return texts;
  }
  CommonContent& edited() { return buffer.edited; }

  CommonBuffer buffer;
};

// ---- changed or not

TEST_F(Buffer, ThatNobodyTouchedIsUnchangedAndWithoutProblems) {
  EXPECT_FALSE(buffer.isChanged());
  EXPECT_EQ(problems(), QStringList());
}

TEST_F(Buffer, IsChangedByEachOfItsParts) {
  const auto changes = [&](const std::function<void(CommonContent&)>& change) {
    buffer.edited = buffer.stored;
    change(buffer.edited);
    return differences(buffer.stored, buffer.edited);
  };
  const QStringList cost{u"cost and target"_s}, first{u"list 1"_s}, third{u"list 3"_s}, billing{u"billing"_s};
  EXPECT_EQ(changes([](auto& c) { c.costCarrier = 3; }), cost);
  EXPECT_EQ(changes([](auto& c) { c.reportTo = 4; }), cost);
  EXPECT_EQ(changes([](auto& c) { c.reportToValue = u"x"_s; }), cost);
  EXPECT_EQ(changes([](auto& c) { c.lists[0].caption = u"Client"_s; }), first);
  EXPECT_EQ(changes([](auto& c) { c.lists[0].categoryCaption = u"Branch"_s; }), first);
  EXPECT_EQ(changes([](auto& c) { c.lists[2].superCategoryCaption = u"Region"_s; }), third);
  EXPECT_EQ(changes([](auto& c) { c.lists[0].values[0].name = u"Acme 2"_s; }), first);
  EXPECT_EQ(changes([](auto& c) { c.lists[0].values[0].category = u"x"_s; }), first);
  EXPECT_EQ(changes([](auto& c) { c.lists[0].values[0].superCategory = u"x"_s; }), first);
  EXPECT_EQ(changes([](auto& c) { c.lists[0].values[1].rate = Currency::fromDouble(1); }), first);
  EXPECT_EQ(changes([](auto& c) { c.lists[0].values[1].enabled = false; }), first);
  EXPECT_EQ(changes([](auto& c) { c.departmentAsked = true; }), QStringList{u"other settings"_s});
  EXPECT_EQ(changes([](auto& c) { c.billing.location = u"x"_s; }), billing);
}

TEST_F(Buffer, IsUnchangedAgainWhenARemovedValueIsTypedAgain) {
  edited().lists[0].values[0].category = u"Metal"_s;
  buffer.stored = edited();
  buffer.removeValues(0, {0});
  EXPECT_TRUE(buffer.isChanged());
  EXPECT_EQ(buffer.addValue(0, u"Acme"_s), QString());
  EXPECT_FALSE(buffer.isChanged());
  EXPECT_TRUE(buffer.removedValues().isEmpty());
}

// ---- names

TEST_F(Buffer, RefusesNamesThatTheStoredFormsCannotHold) {
  EXPECT_EQ(buffer.addValue(0, u"A;B"_s),
            u"A name must not hold \";\", which separates values where they are stored."_s);
  EXPECT_EQ(buffer.addValue(0, u"A,B"_s),
            u"A name must not hold \",\", which separates the values of an appointment on this system."_s);
  EXPECT_EQ(buffer.addValue(0, u" "_s), u"A name must not be empty."_s);
  EXPECT_EQ(buffer.addValue(0, u"A\tB"_s),
            u"A name must not hold line breaks, tabs or other signs without a picture."_s);
  EXPECT_EQ(buffer.addValue(0, QString(256, u'x')), u"A name must not be longer than 255 characters."_s);
  EXPECT_EQ(buffer.renameValue(0, 0, u"A;B"_s),
            u"A name must not hold \";\", which separates values where they are stored."_s);
  EXPECT_FALSE(buffer.isChanged());
}

TEST_F(Buffer, RefusesANameThatTheListHasInAnyCase) {
  EXPECT_EQ(buffer.addValue(0, u"ACME"_s), u"The list has this value already."_s);
  EXPECT_EQ(buffer.renameValue(0, 1, u"acme"_s), u"The list has this value already."_s);
  EXPECT_EQ(buffer.addValue(1, u"Acme"_s), QString()) << "another list may have it";
}

TEST_F(Buffer, TakesANewCaseOfTheSameName) {
  EXPECT_EQ(buffer.renameValue(0, 0, u"ACME"_s), QString());
  EXPECT_TRUE(buffer.isChanged());
  EXPECT_TRUE(buffer.removedValues().isEmpty());
}

TEST_F(Buffer, TakesBlanksOffTheEndsOfANameBeforeItIsLookedAt) {
  EXPECT_EQ(buffer.addValue(0, u" Beta "_s), QString());
  EXPECT_EQ(edited().lists[0].values.last().name, u"Beta"_s);
}

TEST_F(Buffer, LeavesNamesAloneThatAnotherProgramStoredWithAFault) {
  buffer.stored.lists[0].values[0].name = u"A;B"_s;
  edited() = buffer.stored;
  edited().costCarrier = 1;
  EXPECT_EQ(problems(), QStringList());
  EXPECT_EQ(buffer.renameValue(0, 0, u"A;C"_s),
            u"A name must not hold \";\", which separates values where they are stored."_s);
}

TEST_F(Buffer, FindsFaultyValuesHoweverTheyCameIn) {
  edited().lists[0].values[0].name = u"A;B"_s;
  edited().lists[0].values.append(valueOf(u"ZETA"_s));
  edited().lists[1].values[0].category = QString(256, u'x');
  EXPECT_EQ(
      problems(),
      (QStringList{u"\"A;B\": A name must not hold \";\", which separates values where they are stored."_s,
                   u"\"ZETA\": The list has this value already."_s,
                   u"\"Support\": This must not be longer than 255 characters."_s}));
  EXPECT_EQ(buffer.problems()[1].row, 2);
  EXPECT_EQ(buffer.problems()[2].list, 1);
}

TEST_F(Buffer, FindsProblemsAmongFiveThousandValues) {
  QList<CommonValue>& values = edited().lists[0].values;
  for (int i = 0; i < 5000; ++i) values.append(valueOf(u"Value %1"_s.arg(i)));
  EXPECT_EQ(problems(), QStringList());
  values.append(valueOf(u"VALUE 4999"_s));
  EXPECT_EQ(problems(), QStringList{u"\"VALUE 4999\": The list has this value already."_s});
}

// ---- rates and categories

TEST_F(Buffer, TakesRatesInTheFormatOfTheSystemAndRefusesOthers) {
  db.world.setLocale(u"sv_SE"_s);
  EXPECT_EQ(buffer.setRate(0, 0, u"450,5"_s), QString());
  EXPECT_EQ(edited().lists[0].values[0].rate, Currency::fromDouble(450.5));
  EXPECT_EQ(buffer.setRate(0, 0, u"much"_s), u"A rate is a number such as 450,50."_s);
  EXPECT_EQ(edited().lists[0].values[0].rate, Currency::fromDouble(450.5));
}

TEST_F(Buffer, RefusesCategoriesThatTheirColumnsCannotHold) {
  EXPECT_EQ(buffer.setCategory(0, 0, QString(256, u'x')), u"This must not be longer than 255 characters."_s);
  EXPECT_EQ(buffer.setSuperCategory(0, 0, u"a\nb"_s),
            u"This must not hold line breaks, tabs or other signs without a picture."_s);
  EXPECT_EQ(buffer.setCategory(0, 0, u"a;b"_s), QString()) << "only names stand in the stored forms";
  EXPECT_EQ(buffer.setSuperCategory(0, 0, QString(255, u'x')), QString());
}

// ---- captions

TEST_F(Buffer, RefusesTwoListsOfOneName) {
  edited().lists[1].caption = u"CUSTOMER"_s;
  EXPECT_EQ(problems(), QStringList{u"List 1 has this name already."_s});
  EXPECT_EQ(buffer.problems().first().list, 1);
}

TEST_F(Buffer, RefusesCaptionsThatTheStoredFormsCannotHold) {
  edited().lists[0].caption = u"A:B"_s;
  EXPECT_EQ(problems(),
            QStringList{u"A name must not hold \":\", which ends the name of a list where it is stored."_s});
  edited().lists[0].caption = QString(256, u'x');
  EXPECT_EQ(problems(), QStringList{u"A name must not be longer than 255 characters."_s});
}

TEST_F(Buffer, NeedsNamesForTheFirstTwoLists) {
  edited().lists[1].caption.clear();
  EXPECT_EQ(
      problems(),
      QStringList{u"This list must have a name: without one, everybody would see it as \"Task\" again."_s});
  edited() = buffer.stored;
  edited().lists[0].caption.clear();
  EXPECT_EQ(
      problems(),
      (QStringList{
          u"List 1 is not in use, so it has no rates to count by."_s,
          u"This list must have a name: without one, everybody would see it as \"Customer\" again."_s}));
}

TEST_F(Buffer, RefusesCategoryCaptionsThatDoNotFit) {
  edited().lists[0].categoryCaption = QString(256, u'x');
  edited().lists[2].superCategoryCaption = QString(256, u'x');
  ASSERT_EQ(buffer.problems().size(), 2);
  EXPECT_EQ(buffer.problems()[0].field, CommonField::CategoryCaption);
  EXPECT_EQ(buffer.problems()[1].field, CommonField::SuperCategoryCaption);
}

// ---- what is mandatory

TEST_F(Buffer, NeedsTheCostRuleTheTargetItsValueAndAFirstValue) {
  edited().costCarrier = 0;
  edited().reportTo = 0;
  edited().reportToValue.clear();
  edited().lists[0].values.clear();
  EXPECT_EQ(problems(),
            (QStringList{u"Choose how costs are counted."_s, u"Choose where reports go."_s,
                         u"This must not be empty."_s, u"The first list needs at least one value."_s}));
}

TEST_F(Buffer, RefusesToCountCostsByAListThatIsNotInUse) {
  edited().costCarrier = 4;
  EXPECT_EQ(problems(), QStringList{u"List 3 is not in use, so it has no rates to count by."_s});
  edited().costCarrier = 1;
  EXPECT_EQ(problems(), QStringList());
}

TEST_F(Buffer, RefusesATargetsValueOfTheWrongForm) {
  edited().reportTo = 1;
  EXPECT_EQ(problems(), QStringList{u"An address begins with \"http://\" or \"https://\"."_s});
  edited().reportToValue = u"HTTPS://example.org/hours"_s;
  EXPECT_EQ(problems(), QStringList());
  edited().reportTo = 3;
  EXPECT_EQ(problems(), QStringList{u"A connection string begins with \"Provider=\"."_s});
  edited().reportToValue = u"Provider=SQLOLEDB.1;Data Source=server"_s;
  EXPECT_EQ(problems(), QStringList());
  edited().reportToValue = u"Provider="_s + QString(300, u'x');
  EXPECT_EQ(problems(), QStringList{u"This must not be longer than 255 characters."_s});
}

TEST_F(Buffer, LeavesAStoredTargetAlone) {
  buffer.stored.reportTo = 3;
  buffer.stored.reportToValue = u"dsn=hours"_s;
  edited() = buffer.stored;
  edited().costCarrier = 1;
  EXPECT_EQ(problems(), QStringList());
}

// ---- removed values

TEST_F(Buffer, KnowsWhichStoredValuesAreGoneAndWhatTheyWereRenamedTo) {
  EXPECT_EQ(buffer.renameValue(0, 0, u"Acme Ltd"_s), QString());
  buffer.removeValues(0, {1});
  EXPECT_EQ(buffer.addValue(1, u"New"_s), QString());
  buffer.removeValues(1, {1});
  EXPECT_EQ(buffer.removedValues(), (QList<RemovedValue>{{0, u"Acme"_s, u"Acme Ltd"_s}, {0, u"Zeta"_s, {}}}));
}

// ---- billing

TEST_F(Buffer, RefusesBillingTextsThatTheirColumnsCannotHold) {
  edited().billing.location = u"sitecode="_s + QString(100, u'x');
  edited().billing.userId = QString(21, u'x');
  edited().billing.password = QString(21, u'x');
  EXPECT_EQ(problems(), (QStringList{u"This must not be longer than 100 characters."_s,
                                     u"This must not be longer than 20 characters."_s,
                                     u"This must not be longer than 20 characters."_s}));
  buffer.billingPossible = false;
  EXPECT_EQ(problems(), QStringList());
}

TEST_F(Buffer, NeedsTheSiteCodeInAnAddressOfThePortal) {
  edited().billing.location = u"https://portal.example/page.asp"_s;
  EXPECT_EQ(problems(), QStringList{u"The portal's address must hold its site code (\"sitecode=\")."_s});
  edited().billing.serverName = u"1"_s;
  EXPECT_EQ(problems(), QStringList());
}

TEST_F(Buffer, SaysWhatABillingRoadStillLacks) {
  EXPECT_EQ(buffer.billingHint(), QString()) << "nobody uses it";
  edited().billing.userId = u"ann"_s;
  EXPECT_EQ(buffer.billingHint(), u"The portal needs address, user and password before it takes reports."_s);
  edited().billing.location = u"sitecode=1"_s;
  edited().billing.password = u"secret"_s;
  EXPECT_EQ(buffer.billingHint(), QString());
  edited().billing = {true, u"1"_s, {}, {}, {}, {}};
  EXPECT_EQ(buffer.billingHint(),
            u"QuickBooks on this machine needs its company file before it takes reports."_s);
  edited().billing.serverName = u"2"_s;
  EXPECT_EQ(buffer.billingHint(), QString());
}

}  // namespace hourbook::tests
