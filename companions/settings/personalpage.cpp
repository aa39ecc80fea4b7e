#include "companions/settings/personalpage.h"

#include "platform/forms/widgets/mnemonics.h"

#include <QAbstractButton>
#include <QFormLayout>
#include <QLabel>

namespace hourbook {

QString PersonalPage::problem() {
  for (ProblemLabel* line : std::as_const(lines_)) line->clear();
  const QList<FieldText> found = problems();
  if (found.isEmpty()) return {};
  const FieldText& first = found.first();
  bringUp(first);
  for (const FieldText& one : found)
    if (lines_.contains(one.field) && lines_[one.field]->text().isEmpty() &&
        (one.field != first.field || one == first))
      tell(one.field, one.text);
  if (ProblemLabel* line = lines_.value(first.field)) line->field()->setFocus(Qt::OtherFocusReason);
  return first.text;
}

void PersonalPage::addField(QFormLayout* form, const QString& label, QWidget* field,
                            const QString& objectName, Field id) {
  auto* row = new QHBoxLayout;
  row->addWidget(field);
  addField(form, label, field, row, objectName, id);
}

void PersonalPage::addField(QFormLayout* form, const QString& label, QWidget* field, QLayout* row,
                            const QString& objectName, Field id) {
  auto* caption = new QLabel(label, this);
  caption->setBuddy(named(field, label, objectName));
  form->addRow(caption, row);
  form->addRow(QString(), messageLine(field, id));
}

ProblemLabel* PersonalPage::messageLine(QWidget* control, Field id) {
  auto* line = new ProblemLabel(control, this);
  line->setObjectName(u"msg"_qs + control->objectName().mid(3));
  lines_.insert(id, line);
  return line;
}

void PersonalPage::showNotes() {
  for (ProblemLabel* line : std::as_const(lines_)) line->clear();
  for (const FieldText& one : session_.read.notes)
    if (lines_.contains(one.field)) tell(one.field, one.text);
}

void PersonalPage::edited() {
  if (!loading_) Q_EMIT changed();
}

void PersonalPage::giveLetters() {
  QList<QWidget*> captioned;
  QStringList captions;
  const auto add = [&](QWidget* widget, const QString& caption) {
    captioned.append(widget);
    captions.append(withoutMnemonic(caption));
  };
  for (QWidget* widget : findChildren<QWidget*>()) {
    if (auto* label = qobject_cast<QLabel*>(widget); label && label->buddy()) add(label, label->text());
    if (auto* button = qobject_cast<QAbstractButton*>(widget); button && !button->text().isEmpty())
      add(button, button->text());
  }
  const QStringList given = platform::forms::Mnemonics::assigned(captions);
  for (qsizetype i = 0; i < captioned.size(); ++i) {
    if (auto* label = qobject_cast<QLabel*>(captioned[i])) label->setText(given[i]);
    if (auto* button = qobject_cast<QAbstractButton*>(captioned[i])) button->setText(given[i]);
  }
}

}  // namespace hourbook
