#include "platform/locale/locale.h"

#include <gtest/gtest.h>

using platform::locale::localeFor;
using platform::locale::machineLocale;
using platform::locale::ScopedLocale;
namespace locale = platform::locale;

namespace {

/// An environment of its own, given back at the end.
class MachineLocale : public testing::Test {
 protected:
  MachineLocale() {
    for (const char* variable : kVariables) {
      before_.append(qgetenv(variable));
      wasSet_.append(qEnvironmentVariableIsSet(variable));
      qunsetenv(variable);
    }
  }
  ~MachineLocale() override {
    for (int i = 0; i < 5; ++i) wasSet_[i] ? qputenv(kVariables[i], before_[i]) : qunsetenv(kVariables[i]);
  }

 private:
  static constexpr const char* kVariables[] = {"LC_ALL", "LC_TIME", "LC_NUMERIC", "LC_MESSAGES", "LANG"};
  QList<QByteArray> before_;
  QList<bool> wasSet_;
};

TEST_F(MachineLocale, FollowsTheLanguageOfTheEnvironment) {
  qputenv("LANG", "de_CH.UTF-8");

  EXPECT_EQ(machineLocale()->name(), u"de_CH");
  EXPECT_EQ(machineLocale()->lcid(), 2055);
  EXPECT_EQ(machineLocale()->listSeparator(), u";");
  EXPECT_EQ(machineLocale()->weekdayName(1, true), u"Mo.");
  EXPECT_EQ(machineLocale()->monthName(1, false), u"Januar");
}

TEST_F(MachineLocale, TakesDatesNumbersAndLanguageEachFromTheirOwnSetting) {
  qputenv("LANG", "en_GB.UTF-8");
  qputenv("LC_TIME", "sv_SE.UTF-8");
  qputenv("LC_NUMERIC", "de_DE.UTF-8");

  const auto machine = machineLocale();

  EXPECT_EQ(machine->lcid(), 2057);
  EXPECT_EQ(machine->name(), u"sv_SE");
  EXPECT_EQ(machine->shortDate(QDate(2024, 3, 5)), u"2024-03-05");
  EXPECT_EQ(machine->weekdayName(1, true), u"mån");
  EXPECT_EQ(machine->decimalSign(), u",");
  EXPECT_EQ(machine->groupSign(), u".");
  EXPECT_EQ(machine->listSeparator(), u";") << "never the same sign as the decimal sign";
}

TEST_F(MachineLocale, LetsOneSettingOverruleAll) {
  qputenv("LANG", "en_GB.UTF-8");
  qputenv("LC_TIME", "sv_SE.UTF-8");
  qputenv("LC_ALL", "fr_FR.UTF-8");

  EXPECT_EQ(machineLocale()->name(), u"fr_FR");
  EXPECT_EQ(machineLocale()->lcid(), 1036);
}

TEST_F(MachineLocale, IsEnglishOfAmericaWhereNothingIsSet) {
  EXPECT_EQ(machineLocale()->name(), u"en_US");
  qputenv("LC_ALL", "C");
  EXPECT_EQ(machineLocale()->name(), u"en_US");
}

TEST(LocaleInForce, IsThatOfTheInnermostScope) {
  const ScopedLocale outer(u"de_DE"_qs);
  {
    const ScopedLocale inner(u"sv_SE"_qs);
    EXPECT_EQ(locale::current().name(), u"sv_SE");
  }
  EXPECT_EQ(locale::current().name(), u"de_DE");
}

TEST(LocaleInForce, MayBeOneOfTheCallersOwn) {
  const auto own = localeFor(u"tr_TR"_qs);
  const ScopedLocale scope(own);
  EXPECT_EQ(&locale::current(), own.get());
}

TEST(LocaleInForce, IsTheMachinesForNone) {
  const ScopedLocale outer(u"de_DE"_qs);
  const ScopedLocale machine(std::shared_ptr<const locale::Locale>{});
  EXPECT_EQ(locale::current().name(), machineLocale()->name());
}

}  // namespace
