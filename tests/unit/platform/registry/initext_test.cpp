#include "platform/registry/ini/initext.h"

#include <gtest/gtest.h>

using namespace platform::registry;

TEST(IniFault, TakesWhatAnIniFileMayHold) {
  for (const char* text : {"", "\n\n", "[a]\nb=1\n", "; comment\n# comment\n[a]\r\nb=1\r\n", "b=\n",
                           "b=1\\\nmore\n", "[\xC3\xA5]\n\xC3\xA4=\xE2\x98\x83\n"})
    EXPECT_EQ(iniFault(text), QString()) << text;
}

TEST(IniFault, NamesTheFirstLineThatIsNone) {
  EXPECT_EQ(iniFault("[a]\nb=1\n\nhello\n"),
            QStringLiteral("not an INI file: line 4 is neither a section nor a value"));
  EXPECT_EQ(iniFault("[open\n"), QStringLiteral("not an INI file: line 1 is neither a section nor a value"));
  EXPECT_EQ(iniFault(QByteArray("a=\0", 3)), QStringLiteral("not an INI file: it is no text"));
  EXPECT_EQ(iniFault("a=\xFF\n"), QStringLiteral("not an INI file: it is no text"));
}

TEST(EntryName, NeverMixesAKeyWithAValuesName) {
  EXPECT_EQ(entryName(QStringLiteral("a\\b"), QStringLiteral("c")), QStringLiteral("a\\b/c"));
  EXPECT_EQ(entryName(QStringLiteral("a/b"), QStringLiteral("c")), QStringLiteral("a%2Fb/c"));
  EXPECT_EQ(entryName(QStringLiteral("a"), QStringLiteral("b/c")), QStringLiteral("a/b%2Fc"));
  EXPECT_NE(entryName(QStringLiteral("a%2F"), QStringLiteral("b")),
            entryName(QStringLiteral("a/"), QStringLiteral("b")));
}

TEST(WithEntry, SetsSeveralInOneGo) {
  QString error;
  const auto bytes = withEntries("[Group]\nName=1\nOther=x\n",
                                 {{QStringLiteral("Group/Name"), QStringLiteral("2")},
                                  {QStringLiteral("Group/New"), QStringLiteral("a\r\nb")}},
                                 &error);
  ASSERT_TRUE(bytes) << qUtf8Printable(error);
  EXPECT_EQ(*parseIni(*bytes, &error), (IniEntries{{QStringLiteral("Group/Name"), QStringLiteral("2")},
                                                   {QStringLiteral("Group/New"), QStringLiteral("a\r\nb")},
                                                   {QStringLiteral("Group/Other"), QStringLiteral("x")}}));
}

TEST(WithEntry, UsesTheEntryThatDiffersOnlyInCase) {
  QString error;
  const auto bytes =
      withEntry("[Group]\nName=1\n", QStringLiteral("GROUP/name"), QStringLiteral("2"), &error);
  ASSERT_TRUE(bytes) << qUtf8Printable(error);
  EXPECT_EQ(*bytes, "[Group]\nName=2\n");
}
