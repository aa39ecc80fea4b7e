#include "tests/unit/platform/outlook/calendarfixture.h"

using namespace Qt::StringLiterals;
using namespace platform;
using namespace platform::outlook;
using basic::Date;
using basic::Value;

namespace {

class UserPropertiesTest : public tests::CalendarTest {
 protected:
  std::shared_ptr<AppointmentItem> item = add(appointment(u"A"_s, u"2024-05-15 09:00"_s));
  Value stored(const QString& name) {
    const auto again = items().Item(u"A"_s);
    const auto property = again->userProperties().Find(name);
    return property ? property->Value() : Value(basic::Null());
  }
  Value withValue(int type, const QString& text) {
    calendar::Item other = appointment(u"Other"_s, u"2024-05-15 09:00"_s);
    other.userProperties.insert(u"P"_s, {type, text});
    calendar::MemoryStore fresh;
    AppointmentItem read(store, folder, other);
    return read.userProperties().Find(u"P"_s)->Value();
  }
};

}  // namespace

TEST_F(UserPropertiesTest, AMissingPropertyIsNothing) {
  EXPECT_EQ(item->userProperties().Find(u"Missing"_s), nullptr);
}

TEST_F(UserPropertiesTest, AnAddedPropertyIsThereAtOnceAndStoredWithSave) {
  item->userProperties().Add(u"Settings0"_s, olText)->setValue(u"text"_s);
  EXPECT_EQ(item->userProperties().Find(u"Settings0"_s)->Value(), Value(u"text"_s));
  EXPECT_EQ(stored(u"Settings0"_s), Value(basic::Null()));
  item->Save();
  EXPECT_EQ(item->userProperties().Find(u"Settings0"_s)->Value(), Value(u"text"_s));
  EXPECT_EQ(stored(u"Settings0"_s), Value(u"text"_s));
}

TEST_F(UserPropertiesTest, EachTypeKeepsItsValue) {
  const Date day = Date::of(QDate(2024, 5, 15), QTime(13, 14, 15));
  const QList<std::tuple<QString, int, Value>> properties{
      {u"Text"_s, olText, u"a, b\r\nc"_s}, {u"Number"_s, olNumber, 0.1}, {u"Count"_s, olNumber, -12.0},
      {u"Moment"_s, olDateTime, day},      {u"Yes"_s, olYesNo, true},    {u"No"_s, olYesNo, false}};
  for (const auto& [name, type, value] : properties) item->userProperties().Add(name, type)->setValue(value);
  item->Save();
  for (const auto& [name, type, value] : properties) {
    if (const Date* moment = std::get_if<Date>(&value))
      EXPECT_EQ(shown(std::get<Date>(stored(name))), shown(*moment));
    else
      EXPECT_EQ(stored(name), value) << qPrintable(name);
  }
}

TEST_F(UserPropertiesTest, NumbersAreKeptWithAPointInEveryLocale) {
  world.setLocale(u"de_DE"_s);
  item->userProperties().Add(u"Number"_s, olNumber)->setValue(u"7,25"_s);
  item->Save();
  EXPECT_EQ(item->stored().userProperties.value(u"Number"_s).value, u"7.25"_s);
  EXPECT_EQ(stored(u"Number"_s), Value(7.25));
}

TEST_F(UserPropertiesTest, AWholeNumberIsKeptWithoutPoint) {
  item->userProperties().Add(u"SettingsCount"_s, olNumber)->setValue(qint32(2));
  item->Save();
  EXPECT_EQ(item->stored().userProperties.value(u"SettingsCount"_s).value, u"2"_s);
  EXPECT_EQ(item->stored().userProperties.value(u"SettingsCount"_s).type, olNumber);
}

TEST_F(UserPropertiesTest, AValueThatDoesNotSuitItsTypeFailsAndChangesNothing) {
  item->userProperties().Add(u"Number"_s, olNumber)->setValue(1.0);
  EXPECT_EQ(failureOf([&] { item->userProperties().Find(u"Number"_s)->setValue(u"many"_s); }),
            failure::typeMismatch);
  EXPECT_EQ(item->userProperties().Find(u"Number"_s)->Value(), Value(1.0));
}

TEST_F(UserPropertiesTest, AddingAPresentPropertyGivesThatOneWithItsValueAndType) {
  item->userProperties().Add(u"Settings0"_s, olText)->setValue(u"text"_s);
  item->Save();
  const auto again = item->userProperties().Add(u"settings0"_s, olNumber);
  EXPECT_EQ(again->Value(), Value(u"text"_s));
  again->setValue(u"new"_s);
  item->Save();
  EXPECT_EQ(item->stored().userProperties.size(), 1);
  EXPECT_EQ(stored(u"Settings0"_s), Value(u"new"_s));
}

TEST_F(UserPropertiesTest, ANewPropertyHasTheEmptyValueOfItsType) {
  EXPECT_EQ(item->userProperties().Add(u"T"_s, olText)->Value(), Value(u""_s));
  EXPECT_EQ(item->userProperties().Add(u"N"_s, olNumber)->Value(), Value(0.0));
  EXPECT_EQ(item->userProperties().Add(u"Y"_s, olYesNo)->Value(), Value(false));
  EXPECT_EQ(std::get<Date>(item->userProperties().Add(u"D"_s, olDateTime)->Value()).year(), 4501);
}

TEST_F(UserPropertiesTest, OnlyTheFourTypesCanBeAdded) {
  EXPECT_EQ(failureOf([&] { item->userProperties().Add(u"P"_s, 14); }), failure::invalidProcedureCall);
  EXPECT_EQ(failureOf([&] { item->userProperties().Add(QString(), olText); }), failure::invalidProcedureCall);
}

TEST_F(UserPropertiesTest, NamesCompareWithoutRegardToCase) {
  item->userProperties().Add(u"blnStartGrid"_s, olYesNo)->setValue(true);
  EXPECT_TRUE(item->userProperties().Find(u"BLNSTARTGRID"_s));
  item->Save();
  EXPECT_TRUE(item->userProperties().Find(u"BLNSTARTGRID"_s));
}

TEST_F(UserPropertiesTest, WhatAnotherProgramWroteIsReadAsFarAsItCanBe) {
  EXPECT_EQ(withValue(olNumber, u" 12 "_s), Value(12.0));
  EXPECT_EQ(withValue(olNumber, u"many"_s), Value(u"many"_s));
  EXPECT_EQ(withValue(olYesNo, u"true"_s), Value(true));
  EXPECT_EQ(withValue(olYesNo, u"-1"_s), Value(true));
  EXPECT_EQ(withValue(olYesNo, u"1"_s), Value(true));
  EXPECT_EQ(withValue(olYesNo, u"0"_s), Value(false));
  EXPECT_EQ(withValue(olYesNo, u"False"_s), Value(false));
  EXPECT_EQ(withValue(olYesNo, u"perhaps"_s), Value(u"perhaps"_s));
  EXPECT_EQ(shown(std::get<Date>(withValue(olDateTime, u"2024-05-15"_s))), u"2024-05-15 00:00:00"_s);
  EXPECT_EQ(withValue(olDateTime, u"some day"_s), Value(u"some day"_s));
  EXPECT_EQ(withValue(olText, u" text "_s), Value(u" text "_s));
}

TEST_F(UserPropertiesTest, AFailedSaveKeepsThePendingProperties) {
  item->userProperties().Add(u"P"_s, olText)->setValue(u"text"_s);
  store->failCall(calendar::FailingStore::Operation::Save, 1, broken);
  EXPECT_EQ(failureOf([&] { item->Save(); }), calendar::errStoreBroken);
  EXPECT_EQ(item->userProperties().Find(u"P"_s)->Value(), Value(u"text"_s));
  item->Save();
  EXPECT_EQ(stored(u"P"_s), Value(u"text"_s));
}
