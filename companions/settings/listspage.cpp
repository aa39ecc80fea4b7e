#include "companions/settings/listspage.h"

#include "companions/settings/texts.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>

namespace hourbook {

using namespace Qt::StringLiterals;

namespace {

constexpr int shownLists = 3, shownValues = 6;

void setRows(QListWidget* list, int rows) {
  list->setUniformItemSizes(true);
  const int height = list->fontMetrics().lineSpacing() * (rows + 1);
  list->setMinimumHeight(height);
}

/// The common lists as they were before they had values, or no lists at all.
bool beginsOf(const QList<NamedList>& lists, const QList<NamedList>& common) {
  if (lists.size() > common.size()) return false;
  for (qsizetype i = 0; i < lists.size(); ++i)
    if (!lists[i].values.isEmpty() || lists[i].name != common[i].name) return false;
  return true;
}

}  // namespace

ListsPage::ListsPage(SettingsSession& session) : PersonalPage(session) {
  setObjectName(u"ListsPage"_s);
  makeControls();
  layOut();
  connectControls();
  connectValues();
  giveLetters();
}

QString ListsPage::title() const {
  return texts::listsPage;
}

void ListsPage::makeControls() {
  const auto button = [this](const QString& text, const QString& name) {
    auto* made = named(new QPushButton(text, this), text, name);
    made->setAutoDefault(false);
    return made;
  };
  txtPersonalRate = new QLineEdit(this);
  lstLists = new QListWidget(this);
  cmdAddList = button(texts::addList, u"cmdAddList"_s);
  cmdRemoveList = button(texts::removeList, u"cmdRemoveList"_s);
  cmdTakeCommon = button(texts::takeCommon, u"cmdTakeCommon"_s);
  txtListName = new QLineEdit(this);
  txtNewValue = new QLineEdit(this);
  cmdAddValue = button(texts::addValue, u"cmdAddValue"_s);
  lstValues = new QListWidget(this);
  lstValues->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::DoubleClicked);
  cmdRemoveValue = button(texts::removeValue, u"cmdRemoveValue"_s);
  cmdUp = button(texts::moveUp, u"cmdUp"_s);
  cmdDown = button(texts::moveDown, u"cmdDown"_s);
}

void ListsPage::layOut() {
  auto* all = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  form->setRowWrapPolicy(QFormLayout::WrapAllRows);
  addField(form, texts::personalRate, txtPersonalRate, u"txtPersonalRate"_s, Field::PersonalRate);
  auto* lists = new QHBoxLayout;
  setRows(lstLists, shownLists);
  lstLists->setMaximumHeight(lstLists->minimumHeight());
  lists->addWidget(lstLists, 1);
  auto* buttons = new QVBoxLayout;
  for (QPushButton* button : {cmdAddList, cmdRemoveList, cmdTakeCommon}) buttons->addWidget(button);
  buttons->addStretch();
  lists->addLayout(buttons);
  addField(form, texts::lists, lstLists, lists, u"lstLists"_s, Field::Lists);
  all->addLayout(form);
  all->addWidget(listGroup(), 1);
}

QWidget* ListsPage::listGroup() {
  fraList = new QGroupBox(this);
  auto* form = new QFormLayout(fraList);
  form->setRowWrapPolicy(QFormLayout::WrapAllRows);
  addField(form, texts::listName, txtListName, u"txtListName"_s, Field::ListName);
  auto* adding = new QHBoxLayout;
  adding->addWidget(txtNewValue, 1);
  adding->addWidget(cmdAddValue);
  auto* caption = new QLabel(texts::newValue, this);
  caption->setBuddy(named(txtNewValue, texts::newValue, u"txtNewValue"_s));
  form->addRow(caption, adding);
  lblNewValue = new ProblemLabel(txtNewValue, this);
  lblNewValue->setObjectName(u"msgNewValue"_s);
  form->addRow(QString(), lblNewValue);
  auto* row = new QHBoxLayout;
  setRows(lstValues, shownValues);
  row->addWidget(lstValues, 1);
  auto* buttons = new QVBoxLayout;
  for (QPushButton* button : {cmdRemoveValue, cmdUp, cmdDown}) buttons->addWidget(button);
  buttons->addStretch();
  row->addLayout(buttons);
  addField(form, texts::values, lstValues, row, u"lstValues"_s, Field::ListValues);
  lblCommon = new ProblemLabel(lstLists, this);
  lblCommon->setObjectName(u"lblCommon"_s);
  form->addRow(lblCommon);
  return fraList;
}

void ListsPage::connectControls() {
  connect(txtPersonalRate, &QLineEdit::textEdited, this, [this](const QString& text) {
    session_.buffer.personalRate = text;
    tell(Field::PersonalRate, rateProblem(text));
    edited();
  });
  connect(lstLists, &QListWidget::currentRowChanged, this, &ListsPage::showList);
  connect(cmdAddList, &QPushButton::clicked, this, &ListsPage::addList);
  connect(cmdRemoveList, &QPushButton::clicked, this, &ListsPage::removeList);
  connect(cmdTakeCommon, &QPushButton::clicked, this, &ListsPage::takeCommon);
  connect(txtListName, &QLineEdit::textEdited, this, [this](const QString& text) {
    if (!current()) return;
    current()->name = text;
    lstLists->currentItem()->setText(text);
    fraList->setTitle(QString(text).replace(u'&', u"&&"_s));
    tell(Field::ListName, listNameProblem(session_.buffer.lists, lstLists->currentRow()));
    showState();
    edited();
  });
}

void ListsPage::connectValues() {
  connect(cmdAddValue, &QPushButton::clicked, this, &ListsPage::addValue);
  connect(txtNewValue, &QLineEdit::textEdited, this, [this](const QString& text) {
    const NamedList* list = current();
    lblNewValue->show(text.isEmpty() || !list ? QString() : valueProblem(*list, text));
    showState();
  });
  // Return adds the value instead of closing the window
  auto* enter =
      new QShortcut(QKeySequence(Qt::Key_Return), txtNewValue, nullptr, nullptr, Qt::WidgetShortcut);
  auto* keypad =
      new QShortcut(QKeySequence(Qt::Key_Enter), txtNewValue, nullptr, nullptr, Qt::WidgetShortcut);
  for (QShortcut* shortcut : {enter, keypad})
    connect(shortcut, &QShortcut::activated, this, &ListsPage::addValue);
  connect(cmdRemoveValue, &QPushButton::clicked, this, &ListsPage::removeValue);
  connect(cmdUp, &QPushButton::clicked, this, [this] { moveValue(-1); });
  connect(cmdDown, &QPushButton::clicked, this, [this] { moveValue(1); });
  auto* gone = new QShortcut(QKeySequence(Qt::Key_Delete), lstValues, nullptr, nullptr, Qt::WidgetShortcut);
  connect(gone, &QShortcut::activated, this, &ListsPage::removeValue);
  connect(lstValues, &QListWidget::currentRowChanged, this, &ListsPage::showState);
  connect(lstValues, &QListWidget::itemChanged, this,
          [this](QListWidgetItem* item) { renameValue(lstValues->row(item)); });
}

NamedList* ListsPage::current() {
  const int row = lstLists->currentRow();
  auto& lists = session_.buffer.lists;
  return row >= 0 && row < lists.size() ? &lists[row] : nullptr;
}

// The lists

void ListsPage::addList() {
  auto& lists = session_.buffer.lists;
  if (lists.size() >= mostLists) return;
  const QList<NamedList> common = session_.commonLists();
  const qsizetype at = lists.size();
  lists.append(at < common.size() ? common[at] : NamedList{texts::newListName.arg(at + 1), {}});
  showLists();
  lstLists->setCurrentRow(static_cast<int>(at));
  tell(Field::Lists, {});
  txtListName->setFocus(Qt::OtherFocusReason);
  txtListName->selectAll();
  edited();
}

void ListsPage::removeList() {
  if (!current()) return;
  const int row = lstLists->currentRow();
  session_.buffer.lists.removeAt(row);
  showLists();
  lstLists->setCurrentRow(qMin(row, lstLists->count() - 1));
  showList();
  edited();
}

/// Those that are there keep their place: a list of the common ones takes the place that it has there,
/// because the places are what the reports go by.
void ListsPage::takeCommon() {
  session_.buffer.lists = session_.commonLists();
  showLists();
  lstLists->setCurrentRow(0);
  showList();
  tell(Field::Lists, {});
  edited();
}

void ListsPage::showLists() {
  const int row = lstLists->currentRow();
  const QSignalBlocker quiet(lstLists);
  lstLists->clear();
  for (const NamedList& list : session_.buffer.lists) lstLists->addItem(list.name);
  lstLists->setCurrentRow(qMin(row, lstLists->count() - 1));
}

// The list chosen among them

void ListsPage::showList() {
  const NamedList* list = current();
  fraList->setEnabled(list);
  fraList->setTitle(list ? QString(list->name).replace(u'&', u"&&"_s) : QString());
  txtListName->setText(list ? list->name : QString());
  txtNewValue->clear();
  lblNewValue->clear();
  tell(Field::ListName, {});
  tell(Field::ListValues, {});
  showValues(0);
}

void ListsPage::showValues(int row) {
  {
    const QSignalBlocker quiet(lstValues);
    lstValues->clear();
    if (const NamedList* list = current())
      for (const QString& value : list->values) {
        auto* item = new QListWidgetItem(value, lstValues);
        item->setFlags(item->flags() | Qt::ItemIsEditable);
      }
    lstValues->setCurrentRow(qMin(row, lstValues->count() - 1));
  }
  showState();
}

void ListsPage::addValue() {
  NamedList* list = current();
  if (!list) return;
  const QString value = txtNewValue->text();
  const QString problem = valueProblem(*list, value);
  lblNewValue->show(problem);
  txtNewValue->setFocus(Qt::OtherFocusReason);
  if (!problem.isEmpty()) return;
  list->values.append(value);
  txtNewValue->clear();
  tell(Field::ListValues, {});
  showValues(static_cast<int>(list->values.size()) - 1);
  edited();
}

void ListsPage::removeValue() {
  NamedList* list = current();
  const int row = lstValues->currentRow();
  if (!list || row < 0) return;
  list->values.removeAt(row);
  showValues(row);
  edited();
}

void ListsPage::moveValue(int by) {
  NamedList* list = current();
  const int row = lstValues->currentRow();
  if (!list || row < 0 || row + by < 0 || row + by >= list->values.size()) return;
  list->values.move(row, row + by);
  showValues(row + by);
  edited();
}

/// A new name that cannot be stored is told and not taken.
void ListsPage::renameValue(int row) {
  NamedList* list = current();
  if (!list || row < 0 || row >= list->values.size()) return;
  const QString value = lstValues->item(row)->text();
  NamedList others = *list;
  others.values.removeAt(row);
  const QString problem = valueProblem(others, value);
  tell(Field::ListValues, problem);
  if (!problem.isEmpty()) {
    const QSignalBlocker quiet(lstValues);
    lstValues->item(row)->setText(list->values[row]);
    return;
  }
  list->values[row] = value;
  showState();
  edited();
}

void ListsPage::showState() {
  const NamedList* list = current();
  const int row = lstValues->currentRow();
  cmdAddList->setEnabled(session_.buffer.lists.size() < mostLists);
  cmdRemoveList->setEnabled(list);
  cmdRemoveValue->setEnabled(row >= 0);
  cmdUp->setEnabled(row > 0);
  cmdDown->setEnabled(row >= 0 && row + 1 < lstValues->count());
  const QList<NamedList> common = session_.commonLists();
  cmdTakeCommon->setEnabled(!common.isEmpty());
  const QStringList notes = listNotes(session_.buffer.lists, common);
  lblCommon->show(notes.value(lstLists->currentRow()), ProblemLabel::Kind::Note);
}

void ListsPage::aboutToShow() {
  // who has no lists yet begins with the common ones; so does who took them when they had no values yet
  const QList<NamedList> common = session_.commonLists();
  if (!common.isEmpty() && common != session_.buffer.lists && beginsOf(session_.buffer.lists, common))
    takeCommon();
  else
    showState();
}

void ListsPage::reload() {
  txtPersonalRate->setText(session_.buffer.personalRate);
  showLists();
  if (lstLists->currentRow() < 0 && lstLists->count() > 0) lstLists->setCurrentRow(0);
  showList();
  showNotes();
}

QList<FieldText> ListsPage::problems() {
  QList<FieldText> found;
  if (const QString text = rateProblem(session_.buffer.personalRate); !text.isEmpty())
    found.append({Field::PersonalRate, text});
  return found + listProblems(session_.buffer.lists);
}

void ListsPage::bringUp(const FieldText& problem) {
  if (problem.field == Field::ListName || problem.field == Field::ListValues)
    lstLists->setCurrentRow(static_cast<int>(problem.index));
}

}  // namespace hourbook
