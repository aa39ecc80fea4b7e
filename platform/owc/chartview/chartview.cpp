#include "platform/owc/chartview/chartview.h"

#include "platform/owc/chartview/chartdrawing.h"
#include "platform/owc/chartview/chartpicture.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace platform::owc {

namespace {

/// Made only when a screen reader asks, so that an unheard chart costs nothing.
class AccessibleChart : public QAccessibleWidget {
 public:
  explicit AccessibleChart(ChartView* view) : QAccessibleWidget(view, QAccessible::Chart), view_(view) {}

  QString text(QAccessible::Text kind) const override {
    const QString told = QAccessibleWidget::text(kind);
    if (!told.isEmpty()) return told;
    if (kind == QAccessible::Name) return view_->seriesInWords();
    if (kind == QAccessible::Description || kind == QAccessible::Value) return view_->dataInWords();
    return told;
  }

 private:
  ChartView* view_;
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object) {
  auto* view = qobject_cast<ChartView*>(object);
  return view ? new AccessibleChart(view) : nullptr;
}

}  // namespace

ChartView::ChartView(ChartSpace& space, QWidget* parent) : QWidget(parent), space_(&space) {
  static const bool accessible = (QAccessible::installFactory(makeAccessible), true);
  Q_UNUSED(accessible)
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::TabFocus);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  space.setPainter(&paperPainter());
  connect(&space, &ChartSpace::changed, this, &ChartView::followChange);
  connect(&space, &QObject::destroyed, this, &ChartView::followChange);
}

ChartView::~ChartView() = default;

const ChartDrawing& ChartView::drawing() const {
  const ChartSpace none;
  if (!drawing_)
    drawing_ = std::make_unique<ChartDrawing>(space_ ? *space_ : none, ChartLook{palette(), font()}, size());
  return *drawing_;
}

void ChartView::followChange() {
  current_.reset();
  outdate();
  if (!QAccessible::isActive()) return;
  QAccessibleEvent event(this, QAccessible::DescriptionChanged);
  QAccessible::updateAccessibility(&event);
}

void ChartView::outdate() {
  drawing_.reset();
  update();
}

QSize ChartView::sizeHint() const {
  return {fontMetrics().height() * 30, fontMetrics().height() * 14};
}

QSize ChartView::minimumSizeHint() const {
  return {fontMetrics().height() * 8, fontMetrics().height() * 4};
}

// Words

QString ChartView::seriesInWords() const {
  QStringList names = drawing().figures().names;
  names.removeAll(QString());
  return names.join(QStringLiteral(", "));
}

QString ChartView::dataInWords() const {
  return figuresInWords(drawing().figures());
}

QString ChartView::textAt(const QPoint& place) const {
  const std::optional<qsizetype> category = drawing().categoryAt(place);
  return category ? categoryInWords(drawing().figures(), *category) : QString();
}

QString ChartView::toolTipOf(qsizetype category) const {
  const QString text = categoryInWords(drawing().figures(), category);
  return QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped());  // names are nobody's markup
}

// Events

bool ChartView::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  if (const std::optional<qsizetype> category = drawing().categoryAt(help->pos()))
    QToolTip::showText(help->globalPos(), toolTipOf(*category), this, drawing().areaOf(*category).toRect());
  else
    QToolTip::hideText();
  return true;
}

void ChartView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  drawing().paint(painter);
  if (!hasFocus()) return;
  const QRectF marked = current_ ? drawing().areaOf(*current_) : QRectF(rect()).adjusted(0, 0, -1, -1);
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(marked.adjusted(1, 1, -1, -1));
}

void ChartView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  outdate();
}

void ChartView::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  switch (event->type()) {
    case QEvent::FontChange:
    case QEvent::PaletteChange:
    case QEvent::StyleChange:
    case QEvent::LocaleChange:
      outdate();
      break;
    default:
      break;
  }
}

void ChartView::moveTo(qsizetype category) {
  const qsizetype count = drawing().figures().isEmpty() ? 0 : drawing().figures().count();
  if (count == 0 || drawing().frame().plot.isEmpty()) return;
  current_ = std::clamp<qsizetype>(category, 0, count - 1);
  update();
  const QPoint place = drawing().areaOf(*current_).center().toPoint();
  QToolTip::showText(mapToGlobal(place), toolTipOf(*current_), this);
}

void ChartView::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Right:
    case Qt::Key_Down:
      moveTo(current_ ? *current_ + 1 : 0);
      break;
    case Qt::Key_Left:
    case Qt::Key_Up:
      moveTo(current_ ? *current_ - 1 : 0);
      break;
    case Qt::Key_Home:
      moveTo(0);
      break;
    case Qt::Key_End:
      moveTo(drawing().figures().count() - 1);
      break;
    default:
      QWidget::keyPressEvent(event);
  }
}

void ChartView::focusOutEvent(QFocusEvent* event) {
  current_.reset();
  QToolTip::hideText();
  QWidget::focusOutEvent(event);
}

}  // namespace platform::owc
