#include "tests/unit/platform/calendar/icalendar/fixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

using namespace icalendar_tests;

namespace {

QByteArray item(const QByteArray& uid, const QByteArray& subject = "x") {
  return calendar(event({"UID:" + uid, "SUMMARY:" + subject, "DTSTART:20240205T080000Z"}));
}

}  // namespace

TEST_F(IcalendarTest, OnlyCalendarFilesOfTheFolderAreRead) {
  write(u"a.ics"_qs, item("a"));
  write(u"B.ICS"_qs, item("b"));
  write(u".hidden.ics"_qs, item("c"));
  write(u".a.ics.Xy12.tmp"_qs, item("d"));
  write(u"notes.txt"_qs, item("e"));
  QDir(path(QString())).mkdir(u"folder.ics"_qs);
  EXPECT_EQ(plain().size(), 2);
  EXPECT_TRUE(store->problems(folder).isEmpty());
}

TEST_F(IcalendarTest, AFolderIsDescribedAsItIsConfigured) {
  const auto folders = store->folders();
  ASSERT_EQ(folders.size(), 2);
  EXPECT_EQ(folders[0].id, u"cal"_qs);
  EXPECT_EQ(folders[0].name, u"Work"_qs);
  EXPECT_EQ(folders[0].storeName, u"Mailbox - Jane Doe"_qs);
  EXPECT_TRUE(folders[0].holdsAppointments);
  EXPECT_FALSE(folders[0].readOnly);
  reopen(true);
  EXPECT_TRUE(store->folders().at(0).readOnly);
}

TEST_F(IcalendarTest, ChangesOfOthersAreSeenWithoutAnyRestart) {
  write(u"a.ics"_qs, item("a", "one"));
  EXPECT_EQ(single().subject, u"one"_qs);
  write(u"a.ics"_qs,
        item("a", "two"));  // the same size, maybe within the same tick of the file system's clock
  EXPECT_EQ(single().subject, u"two"_qs);
  QFile::remove(path(u"a.ics"_qs));
  EXPECT_TRUE(plain().isEmpty());
}

TEST_F(IcalendarTest, TheFoldersTagTellsNamesTimesAndSizes) {
  write(u"a.ics"_qs, item("a"));
  const QString tag = store->changeTag(folder);
  plain();
  EXPECT_EQ(store->changeTag(folder), tag);
  QFile::rename(path(u"a.ics"_qs), path(u"b.ics"_qs));
  const QString renamed = store->changeTag(folder);
  EXPECT_NE(renamed, tag);
  write(u"b.ics"_qs, item("a", "longer"));
  EXPECT_NE(store->changeTag(folder), renamed);
}

TEST_F(IcalendarTest, AFileThatCannotBeReadIsNamedAndTheOthersAreShown) {
  write(u"a.ics"_qs, item("a"));
  ASSERT_EQ(mkfifo(path(u"pipe.ics"_qs).toLocal8Bit().constData(), 0600), 0);
  write(u"words.ics"_qs, "no calendar at all\n");
  write(u"wide.ics"_qs, QByteArray("\xFF\xFE\x42\x00", 4));
  QFile::link(path(u"nowhere"_qs), path(u"dangling.ics"_qs));
  EXPECT_EQ(plain().size(), 1);
  QStringList places;
  for (const Problem& problem : store->problems(folder)) places.append(problem.place);
  places.removeDuplicates();
  EXPECT_EQ(places, (QStringList{u"dangling.ics"_qs, u"pipe.ics"_qs, u"wide.ics"_qs, u"words.ics"_qs}));
}

TEST_F(IcalendarTest, AFileWhoseNameIsNoTextIsNamedAndTheOthersAreShown) {
  write(u"a.ics"_qs, item("a"));
  const QByteArray folderPath = QFileInfo(path(u"a.ics"_qs)).path().toLocal8Bit();
  for (const char* name : {"b\xFCro.ics", "b\xFCro.txt"}) {
    std::ofstream file((folderPath + '/' + name).toStdString());
    file << item("b").toStdString();
    ASSERT_TRUE(file.flush()) << "this file system takes no such names";
  }
  EXPECT_EQ(plain().size(), 1);
  const QString named = u"b\uFFFDro.ics:0: The file's name is not in UTF-8, so the file was not read."_qs;
  EXPECT_EQ(problemTexts(), QStringList{named});
  EXPECT_NO_THROW(store->changeTag(folder));
  EXPECT_NO_THROW(save(single(), {}));
  for (const char* name : {"b\xFCro.ics", "b\xFCro.txt"})  // Qt's own cleaning up does not find them
    EXPECT_EQ(::unlink((folderPath + '/' + name).constData()), 0);
}

TEST_F(IcalendarTest, ReadingChangesNoByteAndNoTime) {
  write(u"a.ics"_qs, "\xEF\xBB\xBF" + item("a") + "\n\rjunk");
  const QByteArray before = read(u"a.ics"_qs);
  const QString tag = store->changeTag(folder);
  plain();
  shown(u"2024-01-01"_qs, u"2024-12-31"_qs);
  store->problems(folder);
  EXPECT_EQ(read(u"a.ics"_qs), before);
  EXPECT_EQ(store->changeTag(folder), tag);
  EXPECT_EQ(fileNames(), QStringList{u"a.ics"_qs});
}

TEST_F(IcalendarTest, SeveralCalendarsInOneFileAreOneFolder) {
  folder = u"one"_qs;
  writeOne(item("a") + item("b"));
  EXPECT_EQ(plain().size(), 2);
}

TEST_F(IcalendarTest, ALinkToAFileIsChangedAtItsTarget) {
  write(u"target.txt"_qs, item("a", "old"));
  QFile::link(path(u"target.txt"_qs), path(u"a.ics"_qs));
  Change change;
  change.subject = u"new"_qs;
  save(single(), change);
  EXPECT_EQ(read(u"target.txt"_qs), item("a", "new"));
  EXPECT_TRUE(QFileInfo(path(u"a.ics"_qs)).isSymLink());
}

TEST_F(IcalendarTest, HalfWrittenFilesOfACrashAreTakenAwayByTheFirstSaveAndByNoReading) {
  write(u"a.ics"_qs, item("a"));
  write(u".a.ics.x7k2m9.tmp"_qs, "half");
  struct timespec times[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(path(u".a.ics.x7k2m9.tmp"_qs)).constData(), times, 0), 0);
  const Item found = single();
  EXPECT_TRUE(QFile::exists(path(u".a.ics.x7k2m9.tmp"_qs)));
  Change change;
  change.subject = u"new"_qs;
  save(found, change);
  EXPECT_FALSE(QFile::exists(path(u".a.ics.x7k2m9.tmp"_qs)));
  EXPECT_EQ(single().subject, u"new"_qs);
}
