#include "platform/process/environment.h"

#include <gtest/gtest.h>

namespace {

QString expanded(const QString& text) {
  return platform::process::expandNames(text, [](const QString& name) -> std::optional<QString> {
    if (name == QStringLiteral("USER")) return QStringLiteral("ann");
    if (name == QStringLiteral("EMPTY")) return QString();
    return std::nullopt;
  });
}

struct Case {
  const char* text;
  const char* expanded;
};

}  // namespace

TEST(ExpandNames, ReplacesKnownNamesAndLeavesTheRestAsItStands) {
  for (const Case& c : {Case{"%USER%", "ann"}, Case{"a %USER% b %USER%", "a ann b ann"}, Case{"", ""},
                        Case{"no names", "no names"}, Case{"%UNKNOWN%", "%UNKNOWN%"}, Case{"%EMPTY%|", "|"},
                        Case{"50% of %USER%", "50% of ann"}, Case{"%%USER%%", "%ann%"}, Case{"%%", "%%"},
                        Case{"100%", "100%"}, Case{"%UNKNOWN%USER%", "%UNKNOWNann"}})
    EXPECT_EQ(expanded(QString::fromLatin1(c.text)), QString::fromLatin1(c.expanded)) << c.text;
}
