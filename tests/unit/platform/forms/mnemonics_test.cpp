#include "platform/forms/widgets/mnemonics.h"

#include "platform/forms/widgets/bind.h"

#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace platform::forms {

TEST(CaptionKeys, AreTheFirstFreeInitialAndThenAnyFreeLetter) {
  EXPECT_EQ(
      Mnemonics::assigned({u"Print"_s, u"Get Posted"_s, u"Go"_s, u"Gp"_s, QString(), u"R&D"_s, u"P&G"_s}),
      (QStringList{u"Pr&int"_s, u"G&et Posted"_s, u"G&o"_s, u"&Gp"_s, QString(), u"&R&&D"_s, u"&P&&G"_s}));
}

TEST(CaptionKeys, AreGivenAwayByACaptionThatHasOthers) {
  EXPECT_EQ(Mnemonics::assigned({u"Od"_s, u"Den"_s, u"OK"_s, u"Do"_s}),
            (QStringList{u"&Od"_s, u"D&en"_s, u"O&K"_s, u"&Do"_s}));
  EXPECT_EQ(Mnemonics::assigned({u"AB"_s, u"BC"_s, u"A"_s, u"B"_s, u"AB"_s}),
            (QStringList{u"A&B"_s, u"B&C"_s, u"&A"_s, u"B"_s, u"AB"_s}));
}

TEST(CaptionKeys, AreGivenOutAgainWhenACaptionOrItsVisibilityChanges) {
  QWidget window;
  auto* first = new QPushButton(&window);
  auto* second = new QPushButton(&window);
  CommandButton one(u"one"_s), two(u"two"_s);
  one.setCaption(u"Save"_s);
  two.setCaption(u"Stop"_s);
  bind(one, first);
  bind(two, second);
  Mnemonics keys;
  keys.add(one, first);
  keys.add(two, second);
  EXPECT_EQ(first->text(), u"&Save"_s);
  EXPECT_EQ(second->text(), u"S&top"_s);
  one.setVisible(false);
  EXPECT_EQ(second->text(), u"&Stop"_s);
  one.setVisible(true);
  two.setCaption(u"End"_s);
  EXPECT_EQ(first->text(), u"&Save"_s);
  EXPECT_EQ(second->text(), u"&End"_s);
  EXPECT_EQ(two.Caption(), u"End"_s);
}

}  // namespace platform::forms
