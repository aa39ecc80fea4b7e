#include "platform/dialogs/qt/qtdialogs.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace platform::dialogs {

namespace {

/// A program that is at work shows the hourglass; over a box that waits for the user it would say that
/// nothing can be done.
class ArrowMeanwhile {
 public:
  ArrowMeanwhile() : over_(QApplication::overrideCursor()) {
    if (over_) QApplication::setOverrideCursor(Qt::ArrowCursor);
  }
  ~ArrowMeanwhile() {
    if (over_) QApplication::restoreOverrideCursor();
  }
  ArrowMeanwhile(const ArrowMeanwhile&) = delete;
  ArrowMeanwhile& operator=(const ArrowMeanwhile&) = delete;

 private:
  bool over_;
};

constexpr int buttonBits = 0x0F;
constexpr int iconBits = 0xF0;

QString plainLines(QString text) {
  return text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
}

QMessageBox::Icon boxIcon(int options) {
  switch (options & iconBits) {
    case vbCritical:
      return QMessageBox::Critical;
    case vbQuestion:
      return QMessageBox::Question;
    case vbExclamation:
      return QMessageBox::Warning;
    case vbInformation:
      return QMessageBox::Information;
    default:
      return QMessageBox::NoIcon;
  }
}

QMessageBox::Icon alertIcon(int icon) {
  switch (icon) {
    case msoAlertIconQuestion:
      return QMessageBox::Question;
    case msoAlertIconInfo:
      return QMessageBox::Information;
    default:
      return QMessageBox::NoIcon;
  }
}

QPushButton* addButton(QMessageBox* box, QMessageBox::StandardButton which, const char* name) {
  QPushButton* button = box->addButton(which);
  button->setObjectName(QString::fromLatin1(name));
  return button;
}

/// Adds the buttons, shows the box and tells the answer. The first button is the default; Escape and the
/// frame answer No to a question and OK to a message.
int ask(QMessageBox* box, bool yesNo) {
  const ArrowMeanwhile arrow;
  if (!yesNo) {
    QPushButton* ok = addButton(box, QMessageBox::Ok, "cmdOK");
    box->setDefaultButton(ok);
    box->setEscapeButton(ok);
    box->exec();
    return vbOK;
  }
  QPushButton* yes = addButton(box, QMessageBox::Yes, "cmdYes");
  QPushButton* no = addButton(box, QMessageBox::No, "cmdNo");
  box->setDefaultButton(yes);
  box->setEscapeButton(no);
  box->exec();
  return box->clickedButton() == yes ? vbYes : vbNo;
}

/// Informative texts are guessed to be rich text by default; what the user has written may hold "<" and "&".
void makePlain(QWidget* box) {
  for (QLabel* label : box->findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
}

}  // namespace

int QtDialogs::MsgBox(const QString& text, int options, const QString& title) {
  QMessageBox box(QApplication::activeWindow());
  box.setObjectName(QStringLiteral("msgBox"));
  box.setWindowTitle(title);
  box.setIcon(boxIcon(options));
  box.setTextFormat(Qt::PlainText);
  box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  box.setText(plainLines(text));
  return ask(&box, (options & buttonBits) == vbYesNo);
}

QString QtDialogs::InputBox(const QString& prompt, const QString& title, const QString& defaultText) {
  QInputDialog box(QApplication::activeWindow());
  box.setObjectName(QStringLiteral("inputBox"));
  box.setInputMode(QInputDialog::TextInput);
  box.setWindowTitle(title);
  box.setLabelText(plainLines(prompt));
  box.setTextValue(defaultText);
  (void)box.minimumSizeHint();  // the box makes its buttons only when its layout is asked for
  makePlain(&box);
  box.findChild<QLineEdit*>()->setObjectName(QStringLiteral("txtInput"));
  const auto* buttons = box.findChild<QDialogButtonBox*>();
  buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("cmdOK"));
  buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cmdCancel"));
  const ArrowMeanwhile arrow;
  return box.exec() == QDialog::Accepted ? box.textValue() : QString();
}

int QtDialogs::DoAlert(const QString& title, const QString& text, int buttons, int icon) {
  QMessageBox box(QApplication::activeWindow());
  box.setObjectName(QStringLiteral("assistantBox"));
  box.setWindowTitle(title);
  box.setIcon(alertIcon(icon));
  box.setText(title);
  box.setInformativeText(plainLines(text));
  makePlain(&box);
  return ask(&box, buttons == msoAlertButtonYesNo);
}

}  // namespace platform::dialogs
