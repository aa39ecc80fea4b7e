#include "settings/cMetaDictionary.h"
#include "tests/unit/settings/settingsworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::Failure;
using platform::ado::Recordset;
using platform::basic::Currency;
using platform::basic::Null;
using platform::basic::Value;

namespace {

std::unique_ptr<Recordset> metaTable() {
  using namespace platform::ado;
  auto table = std::make_unique<Recordset>();
  auto fields = table->Fields();
  fields.Append(u"intMeta1ID"_s, adInteger);
  fields.Append(u"strName"_s, adVarWChar, 255);
  fields.Append(u"strCategory"_s, adVarWChar, 255);
  fields.Append(u"strSuperCategory"_s, adVarWChar, 255);
  fields.Append(u"curRate"_s, adCurrency);
  fields.Append(u"blnEnabled"_s, adBoolean);
  table->Open();
  return table;
}

void addRow(Recordset& table, const QList<std::pair<QString, Value>>& values) {
  table.AddNew();
  for (const auto& [name, value] : values) table[name].setValue(value);
  table.Update();
}

std::unique_ptr<Recordset> namesOnly(const QStringList& names) {
  auto table = std::make_unique<Recordset>();
  table->Fields().Append(u"strName"_s, platform::ado::adVarWChar, 255);
  table->Open();
  for (const QString& name : names) addRow(*table, {{u"strName"_s, name}});
  if (!names.isEmpty()) table->MoveFirst();
  return table;
}

}  // namespace

class MetaLists : public SettingsWorld {
 protected:
  cMetaDictionary list;
};

TEST_F(MetaLists, AValueIsAddedWithAllThatIsKnownOfIt) {
  list.AddMeta(u"Acme"_s, u"Big"_s, Currency::fromDouble(450.5), 7, u"Industry"_s, true);
  ASSERT_EQ(list.MetaDic->Count(), 1);
  const cMetaData& acme = *list.MetaDic->Item(u"Acme"_s);
  EXPECT_EQ(acme.MetaName, u"Acme"_s);
  EXPECT_EQ(acme.Category, u"Big"_s);
  EXPECT_EQ(acme.HourlyRate, Currency::fromDouble(450.5));
  EXPECT_EQ(acme.ID, 7);
  EXPECT_EQ(acme.SuperCategory, u"Industry"_s);
  EXPECT_TRUE(acme.Enabled);
}

TEST_F(MetaLists, AValueKnownByItsNameAloneIsNotEnabledAndHasNoRate) {
  list.AddMeta(u"Acme"_s);
  const cMetaData& acme = *list.MetaDic->Item(u"Acme"_s);
  EXPECT_FALSE(acme.Enabled);
  EXPECT_EQ(acme.HourlyRate, Currency());
  EXPECT_EQ(acme.ID, 0);
}

TEST_F(MetaLists, AnEmptyNameAddsNothing) {
  list.AddMeta({}, u"Big"_s);
  EXPECT_EQ(list.MetaDic->Count(), 0);
}

TEST_F(MetaLists, OfTwoEqualNamesTheFirstStands) {
  list.AddMeta(u"Acme"_s, {}, Currency::fromDouble(1));
  list.AddMeta(u"ACME"_s, {}, Currency::fromDouble(2));
  EXPECT_EQ(list.MetaDic->Keys(), QStringList{u"Acme"_s});
  EXPECT_EQ(list.MetaDic->Item(u"acme"_s)->HourlyRate, Currency::fromDouble(1));
}

TEST_F(MetaLists, ATablesRowsAreReadInTheirOrder) {
  const auto table = metaTable();
  addRow(*table, {{u"intMeta1ID"_s, qint32(12)},
                  {u"strName"_s, u"Support"_s},
                  {u"strCategory"_s, u"Inside"_s},
                  {u"strSuperCategory"_s, u"Work"_s},
                  {u"curRate"_s, Currency::fromDouble(99.95)},
                  {u"blnEnabled"_s, true}});
  addRow(*table, {{u"intMeta1ID"_s, qint32(3)}, {u"strName"_s, u"Phone"_s}, {u"blnEnabled"_s, false}});
  table->MoveFirst();
  list.ReadFromRecordset(*table);
  EXPECT_EQ(list.MetaDic->Keys(), (QStringList{u"Support"_s, u"Phone"_s}));
  const cMetaData& support = *list.MetaDic->Item(u"Support"_s);
  EXPECT_EQ(support.ID, 12);
  EXPECT_EQ(support.Category, u"Inside"_s);
  EXPECT_EQ(support.SuperCategory, u"Work"_s);
  EXPECT_EQ(support.HourlyRate, Currency::fromDouble(99.95));
  EXPECT_TRUE(support.Enabled);
  const cMetaData& phone = *list.MetaDic->Item(u"Phone"_s);
  EXPECT_EQ(phone.ID, 3);
  EXPECT_EQ(phone.Category, QString());
  EXPECT_EQ(phone.HourlyRate, Currency());
  EXPECT_FALSE(phone.Enabled);
  EXPECT_EQ(table->State(), platform::ado::adStateOpen);
  EXPECT_TRUE(table->isEOF());
}

TEST_F(MetaLists, ReadingGoesOnFromTheCurrentRowAndKeepsWhatIsThere) {
  list.AddMeta(u"Before"_s);
  const auto table = namesOnly({u"a"_s, u"b"_s, u"c"_s});
  table->MoveNext();
  list.ReadFromRecordset(*table);
  EXPECT_EQ(list.MetaDic->Keys(), (QStringList{u"Before"_s, u"b"_s, u"c"_s}));
}

TEST_F(MetaLists, AnUnknownEnabledFlagFailsToTheCaller) {
  const auto table = metaTable();
  addRow(*table, {{u"intMeta1ID"_s, qint32(1)}, {u"strName"_s, u"Support"_s}, {u"blnEnabled"_s, Null()}});
  table->MoveFirst();
  try {
    list.ReadFromRecordset(*table);
    FAIL() << "nothing was thrown";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.number(), 13);
  }
}

TEST_F(MetaLists, ACopyWithTheNamesAloneGivesEnabledValuesWithRunningNumbers) {
  const auto table = namesOnly({u"Support"_s, u"Phone"_s, u"Travel"_s});
  list.ReadFromRecordset(*table);
  int number = 0;
  for (const auto& value : list.MetaDic->Items()) {
    EXPECT_EQ(value->ID, ++number);
    EXPECT_TRUE(value->Enabled);
    EXPECT_EQ(value->HourlyRate, Currency());
    EXPECT_EQ(value->Category, QString());
  }
  EXPECT_EQ(number, 3);
}

TEST_F(MetaLists, ARowWithoutANameIsLeftOutButCounted) {
  const auto table = namesOnly({u"a"_s, QString(), u"c"_s});
  list.ReadFromRecordset(*table);
  EXPECT_EQ(list.MetaDic->Keys(), (QStringList{u"a"_s, u"c"_s}));
  EXPECT_EQ(list.MetaDic->Item(u"c"_s)->ID, 3);
}

TEST_F(MetaLists, NullIsAnEmptyTextOrZeroAndOverwritesTheCallersText) {
  Value value = Null();
  EXPECT_EQ(list.fncSafeValue(value, true), Value(qint16(0)));
  EXPECT_EQ(value, Value(Null()));
  EXPECT_EQ(list.fncSafeValue(value, false), Value(QString()));
  EXPECT_EQ(value, Value(QString()));
}

TEST_F(MetaLists, AnythingElseIsItsTextOrItself) {
  Value value = 2.5;
  EXPECT_EQ(list.fncSafeValue(value, true), Value(2.5));
  EXPECT_EQ(list.fncSafeValue(value, false), Value(u"2.5"_s));
  EXPECT_EQ(value, Value(2.5));
}

TEST_F(MetaLists, ADropDownTakesAllValuesInOrderEnabledOrNot) {
  list.AddMeta(u"Support"_s, {}, {}, 0, {}, true);
  list.AddMeta(u"Acme"_s);
  platform::forms::ComboBox combo(u"cmbMeta1"_s);
  combo.AddItem(u"old"_s);
  list.FillCombo(combo);
  ASSERT_EQ(combo.ListCount(), 2);
  EXPECT_EQ(combo.List(0), u"Support"_s);
  EXPECT_EQ(combo.List(1), u"Acme"_s);
}

TEST_F(MetaLists, AnEmptyListLeavesTheDropDownEmpty) {
  platform::forms::ComboBox combo(u"cmbMeta1"_s);
  combo.AddItem(u"old"_s);
  list.FillCombo(combo);
  EXPECT_EQ(combo.ListCount(), 0);
}

TEST_F(MetaLists, ValuesThatAreGoneAreReported) {
  list.MetaDic.reset();
  platform::forms::ComboBox combo(u"cmbMeta1"_s);
  EXPECT_REPORTED(world, "cMetaDictionary.subFillcombo", list.FillCombo(combo));
  EXPECT_TRUE(world.dialogs.shown.first().text.contains(u"#91\r\n"_s));
}

}  // namespace hourbook::tests
