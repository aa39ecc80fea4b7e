#include "companions/settings/common/problemlabel.h"

#include <QEvent>

namespace hourbook {

namespace {

// Both keep a contrast of more than 4.5 to the usual window colours.
constexpr QRgb redOnLight = 0xffb3261e;
constexpr QRgb redOnDark = 0xffff9a92;
constexpr int darkBelow = 128;  // lightness

}  // namespace

ProblemLabel::ProblemLabel(QWidget* field, QWidget* parent) : QLabel(parent), field_(field) {
  setWordWrap(true);
  setTextFormat(Qt::PlainText);
  hide();
}

void ProblemLabel::show(const QString& text, Kind kind) {
  kind_ = kind;
  setText(text);
  setVisible(!text.isEmpty());
  if (field_) field_->setAccessibleDescription(text);
  paintInColour();
}

void ProblemLabel::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  // Its own palette comes from the parent's in everything but the text.
  if (event->type() == QEvent::ParentChange || event->type() == QEvent::StyleChange) paintInColour();
  if (event->type() == QEvent::PaletteChange) paintInColour();
}

void ProblemLabel::paintInColour() {
  const QPalette base = parentWidget() ? parentWidget()->palette() : QPalette();
  QColor colour = base.color(QPalette::WindowText);
  if (kind_ == Kind::Problem)
    colour = base.color(QPalette::Window).lightness() < darkBelow ? redOnDark : redOnLight;
  if (palette().color(QPalette::WindowText) == colour) return;
  QPalette own;
  own.setColor(QPalette::WindowText, colour);
  setPalette(own);
}

QString withoutMnemonic(const QString& text) {
  QString plain = text;
  for (qsizetype at = plain.indexOf(u'&'); at >= 0; at = plain.indexOf(u'&', at + 1)) plain.remove(at, 1);
  return plain;
}

void nameControl(QWidget* control, const QString& label, const QString& objectName) {
  control->setAccessibleName(withoutMnemonic(label));
  control->setObjectName(objectName);
}

}  // namespace hourbook
