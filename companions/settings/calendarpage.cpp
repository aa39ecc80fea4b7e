#include "companions/settings/calendarpage.h"

#include "companions/settings/places.h"
#include "companions/settings/texts.h"
#include "shell/ShellValues.h"

#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>

namespace hourbook {

using namespace Qt::StringLiterals;
using State = KeptSettings::State;

namespace {

constexpr int shownRows = 4;

}  // namespace

CalendarPage::CalendarPage(SettingsSession& session) : PersonalPage(session) {
  setObjectName(u"CalendarPage"_s);
  makeControls();
  layOut();
  connectControls();
  connectDetails();
  giveLetters();
}

QString CalendarPage::title() const {
  return texts::calendarPage;
}

void CalendarPage::makeControls() {
  const auto button = [this](const QString& text, const QString& name) {
    auto* made = named(new QPushButton(text, this), text, name);
    made->setAutoDefault(false);
    return made;
  };
  const auto check = [this](const QString& text, const QString& name) {
    return named(new QCheckBox(text, this), text, name);
  };
  txtPersonName = new QLineEdit(this);
  lstCalendars = new QListWidget(this);
  cmdAddFolder = button(texts::addFolder, u"cmdAddFolder"_s);
  cmdAddFile = button(texts::addFile, u"cmdAddFile"_s);
  cmdRemove = button(texts::remove, u"cmdRemove"_s);
  txtCalendarName = new QLineEdit(this);
  txtCalendarPath = new QLineEdit(this);
  cmdChoosePath = button(texts::choose, u"cmdChoosePath"_s);
  chkOpen = check(texts::reportFrom, u"chkOpen"_s);
  chkReadOnly = check(texts::readOnly, u"chkReadOnly"_s);
  chkKeep = check(texts::keepInCalendar, u"chkKeep"_s);
  cmdTakeOver = button(texts::takeOver, u"cmdTakeOver"_s);
}

void CalendarPage::layOut() {
  auto* all = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  form->setRowWrapPolicy(QFormLayout::WrapAllRows);
  addField(form, texts::personName, txtPersonName, u"txtPersonName"_s, Field::PersonName);
  auto* list = new QHBoxLayout;
  lstCalendars->setMaximumHeight(lstCalendars->fontMetrics().lineSpacing() * (shownRows + 1));
  lstCalendars->setUniformItemSizes(true);
  list->addWidget(lstCalendars, 1);
  auto* buttons = new QVBoxLayout;
  for (QPushButton* button : {cmdAddFolder, cmdAddFile, cmdRemove}) buttons->addWidget(button);
  buttons->addStretch();
  list->addLayout(buttons);
  addField(form, texts::calendars, lstCalendars, list, u"lstCalendars"_s, Field::Calendars);
  all->addLayout(form);
  all->addWidget(detailGroup());
  all->addWidget(chkKeep);
  all->addWidget(messageLine(chkKeep, Field::KeepInCalendar));
  auto* row = new QHBoxLayout;
  row->addWidget(cmdTakeOver);
  row->addStretch();
  all->addLayout(row);
  all->addStretch();
}

QWidget* CalendarPage::detailGroup() {
  fraCalendar = new QGroupBox(texts::calendarPage, this);
  auto* form = new QFormLayout(fraCalendar);
  form->setRowWrapPolicy(QFormLayout::WrapAllRows);
  addField(form, texts::calendarName, txtCalendarName, u"txtCalendarName"_s, Field::CalendarName);
  auto* row = new QHBoxLayout;
  row->addWidget(txtCalendarPath, 1);
  row->addWidget(cmdChoosePath);
  addField(form, texts::calendarPath, txtCalendarPath, row, u"txtCalendarPath"_s, Field::CalendarPath);
  form->addRow(chkOpen);
  form->addRow(chkReadOnly);
  return fraCalendar;
}

void CalendarPage::connectControls() {
  connect(txtPersonName, &QLineEdit::textEdited, this, [this](const QString& text) {
    session_.buffer.personName = text.trimmed();
    tell(Field::PersonName, personNameProblem(text));
    edited();
  });
  connect(lstCalendars, &QListWidget::currentRowChanged, this, &CalendarPage::showDetails);
  connect(cmdAddFolder, &QPushButton::clicked, this, [this] { addChosen(true); });
  connect(cmdAddFile, &QPushButton::clicked, this, [this] { addChosen(false); });
  connect(cmdRemove, &QPushButton::clicked, this, &CalendarPage::removeCalendar);
  connect(cmdTakeOver, &QPushButton::clicked, this, &CalendarPage::takeOver);
  connect(chkKeep, &QCheckBox::toggled, this, [this](bool on) {
    session_.buffer.keepInCalendar = on;
    edited();
  });
}

void CalendarPage::connectDetails() {
  connect(txtCalendarName, &QLineEdit::textEdited, this, [this](const QString& text) {
    if (!current()) return;
    current()->name = text.trimmed();
    tell(Field::CalendarName, {});
    showRow(lstCalendars->currentRow());
    edited();
  });
  connect(txtCalendarPath, &QLineEdit::textEdited, this, [this](const QString& text) {
    if (!current()) return;
    current()->path = text.trimmed();
    tell(Field::CalendarPath, {});
    edited();
  });
  connect(txtCalendarPath, &QLineEdit::editingFinished, this, &CalendarPage::lookAtPath);
  connect(cmdChoosePath, &QPushButton::clicked, this, &CalendarPage::choosePath);
  connect(chkReadOnly, &QCheckBox::toggled, this, [this](bool on) {
    if (loading_ || !current()) return;
    current()->readOnly = on;
    showRow(lstCalendars->currentRow());
    lookAtPath();
    showKeep();
    edited();
  });
  connect(chkOpen, &QCheckBox::toggled, this, [this](bool on) {
    if (loading_ || !current()) return;
    session_.buffer.openCalendar = on ? current()->id : QString();
    showList();
    showKeep();
    edited();
  });
}

CalendarEntry* CalendarPage::current() {
  const int row = lstCalendars->currentRow();
  auto& calendars = session_.buffer.calendars;
  return row >= 0 && row < calendars.size() ? &calendars[row] : nullptr;
}

// The list

QString CalendarPage::newId(const QString& name) const {
  QString id;
  for (const QChar sign : name.toLower())
    if (sign.isLetterOrNumber() && sign.unicode() < 128) id += sign;
  if (id.isEmpty()) id = u"calendar"_s;
  const auto isTaken = [this](const QString& wanted) {
    for (const CalendarEntry& entry : session_.buffer.calendars)
      if (entry.id == wanted) return true;
    return false;
  };
  if (!isTaken(id)) return id;
  int number = 2;
  while (isTaken(id + QString::number(number))) ++number;
  return id + QString::number(number);
}

void CalendarPage::addCalendar(const QString& path) {
  CalendarEntry entry;
  entry.path = path;
  const QFileInfo info(path);
  entry.name =
      path.isEmpty() ? texts::newCalendarName : (info.isDir() ? info.fileName() : info.completeBaseName());
  if (entry.name.isEmpty()) entry.name = texts::newCalendarName;
  entry.id = newId(entry.name);
  SettingsBuffer& buffer = session_.buffer;
  if (buffer.openCalendar.isEmpty()) buffer.openCalendar = entry.id;
  buffer.calendars.append(entry);
  showList();
  lstCalendars->setCurrentRow(static_cast<int>(buffer.calendars.size()) - 1);
  tell(Field::Calendars, {});
  lookAtPath();
  showKeep();
  edited();
  txtCalendarName->setFocus(Qt::OtherFocusReason);
  txtCalendarName->selectAll();
}

void CalendarPage::addChosen(bool folder) {
  const auto& ask = folder ? session_.questions.folder : session_.questions.calendarFile;
  const QString chosen = ask(this, texts::calendarPath, QDir::homePath());
  if (!chosen.isEmpty()) addCalendar(QDir::cleanPath(chosen));
}

void CalendarPage::removeCalendar() {
  const int row = lstCalendars->currentRow();
  SettingsBuffer& buffer = session_.buffer;
  if (!current()) return;
  if (buffer.openCalendar == current()->id) buffer.openCalendar.clear();
  buffer.calendars.removeAt(row);
  // one calendar alone leaves nothing to be chosen
  if (buffer.calendars.size() == 1 && buffer.openCalendar.isEmpty())
    buffer.openCalendar = buffer.calendars.first().id;
  showList();
  lstCalendars->setCurrentRow(qMin(row, lstCalendars->count() - 1));
  showDetails();
  showKeep();
  edited();
}

void CalendarPage::showRow(int row) {
  QListWidgetItem* item = lstCalendars->item(row);
  if (!item) return;
  const CalendarEntry& entry = session_.buffer.calendars[row];
  QString text = entry.name;
  if (entry.id == session_.buffer.openCalendar) text = texts::isOpenMark.arg(text);
  if (entry.readOnly) text = texts::isReadOnlyMark.arg(text);
  item->setText(text);
}

void CalendarPage::showList() {
  const int row = lstCalendars->currentRow();
  const QSignalBlocker quiet(lstCalendars);
  lstCalendars->clear();
  for (qsizetype i = 0; i < session_.buffer.calendars.size(); ++i) {
    lstCalendars->addItem(QString());
    showRow(static_cast<int>(i));
  }
  lstCalendars->setCurrentRow(qMin(row, lstCalendars->count() - 1));
}

// The calendar chosen in it

void CalendarPage::showDetails() {
  const CalendarEntry* entry = current();
  loading_ = true;
  fraCalendar->setEnabled(entry);
  cmdRemove->setEnabled(entry);
  txtCalendarName->setText(entry ? entry->name : QString());
  txtCalendarPath->setText(entry ? entry->path : QString());
  chkReadOnly->setChecked(entry && entry->readOnly);
  chkOpen->setChecked(entry && entry->id == session_.buffer.openCalendar);
  loading_ = false;
  tell(Field::CalendarName, {});
  lookAtPath();
}

void CalendarPage::lookAtPath() {
  const CalendarEntry* entry = current();
  if (!entry) {
    tell(Field::CalendarPath, {});
    return;
  }
  const PlaceLook look = lookAtCalendar(session_.store.absolute(*entry).path, entry->readOnly);
  if (look.problem.isEmpty())
    note(Field::CalendarPath, look.note);
  else
    tell(Field::CalendarPath, look.problem);
}

void CalendarPage::choosePath() {
  CalendarEntry* entry = current();
  if (!entry) return;
  const QString start = session_.store.absolute(*entry).path;
  const bool isFile = QFileInfo(start).isFile();
  const auto& ask = isFile ? session_.questions.calendarFile : session_.questions.folder;
  const QString chosen = ask(this, texts::calendarPath, start);
  if (chosen.isEmpty()) return;
  entry->path = QDir::cleanPath(chosen);
  txtCalendarPath->setText(entry->path);
  lookAtPath();
  edited();
}

// The copy of the settings

void CalendarPage::showKeep() {
  const SettingsBuffer& buffer = session_.buffer;
  const CalendarEntry* open = nullptr;
  for (const CalendarEntry& entry : buffer.calendars)
    if (entry.id == buffer.openCalendar) open = &entry;
  const bool readOnly = open && open->readOnly;
  const bool isThere = session_.read.hasSettings && session_.read.kept == State::Intact &&
                       buffer.openCalendar == session_.read.buffer.openCalendar;
  const QSignalBlocker quiet(chkKeep);
  chkKeep->setChecked(buffer.keepInCalendar && !readOnly);
  chkKeep->setEnabled(open && !readOnly && !isThere);
  cmdTakeOver->setEnabled(open);
  for (const FieldText& one : session_.read.notes)
    if (one.field == Field::KeepInCalendar) return;
  note(Field::KeepInCalendar, readOnly ? texts::keepNotPossible : isThere ? texts::keepIsThere : QString());
}

void CalendarPage::takeOver() {
  const CalendarEntry* open = nullptr;
  for (const CalendarEntry& entry : session_.buffer.calendars)
    if (entry.id == session_.buffer.openCalendar) open = &entry;
  if (!open) return;
  const CalendarEntry calendar = *open;
  const KeptSettings kept = session_.store.takeOver(session_.buffer, calendar);
  if (kept.state == State::Intact) {
    Q_EMIT takenOver();
    note(Field::KeepInCalendar, texts::takenOver);
    edited();
  } else {
    tell(Field::KeepInCalendar, kept.state == State::None   ? texts::nothingKept
                                : kept.state == State::Torn ? texts::keepTornAndUsed.arg(kept.reason)
                                                            : kept.reason);
  }
}

void CalendarPage::reload() {
  loading_ = true;
  txtPersonName->setText(session_.buffer.personName);
  loading_ = false;
  showNotes();
  showList();
  if (lstCalendars->currentRow() < 0 && lstCalendars->count() > 0) lstCalendars->setCurrentRow(0);
  showDetails();
  showKeep();
}

QList<FieldText> CalendarPage::problems() {
  return calendarProblems(session_.buffer, session_.store.folder());
}

void CalendarPage::bringUp(const FieldText& problem) {
  if (problem.field != Field::CalendarName && problem.field != Field::CalendarPath) return;
  lstCalendars->setCurrentRow(static_cast<int>(problem.index));
}

}  // namespace hourbook
