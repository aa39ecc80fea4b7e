#include "reportwindow.h"
#include "shell/modLanguage.h"

#include <QAbstractItemView>
#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QPushButton>
#include <QStyle>

#include <cmath>

// What a window looks like in the languages, sizes and schemes that there are: nothing is cut off and nothing
// lies over anything else. Where HOURBOOK_PICTURES names a folder, each window leaves its picture there.

namespace tests {
namespace {

struct Language {
  qint16 column;  // of the phrase table
  const char* locale;
};
const Language languages[] = {{1, "cs_CZ"},  {2, "da_DK"},  {3, "nl_NL"},  {4, "en_US"},  {5, "fi_FI"},
                              {6, "fr_FR"},  {7, "de_DE"},  {8, "el_GR"},  {9, "it_IT"},  {10, "nb_NO"},
                              {11, "pt_PT"}, {12, "sl_SI"}, {13, "es_ES"}, {14, "sv_SE"}, {15, "tr_TR"}};

QString textOf(const QWidget* widget) {
  if (const auto* label = qobject_cast<const QLabel*>(widget)) return label->text();
  if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) return button->text();
  if (const auto* combo = qobject_cast<const QComboBox*>(widget)) return combo->currentText();
  return {};
}

/// Does it show a text that has to be seen whole?
bool showsText(const QWidget* widget) {
  return qobject_cast<const QLabel*>(widget) || qobject_cast<const QPushButton*>(widget) ||
         qobject_cast<const QCheckBox*>(widget) || qobject_cast<const QComboBox*>(widget) ||
         qobject_cast<const QDateEdit*>(widget);
}

class Layout : public Window {
 protected:
  void TearDown() override { QGuiApplication::setLayoutDirection(Qt::LeftToRight); }

  void useLanguage(const Language& language) {
    w.world.setLocale(QString::fromLatin1(language.locale));
    LoadLanguages(language.column);
  }
  void fill() {
    const QStringList subjects{
        "Weekly planning with the customer", "Design of the start page", "Phone call about the invoice",
        "Support: printing fails",           "Travel to Göteborg",       "Lunch"};
    for (int i = 0; i < 24; ++i) {
      const QString marking =
          i % 3 ? QStringLiteral(";Acme;Website;Design") : QStringLiteral(";Beta;Intranet;Support");
      w.add(subjects[i % 6], at(6 + i / 3, 8 + 3 * (i % 3)), 45 + 15 * (i % 5),
            i % 6 == 5 ? QString() : marking);
    }
  }
  void show(const QSize& size, bool pickers = true) {
    fill();
    open(pickers);
    if (pickers) w.setPeriod(QDate(2024, 5, 6), QDate(2024, 5, 15));
    w.form->cmbFilterCalendar.setListIndex(2);
    window->resize(size);
    QCoreApplication::processEvents();
  }
  void takePicture(const QString& name) {
    const QString folder = qEnvironmentVariable("HOURBOOK_PICTURES");
    if (folder.isEmpty()) return;
    QDir().mkpath(folder);
    const QString path = QStringLiteral("%1/%2-%3x.png").arg(folder, name).arg(window->devicePixelRatioF());
    EXPECT_TRUE(window->grab().save(path)) << path.toStdString();
  }
  QRect placeOf(const QWidget* widget) const { return {widget->mapTo(window, QPoint()), widget->size()}; }
  QList<QWidget*> shownTexts() const {
    QList<QWidget*> shown;
    for (QWidget* widget : window->findChildren<QWidget*>())
      if (widget->isVisible() && showsText(widget) && !inside(widget, control("exsThisWeek")))
        shown.append(widget);
    return shown;
  }
  static bool inside(const QWidget* widget, const QWidget* other) {
    return other && other->isAncestorOf(widget);
  }

  void expectNothingCutOff() const {
    for (const QWidget* widget : shownTexts()) {
      const std::string name =
          widget->objectName().toStdString() + " \"" + textOf(widget).toStdString() + '"';
      EXPECT_GE(widget->width(), widget->sizeHint().width()) << name;
      EXPECT_GE(widget->height(), widget->sizeHint().height()) << name;
      for (const QWidget* around = widget->parentWidget(); around && around != window->parentWidget();
           around = around->parentWidget()) {
        const QRect within(widget->mapTo(around, QPoint()), widget->size());
        EXPECT_TRUE(around->rect().contains(within)) << name << " in " << around->objectName().toStdString();
      }
    }
  }
  void expectNothingCovered() const {
    const QList<QWidget*> shown = shownTexts();
    for (qsizetype i = 0; i < shown.size(); ++i)
      for (qsizetype j = i + 1; j < shown.size(); ++j)
        EXPECT_FALSE(!inside(shown[i], shown[j]) && !inside(shown[j], shown[i]) &&
                     placeOf(shown[i]).intersects(placeOf(shown[j])))
            << shown[i]->objectName().toStdString() << " over " << shown[j]->objectName().toStdString();
  }
  void expectAllInSight() const {
    expectNothingCutOff();
    expectNothingCovered();
    for (const char* part : {"exsThisWeek", "excThisWeek", "tbsViews"}) {
      EXPECT_TRUE(window->rect().contains(placeOf(control(part)))) << part;
      EXPECT_FALSE(control(part)->visibleRegion().isEmpty()) << part;
    }
  }
};

class LayoutInLanguage : public Layout, public testing::WithParamInterface<Language> {};
INSTANTIATE_TEST_SUITE_P(All, LayoutInLanguage, testing::ValuesIn(languages),
                         [](const auto& info) { return std::string(info.param.locale); });

TEST_P(LayoutInLanguage, CutsNothingOff) {
  useLanguage(GetParam());
  show({1000, 700});
  expectAllInSight();
  takePicture(QStringLiteral("language-") + QString::fromLatin1(GetParam().locale));
}

TEST_P(LayoutInLanguage, CutsNothingOffInASmallWindow) {
  useLanguage(GetParam());
  show({640, 480});
  expectAllInSight();
  EXPECT_EQ(window->size(), QSize(640, 480));
  takePicture(QStringLiteral("small-") + QString::fromLatin1(GetParam().locale));
}

TEST_P(LayoutInLanguage, CutsNothingOffWithoutDatePickers) {
  useLanguage(GetParam());
  show({640, 480}, false);
  expectAllInSight();
  EXPECT_EQ(window->size(), QSize(640, 480));
  takePicture(QStringLiteral("dropdowns-") + QString::fromLatin1(GetParam().locale));
}

TEST_P(LayoutInLanguage, CutsNothingOffOfTheGridsControls) {
  useLanguage(GetParam());
  generation = 9;
  show({800, 600});
  for (auto* gridOnly : std::initializer_list<platform::forms::Control*>{
           &w.form->lblWeek, &w.form->cmbWeek, &w.form->cmdAddNew, &w.form->cmdSaveChanges})
    gridOnly->setVisible(true);
  QCoreApplication::processEvents();
  expectAllInSight();
  takePicture(QStringLiteral("grid-") + QString::fromLatin1(GetParam().locale));
}

TEST_P(LayoutInLanguage, KeepsTheKeysApart) {
  useLanguage(GetParam());
  open();
  QSet<QString> taken;
  const QHash<QString, QString> keys = altKeys();
  for (auto key = keys.begin(); key != keys.end(); ++key) {
    EXPECT_FALSE(key.value().isEmpty()) << key.key().toStdString();
    EXPECT_FALSE(taken.contains(key.value())) << key.key().toStdString() << ' ' << key.value().toStdString();
    taken.insert(key.value());
  }
}

TEST_F(Layout, TakesMoreHeightWhereItIsTooNarrow) {
  show({1000, 500});
  for (const int width : {480, 400, 340}) {
    window->resize(width, 300);
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    SCOPED_TRACE(width);
    expectAllInSight();
    EXPECT_FALSE(placeOf(control("lblHours")).intersects(placeOf(control("excThisWeek"))));
  }
}

class LayoutOfSize : public Layout, public testing::WithParamInterface<QSize> {};
INSTANTIATE_TEST_SUITE_P(All, LayoutOfSize,
                         testing::Values(QSize(640, 480), QSize(800, 600), QSize(920, 680), QSize(1280, 800),
                                         QSize(1920, 1080), QSize(3840, 2160)),
                         [](const auto& info) {
                           return std::to_string(info.param.width()) + "x" +
                                  std::to_string(info.param.height());
                         });

TEST_P(LayoutOfSize, ShowsEverything) {
  show(GetParam());
  expectAllInSight();
  takePicture(QStringLiteral("size-%1x%2").arg(GetParam().width()).arg(GetParam().height()));
}

TEST_P(LayoutOfSize, ShowsEverythingFromRightToLeft) {
  QGuiApplication::setLayoutDirection(Qt::RightToLeft);
  show(GetParam());
  expectAllInSight();
  EXPECT_GT(placeOf(control("dtpStartDate")).left(), placeOf(control("dtpEndDate")).left());
  EXPECT_GT(placeOf(control("cmdPrint")).left(), placeOf(control("cmdCancel")).left());
  takePicture(QStringLiteral("righttoleft-%1x%2").arg(GetParam().width()).arg(GetParam().height()));
}

TEST_P(LayoutOfSize, ShowsEverythingInLargeLetters) {
  const QFont before = QApplication::font();
  QFont large = before;
  large.setPointSizeF(before.pointSizeF() * 1.5);
  QApplication::setFont(large);
  show(GetParam());
  QApplication::setFont(before);
  if (GetParam().width() >= 800) expectAllInSight();
  takePicture(QStringLiteral("large-%1x%2").arg(GetParam().width()).arg(GetParam().height()));
}

QPalette dark() {
  QPalette palette(QColor(49, 54, 59), QColor(35, 38, 41));
  palette.setColor(QPalette::Base, QColor(27, 30, 32));
  palette.setColor(QPalette::AlternateBase, QColor(35, 38, 41));
  palette.setColor(QPalette::ToolTipBase, QColor(49, 54, 59));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
    palette.setColor(role, QColor(239, 240, 241));
  palette.setColor(QPalette::PlaceholderText, QColor(161, 169, 177));
  palette.setColor(QPalette::Highlight, QColor(61, 174, 233));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, QColor(122, 126, 130));
  return palette;
}

QPalette highContrast() {
  QPalette palette(Qt::black, Qt::black);
  palette.setColor(QPalette::Base, Qt::black);
  palette.setColor(QPalette::AlternateBase, Qt::black);
  palette.setColor(QPalette::ToolTipBase, Qt::black);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ToolTipText})
    palette.setColor(role, Qt::white);
  palette.setColor(QPalette::ButtonText, Qt::yellow);
  palette.setColor(QPalette::Highlight, QColor(0, 255, 255));
  palette.setColor(QPalette::HighlightedText, Qt::black);
  for (const auto role : {QPalette::Light, QPalette::Midlight, QPalette::Mid, QPalette::Dark})
    palette.setColor(role, Qt::white);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, QColor(0, 255, 0));
  return palette;
}

double luminance(const QColor& color) {
  const auto part = [](double c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
  return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
}

/// Contrast of the two colours as the accessibility guidelines count it, 1 to 21.
double contrast(const QColor& one, const QColor& other) {
  const double a = luminance(one), b = luminance(other);
  return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

/// The strongest contrast within a part of the picture to the colour that most of it has.
double strongestContrast(const QImage& picture) {
  QHash<QRgb, int> counts;
  for (int y = 0; y < picture.height(); ++y)
    for (int x = 0; x < picture.width(); ++x) ++counts[picture.pixel(x, y)];
  const QRgb ground = std::max_element(counts.begin(), counts.end()).key();
  double strongest = 1;
  for (auto color = counts.begin(); color != counts.end(); ++color)
    strongest = std::max(strongest, contrast(QColor(color.key()), QColor(ground)));
  return strongest;
}

struct Scheme {
  const char* name;
  QPalette (*palette)();
  double least;  // contrast of texts
};

class LayoutInScheme : public Layout, public testing::WithParamInterface<Scheme> {
 protected:
  LayoutInScheme() : before(QApplication::palette()) { QApplication::setPalette(GetParam().palette()); }
  void TearDown() override {
    letGo();
    QApplication::setPalette(before);
    Layout::TearDown();
  }
  const QPalette before;
};
INSTANTIATE_TEST_SUITE_P(All, LayoutInScheme,
                         testing::Values(Scheme{"Light",
                                                [] { return QApplication::style()->standardPalette(); }, 4.5},
                                         Scheme{"Dark", dark, 4.5}, Scheme{"HighContrast", highContrast, 7}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_P(LayoutInScheme, HasReadableTexts) {
  show({1000, 700});
  expectAllInSight();
  const QImage picture = window->grab().toImage();
  const double scale = picture.devicePixelRatio();
  for (const QWidget* widget : shownTexts()) {
    const QRect place = placeOf(widget);
    if (textOf(widget).isEmpty() || !widget->isEnabled()) continue;
    const QImage part = picture.copy(QRect(place.topLeft() * scale, place.size() * scale));
    EXPECT_GE(strongestContrast(part), GetParam().least) << widget->objectName().toStdString();
  }
  EXPECT_GE(strongestContrast(picture.copy(placeOf(control("exsThisWeek")))), GetParam().least);
  takePicture(QStringLiteral("scheme-") + QString::fromLatin1(GetParam().name));
}

TEST_P(LayoutInScheme, DropsItsCalendarDownWithWeekNumbers) {
  show({1000, 700});
  auto* start = control<QDateEdit>("dtpStartDate");
  QTest::keyClick(start, Qt::Key_F4);
  QCalendarWidget* calendar = start->calendarWidget();
  ASSERT_TRUE(calendar->isVisible());
  const QPixmap picture = calendar->grab();
  EXPECT_GE(strongestContrast(picture.toImage()), GetParam().least);
  const QString folder = qEnvironmentVariable("HOURBOOK_PICTURES");
  if (!folder.isEmpty())
    picture.save(QStringLiteral("%1/calendar-%2.png").arg(folder, QString::fromLatin1(GetParam().name)));
}

TEST_P(LayoutInScheme, ShowsWhatIsSelected) {
  show({1000, 700});
  w.form->exsThisWeek.Range(QStringLiteral("B4:C6")).Select();
  QCoreApplication::processEvents();
  control("exsThisWeek")->setFocus();
  takePicture(QStringLiteral("selected-") + QString::fromLatin1(GetParam().name));
  const auto* view = control<QAbstractItemView>("exsThisWeek");
  const QImage picture = view->viewport()->grab().toImage();
  const auto ground = [&](int row, int column) {
    const QRect cell = view->visualRect(view->model()->index(row, column));
    return QColor(picture.pixel(cell.bottomRight() * picture.devicePixelRatio() - QPoint(4, 4)));
  };
  EXPECT_GE(contrast(ground(2, 1), ground(9, 1)), 1.25);
}

}  // namespace
}  // namespace tests
