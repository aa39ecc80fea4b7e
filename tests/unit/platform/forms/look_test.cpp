#include "platform/forms/widgets/look.h"

#include "platform/forms/widgets/bind.h"

using namespace platform::forms;
using namespace Qt::StringLiterals;

TEST(Look, ColoursAreToldBlueGreenRed) {
  EXPECT_EQ(colorFromBgr(14215660), QColor(236, 233, 216));
  EXPECT_EQ(colorFromBgr(0xFFCC99), QColor(0x99, 0xCC, 0xFF));
  EXPECT_EQ(colorFromBgr(0), QColor(Qt::black));
  EXPECT_FALSE(colorFromBgr(-1).isValid());
}

TEST(Look, TextOnAColourIsBlackOrWhiteWhicheverReadsBetter) {
  EXPECT_EQ(readableOn(QColor(Qt::white)), QColor(Qt::black));
  EXPECT_EQ(readableOn(QColor(Qt::yellow)), QColor(Qt::black));
  EXPECT_EQ(readableOn(QColor(Qt::darkBlue)), QColor(Qt::white));
}

TEST(Look, TahomaOfEightPointsIsTheDesktopsOwnFont) {
  QFont desktop(u"Desktop Sans"_s);
  desktop.setPointSizeF(11);
  EXPECT_EQ(fontFor(u"Tahoma"_s, 8, desktop), desktop);
  EXPECT_EQ(fontFor(u"tahoma"_s, 0, desktop), desktop);
  EXPECT_EQ(fontFor(QString(), 0, desktop), desktop);
}

TEST(Look, OtherSizesKeepTheirProportionAndOtherFamiliesTheirName) {
  QFont desktop(u"Desktop Sans"_s);
  desktop.setPointSizeF(11);
  EXPECT_DOUBLE_EQ(fontFor(u"Tahoma"_s, 16, desktop).pointSizeF(), 22);
  EXPECT_EQ(fontFor(u"Wingdings"_s, 8, desktop).family(), u"Wingdings"_s);
  QFont pixels(u"Desktop Sans"_s);
  pixels.setPixelSize(20);
  EXPECT_EQ(fontFor(u"Tahoma"_s, 4, pixels).pixelSize(), 10);
}

TEST(Look, AMnemonicIsTakenOutOfACaption) {
  EXPECT_EQ(withoutMnemonic(u"&Print"_s), u"Print"_s);
  EXPECT_EQ(withoutMnemonic(u"R&&D"_s), u"R&D"_s);
  EXPECT_EQ(withoutMnemonic(u"Save && &close"_s), u"Save & close"_s);
  EXPECT_EQ(withoutMnemonic(u"at the end &"_s), u"at the end &"_s);
  EXPECT_EQ(withoutMnemonic(QString()), QString());
}
