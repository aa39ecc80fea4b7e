#include "settings/frmResolveRemovedItemWindow.h"
#include "settings/SettingsValues.h"
#include "shell/modLanguage.h"
#include "tests/unit/shell/shellworld.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace hourbook::tests {

/// The form as the user sees it.
class ResolveWindow : public ShellWorld {
 protected:
  ResolveWindow() {
    LoadLanguages(4);
    settings->showResolveRemovedItem = subShowResolveRemovedItem;
  }
  std::unique_ptr<frmResolveRemovedItem> formFor(const QString& value, const QStringList& choices) {
    auto form = std::make_unique<frmResolveRemovedItem>();
    form->lblConflict.setCaption(values.LNGCONFLICTVALUE);
    form->lblValueToBeResolved.setCaption(value);
    form->subFillDropDown(choices);
    return form;
  }
  /// Shows the form; `act` is what the user does in its window.
  static void show(frmResolveRemovedItem& form, const std::function<void(QDialog&)>& act) {
    QTimer::singleShot(0, [&] {
      auto* window = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      ASSERT_TRUE(window);
      ASSERT_TRUE(QTest::qWaitForWindowActive(window));
      act(*window);
      if (window->isVisible()) window->close();
    });
    form.Show();
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  }
  template <class Widget>
  static Widget* part(const QDialog& window, const char* name) {
    auto* widget = window.findChild<Widget*>(QString::fromLatin1(name));
    EXPECT_TRUE(widget) << name;
    return widget;
  }
  static void press(QDialog& window, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWidget* at = window.focusWidget() ? window.focusWidget() : &window;
    QTest::keyClick(at, key, modifiers);
  }

  Shared<SettingsValues>::Scope settings;
};

TEST_F(ResolveWindow, ShowsTheConflictTheValueAndTheTwoWays) {
  const auto form = formFor(u"R & D <b>"_s, {u"b"_s});
  show(*form, [](QDialog& window) {
    EXPECT_EQ(window.windowTitle(), u"Hourbook for Outlook 3"_s);
    EXPECT_EQ(part<QLabel>(window, "lblConflict")->text(),
              u"A value which previously was in the list is no longer available."_s);
    EXPECT_EQ(part<QLabel>(window, "lblValueToBeResolved")->text(), u"R & D <b>"_s);
    EXPECT_EQ(part<QLabel>(window, "lblValueToBeResolved")->textFormat(), Qt::PlainText);
    EXPECT_TRUE(part<QRadioButton>(window, "optMoveReportsTo")->isChecked());
    EXPECT_FALSE(part<QRadioButton>(window, "optRemoveReports")->isChecked());
    EXPECT_EQ(part<QComboBox>(window, "cmbMoveChoice")->accessibleName(), u"Move time reports to:"_s);
    EXPECT_EQ(part<QComboBox>(window, "cmbMoveChoice")->currentIndex(), -1);
    EXPECT_FALSE(part<QComboBox>(window, "cmbMoveChoice")->isEditable());
  });
  EXPECT_EQ(form->intReturnValue, 3);
}

TEST_F(ResolveWindow, EachControlHasAKeyOfItsOwn) {
  const auto form = formFor(u"x"_s, {u"b"_s});
  show(*form, [](QDialog& window) {
    QSet<QString> keys;
    for (const char* name : {"optRemoveReports", "optMoveReportsTo", "cmdOK", "cmdCancel"})
      keys.insert(QKeySequence::mnemonic(part<QAbstractButton>(window, name)->text()).toString());
    EXPECT_EQ(keys.size(), 4);
    EXPECT_FALSE(keys.contains(QString()));
  });
}

TEST_F(ResolveWindow, ReportsAreMovedWithTheKeyboardAlone) {
  const auto form = formFor(u"x"_s, {u"b"_s, u"a"_s});
  show(*form, [](QDialog& window) {
    part<QRadioButton>(window, "optMoveReportsTo")->setFocus();
    press(window, Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), part<QComboBox>(window, "cmbMoveChoice"));
    press(window, Qt::Key_Down);
    press(window, Qt::Key_Down);
    press(window, Qt::Key_Return);
    EXPECT_FALSE(window.isVisible());
  });
  EXPECT_EQ(form->intReturnValue, 2);
  EXPECT_EQ(form->cmbMoveChoice.Text(), u"a"_s);
}

TEST_F(ResolveWindow, ReportsAreRemovedWithTheKeyboardAlone) {
  const auto form = formFor(u"x"_s, {u"b"_s});
  show(*form, [](QDialog& window) {
    part<QRadioButton>(window, "optMoveReportsTo")->setFocus();
    press(window, Qt::Key_Up);
    EXPECT_TRUE(part<QRadioButton>(window, "optRemoveReports")->isChecked());
    press(window, Qt::Key_Return);
    EXPECT_FALSE(window.isVisible());
  });
  EXPECT_EQ(form->intReturnValue, 1);
}

TEST_F(ResolveWindow, OkWithoutAChoiceStaysAndLeadsToTheDropDown) {
  const auto form = formFor(u"x"_s, {u"b"_s});
  show(*form, [&](QDialog& window) {
    part<QAbstractButton>(window, "cmdOK")->click();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.focusWidget(), part<QComboBox>(window, "cmbMoveChoice"));
    EXPECT_EQ(form->intReturnValue, 3);
  });
}

TEST_F(ResolveWindow, CancelEscapeAndTheFrameLeaveTheReports) {
  for (const auto& act : QList<std::function<void(QDialog&)>>{
           [](QDialog& window) { part<QAbstractButton>(window, "cmdCancel")->click(); },
           [](QDialog& window) { press(window, Qt::Key_Escape); }, [](QDialog& window) { window.close(); }}) {
    const auto form = formFor(u"x"_s, {u"b"_s});
    show(*form, [&](QDialog& window) {
      act(window);
      EXPECT_FALSE(window.isVisible());
    });
    EXPECT_EQ(form->intReturnValue, 3);
    EXPECT_FALSE(form->Visible());
  }
}

TEST_F(ResolveWindow, TheLongestNamesDoNotMakeTheWindowWiderThanItsTexts) {
  const auto form = formFor(QString(255, u'W'), {QString(255, u'M')});
  show(*form, [](QDialog& window) {
    const auto* remove = part<QRadioButton>(window, "optRemoveReports");
    EXPECT_LE(window.minimumSizeHint().width(), qMax(remove->sizeHint().width() * 3, 400));
    EXPECT_EQ(part<QLabel>(window, "lblValueToBeResolved")->toolTip(), QString(255, u'W'));
  });
}

TEST_F(ResolveWindow, EveryTextFitsInEveryLanguage) {
  for (qint16 language = 1; language <= 15; ++language) {
    LoadLanguages(language);
    const auto form = formFor(u"x"_s, {u"b"_s});
    show(*form, [](QDialog& window) {
      for (const char* name : {"optRemoveReports", "optMoveReportsTo", "cmdOK", "cmdCancel"}) {
        const auto* button = part<QAbstractButton>(window, name);
        EXPECT_GE(button->width(), button->sizeHint().width()) << qPrintable(button->text());
      }
      const auto* conflict = part<QLabel>(window, "lblConflict");
      EXPECT_GE(conflict->height(), conflict->heightForWidth(conflict->width()))
          << qPrintable(conflict->text());
    });
  }
}

}  // namespace hourbook::tests
