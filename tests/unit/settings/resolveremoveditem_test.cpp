#include "settings/frmResolveRemovedItem.h"
#include "settings/SettingsValues.h"
#include "shell/modErrorReport.h"
#include "shell/modLanguage.h"
#include "tests/unit/shell/shellworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

class ResolveRemovedItem : public ShellWorld {
 protected:
  ResolveRemovedItem() { LoadLanguages(4); }
  /// The form after the user has seen it and done this.
  void show(frmResolveRemovedItem& form, const std::function<void()>& act) {
    settings->showResolveRemovedItem = [&](frmResolveRemovedItem& shown) {
      EXPECT_EQ(&shown, &form);
      EXPECT_TRUE(shown.Visible());
      act();
    };
    form.Show();
    EXPECT_FALSE(form.Visible());
  }
  Shared<SettingsValues>::Scope settings;
};

TEST_F(ResolveRemovedItem, IsCaptionedAndMovesReportsUnlessToldOtherwise) {
  frmResolveRemovedItem form;
  EXPECT_EQ(form.Name(), u"frmResolveRemovedItem"_s);
  EXPECT_EQ(form.Caption(), u"Hourbook for Outlook 3"_s);
  EXPECT_EQ(form.cmdOK.Caption(), u"OK"_s);
  EXPECT_EQ(form.cmdCancel.Caption(), u"Cancel"_s);
  EXPECT_EQ(form.optRemoveReports.Caption(), u"Remove time reports"_s);
  EXPECT_EQ(form.optMoveReportsTo.Caption(), u"Move time reports to:"_s);
  EXPECT_TRUE(form.optMoveReportsTo.Value());
  EXPECT_FALSE(form.optRemoveReports.Value());
  EXPECT_EQ(form.intReturnValue, 3);
}

TEST_F(ResolveRemovedItem, TheTwoOptionsExcludeEachOther) {
  frmResolveRemovedItem form;
  form.optRemoveReports.setValue(true);
  EXPECT_FALSE(form.optMoveReportsTo.Value());
  form.optMoveReportsTo.setValue(true);
  EXPECT_FALSE(form.optRemoveReports.Value());
}

TEST_F(ResolveRemovedItem, TheDropDownHoldsTheValuesInTheirOrderAndNothingElse) {
  keepLog();
  frmResolveRemovedItem form;
  form.subFillDropDown({u"old"_s});
  form.subFillDropDown({u"b"_s, u"a"_s});
  ASSERT_EQ(form.cmbMoveChoice.ListCount(), 2);
  EXPECT_EQ(form.cmbMoveChoice.List(0), u"b"_s);
  EXPECT_EQ(form.cmbMoveChoice.List(1), u"a"_s);
  EXPECT_EQ(form.cmbMoveChoice.Text(), QString());
  EXPECT_TRUE(wasLogged(u"Adding choice values to the dropdown"_s));
}

TEST_F(ResolveRemovedItem, RemovingNeedsNoChoice) {
  frmResolveRemovedItem form;
  show(form, [&] {
    form.optRemoveReports.setValue(true);
    form.cmdOK.click();
    EXPECT_FALSE(form.Visible());
  });
  EXPECT_EQ(form.intReturnValue, 1);
}

TEST_F(ResolveRemovedItem, MovingTakesTheChosenValue) {
  frmResolveRemovedItem form;
  form.subFillDropDown({u"b"_s, u"a"_s});
  show(form, [&] {
    form.cmbMoveChoice.setListIndex(1);
    form.cmdOK.click();
    EXPECT_FALSE(form.Visible());
  });
  EXPECT_EQ(form.intReturnValue, 2);
  EXPECT_EQ(form.cmbMoveChoice.Text(), u"a"_s);
}

TEST_F(ResolveRemovedItem, MovingWithoutAChoiceKeepsTheDialogOpenAndTheOutcome) {
  frmResolveRemovedItem form;
  form.subFillDropDown({u"b"_s});
  show(form, [&] {
    form.cmdOK.click();
    EXPECT_TRUE(form.Visible());
    EXPECT_EQ(form.intReturnValue, 3);
  });
}

TEST_F(ResolveRemovedItem, CancelLeavesEverything) {
  frmResolveRemovedItem form;
  form.intReturnValue = 1;
  show(form, [&] {
    form.cmdCancel.click();
    EXPECT_FALSE(form.Visible());
  });
  EXPECT_EQ(form.intReturnValue, 3);
}

TEST_F(ResolveRemovedItem, AWindowThatIsClosedLeavesTheOutcome) {
  frmResolveRemovedItem form;
  show(form, [] {});
  EXPECT_EQ(form.intReturnValue, 3);
}

TEST_F(ResolveRemovedItem, TheOptionsTakeTheColourOfTheFormBehindThem) {
  class Picture : public DeviceContext {
   public:
    qint32 GetPixel(int, int) const override { return 0x00D8E9EC; }
  };
  const Picture picture;
  keepLog();
  frmResolveRemovedItem form(&picture);
  EXPECT_EQ(form.optRemoveReports.BackColor(), 0x00D8E9EC);
  EXPECT_EQ(form.optMoveReportsTo.BackColor(), 0x00D8E9EC);
  EXPECT_EQ(form.cmdOK.BackColor(), -1);
  EXPECT_TRUE(wasLogged(u"Setting the background color of the control"_s));
}

TEST_F(ResolveRemovedItem, AFailureWhileFillingIsReported) {
  frmResolveRemovedItem form;
  QObject::connect(&form.cmbMoveChoice, &platform::forms::ComboBox::listChanged,
                   [] { throw platform::Failure(7, u"Out of memory"_s); });
  EXPECT_REPORTED(world, "subFillDropDown", form.subFillDropDown({u"a"_s}));
}

}  // namespace hourbook::tests
