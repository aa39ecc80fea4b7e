#pragma once
#include "workspace/frm2003Report.h"
#include "workspace/frm2KReport.h"
#include "workspace/frmXPReport.h"
#include "workspaceworld.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QScrollBar>
#include <QTest>

namespace tests {

/// The real window of a report form, offscreen.
class Window : public testing::Test {
 protected:
  ReportForm& open(bool pickers = true) {
    if (pickers) w.withDatePickers();
    return openWithWhatThereIs();
  }
  ReportForm& openWithWhatThereIs() {
    w.workspace->gOWCVersion = generation;
    w.workspace->gReportForm = w.form = generation == 9    ? frm2KReport(placesFile)
                                        : generation == 10 ? frmXPReport(placesFile)
                                                           : frm2003Report(placesFile);
    w.form->Load();
    w.form->Show();
    for (QWidget* top : QApplication::topLevelWidgets())
      if (top->objectName() == w.form->Name()) window = top;
    QApplication::setActiveWindow(window);
    return *w.form;
  }
  /// Ends the window, as the end of the program does.
  void letGo() {
    w.workspace->gReportForm.reset();
    w.form.reset();
    window = nullptr;
  }
  template <class Widget = QWidget>
  Widget* control(const char* name) const {
    return window->findChild<Widget*>(QString::fromLatin1(name));
  }
  bool seen(const char* name) const {
    auto* widget = control(name);
    return widget && widget->isVisibleTo(window);
  }
  /// The keys of all buttons and labels that can be seen, by their names.
  QHash<QString, QString> altKeys() const {
    QHash<QString, QString> keys;
    for (QWidget* widget : window->findChildren<QWidget*>()) {
      if (!widget->isVisibleTo(window)) continue;
      QString text;
      if (auto* button = qobject_cast<QAbstractButton*>(widget)) text = button->text();
      auto* label = qobject_cast<QLabel*>(widget);
      if (label && label->buddy()) text = label->text();
      const QString key = QKeySequence::mnemonic(text).toString();
      if (!text.isEmpty() && !widget->objectName().startsWith(u"qt_")) keys.insert(widget->objectName(), key);
    }
    return keys;
  }
  void expectAKeyForEach(const QStringList& names) {
    const QHash<QString, QString> keys = altKeys();
    QSet<QString> taken;
    for (const QString& name : names) {
      const QString key = keys.value(name);
      EXPECT_FALSE(key.isEmpty()) << name.toStdString();
      EXPECT_FALSE(taken.contains(key)) << name.toStdString() << ' ' << key.toStdString();
      taken.insert(key);
    }
    EXPECT_EQ(keys.size(), names.size());
  }
  void expectANameForEachControl() {
    for (QWidget* widget : window->findChildren<QWidget*>()) {
      if (widget->objectName().isEmpty() || widget->objectName().startsWith(u"qt_")) continue;
      const bool scrollBar = qobject_cast<QScrollBar*>(widget) != nullptr;
      if (widget->focusPolicy() == Qt::NoFocus && !scrollBar) continue;
      if (!widget->isVisibleTo(window)) continue;
      QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
      ASSERT_NE(accessible, nullptr);
      EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << widget->objectName().toStdString();
    }
  }
  void press(const char* name, Qt::Key key) {
    control(name)->setFocus();
    QTest::keyClick(control(name), key);
  }
  WorkspaceWorld w;
  QWidget* window = nullptr;
  qint16 generation = 11;
  QString placesFile;
};

inline const QString complete = QStringLiteral(";Acme;Website;Design");

}  // namespace tests
