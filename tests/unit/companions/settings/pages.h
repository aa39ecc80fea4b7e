#pragma once
#include "companions/settings/texts.h"
#include "database/modCreateDB.h"
#include "tests/journeys/unprivileged.h"
#include "windowhome.h"

namespace hourbook::tests {

using namespace Qt::StringLiterals;

class Pages : public WindowHome {
 protected:
  /// A machine that is set up, with the window open on it.
  void openFilledIn(bool hasServerDriver = false) {
    SettingsStore first(config());
    first.save(filledIn(first));
    open(false, hasServerDriver);
  }
  SettingsBuffer stored() { return SettingsStore(config()).read().buffer; }
  QStringList items(const char* list) {
    QStringList texts;
    auto* widget = control<QListWidget>(list);
    for (int i = 0; i < widget->count(); ++i) texts.append(widget->item(i)->text());
    return texts;
  }
  /// OK is refused at a field, and nothing is written.
  void expectRefused(const char* field, const QString& text) {
    const auto before = everything();
    ok();
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(focused(), QLatin1String(field));
    EXPECT_TRUE(message("lblProblem").endsWith(text)) << qPrintable(message("lblProblem"));
    EXPECT_EQ(QApplication::focusWidget()->accessibleDescription(), text);
    EXPECT_EQ(everything(), before);
  }
  /// An empty machine on which all but the lists is chosen, with a database that is yet to be made.
  void setUpANewMachine() {
    write(path(u"calendar/.keep"_s), "");
    open(true);
    type("txtPersonName", u"Jane"_s);
    answers.paths = {path(u"calendar"_s)};
    press("cmdAddFolder");
    goTo(texts::targetPage);
    type("txtFolder", path(u"new"_s));
    press("chkMakeDatabase");
    goTo(texts::listsPage);
  }
};

}  // namespace hourbook::tests
