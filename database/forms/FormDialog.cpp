#include "database/forms/FormDialog.h"

#include <QAbstractButton>
#include <QLayout>
#include <QScreen>
#include <QStyle>

namespace hourbook {

using namespace Qt::StringLiterals;

namespace {

/// Letters that a window has room for in a line.
inline constexpr int lettersInLine = 56;

}  // namespace

FormDialog::FormDialog(platform::forms::Control& form, QWidget* parent) : QDialog(parent) {
  setObjectName(form.Name());
  connect(&form, &platform::forms::Control::propertyChanged, this, [this, &form] {
    if (!form.Visible()) accept();
  });
}

void FormDialog::Activate() {
  raise();
  activateWindow();
}

void FormDialog::SetWindowPos(int insertAfter, quint32) {
  constexpr int topMost = -1;
  setWindowFlag(Qt::WindowStaysOnTopHint, insertAfter == topMost);
}

int FormDialog::lineWidth() const {
  constexpr double ofScreen = 0.8;
  const int room = static_cast<int>(screen()->availableGeometry().width() * ofScreen);
  return qMin(fontMetrics().averageCharWidth() * lettersInLine, room);
}

void FormDialog::breakLines(QAbstractButton* button) const {
  const int indicator = style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth) +
                        style()->pixelMetric(QStyle::PM_RadioButtonLabelSpacing);
  const int width = lineWidth() - indicator;
  const auto isLong = [&](const QString& line) {
    return fontMetrics().size(Qt::TextShowMnemonic, line).width() > width;
  };
  QStringList lines;
  for (const QString& word : button->text().split(u' ')) {
    if (!lines.isEmpty() && !isLong(lines.last() + u' ' + word))
      lines.last() += u' ' + word;
    else
      lines.append(word);
  }
  button->setText(lines.join(u'\n'));
}

void FormDialog::fitTo(const QLayout& page) {
  const int width = qMax(page.totalMinimumSize().width(), lineWidth());
  // a wrapped text is as high as the width makes it, which a window does not see to by itself
  const int height =
      page.hasHeightForWidth() ? page.totalHeightForWidth(width) : page.totalSizeHint().height();
  resize(width, height);
}

}  // namespace hourbook
