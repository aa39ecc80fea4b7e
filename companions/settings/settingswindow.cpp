#include "companions/settings/settingswindow.h"

#include "companions/settings/appointmentspage.h"
#include "companions/settings/calendarpage.h"
#include "companions/settings/listspage.h"
#include "companions/settings/targetpage.h"
#include "companions/settings/texts.h"
#include "shell/ShellValues.h"

#include <QAccessible>
#include <QApplication>
#include <QBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QStackedWidget>

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::Failure;

namespace {

inline constexpr int baseWidth = 760, baseHeight = 620;  // on a screen with room

/// A page scrolls where the screen has no room for it, and where the focus goes to in it is always in sight.
class PageArea : public QScrollArea {
 public:
  explicit PageArea(QWidget* page) {
    setWidget(page);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
      if (now && isAncestorOf(now)) ensureWidgetVisible(now);
    });
  }
  /// As wide as the page needs, so that it scrolls up and down only; unless the screen is too narrow for
  /// that.
  QSize minimumSizeHint() const override {
    const QSize usual = QScrollArea::minimumSizeHint();
    const int needed = widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width();
    return {qBound(usual.width(), needed, qMax(usual.width(), mostWidth)), usual.height()};
  }
  int mostWidth = 0;
};

}  // namespace

SettingsWindow::SettingsWindow(SettingsStore& store, SettingsQuestions questions,
                               std::function<bool(const QString& provider)> hasDriver,
                               const CommonPage& common)
    : session_{store, std::move(questions), {}, {}, std::move(hasDriver)} {
  setObjectName(u"SettingsWindow"_s);
  setWindowTitle(texts::windowTitle);
  session_.load();
  lstPages = new QListWidget(this);
  nameControl(lstPages, texts::pages, u"lstPages"_s);
  lstPages->setToolTip(texts::pagesTip);
  stack_ = new QStackedWidget(this);
  auto calendar = std::make_unique<CalendarPage>(session_);
  connect(calendar.get(), &CalendarPage::takenOver, this, &SettingsWindow::loadPages);
  addPage(std::move(calendar));
  addPage(std::make_unique<TargetPage>(session_));
  if (common) {
    auto page = common([this] { return session_.place(); });
    common_ = page.get();
    session_.commonLists = [this] { return common_->commonLists(); };
    addPage(std::move(page));
  }
  addPage(std::make_unique<ListsPage>(session_));
  addPage(std::make_unique<AppointmentsPage>(session_));
  layOut();
  loadPages();
  connect(lstPages, &QListWidget::currentRowChanged, this, &SettingsWindow::showPage);
  lstPages->setCurrentRow(0);
}

void SettingsWindow::addPage(std::unique_ptr<SettingsPage> page) {
  connect(page.get(), &SettingsPage::changed, this, [this] { lblProblem->clear(); });
  lstPages->addItem(page->title());
  pages_.append(page.get());
  stack_->addWidget(new PageArea(page.release()));
}

void SettingsWindow::layOut() {
  lblProblem = new ProblemLabel(nullptr, this);
  lblProblem->setObjectName(u"lblProblem"_s);
  cmdOK = named(new QPushButton(phrases().LNGOK, this), phrases().LNGOK, u"cmdOK"_s);
  cmdOK->setDefault(true);
  connect(cmdOK, &QPushButton::clicked, this, &SettingsWindow::accept);
  cmdCancel = named(new QPushButton(phrases().LNGCANCEL, this), phrases().LNGCANCEL, u"cmdCancel"_s);
  cmdCancel->setAutoDefault(false);
  connect(cmdCancel, &QPushButton::clicked, this, &SettingsWindow::reject);
  lstPages->setFixedWidth(lstPages->sizeHintForColumn(0) + 2 * lstPages->frameWidth() +
                          lstPages->fontMetrics().horizontalAdvance(u"00"_s));
  auto* middle = new QHBoxLayout;
  middle->addWidget(lstPages);
  middle->addWidget(stack_, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(lblProblem, 1);
  buttons->addStretch();
  buttons->addWidget(cmdOK);
  buttons->addWidget(cmdCancel);
  auto* all = new QVBoxLayout(this);
  all->addLayout(middle, 1);
  all->addLayout(buttons);
  for (const auto& [key, by] : {std::pair(Qt::Key_PageUp, -1), std::pair(Qt::Key_PageDown, 1)}) {
    auto* shortcut = new QShortcut(QKeySequence(Qt::CTRL | key), this);
    connect(shortcut, &QShortcut::activated, this, [this, step = by] { this->step(step); });
  }
  const QRect room = screen()->availableGeometry();
  const int beside =
      lstPages->width() + 4 * fontMetrics().horizontalAdvance(u"0000"_s);  // the list and the margins
  for (auto* area : stack_->findChildren<QScrollArea*>(Qt::FindDirectChildrenOnly))
    static_cast<PageArea*>(area)->mostWidth = room.width() - beside;
  resize(qMin(baseWidth, room.width()), qMin(baseHeight, room.height()));
}

void SettingsWindow::step(int by) {
  const int row = lstPages->currentRow() + by;
  if (row >= 0 && row < lstPages->count()) lstPages->setCurrentRow(row);
}

void SettingsWindow::showPage(int row) {
  if (row < 0) return;
  // first of all, since other pages show its lists: the place of the reports may be another one now
  if (common_) common_->aboutToShow();
  if (pages_[row] != common_) pages_[row]->aboutToShow();
  stack_->setCurrentIndex(row);
}

void SettingsWindow::loadPages() {
  for (SettingsPage* page : std::as_const(pages_))
    if (auto* personal = qobject_cast<PersonalPage*>(page)) personal->reload();
}

bool SettingsWindow::isChanged() const {
  for (const SettingsPage* page : pages_)
    if (page->isChanged()) return true;
  return false;
}

// OK

bool SettingsWindow::tellProblem(int row, const QString& text) {
  lblProblem->show(texts::problemOnPage.arg(pages_[row]->title(), text));
  QAccessibleEvent told(lblProblem, QAccessible::Alert);
  QAccessible::updateAccessibility(&told);
  return true;
}

bool SettingsWindow::showProblem() {
  for (int row = 0; row < pages_.size(); ++row) {
    SettingsPage* page = pages_[row];
    if (page == common_ && session_.place().isNew && !common_->isChanged()) {
      lstPages->setCurrentRow(row);
      return tellProblem(row, texts::newNeedsCommon);
    }
    // a page that has only become what it is by another one asks again when it is looked at
    if (page->problem().isEmpty()) continue;
    lstPages->setCurrentRow(row);
    const QString text = page->problem();  // the field could not get the focus before its page was in front
    if (!text.isEmpty()) return tellProblem(row, text);
  }
  return false;
}

void SettingsWindow::readAnew() {
  session_.load();
  loadPages();
  lblProblem->clear();
}

bool SettingsWindow::mayOverwrite() {
  const QStringList changed = session_.store.changedOutside();
  if (changed.isEmpty()) return true;
  const int answer = session_.questions.choice(this, texts::changedMeanwhile.arg(changed.join(u", "_s)),
                                               {texts::keepMine, texts::readAnew});
  if (answer == 1) readAnew();
  if (answer != 0) return false;
  session_.store.acceptOutside();
  return true;
}

bool SettingsWindow::mayReplaceKept() {
  const auto replaced = session_.store.replacedCopy(session_.buffer);
  if (!replaced) return true;
  const int answer = session_.questions.choice(this, texts::keptMeanwhile.arg(replaced->name),
                                               {texts::takeOverAnswer, texts::replaceAnswer});
  if (answer == 0 &&
      session_.store.takeOver(session_.buffer, *replaced).state == KeptSettings::State::Intact) {
    loadPages();
    lblProblem->show(texts::takenOver, ProblemLabel::Kind::Note);
  }
  return answer == 1;
}

void SettingsWindow::save() {
  session_.store.save(session_.buffer, [this] {
    if (common_ && common_->isChanged()) common_->apply();
  });
}

void SettingsWindow::accept() {
  lblProblem->clear();
  if (showProblem()) return;
  QString failed;
  bool saved = false;
  try {
    if (mayOverwrite() && mayReplaceKept()) {
      save();
      saved = true;
    }
  } catch (const Failure& failure) {
    failed = failure.description();
  }
  if (saved) return QDialog::accept();
  if (!failed.isEmpty()) lblProblem->show(texts::saveFailed.arg(failed));
}

void SettingsWindow::reject() {
  if (isChanged() && session_.questions.choice(this, texts::discard, {texts::discardAnswer}) != 0) return;
  QDialog::reject();
}

}  // namespace hourbook
