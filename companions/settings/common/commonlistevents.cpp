// What happens on the page of one list.
#include "companions/settings/common/commonlistpane.h"
#include "companions/settings/common/commonpaste.h"
#include "companions/settings/common/commontexts.h"
#include "companions/settings/common/textfilter.h"
#include "companions/settings/common/valuedelegate.h"

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTableView>

#include <algorithm>

namespace hourbook {

using namespace Qt::StringLiterals;
namespace texts = commontexts;

namespace {

const QAbstractItemView::EditTriggers editTriggers =
    QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed | QAbstractItemView::DoubleClicked;

}  // namespace

void CommonListPane::connectValues() {
  connect(txtNewValue, &QLineEdit::textEdited, this, &CommonListPane::checkNewName);
  txtNewValue->installEventFilter(this);  // Enter adds, and does not press the window's OK
  connect(cmdAdd, &QPushButton::clicked, this, &CommonListPane::addTyped);
  connect(cmdRename, &QPushButton::clicked, this, &CommonListPane::renameCurrent);
  connect(cmdRemove, &QPushButton::clicked, this, &CommonListPane::removeSelected);
  connect(cmdPaste, &QPushButton::clicked, this, &CommonListPane::paste);
  connect(txtFilter, &QLineEdit::textChanged, this, &CommonListPane::filter);
  connect(cmbSort, &QComboBox::activated, this, &CommonListPane::sort);
  connect(chkSortDown, &QCheckBox::toggled, this, &CommonListPane::sort);
  connect(tblValues->horizontalHeader(), &QHeaderView::sortIndicatorChanged, this, &CommonListPane::takeSort);
}

void CommonListPane::connectTable() {
  tblValues->installEventFilter(this);
  const auto key = [this](const QKeySequence& keys, void (CommonListPane::*work)()) {
    auto* action = new QAction(tblValues);
    action->setShortcut(keys);
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, &QAction::triggered, this, work);
    tblValues->addAction(action);
  };
  key(QKeySequence::Delete, &CommonListPane::removeSelected);
  key(QKeySequence::Paste, &CommonListPane::paste);
  const auto* delegate = static_cast<ValueDelegate*>(tblValues->itemDelegate());
  connect(delegate, &ValueDelegate::typed, this, [this](const QString& problem) {
    forgetRefused();
    lblValuesProblem->show(problem);
  });
  connect(model_, &ValuesModel::refused, this, [this](const QString& text, const QString& reason) {
    refused_ = texts::nameOfValue.arg(text, reason);
    lblValuesProblem->show(refused_);
    Q_EMIT edited();
  });
  connect(model_, &ValuesModel::edited, this, [this] {
    forgetRefused();
    lblValuesProblem->clear();
    showCount();
    Q_EMIT edited();
  });
  connect(model_, &ValuesModel::renamed, this, &CommonListPane::tellRename);
}

bool CommonListPane::eventFilter(QObject* watched, QEvent* event) {
  const bool enter =
      event->type() == QEvent::KeyPress && (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Return ||
                                            static_cast<QKeyEvent*>(event)->key() == Qt::Key_Enter);
  if (enter && watched == txtNewValue && !txtNewValue->text().isEmpty()) {
    addTyped();
    return true;
  }
  if (enter && watched == tblValues) {
    // It comes from an open cell, too, which it closes by itself.
    const QModelIndex cell = tblValues->currentIndex();
    if (tblValues->hasFocus() && (cell.flags() & Qt::ItemIsEditable)) tblValues->edit(cell);
    return true;
  }
  // Told once, the refusal stands as long as the user stays with it.
  if (told_ && watched == tblValues && event->type() == QEvent::FocusOut &&
      static_cast<QFocusEvent*>(event)->reason() != Qt::ActiveWindowFocusReason) {
    forgetRefused();
    lblValuesProblem->clear();
  }
  return QWidget::eventFilter(watched, event);
}

void CommonListPane::forgetRefused() {
  refused_.clear();
  told_ = false;
}

void CommonListPane::checkNewName(const QString& text) {
  const QString name = text.trimmed();
  lblNewProblem->show(name.isEmpty() ? QString() : buffer_.nameProblem(list_, -1, name));
  Q_EMIT edited();
}

void CommonListPane::addTyped() {
  QString reason;
  const int row = model_->addValue(txtNewValue->text(), reason);
  lblNewProblem->show(reason);
  txtNewValue->setFocus();
  if (row < 0) return;
  txtNewValue->clear();
  txtFilter->clear();
  select(row, ValuesModel::Name);
}

void CommonListPane::select(int sourceRow, int column) {
  const QModelIndex cell = shown_->mapFromSource(model_->index(sourceRow, column));
  if (!cell.isValid()) return;
  tblValues->setCurrentIndex(cell);
  tblValues->scrollTo(cell);
}

void CommonListPane::renameCurrent() {
  const QModelIndex current = tblValues->currentIndex();
  if (!current.isValid()) return;
  tblValues->setFocus();
  const QModelIndex cell = current.siblingAtColumn(ValuesModel::Name);
  tblValues->setCurrentIndex(cell);
  tblValues->edit(cell);
}

void CommonListPane::removeSelected() {
  QList<int> rows;
  int next = shown_->rowCount();
  for (const QModelIndex& cell : tblValues->selectionModel()->selectedRows()) {
    rows.append(shown_->mapToSource(cell).row());
    next = std::min(next, cell.row());
  }
  if (rows.isEmpty()) return;
  model_->removeValues(rows);
  const int last = shown_->rowCount() - 1;
  if (last >= 0) tblValues->setCurrentIndex(shown_->index(std::min(next, last), ValuesModel::Name));
}

void CommonListPane::paste() {
  const int before = model_->rowCount();
  const Pasted pasted = pasteValues(buffer_, list_, QGuiApplication::clipboard()->text());
  if (pasted.added > 0) {
    txtFilter->clear();
    model_->reload();
    select(before, ValuesModel::Name);
    showCount();
  }
  const QString text = pasted.problem.isEmpty() ? texts::pasted.arg(pasted.added) : pasted.problem;
  lblValuesProblem->show(text,
                         pasted.problem.isEmpty() ? ProblemLabel::Kind::Note : ProblemLabel::Kind::Problem);
  if (pasted.added > 0) Q_EMIT edited();
}

void CommonListPane::sort() {
  const Qt::SortOrder order = chkSortDown->isChecked() ? Qt::DescendingOrder : Qt::AscendingOrder;
  tblValues->sortByColumn(cmbSort->currentIndex(), order);
}

void CommonListPane::takeSort(int column, Qt::SortOrder order) {
  const QSignalBlocker quietSort(cmbSort);
  const QSignalBlocker quietOrder(chkSortDown);
  cmbSort->setCurrentIndex(column);
  chkSortDown->setChecked(order == Qt::DescendingOrder);
}

void CommonListPane::filter(const QString& text) {
  shown_->setText(text.trimmed());
  // Keys go to the first of those found.
  if (!tblValues->selectionModel()->hasSelection() && shown_->rowCount() > 0)
    tblValues->setCurrentIndex(shown_->index(0, ValuesModel::Name));
  showCount();
}

void CommonListPane::showCount() {
  const int all = model_->rowCount();
  const int shown = shown_->rowCount();
  lblCount->setText(all == shown ? texts::countShown.arg(all) : texts::countFiltered.arg(shown).arg(all));
}

void CommonListPane::tellRename(const QString& from) {
  const auto isFrom = [&from](const CommonValue& value) { return value.name == from; };
  const auto& stored = buffer_.stored.lists[list_].values;
  if (std::any_of(stored.begin(), stored.end(), isFrom))
    lblValuesProblem->show(texts::renamedNote.arg(from), ProblemLabel::Kind::Note);
  tblValues->scrollTo(tblValues->currentIndex());
}

void CommonListPane::reload() {
  const CommonList& list = buffer_.edited.lists[list_];
  txtCaption->setText(list.caption);
  txtCategoryCaption->setText(list.categoryCaption);
  txtSuperCategoryCaption->setText(list.superCategoryCaption);
  txtNewValue->clear();
  txtFilter->clear();
  forgetRefused();
  clearProblems();
  const bool writable = buffer_.notWritable.isEmpty();
  for (QLineEdit* edit : {txtCaption, txtCategoryCaption, txtSuperCategoryCaption, txtNewValue})
    edit->setReadOnly(!writable);
  for (QPushButton* button : {cmdAdd, cmdRename, cmdRemove, cmdPaste}) button->setEnabled(writable);
  for (QAction* action : tblValues->actions()) action->setEnabled(writable);
  model_->setWritable(writable);
  tblValues->setEditTriggers(writable ? editTriggers : QAbstractItemView::NoEditTriggers);
  model_->reload();
  model_->reloadHeadings();
  reloadSortColumns();
  if (shown_->rowCount() > 0) tblValues->setCurrentIndex(shown_->index(0, ValuesModel::Name));
  showCount();
}

void CommonListPane::reloadSortColumns() {
  const QSignalBlocker quiet(cmbSort);
  const int before = std::max(0, cmbSort->currentIndex());
  cmbSort->clear();
  for (int column = 0; column < ValuesModel::ColumnCount; ++column) cmbSort->addItem(model_->heading(column));
  cmbSort->setCurrentIndex(before);
}

void CommonListPane::showProblem(const CommonProblem& problem) {
  switch (problem.field) {
    case CommonField::Caption:
      lblCaptionProblem->show(problem.text);
      break;
    case CommonField::CategoryCaption:
      lblCategoryProblem->show(problem.text);
      break;
    case CommonField::SuperCategoryCaption:
      lblSuperCategoryProblem->show(problem.text);
      break;
    default:
      lblValuesProblem->show(problem.text);
      break;
  }
}

void CommonListPane::focusProblem(const CommonProblem& problem) {
  switch (problem.field) {
    case CommonField::Caption:
      txtCaption->setFocus();
      break;
    case CommonField::CategoryCaption:
      txtCategoryCaption->setFocus();
      break;
    case CommonField::SuperCategoryCaption:
      txtSuperCategoryCaption->setFocus();
      break;
    default:
      txtFilter->clear();
      if (problem.row < 0) {
        txtNewValue->setFocus();
      } else {
        select(problem.row, ValuesModel::Name);
        tblValues->setFocus();
      }
      break;
  }
}

void CommonListPane::clearProblems() {
  for (ProblemLabel* label :
       {lblCaptionProblem, lblCategoryProblem, lblSuperCategoryProblem, lblNewProblem, lblValuesProblem})
    label->clear();
}

bool CommonListPane::hasLeftOver() const {
  return !refused_.isEmpty() || !txtNewValue->text().trimmed().isEmpty();
}

QString CommonListPane::leftOver() {
  if (!refused_.isEmpty()) {
    lblValuesProblem->show(refused_);
    tblValues->setFocus();
    told_ = true;
    return refused_;
  }
  const QString name = txtNewValue->text().trimmed();
  if (name.isEmpty()) return {};
  const QString problem = buffer_.nameProblem(list_, -1, name);
  const QString text = problem.isEmpty() ? texts::notAdded.arg(name) : texts::nameOfValue.arg(name, problem);
  lblNewProblem->show(text);
  txtNewValue->setFocus();
  return text;
}

}  // namespace hourbook
