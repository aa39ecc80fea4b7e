// The page worked from the keyboard alone: keys go to whatever has the focus.
#include "tests/unit/companions/common/pageworld.h"

#include <QCheckBox>
#include <QClipboard>

namespace hourbook::tests {

class CommonPageKeys : public PageWorld {};

TEST_F(CommonPageKeys, LeafThroughTheSections) {
  open();
  for (int section = List1; section <= Billing; ++section) leafTo(section);
  leafTo(Cost);
}

TEST_F(CommonPageKeys, ChooseTheCostRuleAndTheTarget) {
  open();
  tabTo(u"cmbCostCarrier"_s);
  press(Qt::Key_Down);
  tabTo(u"cmbReportTo"_s);
  press(Qt::Key_End);
  tabTo(u"txtReportToValue"_s);
  EXPECT_EQ(QApplication::focusWidget()->accessibleName(), u"Path of the database"_s);
  press(Qt::Key_A, Qt::ControlModifier);
  type(u"other"_s);
  EXPECT_EQ(page->problem(), QString());
  page->apply();
  EXPECT_EQ(column(u"select intCostCarrier & '/' & intReportTo & '/' & strReportToValue from tblSettings"_s),
            u"3/4/other"_s);
}

TEST_F(CommonPageKeys, ChangeTheTargetWithItsField) {
  open();
  tabTo(u"cmbReportTo"_s);
  press(Qt::Key_Down);
  tabTo(u"txtReportToValue"_s);
  EXPECT_EQ(QApplication::focusWidget()->accessibleName(), u"Connection string"_s);
  EXPECT_TRUE(shows(u"A connection string begins with \"Provider=\"."_s));
  press(Qt::Key_A, Qt::ControlModifier);
  type(u"Provider=x"_s);
  EXPECT_FALSE(shows(u"A connection string begins with \"Provider=\"."_s));
}

TEST_F(CommonPageKeys, AddAValueWithEnterAndStayInTheField) {
  open();
  leafTo(List1);
  tabTo(u"txtNewValue"_s);
  type(u"Beta"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(names(), (QStringList{u"Acme"_s, u"Beta"_s, u"Zeta"_s}));
  EXPECT_EQ(focused(), u"txtNewValue"_s);
  type(u"Gamma"_s);
  tabTo(u"cmdAdd"_s);
  press(Qt::Key_Space);
  EXPECT_EQ(names().size(), 4);
}

TEST_F(CommonPageKeys, AreToldAtOnceWhyANewNameCannotBe) {
  open();
  leafTo(List1);
  tabTo(u"txtNewValue"_s);
  type(u"A,"_s);
  const QString reason =
      u"A name must not hold \",\", which separates the values of an appointment on this system."_s;
  EXPECT_TRUE(shows(reason));
  EXPECT_EQ(QApplication::focusWidget()->accessibleDescription(), reason);
  press(Qt::Key_Return);
  EXPECT_EQ(names().size(), 2);
  press(Qt::Key_Backspace);
  EXPECT_FALSE(shows(reason));
}

TEST_F(CommonPageKeys, RenameRateAndDisableAValue) {
  open();
  leafTo(List1);
  tabTo(u"tblValues"_s);
  press(Qt::Key_F2);
  press(Qt::Key_A, Qt::ControlModifier);
  type(u"ACME"_s);
  press(Qt::Key_Return);
  for (int i = 0; i < 3; ++i) press(Qt::Key_Right);
  type(u"500.25"_s);
  press(Qt::Key_Return);
  press(Qt::Key_Right);
  press(Qt::Key_Space);
  page->apply();
  EXPECT_EQ(column(u"select strName & '/' & curRate & '/' & blnEnabled from tblMeta1 where intMeta1ID = 1"_s),
            u"ACME/500.25/0"_s);
}

TEST_F(CommonPageKeys, DoNotLeaveACellThatIsWrongButEscapeDoes) {
  open();
  leafTo(List1);
  tabTo(u"tblValues"_s);
  for (int i = 0; i < 3; ++i) press(Qt::Key_Right);
  type(u"much"_s);
  const QString reason = u"A rate is a number such as 450.50."_s;
  EXPECT_TRUE(shows(reason));
  EXPECT_EQ(focused(), u"txtCell"_s);
  EXPECT_EQ(QApplication::focusWidget()->accessibleName(), u"Rate"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(focused(), u"txtCell"_s);
  press(Qt::Key_Tab);
  EXPECT_EQ(focused(), u"txtCell"_s);
  press(Qt::Key_Escape);
  EXPECT_EQ(focused(), u"tblValues"_s);
  EXPECT_FALSE(shows(reason));
  EXPECT_EQ(cell(0, 3), u"450.50"_s);
  EXPECT_EQ(page->problem(), QString());
}

TEST_F(CommonPageKeys, RefuseARenameToANameThatIsThere) {
  open();
  leafTo(List1);
  tabTo(u"cmdRename"_s);
  press(Qt::Key_Space);
  EXPECT_EQ(focused(), u"txtCell"_s);
  press(Qt::Key_A, Qt::ControlModifier);
  type(u"zeta"_s);
  EXPECT_TRUE(shows(u"The list has this value already."_s));
  press(Qt::Key_Return);
  EXPECT_EQ(focused(), u"txtCell"_s);
  press(Qt::Key_Escape);
  EXPECT_EQ(names(), (QStringList{u"Acme"_s, u"Zeta"_s}));
}

TEST_F(CommonPageKeys, EditACellWithEnter) {
  open();
  leafTo(List1);
  tabTo(u"tblValues"_s);
  press(Qt::Key_Right);
  press(Qt::Key_Return);
  EXPECT_EQ(focused(), u"txtCell"_s);
  press(Qt::Key_A, Qt::ControlModifier);
  type(u"Steel"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(cell(0, 1), u"Steel"_s);
}

TEST_F(CommonPageKeys, RemoveTheSelectedValues) {
  open();
  leafTo(List1);
  tabTo(u"tblValues"_s);
  press(Qt::Key_Down, Qt::ShiftModifier);
  press(Qt::Key_Delete);
  EXPECT_EQ(names(), QStringList());
  EXPECT_EQ(page->problem(), u"The first list needs at least one value."_s);
  EXPECT_EQ(focused(), u"txtNewValue"_s);
}

TEST_F(CommonPageKeys, RemoveByTheButtonAndStayNearby) {
  open();
  leafTo(List1);
  tabTo(u"tblValues"_s);
  press(Qt::Key_Down);
  tabTo(u"cmdRemove"_s);
  press(Qt::Key_Space);
  EXPECT_EQ(names(), QStringList{u"Acme"_s});
  EXPECT_EQ(table()->currentIndex().row(), 0);
}

TEST_F(CommonPageKeys, PasteLinesOfASpreadsheet) {
  open();
  leafTo(List1);
  QApplication::clipboard()->setText(u"Beta\tMetal\tNorth\t1,450.5\tNo\r\nGamma\r\n"_s);
  tabTo(u"tblValues"_s);
  press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(names(), (QStringList{u"Acme"_s, u"Beta"_s, u"Gamma"_s, u"Zeta"_s}));
  EXPECT_EQ(cell(1, 3), u"1450.50"_s);
  EXPECT_TRUE(shows(u"2 values were added."_s));
  EXPECT_TRUE(shows(u"4 values"_s));
  tabTo(u"cmdPaste"_s);
  press(Qt::Key_Space);
  EXPECT_TRUE(
      shows(u"Nothing was pasted. Line 1: \"Beta\": The list has this value already. Line 2: \"Gamma\": "
            "The list has this value already."_s));
  EXPECT_EQ(page->problem(), QString());
  page->apply();
  EXPECT_EQ(column(u"select strName from tblMeta1 order by strName"_s), u"Acme|Beta|Gamma|Zeta"_s);
}

TEST_F(CommonPageKeys, SortByAColumnAndFilter) {
  open();
  leafTo(List1);
  tabTo(u"cmbSort"_s);
  for (int i = 0; i < 3; ++i) press(Qt::Key_Down);
  EXPECT_EQ(names(), (QStringList{u"Zeta"_s, u"Acme"_s})) << "by rate: 100 before 450.50";
  tabTo(u"chkSortDown"_s);
  press(Qt::Key_Space);
  EXPECT_EQ(names(), (QStringList{u"Acme"_s, u"Zeta"_s}));
  tabTo(u"txtFilter"_s);
  type(u"METAL"_s);
  EXPECT_EQ(names(), QStringList{u"Acme"_s});
}

TEST_F(CommonPageKeys, LeaveTheTableWithTab) {
  open();
  leafTo(List1);
  tabTo(u"tblValues"_s);
  press(Qt::Key_Tab);
  EXPECT_NE(focused(), u"tblValues"_s);
}

TEST_F(CommonPageKeys, NameAListAndSeeTheNameWhereverItStands) {
  open();
  leafTo(List3);
  tabTo(u"txtCaption"_s);
  type(u"Kind"_s);
  tabTo(u"txtCategoryCaption"_s);
  type(u"Group"_s);
  EXPECT_EQ(tabs()->tabText(List3), u"List 3: Kind"_s);
  EXPECT_EQ(table()->model()->headerData(1, Qt::Horizontal).toString(), u"Group"_s);
  leafTo(Cost);
  EXPECT_GE(control<QComboBox>(u"cmbCostCarrier"_s)->findText(u"the rate of list 3 (Kind)"_s), 0);
  page->apply();
  EXPECT_EQ(column(u"select strMetaListCaption from tblMetaLists order by intMetaListID"_s),
            u"Customer|Task|Kind"_s);
}

TEST_F(CommonPageKeys, JumpToAFieldByItsMnemonic) {
  open();
  leafTo(List1);
  press(Qt::Key_W, Qt::AltModifier);
  EXPECT_EQ(focused(), u"txtNewValue"_s);
  press(Qt::Key_F, Qt::AltModifier);
  EXPECT_EQ(focused(), u"txtFilter"_s);
  press(Qt::Key_N, Qt::AltModifier);
  EXPECT_EQ(focused(), u"txtCaption"_s);
}

TEST_F(CommonPageKeys, FillTheRowOfABillingRoad) {
  open();
  leafTo(Billing);
  tabTo(u"txtLocation"_s);
  type(u"https://portal.example/sh/"_s);
  EXPECT_TRUE(shows(u"The portal's address must hold its site code (\"sitecode=\")."_s));
  type(u"page.asp?sitecode=7"_s);
  EXPECT_TRUE(shows(u"The portal needs address, user and password before it takes reports."_s));
  tabTo(u"txtUser"_s);
  type(u"ann"_s);
  tabTo(u"txtPassword"_s);
  type(u"secret"_s);
  EXPECT_FALSE(shows(u"The portal needs address, user and password before it takes reports."_s));
  EXPECT_EQ(page->problem(), QString());
  page->apply();
  EXPECT_EQ(column(u"select SHLocation & ' ' & UserId & ' ' & Password from tblWFData"_s),
            u"https://portal.example/sh/page.asp?sitecode=7 ann secret"_s);
}

TEST_F(CommonPageKeys, OpenAWindowsOkNeitherFromANewValueNorFromTheTable) {
  openAt([this] { return place(); });
  int passed = 0;
  class Watch : public QObject {
   public:
    explicit Watch(int& count) : count_(count) {}
    bool eventFilter(QObject*, QEvent* event) override {
      if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Return)
        ++count_;
      return false;
    }
    int& count_;
  } watch(passed);
  page->installEventFilter(&watch);
  leafTo(List1);
  tabTo(u"txtNewValue"_s);
  type(u"Beta"_s);
  press(Qt::Key_Return);
  tabTo(u"tblValues"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(passed, 0);
}

}  // namespace hourbook::tests
