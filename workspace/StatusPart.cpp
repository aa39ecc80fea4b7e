#include "workspace/StatusPart.h"

#include "shell/ShellValues.h"
#include "workspace/modStatusLine.h"
#include "workspace/WorkspaceValues.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>

namespace hourbook {

namespace {
inline constexpr int progressSteps = 1000;
inline constexpr int progressLetters = 14;  // as wide as so many
}  // namespace

StatusPart::StatusPart(ReportForm& form, QWidget* parent)
    : QWidget(parent), form_(form), text_(new QLabel(this)), progress_(new QProgressBar(this)) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins({});
  row->addWidget(text_);
  row->addWidget(progress_);
  row->addStretch();
  text_->setObjectName(QStringLiteral("status"));
  text_->setTextFormat(Qt::PlainText);
  progress_->setObjectName(QStringLiteral("progress"));
  progress_->setRange(0, progressSteps);
  progress_->setTextVisible(false);
  progress_->hide();
  connect(&form_, &ReportForm::listFetching, this, &StatusPart::showFetching);
  connect(&form_, &ReportForm::listFetched, this, &StatusPart::showList);
  connect(&form_.exsThisWeek, &platform::owc::Spreadsheet::cellsChanged, this, &StatusPart::showListSoon);
}

void StatusPart::showFetching(double part) {
  if (progress_->isHidden()) {
    // The room stays as it is, or all around would move twice with each fetch.
    setMinimumWidth(width());
    text_->setText(phrases().LNGFETCHINGAPPS);
    progress_->setAccessibleName(phrases().LNGFETCHINGAPPS);
    progress_->setFixedSize(progress_->fontMetrics().averageCharWidth() * progressLetters,
                            text_->sizeHint().height());
    progress_->setValue(0);
    progress_->show();
    layout()->activate();
  }
  progress_->setValue(qRound(part * progressSteps));
  if (isVisible()) repaint();
}

void StatusPart::showList() {
  changed_ = false;
  setMinimumWidth(0);
  progress_->hide();
  text_->setText(fncStatusText());
}

/// Many cells change at a time, and the count is taken once behind them all.
void StatusPart::showListSoon() {
  if (changed_ || workspaceValues().gFetching) return;
  changed_ = true;
  QMetaObject::invokeMethod(
      this,
      [this] {
        if (changed_ && !workspaceValues().gFetching && workspaceValues().fetchMilliseconds) showList();
        changed_ = false;
      },
      Qt::QueuedConnection);
}

}  // namespace hourbook
