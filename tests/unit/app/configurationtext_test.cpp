#include "app/ConfigurationText.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace tests {
namespace {

using namespace Qt::StringLiterals;
using hourbook::CalendarEntry;
using hourbook::Configuration;
using hourbook::ConfigurationDraft;

ConfigurationDraft read(const QByteArray& bytes) {
  QString error;
  const auto draft = hourbook::readDraft(bytes, &error);
  EXPECT_TRUE(draft) << qPrintable(error);
  return draft.value_or(ConfigurationDraft{});
}

QByteArray write(const QByteArray& bytes, const ConfigurationDraft& draft) {
  QString error;
  const auto written = hourbook::withDraft(bytes, draft, &error);
  EXPECT_TRUE(written) << qPrintable(error);
  return written.value_or(QByteArray());
}

const ConfigurationDraft two{u"Mailbox - Doe, \"J\" \\ Ä"_s,
                             {{u"work"_s, u"Work; a, b"_s, u"/cal/wörk"_s, false},
                              {u"home"_s, u"@home = 1 # 2"_s, u"/cal/home.ics"_s, true}},
                             u"home"_s};

TEST(ConfigurationText, WhatIsWrittenIntoNothingReadsTheSame) {
  EXPECT_EQ(read(write({}, two)), two);
}

TEST(ConfigurationText, TheProgramReadsWhatIsWritten) {
  const QTemporaryDir folder;
  ConfigurationDraft draft = two;
  draft.calendars[0].path = folder.filePath(u"work, 2"_s);
  draft.calendars[1].path = u"home"_s;
  QDir(folder.path()).mkdir(u"work, 2"_s);
  QDir(folder.path()).mkdir(u"home"_s);
  QFile file(folder.filePath(u"platform.ini"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(write({}, draft));
  file.close();
  const Configuration found = Configuration::read(folder.path());
  EXPECT_EQ(found.mailboxName, draft.mailboxName);
  EXPECT_EQ(found.openCalendar, u"home"_s);
  ASSERT_EQ(found.calendars.size(), 2);
  EXPECT_EQ(found.calendars[0], draft.calendars[0]);
  EXPECT_EQ(found.calendars[1].name, u"@home = 1 # 2"_s);
  EXPECT_EQ(found.calendars[1].path, folder.filePath(u"home"_s));
}

TEST(ConfigurationText, OtherKeysSectionsAndCommentsStay) {
  const QByteArray before =
      "; mine\n[mailbox]\nversion=11.0.0.8169\nname=Old\n\n[calendars]\n; two of them\nopen=work\nsize=2\n"
      "1\\id=work\n1\\color=red\n1\\path=/cal/w\n2\\id=home\n2\\path=/cal/h\n2\\color=\"blue, dark\"\n\n"
      "[later]\nkey=value\n";
  ConfigurationDraft draft = read(before);
  draft.calendars.move(1, 0);
  draft.mailboxName = u"New"_s;
  EXPECT_EQ(write(before, draft),
            QByteArray("; mine\n[mailbox]\nversion=11.0.0.8169\nname=\"New\"\n\n[calendars]\n; two of them\n"
                       "open=\"work\"\nsize=2\n1\\id=\"home\"\n1\\name=\"home\"\n1\\path=\"/cal/h\"\n"
                       "1\\readonly=false\n1\\color=\"blue, dark\"\n2\\id=\"work\"\n2\\name=\"work\"\n"
                       "2\\path=\"/cal/w\"\n2\\readonly=false\n2\\color=red\n\n[later]\nkey=value\n"));
}

TEST(ConfigurationText, WithoutAChangeNoByteChanges) {
  const QByteArray before = "[calendars]\r\nsize = 1\r\n1\\id = work\r\n1\\path = w\r\n";
  EXPECT_EQ(write(before, read(before)), before);
}

TEST(ConfigurationText, ACalendarThatGoesTakesItsKeysAlong) {
  const QByteArray before = "[calendars]\nsize=2\n1\\id=a\n1\\path=/a\n1\\x=1\n2\\id=b\n2\\path=/b\n2\\x=2\n";
  ConfigurationDraft draft = read(before);
  draft.calendars.removeFirst();
  const QByteArray after = write(before, draft);
  EXPECT_TRUE(after.contains("1\\x=2\n")) << after.constData();
  EXPECT_FALSE(after.contains("x=1")) << after.constData();
}

TEST(ConfigurationText, ACalendarThatHasVanishedCanBeReadAllTheSame) {
  const ConfigurationDraft draft = read("[calendars]\nopen=gone\nsize=1\n1\\id=gone\n1\\path=/nowhere\n");
  ASSERT_EQ(draft.calendars.size(), 1);
  EXPECT_EQ(draft.calendars[0].path, u"/nowhere"_s);
  EXPECT_EQ(draft.openCalendar, u"gone"_s);
}

TEST(ConfigurationText, WhatIsNoIniFileIsRefused) {
  QString error;
  EXPECT_FALSE(hourbook::readDraft("[calendars\nsize", &error));
  EXPECT_FALSE(error.isEmpty());
  EXPECT_FALSE(hourbook::withDraft("[calendars\nsize", two, &error));
}

TEST(ConfigurationText, ALineBreakInANameIsRefused) {
  QString error;
  ConfigurationDraft draft = two;
  draft.calendars[0].name = u"a\nb"_s;
  EXPECT_FALSE(hourbook::withDraft({}, draft, &error));
  EXPECT_TRUE(error.contains(u"line break"_s));
}

TEST(ConfigurationText, AFormThatCannotBeChangedIsLeftAlone) {
  // A section of the same name that comes twice: which of the two counts cannot be told from the lines.
  const QByteArray before = "[calendars]\nsize=1\n1\\id=a\n1\\path=/a\n[General]\ncalendars\\open=a\n";
  ConfigurationDraft draft = read(before);
  draft.openCalendar = QString();
  QString error;
  EXPECT_FALSE(hourbook::withDraft(before, draft, &error));
  EXPECT_TRUE(error.contains(u"by hand"_s)) << qPrintable(error);
}

}  // namespace
}  // namespace tests
