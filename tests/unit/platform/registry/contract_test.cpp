// What every registry does, whatever keeps its values.
#include "platform/basic/failure.h"
#include "platform/registry/ini/inifile.h"
#include "platform/registry/memory/memory.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace platform::registry;
using platform::basic::Currency;
using platform::basic::Date;
using platform::basic::IsEmpty;
using platform::basic::Null;
using platform::basic::Value;

namespace {

const QString key = QStringLiteral("Software\\Norrdalen\\Hourbook for Outlook\\Settings");

struct Kind {
  const char* name;
  std::function<std::unique_ptr<Registry>(const QString& folder)> make;
};

const std::vector<Kind> kinds{
    {"Memory", [](const QString&) { return std::make_unique<MemoryRegistry>(); }},
    {"Ini",
     [](const QString& folder) {
       return std::make_unique<IniRegistry>(folder + QStringLiteral("/config/registry.ini"));
     }},
};

struct RegistryContract : testing::TestWithParam<Kind> {
  QTemporaryDir folder;
  std::unique_ptr<Registry> registry = GetParam().make(folder.path());

  Value stored(const QString& name, const Value& value) {
    EXPECT_EQ(registry->setValue(key, name, value), codeSuccess) << qUtf8Printable(registry->lastError());
    return read(key, name);
  }
  Value read(const QString& from, const QString& name) {
    Value out;
    EXPECT_EQ(registry->value(from, name, &out), codeSuccess) << qUtf8Printable(registry->lastError());
    return out;
  }
};

std::string nameOf(const testing::TestParamInfo<Kind>& info) {
  return info.param.name;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Every, RegistryContract, testing::ValuesIn(kinds), nameOf);

TEST_P(RegistryContract, OpensAKeyThatIsNotThere) {
  EXPECT_EQ(registry->openKey(key), codeSuccess);
  EXPECT_EQ(registry->openKey(key), codeSuccess);
}

TEST_P(RegistryContract, HasNoValueBeforeOneIsSet) {
  Value out = QStringLiteral("untouched");
  EXPECT_EQ(registry->value(key, QStringLiteral("ReportChoice"), &out), codeNotFound);
  EXPECT_EQ(out, Value(QStringLiteral("untouched")));
  EXPECT_TRUE(registry->lastError().contains(QStringLiteral("ReportChoice")));
}

TEST_P(RegistryContract, GivesBackAnyTextExactly) {
  for (const QString& text :
       {QString(QStringLiteral("2")), QString(QStringLiteral("")), QString(QStringLiteral("  blanks  ")),
        QString(QStringLiteral("line\r\nbreak\nand\rmore\ttab")), QString(QStringLiteral("@leading")),
        QString(QStringLiteral("@@two")), QString(QStringLiteral("@dword:1")),
        QString(QStringLiteral("@String(x)")), QString(QStringLiteral("Ärende; ☃ 😀 \u202E")),
        QString(QStringLiteral("\"quoted\", 'a', b\\c\\\\server")), QString(QStringLiteral("a, b; c=d # e")),
        QString(QStringLiteral("[section]")), QString(QStringLiteral("%20 %USERNAME% 100%")),
        QString(QStringLiteral("true")), QString(QChar(1)) + QChar(0x7F),
        QString(QStringLiteral("x")).repeated(100'000)})
    EXPECT_EQ(stored(QStringLiteral("Value"), text), Value(text));
}

TEST_P(RegistryContract, KeepsTheKindOfAWholeNumber) {
  EXPECT_EQ(stored(QStringLiteral("N"), Value(qint32(-7))), Value(qint32(-7)));
  EXPECT_EQ(stored(QStringLiteral("N"), Value(qint16(7))), Value(qint32(7)));
  EXPECT_EQ(stored(QStringLiteral("N"), Value(qint64(1) << 40)), Value(qint64(1) << 40));
  EXPECT_EQ(stored(QStringLiteral("N"), Value(true)), Value(qint32(1)));
  EXPECT_EQ(stored(QStringLiteral("N"), Value(false)), Value(qint32(0)));
}

TEST_P(RegistryContract, RefusesWhatARegistryHasNoKindFor) {
  for (const Value& value :
       {Value(), Value(Null()), Value(1.5), Value(1.5F), Value(Date(1)), Value(Currency())})
    EXPECT_EQ(registry->setValue(key, QStringLiteral("N"), value), codeInvalidParameter);
  EXPECT_TRUE(registry->lastError().contains(QStringLiteral("Currency")));
  Value out;
  EXPECT_EQ(registry->value(key, QStringLiteral("N"), &out), codeNotFound);
}

TEST_P(RegistryContract, ReplacesAValue) {
  stored(QStringLiteral("A"), QStringLiteral("1"));
  EXPECT_EQ(stored(QStringLiteral("A"), QStringLiteral("2")), Value(QStringLiteral("2")));
}

TEST_P(RegistryContract, ComparesNamesWithoutCase) {
  stored(QStringLiteral("ReportChoice"), QStringLiteral("1"));
  registry->setValue(key.toUpper(), QStringLiteral("REPORTCHOICE"), QStringLiteral("2"));
  EXPECT_EQ(read(key.toLower(), QStringLiteral("reportchoice")), Value(QStringLiteral("2")));
  EXPECT_EQ(read(key, QStringLiteral("ReportChoice")), Value(QStringLiteral("2")));
}

TEST_P(RegistryContract, KeepsKeysApart) {
  registry->setValue(key, QStringLiteral("A"), QStringLiteral("here"));
  registry->setValue(key + QStringLiteral("\\Sub"), QStringLiteral("A"), QStringLiteral("below"));
  registry->setValue(QStringLiteral("Software"), QStringLiteral("A"), QStringLiteral("above"));
  EXPECT_EQ(read(key, QStringLiteral("A")), Value(QStringLiteral("here")));
  EXPECT_EQ(read(key + QStringLiteral("\\Sub"), QStringLiteral("A")), Value(QStringLiteral("below")));
  EXPECT_EQ(read(QStringLiteral("Software"), QStringLiteral("A")), Value(QStringLiteral("above")));
}

TEST_P(RegistryContract, TakesAnySignInAName) {
  const QStringList names{QStringLiteral("a b"),  QStringLiteral("å=ä"), QStringLiteral("a/b"),
                          QStringLiteral("100%"), QStringLiteral("[x]"), QStringLiteral("General"),
                          QStringLiteral("a\\b"), QStringLiteral("☃")};
  for (const QString& name : names) registry->setValue(QStringLiteral("a/b\\General"), name, name + u'!');
  registry->setValue(QStringLiteral("a"), QStringLiteral("b\\General/a b"), QStringLiteral("other"));
  for (const QString& name : names)
    EXPECT_EQ(read(QStringLiteral("a/b\\General"), name), Value(QString(name + u'!')));
}

TEST(Registry, FailsBeforeOneIsInForce) {
  try {
    Registry::current();
    FAIL() << "there is no registry";
  } catch (const platform::Failure& failure) {
    EXPECT_EQ(failure.number(), 91);
  }
}

TEST(Registry, IsInForceForTheLifeOfItsScopeAndNests) {
  MemoryRegistry outer;
  MemoryRegistry inner;
  const ScopedRegistry outerScope(outer);
  {
    const ScopedRegistry innerScope(inner);
    EXPECT_EQ(&Registry::current(), &inner);
  }
  EXPECT_EQ(&Registry::current(), &outer);
}

TEST(MemoryRegistry, FailsAsItIsTold) {
  MemoryRegistry registry;
  registry.failOpenWith = 1009;
  registry.failWriteWith = 5;
  EXPECT_EQ(registry.openKey(key), 1009);
  EXPECT_TRUE(registry.lastError().contains(key));
  EXPECT_EQ(registry.setValue(key, QStringLiteral("A"), QStringLiteral("x")), 5);
  Value out;
  EXPECT_EQ(registry.value(key, QStringLiteral("A"), &out), codeNotFound);
}

TEST(MemoryRegistry, LetsTheFirstWritesPassWhereItIsToldSo) {
  MemoryRegistry registry;
  registry.failWriteWith = 5;
  registry.passWrites = 1;
  EXPECT_EQ(registry.setValue(key, QStringLiteral("A"), QStringLiteral("x")), codeSuccess);
  EXPECT_EQ(registry.setValue(key, QStringLiteral("B"), QStringLiteral("x")), 5);
  EXPECT_EQ(registry.setValue(key, QStringLiteral("C"), QStringLiteral("x")), 5);
}
