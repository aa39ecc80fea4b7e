#include "companions/settings/common/commonsettingspage.h"

#include "companions/settings/common/commonbillingpane.h"
#include "companions/settings/common/commoncostpane.h"
#include "companions/settings/common/commonlistpane.h"
#include "companions/settings/common/commontexts.h"
#include "companions/settings/common/removedanswers.h"
#include "platform/dialogs/dialogs.h"
#include "shell/ShellValues.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::Failure;
namespace texts = commontexts;

namespace {

enum Tab { costTab, firstListTab, otherTab = 4, billingTab };

constexpr qint32 targetAsp = 1;

/// A caption as a tab shows it: its "&" is no mnemonic.
QString listTitle(const CommonList& list, int number) {
  const QString caption = QString(list.caption).replace(u"&"_s, u"&&"_s);
  return caption.isEmpty() ? texts::listTabUnused.arg(number)
                           : texts::listTab.arg(QString::number(number), caption);
}

QString placeText(const ReportPlace& place, const CommonBuffer& buffer) {
  QString text = buffer.isNew ? texts::placeNew : texts::placeText.arg(buffer.place);
  if (place.choice == targetAsp) text += u' ' + texts::aspPlace;
  return text;
}

/// A database that is yet to be made is to be made elsewhere: what was typed for it goes there.
void moveNewBuffer(CommonBuffer& buffer, CommonBuffer to) {
  const bool ownTarget = buffer.edited.reportTo != buffer.stored.reportTo ||
                         buffer.edited.reportToValue != buffer.stored.reportToValue;
  const CommonContent fresh = to.stored;
  to.edited = buffer.edited;
  if (!ownTarget) {
    to.edited.reportTo = fresh.reportTo;
    to.edited.reportToValue = fresh.reportToValue;
  }
  buffer = to;
}

}  // namespace

std::unique_ptr<SettingsPage> makeCommonSettingsPage(std::function<ReportPlace()> place,
                                                     std::shared_ptr<BillingDownload> download) {
  return std::make_unique<CommonSettingsPage>(std::move(place), std::move(download));
}

CommonSettingsPage::CommonSettingsPage(std::function<ReportPlace()> place,
                                       std::shared_ptr<BillingDownload> download)
    : place_(std::move(place)) {
  setObjectName(u"CommonSettingsPage"_s);
  makeControls(download);
  layOut();
  connectPanes();
  read();
}

/// The sections work on the buffer, so they go while it is there, and tell nobody any more.
CommonSettingsPage::~CommonSettingsPage() {
  for (QObject* pane : tabSections->findChildren<QWidget*>()) disconnect(pane, nullptr, this, nullptr);
  delete tabSections;
}

void CommonSettingsPage::makeControls(const std::shared_ptr<BillingDownload>& download) {
  lblPlace = new QLabel(this);
  lblPlace->setObjectName(u"lblPlace"_s);
  lblPlace->setTextFormat(Qt::PlainText);
  lblPlace->setWordWrap(true);
  cmdReadAgain = new QPushButton(texts::readAgain, this);
  nameControl(cmdReadAgain, texts::readAgain, u"cmdReadAgain"_s);
  cmdReadAgain->setAutoDefault(false);
  lblMessage = new ProblemLabel(cmdReadAgain, this);
  lblMessage->setObjectName(u"lblMessage"_s);
  tabSections = new QTabWidget(this);
  nameControl(tabSections, texts::sections, u"tabSections"_s);
  nameControl(tabSections->tabBar(), texts::sections, u"tabSectionsBar"_s);
  // Without a database the message stands at the top, where the sections leave it.
  QSizePolicy size = tabSections->sizePolicy();
  size.setRetainSizeWhenHidden(true);
  tabSections->setSizePolicy(size);
  costPane_ = new CommonCostPane(buffer_);
  tabSections->addTab(costPane_, texts::costTab);
  for (int list = 0; list < 3; ++list) {
    listPanes_[list] = new CommonListPane(buffer_, list);
    tabSections->addTab(listPanes_[list], QString());
  }
  tabSections->addTab(makeOtherPane(), texts::otherTab);
  billingPane_ = new CommonBillingPane(buffer_, download);
  tabSections->addTab(billingPane_, texts::billingTab);
}

QWidget* CommonSettingsPage::makeOtherPane() {
  auto* pane = new QWidget;
  chkDepartment = new QCheckBox(texts::department, pane);
  nameControl(chkDepartment, texts::department, u"chkDepartment"_s);
  chkDepartment->setToolTip(texts::departmentTip);
  auto* layout = new QVBoxLayout(pane);
  layout->addWidget(chkDepartment);
  layout->addStretch();
  return pane;
}

void CommonSettingsPage::layOut() {
  auto* head = new QHBoxLayout;
  head->addWidget(lblPlace, 1);
  head->addWidget(cmdReadAgain, 0, Qt::AlignTop);
  auto* all = new QVBoxLayout(this);
  all->addLayout(head);
  all->addWidget(lblMessage);
  all->addWidget(tabSections, 1);
}

void CommonSettingsPage::connectPanes() {
  connect(cmdReadAgain, &QPushButton::clicked, this, &CommonSettingsPage::readAgain);
  connect(costPane_, &CommonCostPane::edited, this, &CommonSettingsPage::noteEdit);
  connect(billingPane_, &CommonBillingPane::edited, this, &CommonSettingsPage::noteEdit);
  connect(billingPane_, &CommonBillingPane::downloaded, this, &CommonSettingsPage::read);
  // The section itself would not see these keys from every control: a drop-down takes them for letters.
  const auto leaf = [this](QKeySequence::StandardKey keys, int step) {
    auto* shortcut = new QShortcut(this);
    shortcut->setKeys(keys);
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, [this, step] {
      const int count = tabSections->count();
      tabSections->setCurrentIndex((tabSections->currentIndex() + step + count) % count);
    });
  };
  leaf(QKeySequence::NextChild, 1);
  leaf(QKeySequence::PreviousChild, -1);
  for (CommonListPane* pane : listPanes_) {
    connect(pane, &CommonListPane::edited, this, &CommonSettingsPage::noteEdit);
    connect(pane, &CommonListPane::captionEdited, this, [this] {
      showTabs();
      costPane_->reloadRules();
      for (CommonListPane* other : listPanes_) other->checkCaption();
    });
  }
  connect(chkDepartment, &QCheckBox::toggled, this, [this](bool on) {
    buffer_.edited.departmentAsked = on;
    noteEdit();
  });
}

void CommonSettingsPage::noteEdit() {
  billingPane_->setPageChanged(buffer_.isChanged());
  Q_EMIT changed();
}

void CommonSettingsPage::read() {
  readPlace_ = place_();
  QString message;
  try {
    buffer_ = readCommonSettings(*readPlace_);
    reached_ = true;
    if (!buffer_.notWritable.isEmpty()) message = texts::readOnly.arg(buffer_.notWritable);
  } catch (const Failure& failure) {
    buffer_ = CommonBuffer();
    reached_ = false;
    message = texts::unreachable.arg(failure.description());
  }
  lblPlace->setText(reached_ ? placeText(*readPlace_, buffer_) : QString());
  reload();
  showMessage(message);
}

void CommonSettingsPage::reload() {
  tabSections->setVisible(reached_);
  costPane_->reload();
  for (CommonListPane* pane : listPanes_) pane->reload();
  billingPane_->reload();
  const QSignalBlocker quiet(chkDepartment);
  chkDepartment->setChecked(buffer_.edited.departmentAsked);
  chkDepartment->setEnabled(buffer_.notWritable.isEmpty());
  showTabs();
}

void CommonSettingsPage::showTabs() {
  for (int list = 0; list < 3; ++list)
    tabSections->setTabText(firstListTab + list, listTitle(buffer_.edited.lists[list], list + 1));
}

void CommonSettingsPage::showMessage(const QString& text) {
  lblMessage->show(text);
}

void CommonSettingsPage::readAgain() {
  using namespace platform::dialogs;
  if (isChanged() && Dialogs::current().MsgBox(texts::readAgainLoses, vbYesNo + vbQuestion, gTitle) != vbYes)
    return;
  read();
  Q_EMIT changed();
}

bool CommonSettingsPage::followPlace() {
  const ReportPlace place = place_();
  if (place == *readPlace_) return true;
  if (readPlace_->isNew && place.isNew) {
    moveNewBuffer(buffer_, readCommonSettings(place));
    readPlace_ = place;
    costPane_->reload();
    return true;
  }
  if (isChanged()) return false;
  read();
  Q_EMIT changed();
  return true;
}

void CommonSettingsPage::aboutToShow() {
  if (!followPlace()) showMessage(texts::otherPlace.arg(buffer_.place));
}

QString CommonSettingsPage::title() const {
  return texts::title;
}

bool CommonSettingsPage::isChanged() const {
  if (!reached_) return false;
  for (const CommonListPane* pane : listPanes_)
    if (pane->hasLeftOver()) return true;
  return buffer_.isChanged();
}

QList<NamedList> CommonSettingsPage::commonLists() {
  QList<NamedList> lists;
  followPlace();
  if (!reached_) return lists;
  for (const CommonList& list : buffer_.edited.lists) {
    if (list.caption.isEmpty()) continue;
    NamedList named{list.caption, {}};
    for (const CommonValue& value : list.values) named.values.append(value.name);
    lists.append(named);
  }
  return lists;
}

// ---- before OK

QString CommonSettingsPage::leftOver() {
  for (int list = 0; list < 3; ++list) {
    if (!listPanes_[list]->hasLeftOver()) continue;
    tabSections->setCurrentIndex(firstListTab + list);
    return listPanes_[list]->leftOver();
  }
  return {};
}

QString CommonSettingsPage::problem() {
  const bool follows = followPlace();
  if (!isChanged()) return {};
  clearProblems();
  if (!follows) {
    const QString text = texts::otherPlace.arg(buffer_.place);
    showMessage(text);
    cmdReadAgain->setFocus();
    return text;
  }
  if (const QString text = leftOver(); !text.isEmpty()) return text;
  const QList<CommonProblem> problems = buffer_.problems();
  if (problems.isEmpty()) return {};
  showProblems(problems);
  return problems.first().text;
}

int CommonSettingsPage::tabOf(const CommonProblem& problem) const {
  if (problem.list >= 0) return firstListTab + problem.list;
  const bool billing = problem.field == CommonField::BillingLocation ||
                       problem.field == CommonField::BillingUser ||
                       problem.field == CommonField::BillingPassword;
  return billing ? billingTab : costTab;
}

/// Of several at one field the first one stays; the first of all has the focus.
void CommonSettingsPage::showProblems(const QList<CommonProblem>& problems) {
  for (auto problem = problems.crbegin(); problem != problems.crend(); ++problem) {
    if (problem->list >= 0) listPanes_[problem->list]->showProblem(*problem);
    costPane_->showProblem(*problem);
    billingPane_->showProblem(*problem);
  }
  const CommonProblem& first = problems.first();
  tabSections->setCurrentIndex(tabOf(first));
  if (first.list >= 0) listPanes_[first.list]->focusProblem(first);
  costPane_->focusProblem(first);
  billingPane_->focusProblem(first);
}

void CommonSettingsPage::clearProblems() {
  costPane_->clearProblems();
  billingPane_->clearProblems();
  for (CommonListPane* pane : listPanes_) pane->clearProblems();
  showMessage({});
}

// ---- OK

QList<RemovedAnswer> CommonSettingsPage::askRemoved() const {
  QList<RemovedAnswer> answers;
  for (const RemovedValue& removed : buffer_.removedValues()) {
    QStringList candidates;
    for (const CommonValue& value : buffer_.edited.lists[removed.list].values) candidates.append(value.name);
    answers.append(askAboutRemoved(removed, candidates));
  }
  return answers;
}

QStringList CommonSettingsPage::unanswered(const QList<RemovedAnswer>& answers) const {
  QStringList names;
  const QList<RemovedValue> removed = buffer_.removedValues();
  for (qsizetype i = 0; i < removed.size(); ++i)
    if (answers[i].outcome == RemovedAnswer().outcome) names.append(removed[i].name);
  return names;
}

void CommonSettingsPage::apply() {
  if (!reached_ || !buffer_.isChanged()) return;
  // A database that was yet to be made stands now.
  ReportPlace place = *readPlace_;
  place.isNew = false;
  try {
    const QList<RemovedAnswer> answers = askRemoved();
    const QStringList staying = unanswered(answers);
    writeCommonSettings(place, buffer_, answers);
    readPlace_ = place;
    reload();
    lblPlace->setText(placeText(place, buffer_));
    showMessage(staying.isEmpty() ? QString() : texts::notAnswered.arg(staying.join(u", "_s)));
  } catch (const Failure& failure) {
    const bool byOthers = failure.number() == changedByOthersNumber;
    const QString text = byOthers ? failure.description() : texts::saveFailed.arg(failure.description());
    showMessage(text);
    if (byOthers) cmdReadAgain->setFocus();
    throw Failure(failure.number(), text);
  }
}

}  // namespace hourbook
