#include "platform/dialogs/qt/qtdialogs.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>
#include <gtest/gtest.h>

using namespace platform::dialogs;

namespace {

const QString title = QStringLiteral("Hourbook");

/// Does something with the box as soon as it is up; the box must be closed by it.
void whenShown(const std::function<void(QDialog*)>& work) {
  QTimer::singleShot(0, qApp, [work] {
    auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(box, nullptr);
    work(box);
    if (box->isVisible()) {
      ADD_FAILURE() << "the box is still open";
      box->reject();
    }
  });
}

QPushButton* button(QDialog* box, const char* name) {
  auto* found = box->findChild<QPushButton*>(QString::fromLatin1(name));
  EXPECT_NE(found, nullptr) << name;
  return found;
}

void press(const char* name) {
  whenShown([name](QDialog* box) { button(box, name)->click(); });
}
void pressKey(Qt::Key key) {
  whenShown([key](QDialog* box) { QTest::keyClick(box, key); });
}

QStringList labels(QDialog* box) {
  QStringList texts;
  for (const QLabel* label : box->findChildren<QLabel*>())
    if (!label->text().isEmpty()) {
      texts.append(label->text());
      EXPECT_EQ(label->textFormat(), Qt::PlainText) << qUtf8Printable(label->text());
    }
  return texts;
}

QtDialogs dialogs;

}  // namespace

TEST(MsgBox, AnswersYesAndNo) {
  press("cmdYes");
  EXPECT_EQ(dialogs.MsgBox(QStringLiteral("Sure?"), vbYesNo + vbQuestion, title), vbYes);
  press("cmdNo");
  EXPECT_EQ(dialogs.MsgBox(QStringLiteral("Sure?"), vbYesNo, title), vbNo);
}

TEST(MsgBox, AnswersOkToAMessage) {
  press("cmdOK");
  EXPECT_EQ(dialogs.MsgBox(QStringLiteral("Done"), vbInformation, title), vbOK);
}

TEST(MsgBox, TakesEscapeAndTheFrameForNoOrOk) {
  pressKey(Qt::Key_Escape);
  EXPECT_EQ(dialogs.MsgBox(QStringLiteral("Sure?"), vbYesNo, title), vbNo);
  pressKey(Qt::Key_Escape);
  EXPECT_EQ(dialogs.MsgBox(QStringLiteral("Done"), vbOKOnly, title), vbOK);
  whenShown([](QDialog* box) { box->close(); });
  EXPECT_EQ(dialogs.MsgBox(QStringLiteral("Sure?"), vbYesNo, title), vbNo);
}

TEST(MsgBox, HasYesAsItsDefault) {
  whenShown([](QDialog* box) {
    EXPECT_TRUE(button(box, "cmdYes")->isDefault());
    QTest::keyClick(box, Qt::Key_Return);
  });
  EXPECT_EQ(dialogs.MsgBox(QStringLiteral("Sure?"), vbYesNo, title), vbYes);
}

TEST(MsgBox, ShowsTitleIconAndTextAsTheyAre) {
  struct Icon {
    int option;
    QMessageBox::Icon icon;
  };
  for (const Icon& icon : {Icon{vbCritical, QMessageBox::Critical}, Icon{vbQuestion, QMessageBox::Question},
                           Icon{vbExclamation, QMessageBox::Warning},
                           Icon{vbInformation, QMessageBox::Information}, Icon{0, QMessageBox::NoIcon}}) {
    whenShown([&](QDialog* box) {
      EXPECT_EQ(box->objectName(), QStringLiteral("msgBox"));
      EXPECT_EQ(box->windowTitle(), title);
      EXPECT_EQ(qobject_cast<QMessageBox*>(box)->icon(), icon.icon);
      EXPECT_TRUE(labels(box).contains(QStringLiteral("<b>A & B</b>\nsecond\nthird\nfourth")));
      button(box, "cmdOK")->click();
    });
    dialogs.MsgBox(QStringLiteral("<b>A & B</b>\r\nsecond\nthird\rfourth"), icon.option, title);
  }
}

TEST(EveryBox, ShowsTheArrowWhileTheProgramIsAtWork) {
  const auto shape = [] {
    const QCursor* cursor = QApplication::overrideCursor();
    return cursor ? cursor->shape() : Qt::BlankCursor;
  };
  const auto pressOK = [&](QDialog* box) {
    EXPECT_EQ(shape(), Qt::ArrowCursor);
    button(box, "cmdOK")->click();
  };
  QApplication::setOverrideCursor(Qt::WaitCursor);
  whenShown(pressOK);
  dialogs.MsgBox(QStringLiteral("Done"), vbInformation, title);
  EXPECT_EQ(shape(), Qt::WaitCursor);
  whenShown(pressOK);
  dialogs.DoAlert(title, QStringLiteral("Too many"), msoAlertButtonOK, msoAlertIconInfo);
  EXPECT_EQ(shape(), Qt::WaitCursor);
  whenShown(pressOK);
  dialogs.InputBox(QStringLiteral("Name"), title);
  EXPECT_EQ(shape(), Qt::WaitCursor);
  QApplication::restoreOverrideCursor();
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST(EveryBox, LeavesTheCursorToItsFieldsOtherwise) {
  whenShown([](QDialog* box) {
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    button(box, "cmdOK")->click();
  });
  dialogs.MsgBox(QStringLiteral("Done"), vbInformation, title);
}

TEST(InputBox, GivesWhatWasTyped) {
  whenShown([](QDialog* box) {
    EXPECT_EQ(box->objectName(), QStringLiteral("inputBox"));
    EXPECT_EQ(box->windowTitle(), title);
    EXPECT_TRUE(labels(box).contains(QStringLiteral("<i>Name</i>\nplease")));
    auto* field = box->findChild<QLineEdit*>(QStringLiteral("txtInput"));
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->text(), QStringLiteral("default"));
    field->setText(QStringLiteral("Ann"));
    button(box, "cmdOK")->click();
  });
  EXPECT_EQ(dialogs.InputBox(QStringLiteral("<i>Name</i>\r\nplease"), title, QStringLiteral("default")),
            QStringLiteral("Ann"));
}

TEST(InputBox, GivesTheDefaultWhenItIsOnlyConfirmed) {
  press("cmdOK");
  EXPECT_EQ(dialogs.InputBox(QStringLiteral("Name"), title, QStringLiteral("Bob")), QStringLiteral("Bob"));
}

TEST(InputBox, GivesAnEmptyTextOnCancelAndEscape) {
  press("cmdCancel");
  EXPECT_EQ(dialogs.InputBox(QStringLiteral("Name"), title, QStringLiteral("Bob")), QString());
  pressKey(Qt::Key_Escape);
  EXPECT_EQ(dialogs.InputBox(QStringLiteral("Name"), title, QStringLiteral("Bob")), QString());
}

TEST(DoAlert, ShowsTitleAndTextAndAnswersOk) {
  whenShown([](QDialog* box) {
    EXPECT_EQ(box->objectName(), QStringLiteral("assistantBox"));
    EXPECT_EQ(box->windowTitle(), title);
    EXPECT_EQ(qobject_cast<QMessageBox*>(box)->icon(), QMessageBox::Information);
    EXPECT_TRUE(labels(box).contains(title));
    EXPECT_TRUE(labels(box).contains(QStringLiteral("12 < 13\nrows")));
    button(box, "cmdOK")->click();
  });
  EXPECT_EQ(dialogs.DoAlert(title, QStringLiteral("12 < 13\r\nrows"), msoAlertButtonOK, msoAlertIconInfo),
            vbOK);
}

TEST(DoAlert, AsksYesOrNo) {
  whenShown([](QDialog* box) {
    EXPECT_EQ(qobject_cast<QMessageBox*>(box)->icon(), QMessageBox::Question);
    button(box, "cmdYes")->click();
  });
  EXPECT_EQ(dialogs.DoAlert(title, QStringLiteral("Go?"), msoAlertButtonYesNo, msoAlertIconQuestion), vbYes);
  pressKey(Qt::Key_Escape);
  EXPECT_EQ(dialogs.DoAlert(title, QStringLiteral("Go?"), msoAlertButtonYesNo, msoAlertIconQuestion), vbNo);
}
