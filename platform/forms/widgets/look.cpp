#include "platform/forms/widgets/look.h"

namespace platform::forms {

QColor colorFromBgr(qint32 color) {
  if (color < 0) return {};
  return QColor(color & 0xff, (color >> 8) & 0xff, (color >> 16) & 0xff);
}

QColor readableOn(const QColor& background) {
  const double luminance =
      0.299 * background.redF() + 0.587 * background.greenF() + 0.114 * background.blueF();
  return luminance > 0.5 ? QColor(Qt::black) : QColor(Qt::white);
}

QFont fontFor(const QString& family, double points, const QFont& desktop) {
  constexpr double designSize = 8;
  QFont font = desktop;
  if (!family.isEmpty() && family.compare(QLatin1String("Tahoma"), Qt::CaseInsensitive) != 0)
    font.setFamilies({family});
  if (points > 0 && points != designSize) {
    const double factor = points / designSize;
    if (desktop.pointSizeF() > 0)
      font.setPointSizeF(desktop.pointSizeF() * factor);
    else
      font.setPixelSize(qMax(1, qRound(desktop.pixelSize() * factor)));
  }
  return font;
}

}  // namespace platform::forms
