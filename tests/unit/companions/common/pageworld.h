#pragma once
#include "companions/settings/common/commonpage.h"
#include "tests/unit/companions/common/commonworld.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

namespace hourbook::tests {

/// The page in a window, over the filled database, worked by keys.
class PageWorld : public CommonWorld {
 protected:
  PageWorld() { fillDatabase(); }

  void open() {
    openAt([this] { return place(); });
  }
  void openAt(std::function<ReportPlace()> where, std::shared_ptr<BillingDownload> download = nullptr) {
    page = makeCommonSettingsPage(std::move(where), std::move(download));
    page->resize(820, 640);
    page->show();
    page->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(page.get()));
    QObject::connect(page.get(), &SettingsPage::changed, page.get(), [this] { ++changes; });
  }

  // What is in sight, by name.
  template <class Control>
  Control* control(const QString& name) const {
    for (Control* found : page->findChildren<Control*>(name))
      if (found->isVisible()) return found;
    ADD_FAILURE() << "There is no " << qPrintable(name) << " in sight.";
    return nullptr;
  }
  QTabWidget* tabs() const { return page->findChild<QTabWidget*>(u"tabSections"_s); }
  QAbstractItemView* table() const { return control<QAbstractItemView>(u"tblValues"_s); }
  /// Every text that some label shows.
  QStringList shownTexts() const {
    QStringList texts;
    for (const QLabel* label : page->findChildren<QLabel*>())
      if (label->isVisible() && !label->text().isEmpty()) texts.append(label->text());
    return texts;
  }
  bool shows(const QString& text) const { return shownTexts().contains(text); }
  QString cell(int row, int column) const {
    return table()->model()->index(row, column).data(Qt::EditRole).toString();
  }
  QStringList names() const {
    QStringList all;
    for (int row = 0; row < table()->model()->rowCount(); ++row) all.append(cell(row, 0));
    return all;
  }

  // Keys go to whatever has the focus, as they do from a keyboard.
  static void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), modifiers);
    QCoreApplication::processEvents();  // a cell closes itself a moment after the key
  }
  static void type(const QString& text) {
    for (const QChar letter : text) {
      ASSERT_NE(QApplication::focusWidget(), nullptr);
      QTest::keyClicks(QApplication::focusWidget(), letter);  // the first may open a cell
    }
  }
  static QString focused() {
    return QApplication::focusWidget() ? QApplication::focusWidget()->objectName() : QString();
  }
  /// Presses Tab until the control has the focus.
  void tabTo(const QString& name) {
    for (int i = 0; i < 60; ++i) {
      if (focused() == name && QApplication::focusWidget()->isVisible()) return;
      press(Qt::Key_Tab);
    }
    FAIL() << "Tab does not lead to " << qPrintable(name);
  }
  /// Goes to a section by the keys that leaf through them.
  void leafTo(int section) {
    if (!QApplication::focusWidget() || !tabs()->isAncestorOf(QApplication::focusWidget()))
      tabs()->setFocus();
    for (int i = 0; i < 6 && tabs()->currentIndex() != section; ++i)
      QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : tabs(), Qt::Key_Tab,
                      Qt::ControlModifier);
    ASSERT_EQ(tabs()->currentIndex(), section) << qPrintable(focused());
  }

  enum Section { Cost, List1, List2, List3, Other, Billing };
  std::unique_ptr<SettingsPage> page;
  int changes = 0;
};

}  // namespace hourbook::tests
