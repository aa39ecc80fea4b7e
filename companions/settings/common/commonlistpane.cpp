#include "companions/settings/common/commonlistpane.h"

#include "companions/settings/common/commontexts.h"
#include "companions/settings/common/textfilter.h"
#include "companions/settings/common/valuedelegate.h"
#include "companions/settings/common/valuesmodel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace hourbook {

using namespace Qt::StringLiterals;
namespace texts = commontexts;

namespace {

QLabel* buddyLabel(const QString& text, QWidget* field) {
  auto* label = new QLabel(text);
  label->setBuddy(field);
  return label;
}

}  // namespace

CommonListPane::CommonListPane(CommonBuffer& buffer, int list, QWidget* parent)
    : QWidget(parent), buffer_(buffer), list_(list) {
  makeControls();
  makeTable();
  layOut();
  connectCaptions();
  connectValues();
  connectTable();
  reload();
}

void CommonListPane::makeControls() {
  const auto line = [this](const QString& label, const QString& name) {
    auto* edit = new QLineEdit(this);
    nameControl(edit, label, name);
    return edit;
  };
  const auto button = [this](const QString& label, const QString& tip, const QString& name) {
    auto* made = new QPushButton(label, this);
    nameControl(made, label, name);
    made->setToolTip(tip);
    made->setAutoDefault(false);
    return made;
  };
  txtCaption = line(texts::captionLabel, u"txtCaption"_s);
  if (list_ == 2) txtCaption->setToolTip(texts::captionTip);
  lblCaptionProblem = new ProblemLabel(txtCaption, this);
  txtCategoryCaption = line(texts::categoryLabel, u"txtCategoryCaption"_s);
  lblCategoryProblem = new ProblemLabel(txtCategoryCaption, this);
  txtSuperCategoryCaption = line(texts::superCategoryLabel, u"txtSuperCategoryCaption"_s);
  lblSuperCategoryProblem = new ProblemLabel(txtSuperCategoryCaption, this);
  txtNewValue = line(texts::newLabel, u"txtNewValue"_s);
  cmdAdd = button(texts::add, texts::addTip, u"cmdAdd"_s);
  lblNewProblem = new ProblemLabel(txtNewValue, this);
  txtFilter = line(texts::filterLabel, u"txtFilter"_s);
  txtFilter->setPlaceholderText(texts::filterHint);
  txtFilter->setClearButtonEnabled(true);
  cmbSort = new QComboBox(this);
  nameControl(cmbSort, texts::sortLabel, u"cmbSort"_s);
  chkSortDown = new QCheckBox(texts::sortDown, this);
  nameControl(chkSortDown, texts::sortDown, u"chkSortDown"_s);
  tblValues = new QTableView(this);
  nameControl(tblValues, texts::tableName.arg(list_ + 1), u"tblValues"_s);
  lblValuesProblem = new ProblemLabel(tblValues, this);
  lblValuesProblem->setObjectName(u"lblValuesProblem"_s);
  lblCount = new QLabel(this);
  lblCount->setObjectName(u"lblCount"_s);
  cmdRename = button(texts::rename, texts::renameTip, u"cmdRename"_s);
  cmdRemove = button(texts::remove, texts::removeTip, u"cmdRemove"_s);
  cmdPaste = button(texts::paste, texts::pasteTip, u"cmdPaste"_s);
}

void CommonListPane::makeTable() {
  model_ = new ValuesModel(buffer_, list_, this);
  shown_ = new TextFilter(this);
  shown_->setSourceModel(model_);
  tblValues->setModel(shown_);
  tblValues->setItemDelegate(new ValueDelegate(
      [this](const QModelIndex& index, const QString& text) {
        return model_->problem(shown_->mapToSource(index), text);
      },
      [this](int column) { return model_->heading(column); }, tblValues));
  tblValues->setSelectionBehavior(QAbstractItemView::SelectRows);
  tblValues->setTabKeyNavigation(false);  // Tab leaves the table, as every other control
  tblValues->setAlternatingRowColors(true);
  tblValues->setSortingEnabled(true);
  tblValues->sortByColumn(ValuesModel::Name, Qt::AscendingOrder);
  // Rows of one height are laid out without asking each for its own.
  tblValues->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  tblValues->verticalHeader()->setDefaultSectionSize(tblValues->fontMetrics().height() + 8);
  tblValues->verticalHeader()->hide();
  QHeaderView* header = tblValues->horizontalHeader();
  const int letter = tblValues->fontMetrics().averageCharWidth();
  header->setHighlightSections(false);
  header->setSectionResizeMode(QHeaderView::Interactive);
  header->setSectionResizeMode(ValuesModel::Name, QHeaderView::Stretch);
  header->resizeSection(ValuesModel::Category, 20 * letter);
  header->resizeSection(ValuesModel::SuperCategory, 20 * letter);
  header->resizeSection(ValuesModel::Rate, 14 * letter);
  header->resizeSection(ValuesModel::Enabled, 12 * letter);
}

void CommonListPane::layOut() {
  auto* captions = new QFormLayout;
  const auto row = [captions](const QString& label, QWidget* field, ProblemLabel* problem) {
    captions->addRow(buddyLabel(label, field), field);
    captions->addRow(QString(), problem);
  };
  row(texts::captionLabel, txtCaption, lblCaptionProblem);
  row(texts::categoryLabel, txtCategoryCaption, lblCategoryProblem);
  row(texts::superCategoryLabel, txtSuperCategoryCaption, lblSuperCategoryProblem);
  auto* adding = new QHBoxLayout;
  adding->addWidget(txtNewValue);
  adding->addWidget(cmdAdd);
  captions->addRow(buddyLabel(texts::newLabel, txtNewValue), adding);
  captions->addRow(QString(), lblNewProblem);
  auto* finding = new QHBoxLayout;
  finding->addWidget(txtFilter, 1);
  finding->addWidget(buddyLabel(texts::sortLabel, cmbSort));
  finding->addWidget(cmbSort);
  finding->addWidget(chkSortDown);
  captions->addRow(buddyLabel(texts::filterLabel, txtFilter), finding);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(lblCount, 1);
  for (QPushButton* button : {cmdRename, cmdRemove, cmdPaste}) buttons->addWidget(button);
  auto* all = new QVBoxLayout(this);
  all->addLayout(captions);
  all->addWidget(tblValues, 1);
  all->addWidget(lblValuesProblem);
  all->addLayout(buttons);
}

void CommonListPane::connectCaptions() {
  const auto caption = [this](QLineEdit* edit, QString CommonList::*member, auto check) {
    connect(edit, &QLineEdit::textEdited, this, [this, member, check](const QString& text) {
      buffer_.edited.lists[list_].*member = text.trimmed();
      check();
      model_->reloadHeadings();
      reloadSortColumns();
      Q_EMIT captionEdited();
      Q_EMIT edited();
    });
  };
  const auto list = [this]() -> const CommonList& { return buffer_.edited.lists[list_]; };
  caption(txtCaption, &CommonList::caption, [this] { checkCaption(); });
  caption(txtCategoryCaption, &CommonList::categoryCaption,
          [this, list] { lblCategoryProblem->show(columnProblem(list().categoryCaption)); });
  caption(txtSuperCategoryCaption, &CommonList::superCategoryCaption,
          [this, list] { lblSuperCategoryProblem->show(columnProblem(list().superCategoryCaption)); });
}

}  // namespace hourbook
