#include "tests/unit/companions/common/pageworld.h"

#include <QImage>
#include <QStyleFactory>

namespace hourbook::tests {

namespace {

QPalette darkPalette() {
  QPalette palette(QColor(45, 45, 48), QColor(37, 37, 40));
  palette.setColor(QPalette::Base, QColor(30, 30, 30));
  palette.setColor(QPalette::AlternateBase, QColor(40, 40, 43));
  palette.setColor(QPalette::Text, Qt::white);
  palette.setColor(QPalette::WindowText, Qt::white);
  palette.setColor(QPalette::ButtonText, Qt::white);
  palette.setColor(QPalette::PlaceholderText, QColor(160, 160, 160));
  palette.setColor(QPalette::Disabled, QPalette::Text, QColor(130, 130, 130));
  palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(130, 130, 130));
  palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(130, 130, 130));
  palette.setColor(QPalette::ToolTipBase, QColor(60, 60, 60));
  palette.setColor(QPalette::ToolTipText, Qt::white);
  return palette;
}

/// As the eye sees brightness, 0 to 1.
double luminance(const QColor& colour) {
  const auto linear = [](double c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor& a, const QColor& b) {
  const double x = luminance(a), y = luminance(b);
  return (std::max(x, y) + 0.05) / (std::min(x, y) + 0.05);
}

}  // namespace

/// HOURBOOK_PICTURES names a folder where the pictures are kept, to be looked at.
class CommonPictures : public PageWorld, public testing::WithParamInterface<bool> {
 protected:
  CommonPictures() : before_(QApplication::palette()), style_(QApplication::style()->objectName()) {
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    QApplication::setPalette(GetParam() ? darkPalette() : QPalette(QColor(239, 239, 239)));
  }
  ~CommonPictures() override {
    page.reset();
    QApplication::setPalette(before_);
    QApplication::setStyle(QStyleFactory::create(style_));
  }
  QImage picture(const QString& name) const {
    const QImage image = page->grab().toImage();
    const QString folder = qEnvironmentVariable("HOURBOOK_PICTURES");
    if (!folder.isEmpty()) image.save(folder + u'/' + name + (GetParam() ? u"-dark.png"_s : u"-light.png"_s));
    return image;
  }

 private:
  QPalette before_;
  QString style_;
};

TEST_P(CommonPictures, ShowEverySection) {
  for (int i = 0; i < 40; ++i)
    run(u"insert into tblMeta1 (strName, strCategory, strSuperCategory, curRate, blnEnabled) values "
        "('Customer %1', 'Metal', 'North', %1.5, %2)"_s.arg(i)
            .arg(-(i % 2)));
  open();
  const QStringList sections{u"cost"_s, u"list1"_s, u"list2"_s, u"list3"_s, u"other"_s, u"billing"_s};
  for (int section = Cost; section <= Billing; ++section) {
    leafTo(section);
    const QImage image = picture(sections[section]);
    EXPECT_FALSE(image.isNull());
    // Nothing is cut: a label gets the room that its text needs.
    for (const QLabel* label : page->findChildren<QLabel*>())
      if (label->isVisible() && !label->wordWrap()) {
        EXPECT_GE(label->width(), label->sizeHint().width()) << qPrintable(label->text());
      }
    for (const QPushButton* button : page->findChildren<QPushButton*>())
      if (button->isVisible()) {
        EXPECT_GE(button->width(), button->minimumSizeHint().width()) << qPrintable(button->text());
      }
  }
}

TEST_P(CommonPictures, ShowProblemsInAColourThatCanBeRead) {
  open();
  leafTo(List1);
  tabTo(u"txtNewValue"_s);
  type(u"A;B"_s);
  picture(u"problem"_s);
  const QString reason = u"A name must not hold \";\", which separates values where they are stored."_s;
  for (const QLabel* label : page->findChildren<QLabel*>())
    if (label->text() == reason) {
      EXPECT_GT(
          contrast(label->palette().color(QPalette::WindowText), page->palette().color(QPalette::Window)),
          4.5);
    }
  EXPECT_TRUE(shows(reason));
}

TEST_P(CommonPictures, ShowAMessageOverTheSections) {
  const QTemporaryDir empty;
  openAt([&] { return ReportPlace{2, empty.path() + u'\\'}; });
  picture(u"unreachable"_s);
  page.reset();
  open();
  leafTo(Other);
  tabTo(u"chkDepartment"_s);
  press(Qt::Key_Space);
  run(u"update tblSettings set intCostCarrier = 4"_s);
  EXPECT_THROW(page->apply(), platform::Failure);
  EXPECT_FALSE(picture(u"conflict"_s).isNull());
}

INSTANTIATE_TEST_SUITE_P(Palettes, CommonPictures, testing::Bool(),
                         [](const auto& palette) { return palette.param ? "Dark" : "Light"; });

}  // namespace hourbook::tests
