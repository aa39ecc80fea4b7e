#include "companions/settings/appointmentspage.h"

#include "companions/settings/texts.h"
#include "shell/ShellValues.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>

namespace hourbook {

using namespace Qt::StringLiterals;

AppointmentsPage::AppointmentsPage(SettingsSession& session) : PersonalPage(session) {
  setObjectName(u"AppointmentsPage"_s);
  makeControls();
  layOut();
  connectControls();
  giveLetters();
}

QString AppointmentsPage::title() const {
  return phrases().LNGAPPOINTMENTS;
}

void AppointmentsPage::makeControls() {
  const auto check = [this](const QString& text, const QString& name) {
    return named(new QCheckBox(text, this), text, name);
  };
  chkPrivate = check(phrases().LNGPRIVATE, u"chkPrivate"_s);
  chkRecurring = check(phrases().LNGRECURRING, u"chkRecurring"_s);
  chkEvents = check(phrases().LNGEVENTS, u"chkEvents"_s);
  chkConvert24 = check(phrases().LNGCONVERTFULLDAYSTOHOURS, u"chkConvert24"_s);
  txtConvert24Hours = new QLineEdit(this);
  chkRemoveLunch = check(phrases().LNGREMOVELUNCH, u"chkRemoveLunch"_s);
  txtRemoveLunchHours = new QLineEdit(this);
  chkStartGrid = check(texts::startGrid, u"chkStartGrid"_s);
  txtConvert24Hours->setToolTip(texts::wholeDayHint);
  chkConvert24->setToolTip(texts::wholeDayHint);
  txtRemoveLunchHours->setToolTip(texts::lunchHint);
  chkRemoveLunch->setToolTip(texts::lunchHint);
}

void AppointmentsPage::layOut() {
  auto* all = new QVBoxLayout(this);
  const auto group = [&](const QString& title) {
    auto* box = new QGroupBox(title, this);
    all->addWidget(box);
    auto* form = new QFormLayout(box);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    return form;
  };
  QFormLayout* filters = group(texts::leaveOut);
  for (QCheckBox* check : {chkPrivate, chkRecurring, chkEvents}) filters->addRow(check);
  filters->addRow(messageLine(chkPrivate, Field::Filters));
  QFormLayout* time = group(phrases().LNGTIMEMANIPULATION);
  time->addRow(chkConvert24);
  addField(time, texts::wholeDayHours, txtConvert24Hours, u"txtConvert24Hours"_s, Field::Convert24Hours);
  time->addRow(chkRemoveLunch);
  addField(time, texts::lunchHours, txtRemoveLunchHours, u"txtRemoveLunchHours"_s, Field::RemoveLunchHours);
  QFormLayout* start = group(texts::startView);
  start->addRow(chkStartGrid);
  start->addRow(messageLine(chkStartGrid, Field::StartGrid));
  all->addStretch();
}

void AppointmentsPage::connectControls() {
  const auto follow = [this](QCheckBox* check, bool SettingsBuffer::*member) {
    connect(check, &QCheckBox::toggled, this, [this, member](bool on) {
      session_.buffer.*member = on;
      edited();
    });
  };
  follow(chkPrivate, &SettingsBuffer::filterPrivate);
  follow(chkRecurring, &SettingsBuffer::filterRecurring);
  follow(chkEvents, &SettingsBuffer::filterEvents);
  follow(chkConvert24, &SettingsBuffer::convert24);
  follow(chkRemoveLunch, &SettingsBuffer::removeLunch);
  follow(chkStartGrid, &SettingsBuffer::startGrid);
  connect(txtConvert24Hours, &QLineEdit::textEdited, this, [this](const QString& text) {
    session_.buffer.convert24Hours = text;
    tell(Field::Convert24Hours, wholeDayProblem(text));
    edited();
  });
  connect(txtRemoveLunchHours, &QLineEdit::textEdited, this, [this](const QString& text) {
    session_.buffer.removeLunchHours = text;
    tell(Field::RemoveLunchHours, lunchProblem(text));
    edited();
  });
}

void AppointmentsPage::reload() {
  loading_ = true;
  const SettingsBuffer buffer = session_.buffer;
  chkPrivate->setChecked(buffer.filterPrivate);
  chkRecurring->setChecked(buffer.filterRecurring);
  chkEvents->setChecked(buffer.filterEvents);
  chkConvert24->setChecked(buffer.convert24);
  txtConvert24Hours->setText(buffer.convert24Hours);
  chkRemoveLunch->setChecked(buffer.removeLunch);
  txtRemoveLunchHours->setText(buffer.removeLunchHours);
  chkStartGrid->setChecked(buffer.startGrid);
  loading_ = false;
  showNotes();
}

QList<FieldText> AppointmentsPage::problems() {
  QList<FieldText> found;
  if (const QString text = wholeDayProblem(session_.buffer.convert24Hours); !text.isEmpty())
    found.append({Field::Convert24Hours, text});
  if (const QString text = lunchProblem(session_.buffer.removeLunchHours); !text.isEmpty())
    found.append({Field::RemoveLunchHours, text});
  return found;
}

}  // namespace hourbook
