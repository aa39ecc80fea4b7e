#include "shell/modErrorReport.h"
#include "shell/modRegistryEntry.h"
#include "shell/Tolerate.h"
#include "tests/unit/shell/shellworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::Failure;
using platform::basic::Value;

namespace {

/// Counts every call, so that a test can tell that none was made.
class CountingRegistry : public platform::registry::MemoryRegistry {
 public:
  int openKey(const QString& key) override {
    ++calls;
    return MemoryRegistry::openKey(key);
  }
  int value(const QString& key, const QString& name, Value* out) override {
    return failReadWith ? failReadWith : MemoryRegistry::value(key, name, out);
  }
  QString lastError() const override { return said; }
  int calls = 0;
  int failReadWith = 0;
  QString said;
};

const QString settingsKey = u"Software\\Norrdalen\\Hourbook for Outlook\\Settings"_s;

}  // namespace

class RegistryEntry : public ShellWorld {
 protected:
  RegistryEntry() : scope(registry) {}
  /// The failure's number and text as one line.
  template <class Statement>
  static QString failureOf(Statement statement) {
    const auto failure = tolerate(statement);
    return failure ? QString::number(quint32(failure->number()), 16) + u' ' + failure->description()
                   : u"none"_s;
  }
  CountingRegistry registry;
  platform::registry::ScopedRegistry scope;
};

TEST_F(RegistryEntry, AValueIsKeptAsATextUnderTheProgramsKey) {
  fncSaveRegistryValue(u"Settings"_s, u"ReportChoice"_s, u"2"_s);
  Value stored;
  ASSERT_EQ(registry.value(settingsKey, u"ReportChoice"_s, &stored), 0);
  EXPECT_EQ(stored, Value(u"2"_s));
  EXPECT_EQ(fncGetRegistryValue(u"Settings"_s, u"ReportChoice"_s, u"NULL"_s), u"2"_s);
}

TEST_F(RegistryEntry, AnotherApplicationHasItsOwnKey) {
  fncSaveRegistryValue(u"Other"_s, u"Settings"_s, u"a"_s, u"1"_s);
  EXPECT_EQ(fncGetRegistryValue(u"Other"_s, u"Settings"_s, u"a"_s, {}), u"1"_s);
  EXPECT_EQ(fncGetRegistryValue(u"Settings"_s, u"a"_s, u"none"_s), u"none"_s);
}

TEST_F(RegistryEntry, AMissingValueGivesTheDefault) {
  EXPECT_EQ(fncGetRegistryValue(u"Settings"_s, u"ReportChoice"_s, u"NULL"_s), u"NULL"_s);
}

TEST_F(RegistryEntry, AnEmptyTextIsAValue) {
  fncSaveRegistryValue(u"Settings"_s, u"ReportValue"_s, QString());
  EXPECT_EQ(fncGetRegistryValue(u"Settings"_s, u"ReportValue"_s, u"NULL"_s), QString());
}

TEST_F(RegistryEntry, EmptyNamesAreRefusedBeforeTheRegistryIsTouched) {
  const QString number = u"800407d0 "_s;
  EXPECT_EQ(failureOf([] { fncSaveRegistryValue(u" "_s, u"s"_s, u"k"_s, u"v"_s); }),
            number + u"AppName may not be empty"_s);
  EXPECT_EQ(failureOf([] { fncSaveRegistryValue(u"  "_s, u"k"_s, u"v"_s); }),
            number + u"Section may not be empty"_s);
  EXPECT_EQ(failureOf([] { fncSaveRegistryValue(u"s"_s, {}, u"v"_s); }), number + u"Key may not be empty"_s);
  EXPECT_EQ(failureOf([] { fncGetRegistryValue({}, u"s"_s, u"k"_s, {}); }),
            number + u"AppName may not be empty"_s);
  EXPECT_EQ(failureOf([] { fncGetRegistryValue(QString(), u"k"_s, {}); }),
            number + u"Section may not be empty"_s);
  EXPECT_EQ(failureOf([] { fncGetRegistryValue(u"s"_s, u" "_s, {}); }), number + u"Key may not be empty"_s);
  EXPECT_EQ(registry.calls, 0);
}

TEST_F(RegistryEntry, ASectionThatCannotBeOpenedIsRefusedWithTheSystemsCode) {
  registry.failOpenWith = 5;
  EXPECT_EQ(failureOf([] { fncSaveRegistryValue(u"s"_s, u"k"_s, u"v"_s); }),
            u"800407d5 Could not open/create registry section"_s);
  EXPECT_EQ(failureOf([] { fncGetRegistryValue(u"s"_s, u"k"_s, {}); }),
            u"800407d5 Could not open registry section"_s);
}

TEST_F(RegistryEntry, AValueThatCannotBeWrittenIsRefusedWithTheSystemsCode) {
  registry.failWriteWith = 29;
  EXPECT_EQ(failureOf([] { fncSaveRegistryValue(u"s"_s, u"k"_s, u"v"_s); }),
            u"800407ed Could not set key value"_s);
}

TEST_F(RegistryEntry, AStoreThatCannotBeReadIsRefusedWithTheSystemsCode) {
  registry.failReadWith = 30;
  EXPECT_EQ(failureOf([] { fncGetRegistryValue(u"s"_s, u"k"_s, {}); }),
            u"800407ee Could not open registry section"_s);
}

TEST_F(RegistryEntry, WhatTheSystemSaidIsTheNewestStepAndNoPartOfTheRefusal) {
  registry.failOpenWith = 5;
  registry.said = u"/home/ann/.config/x: Permission denied"_s;
  EXPECT_EQ(failureOf([] { fncGetRegistryValue(u"s"_s, u"k"_s, {}); }),
            u"800407d5 Could not open registry section"_s);
  EXPECT_EQ(fncLastLogText(), registry.said);
  registry.failOpenWith = 0;
  registry.failWriteWith = 29;
  registry.said = u"/home/ann/.config/x: No space left on device"_s;
  EXPECT_EQ(failureOf([] { fncSaveRegistryValue(u"s"_s, u"k"_s, u"v"_s); }),
            u"800407ed Could not set key value"_s);
  EXPECT_EQ(fncLastLogText(), registry.said);
}

TEST_F(RegistryEntry, ASystemThatSaysNothingLeavesTheNewestStepAsItIs) {
  subLog(u"Saving"_s);
  registry.failOpenWith = 5;
  EXPECT_EQ(failureOf([] { fncSaveRegistryValue(u"s"_s, u"k"_s, u"v"_s); }),
            u"800407d5 Could not open/create registry section"_s);
  EXPECT_EQ(fncLastLogText(), u"Saving"_s);
}

TEST_F(RegistryEntry, AValueThatIsNoTextIsRefused) {
  registry.setValue(settingsKey, u"ReportChoice"_s, qint32(2));
  EXPECT_EQ(failureOf([] { fncGetRegistryValue(u"Settings"_s, u"ReportChoice"_s, {}); }),
            u"800407d0 Registry data not a string"_s);
}

}  // namespace hourbook::tests
