#include "companions/settings/session.h"

#include "companions/settings/personalpage.h"
#include "companions/settings/texts.h"
#include "database/forms/modDatabaseForms.h"
#include "platform/forms/widgets/mnemonics.h"
#include "shell/ShellValues.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

namespace hourbook {

using namespace Qt::StringLiterals;

namespace {

int ask(QWidget* parent, const QString& text, const QStringList& answers) {
  QMessageBox box(QMessageBox::Question, texts::windowTitle, text, QMessageBox::NoButton, parent);
  box.setTextFormat(Qt::PlainText);
  QList<QPushButton*> buttons;
  const QStringList captions =
      platform::forms::Mnemonics::assigned(answers + QStringList{phrases().LNGCANCEL});
  for (qsizetype i = 0; i < answers.size(); ++i) {
    auto* button = named(new QPushButton(captions[i]), answers[i], u"cmdAnswer%1"_s.arg(i + 1));
    box.addButton(button, QMessageBox::AcceptRole);
    buttons.append(button);
  }
  auto* none = named(new QPushButton(captions.last()), phrases().LNGCANCEL, u"cmdCancel"_s);
  box.addButton(none, QMessageBox::RejectRole);
  box.setEscapeButton(none);
  box.exec();
  for (qsizetype i = 0; i < buttons.size(); ++i)
    if (box.clickedButton() == buttons[i]) return static_cast<int>(i);
  return -1;
}

}  // namespace

SettingsQuestions desktopQuestions() {
  return {[](QWidget* parent, const QString& title, const QString& start) {
            return QFileDialog::getExistingDirectory(parent, title, start);
          },
          [](QWidget* parent, const QString& title, const QString& start) {
            return QFileDialog::getOpenFileName(parent, title, start, texts::calendarFilter);
          },
          subUseDatabaseForms, ask};
}

ReportPlace SettingsSession::place() const {
  // the whole connection text, with a password that is not stored like that
  const QString value =
      buffer.reportChoice == reportToSqlServer ? connectionText(buffer) : store.reportValue(buffer);
  return {buffer.reportChoice, value, buffer.reportChoice == reportToAccess && buffer.makeDatabase};
}

}  // namespace hourbook
