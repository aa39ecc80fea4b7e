#pragma once
#include "database/DatabaseValues.h"
#include "platform/ado/registration.h"
#include "shell/modLanguage.h"
#include "tests/unit/shell/shellworld.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

namespace hourbook::tests {

/// A server that notes which connections are opened and closed, and refuses them with `refusal` when there
/// is one.
class NotingServer : public platform::sql::Driver {
 public:
  struct Notes {
    QStringList opened;  // server, database, user and password, joined by "|"
    int open = 0;
    QString refusal;
  };
  explicit NotingServer(std::shared_ptr<Notes> notes) : notes_(std::move(notes)) {}
  std::unique_ptr<platform::sql::Session> connect(
      const platform::sql::ConnectionString& connection) override {
    QStringList values;
    for (const char* key : {"Data Source", "Initial Catalog", "User ID", "Password"})
      values.append(connection.value(QString::fromLatin1(key)));
    notes_->opened.append(values.join(u'|'));
    if (!notes_->refusal.isEmpty()) throw platform::Failure(17, notes_->refusal);
    return std::make_unique<Open>(notes_);
  }

 private:
  class Open : public platform::sql::Session {
   public:
    explicit Open(std::shared_ptr<Notes> notes) : notes_(std::move(notes)) { ++notes_->open; }
    ~Open() override { --notes_->open; }
    platform::sql::Result execute(const QString&, const QList<platform::basic::Value>&) override {
      return {};
    }
    void begin() override {}
    void commit() override {}
    void rollback() override {}
    QStringList tables() override { return {}; }
    QList<platform::sql::Column> columns(const QString&) override { return {}; }

   private:
    std::shared_ptr<Notes> notes_;
  };
  std::shared_ptr<Notes> notes_;
};

/// English phrases, and a server under the provider of the dialog's strings.
class DatabaseForms : public ShellWorld {
 protected:
  DatabaseForms() {
    LoadLanguages(4);
    const auto drivers = std::make_shared<platform::sql::Drivers>();
    drivers->add(QStringLiteral("SQLOLEDB.1"), std::make_shared<NotingServer>(notes));
    platform::ado::registerComponents(world.components, drivers);
  }

  /// Has `show` open a modal window; `act` is what the user does in it.
  static void use(const std::function<void()>& show, const std::function<void(QDialog&)>& act) {
    bool acted = false;
    QTimer::singleShot(0, qApp, [&] {
      auto* window = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      ASSERT_TRUE(window);
      ASSERT_TRUE(QTest::qWaitForWindowActive(window));
      acted = true;
      act(*window);
      if (window->isVisible()) window->close();
    });
    show();
    EXPECT_TRUE(acted);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  }
  template <class Widget>
  static Widget* part(const QDialog& window, const char* name) {
    auto* widget = window.findChild<Widget*>(QString::fromLatin1(name));
    EXPECT_TRUE(widget) << name;
    return widget;
  }
  static void press(QDialog& window, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWidget* at = window.focusWidget() ? window.focusWidget() : &window;
    QTest::keyClick(at, key, modifiers);
  }
  /// Names of the controls that Tab leads to, from where the focus is.
  static QStringList tabRound(QDialog& window) {
    QStringList names;
    constexpr int most = 30;
    for (int i = 0; i < most; ++i) {
      const QString name = window.focusWidget() ? window.focusWidget()->objectName() : QString();
      if (names.contains(name)) break;
      names.append(name);
      press(window, Qt::Key_Tab);
    }
    return names;
  }
  /// Each button, and each label with a field, has a letter of its own.
  static void expectLetters(const QDialog& window, int count) {
    QStringList letters;
    for (const auto* button : window.findChildren<QAbstractButton*>())
      if (button->isVisible()) letters.append(QKeySequence::mnemonic(button->text()).toString());
    for (const auto* label : window.findChildren<QLabel*>())
      if (label->buddy()) letters.append(QKeySequence::mnemonic(label->text()).toString());
    EXPECT_FALSE(letters.contains(QString()));
    EXPECT_EQ(QSet<QString>(letters.cbegin(), letters.cend()).size(), letters.size());
    EXPECT_EQ(letters.size(), count);
  }
  /// No text is cut off.
  static void expectRoom(const QDialog& window) {
    for (const auto* button : window.findChildren<QAbstractButton*>()) {
      if (!button->isVisible()) continue;
      EXPECT_GE(button->width(), button->sizeHint().width()) << qPrintable(button->text());
      EXPECT_GE(button->height(), button->sizeHint().height()) << qPrintable(button->text());
    }
    for (const auto* label : window.findChildren<QLabel*>()) {
      const int needed =
          label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
      EXPECT_GE(label->height(), needed) << qPrintable(label->text());
      EXPECT_GE(label->width(), label->minimumSizeHint().width()) << qPrintable(label->text());
    }
  }

  Shared<DatabaseValues>::Scope database;
  std::shared_ptr<NotingServer::Notes> notes = std::make_shared<NotingServer::Notes>();
};

inline constexpr qint16 lastLanguage = 15;

}  // namespace hourbook::tests
