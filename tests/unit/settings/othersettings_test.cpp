#include "platform/basic/convert.h"
#include "settings/cOtherSettings.h"
#include "shell/modErrorReport.h"
#include "shell/Tolerate.h"
#include "tests/unit/settings/settingsworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::ado::Recordset;
using platform::basic::Date;
using platform::basic::Null;
using platform::basic::Value;

class OtherSettings : public SettingsWorld {
 protected:
  std::shared_ptr<Recordset> table(const QList<std::pair<QString, QString>>& rows = {}) {
    using namespace platform::ado;
    auto recordset = std::make_shared<Recordset>();
    recordset->Fields().Append(u"intSettingID"_s, adInteger);
    recordset->Fields().Append(u"strPropName"_s, adVarWChar, 255);
    recordset->Fields().Append(u"strPropValue"_s, adLongVarWChar);
    recordset->Open();
    for (const auto& [name, value] : rows) {
      recordset->AddNew();
      recordset->Fields().Item(1).setValue(name);
      recordset->Fields().Item(2).setValue(value);
      recordset->Update();
    }
    if (!rows.isEmpty()) recordset->MoveFirst();
    return recordset;
  }
  static QStringList rowsOf(Recordset& recordset) {
    QStringList rows;
    if (recordset.RecordCount() != 0) recordset.MoveFirst();
    for (; !recordset.isEOF(); recordset.MoveNext())
      rows.append(platform::basic::CStr(recordset.Fields().Item(1).Value()) + u'=' +
                  platform::basic::CStr(recordset.Fields().Item(2).Value()));
    return rows;
  }
  cOtherSettings settings;
};

TEST_F(OtherSettings, OfANameThatComesTwiceTheLastRowCounts) {
  settings.FromRS(table({{u"ADDepartment"_s, u"0"_s}, {u"Other"_s, u"x"_s}, {u"addepartment"_s, u"1"_s}}));
  EXPECT_EQ(settings.dicValues->Count(), 2);
  EXPECT_EQ(settings.GetValue(u"ADDepartment"_s, 2), Value(qint16(1)));
}

TEST_F(OtherSettings, WithoutATableThereAreNone) {
  settings.SetValue(u"a"_s, u"b"_s);
  settings.FromRS(nullptr);
  EXPECT_EQ(settings.dicValues->Count(), 0);
  EXPECT_EQ(fncLastLogText().left(20), u"Attempting to create"_s);
}

TEST_F(OtherSettings, AnIntegerIsTheNumberOrZero) {
  settings.SetValue(u"one"_s, u"1"_s);
  settings.SetValue(u"x"_s, u"x"_s);
  settings.SetValue(u"null"_s, Null());
  EXPECT_EQ(settings.GetValue(u"one"_s, 2), Value(qint16(1)));
  EXPECT_EQ(settings.GetValue(u"x"_s, 2), Value(qint16(0)));
  EXPECT_EQ(settings.GetValue(u"null"_s, 2), Value(qint16(0)));
  EXPECT_EQ(settings.GetValue(u"none"_s, 2), Value(qint16(0)));
  EXPECT_EQ(fncLastLogText(), u"Reading the value of the Other Setting none"_s);
}

TEST_F(OtherSettings, ADateIsItsValueOrTheZeroDate) {
  settings.SetValue(u"day"_s, u"5/15/2024"_s);
  EXPECT_EQ(settings.GetValue(u"day"_s, 7), Value(Date::of(2024, 5, 15)));
  EXPECT_EQ(settings.GetValue(u"none"_s, 7), Value(Date()));
}

TEST_F(OtherSettings, ATextIsItsValueOrEmpty) {
  settings.SetValue(u"number"_s, qint32(7));
  EXPECT_EQ(settings.GetValue(u"number"_s, 8), Value(u"7"_s));
  EXPECT_EQ(settings.GetValue(u"none"_s, 8), Value(QString()));
}

TEST_F(OtherSettings, ABooleanIsItsValueOrFalse) {
  settings.SetValue(u"yes"_s, u"True"_s);
  settings.SetValue(u"one"_s, u"1"_s);
  settings.SetValue(u"x"_s, u"perhaps"_s);
  EXPECT_EQ(settings.GetValue(u"yes"_s, 11), Value(true));
  EXPECT_EQ(settings.GetValue(u"one"_s, 11), Value(true));
  EXPECT_EQ(settings.GetValue(u"x"_s, 11), Value(false));
  EXPECT_EQ(settings.GetValue(u"none"_s, 11), Value(false));
}

TEST_F(OtherSettings, AnyOtherTypeGivesNothing) {
  settings.SetValue(u"one"_s, u"1"_s);
  EXPECT_EQ(settings.GetValue(u"one"_s, 3), Value());
}

TEST_F(OtherSettings, ValuesAreAddedAndChangedInTheTableAndOthersStay) {
  const auto rows = table({{u"Old"_s, u"stays"_s}, {u"ADDepartment"_s, u"0"_s}});
  settings.SetValue(u"ADDepartment"_s, qint32(1));
  settings.SetValue(u"New"_s, u"text"_s);
  settings.ToRS(rows);
  EXPECT_EQ(rowsOf(*rows), (QStringList{u"Old=stays"_s, u"ADDepartment=1"_s, u"New=text"_s}));
  EXPECT_EQ(fncLastLogText(), u"Setting field New to the value text"_s);
}

TEST_F(OtherSettings, AnEmptyTextIsStoredAsABlank) {
  const auto rows = table();
  settings.SetValue(u"Empty"_s, QString());
  settings.ToRS(rows);
  EXPECT_EQ(rowsOf(*rows), QStringList{u"Empty= "_s});
}

TEST_F(OtherSettings, AnEmptyTextReadsBackAsABlank) {
  const auto rows = table();
  settings.SetValue(u"Empty"_s, QString());
  settings.ToRS(rows);
  rows->MoveFirst();
  settings.FromRS(rows);
  EXPECT_EQ(settings.GetValue(u"Empty"_s, 8), Value(u" "_s));
}

TEST_F(OtherSettings, WhatIsNoValueOfItsTypeFailsToTheCaller) {
  const auto numberOf = [this](const QString& text, int type) {
    settings.SetValue(u"a"_s, text);
    const auto failure = tolerate([&] { settings.GetValue(u"a"_s, type); });
    return failure ? failure->number() : 0;
  };
  EXPECT_EQ(numberOf(u"40000"_s, 2), platform::failure::overflow);
  EXPECT_EQ(numberOf(u"someday"_s, 7), platform::failure::typeMismatch);
}

TEST_F(OtherSettings, ANameWithAnApostropheThatIsStoredAlreadyFailsToTheCaller) {
  const auto rows = table({{u"d'or"_s, u"x"_s}});
  settings.SetValue(u"d'or"_s, u"y"_s);
  const auto failure = tolerate([&] { settings.ToRS(rows); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->number(), 3001);
  EXPECT_EQ(rowsOf(*rows), QStringList{u"d'or=x"_s});
}

TEST_F(OtherSettings, WithoutATableStoringFailsToTheCaller) {
  EXPECT_NO_THROW(settings.ToRS(nullptr));  // without values nothing is asked of it
  settings.SetValue(u"a"_s, u"b"_s);
  const auto failure = tolerate([&] { settings.ToRS(nullptr); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->number(), 91);
}

TEST_F(OtherSettings, ReadingAndSavingAreLogged) {
  keepLog();
  settings.FromRS(nullptr);
  EXPECT_TRUE(wasLogged(u"Looping through dababase tables to find all Other Settings"_s));
  settings.ToRS(table());
  EXPECT_TRUE(wasLogged(u"Saving other settings to database"_s));
}

}  // namespace hourbook::tests
