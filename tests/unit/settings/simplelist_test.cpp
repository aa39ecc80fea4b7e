#include "platform/basic/convert.h"
#include "settings/cSimpleList.h"
#include "tests/unit/settings/settingsworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::ado::Recordset;
using platform::forms::ComboBox;

class SimpleList : public SettingsWorld {
 protected:
  std::shared_ptr<Recordset> table(const QStringList& names) {
    using namespace platform::ado;
    auto recordset = std::make_shared<Recordset>();
    recordset->Fields().Append(u"intID"_s, adInteger);
    recordset->Fields().Append(u"strName"_s, adVarWChar, 255);
    recordset->Open();
    for (const QString& name : names) {
      recordset->AddNew();
      recordset->Fields().Item(1).setValue(name);
      recordset->Update();
    }
    if (!names.isEmpty()) recordset->MoveFirst();
    return recordset;
  }
  static QStringList namesIn(Recordset& recordset) {
    QStringList names;
    if (recordset.RecordCount() != 0) recordset.MoveFirst();
    for (; !recordset.isEOF(); recordset.MoveNext())
      names.append(platform::basic::CStr(recordset.Fields().Item(1).Value()));
    return names;
  }
  cSimpleList list;
};

TEST_F(SimpleList, AJoinedTextGivesEachPieceOnce) {
  list.FromString(u"a\r\n\r\na"_s);
  EXPECT_EQ(list.ToArray(), QStringList{u"a"_s});
  list.FromString(u"A\r\nb"_s);
  EXPECT_EQ(list.ToArray(), (QStringList{u"a"_s, u"b"_s}));
  list.FromString({});
  EXPECT_EQ(list.ToArray().size(), 2);
}

TEST_F(SimpleList, ItsTextIsJoinedByLineBreaksAndTrimmed) {
  list.FromArray({u" a"_s, u"b "_s});
  EXPECT_EQ(list.ToString(), u"a\r\nb"_s);
}

TEST_F(SimpleList, AnArrayReplacesWhatIsThere) {
  list.FromString(u"old"_s);
  list.FromArray({u"b"_s, u"a"_s, u"B"_s});
  EXPECT_EQ(list.ToArray(), (QStringList{u"b"_s, u"a"_s}));
}

TEST_F(SimpleList, AControlTakesTheItemsThatAreNotBlankAndKeepsItsText) {
  list.FromArray({u"a"_s, u"  "_s, u"b"_s});
  ComboBox combo(u"cmb"_s);
  combo.AddItem(u"b"_s);
  combo.setText(u"b"_s);
  list.AddToComboOrList(combo, {});
  EXPECT_EQ(combo.ListCount(), 2);
  EXPECT_EQ(combo.Text(), u"b"_s);
  EXPECT_EQ(combo.ListIndex(), 1);
}

TEST_F(SimpleList, ADefaultGoesInFrontOfTheTextThatWasShown) {
  list.FromArray({u"a"_s, u"b"_s});
  ComboBox combo(u"cmb"_s);
  combo.AddItem(u"b"_s);
  combo.setText(u"b"_s);
  list.AddToComboOrList(combo, u"a"_s);
  EXPECT_EQ(combo.Text(), u"a"_s);
}

TEST_F(SimpleList, ADropDownThatLacksTheTextShowsNone) {
  list.FromArray({u"a"_s});
  ComboBox combo(u"cmb"_s);
  list.AddToComboOrList(combo, u"missing"_s);
  EXPECT_EQ(combo.ListIndex(), -1);
  EXPECT_EQ(combo.Text(), QString());
}

TEST_F(SimpleList, AFreeTextIsKeptWhereTheControlTakesOne) {
  list.FromArray({u"a"_s});
  ComboBox combo(u"cmb"_s, ComboBox::Style::DropdownCombo);
  list.AddToComboOrList(combo, u"free"_s);
  EXPECT_EQ(combo.Text(), u"free"_s);
}

TEST_F(SimpleList, AControlsEntriesAreTakenOnce) {
  ComboBox combo(u"cmb"_s);
  for (const QString& text : {u"a"_s, u"b"_s, u"A"_s}) combo.AddItem(text);
  list.FromComboOrList(combo);
  EXPECT_EQ(list.ToArray(), (QStringList{u"a"_s, u"b"_s}));
}

TEST_F(SimpleList, ARandomItemIsOneOfItsOwn) {
  list.FromArray({u"a"_s, u"b"_s});
  for (int i = 0; i < 20; ++i) EXPECT_TRUE(list.ToArray().contains(list.RandomItem()));
  EXPECT_THROW(cSimpleList().RandomItem(), platform::Failure);
}

TEST_F(SimpleList, ATablesSecondColumnIsTakenOnce) {
  list.FromRS(table({u"a"_s, u"b"_s, u"A"_s}));
  EXPECT_EQ(list.ToArray(), (QStringList{u"a"_s, u"b"_s}));
  list.FromRS(nullptr);
  EXPECT_EQ(list.ToArray().size(), 2);
}

TEST_F(SimpleList, ATableIsMadeEqualToTheList) {
  const auto rows = table({u"a"_s, u"b"_s, u"c"_s});
  list.FromArray({u"b"_s, u"new"_s});
  list.ToRS(rows);
  EXPECT_EQ(namesIn(*rows), (QStringList{u"b"_s, u"new"_s}));
}

TEST_F(SimpleList, ATableThatIsNoLongerThanTheListLosesNothing) {
  const auto rows = table({});
  list.FromArray({u"a"_s, u"b"_s});
  list.ToRS(rows);
  EXPECT_EQ(namesIn(*rows), (QStringList{u"a"_s, u"b"_s}));
}

TEST_F(SimpleList, AnItemWithAnApostropheCannotBeRemoved) {
  const auto rows = table({u"a"_s, u"d'or"_s});
  list.FromArray({u"a"_s});
  EXPECT_REPORTED(world, "cSimpleList.ToRS", list.ToRS(rows));
}

TEST_F(SimpleList, WithoutATableThereIsNothingToStoreInto) {
  EXPECT_REPORTED(world, "cSimpleList.ToRS", list.ToRS(nullptr));
  EXPECT_TRUE(world.dialogs.shown.last().text.contains(u"#91\r\n"_s));
}

TEST_F(SimpleList, AListThatIsGoneIsReported) {
  list.DicList.reset();
  EXPECT_REPORTED(world, "cSimpleList.FromString", list.FromString(u"a"_s));
  EXPECT_TRUE(world.dialogs.shown.last().text.contains(u"#91\r\n"_s));
}

}  // namespace hourbook::tests
