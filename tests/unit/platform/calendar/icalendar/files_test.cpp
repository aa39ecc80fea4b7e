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

namespace {

/// As if it had been last written years ago.
void age(const QString& path) {
  struct timespec times[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
}

}  // namespace

TEST_F(IcalendarTest, HalfWrittenFilesOfACrashAreTakenAwayByTheFirstSaveAndByNoReading) {
  write(u"a.ics"_qs, item("a"));
  write(u".a.ics.x7k2m9.tmp"_qs, "half");
  age(path(u".a.ics.x7k2m9.tmp"_qs));
  const Item found = single();
  EXPECT_TRUE(QFile::exists(path(u".a.ics.x7k2m9.tmp"_qs)));
  Change change;
  change.subject = u"new"_qs;
  save(found, change);
  EXPECT_FALSE(QFile::exists(path(u".a.ics.x7k2m9.tmp"_qs)));
  EXPECT_EQ(single().subject, u"new"_qs);
}

TEST_F(IcalendarTest, AFileThatTakesThePlaceOfOneOfTheSameTimeAndSizeIsSeenAndCanBeSaved) {
  for (const char* name : {"a.ics", "b.tmp"}) {
    const QString file = QString::fromLatin1(name);
    write(file, item("a", file == u"a.ics" ? "one" : "two"));
    age(path(file));
  }
  EXPECT_EQ(single().subject, u"one"_qs);
  const QString tag = store->changeTag(folder);
  ASSERT_EQ(std::rename(QFile::encodeName(path(u"b.tmp"_qs)).constData(),
                        QFile::encodeName(path(u"a.ics"_qs)).constData()),
            0);
  EXPECT_EQ(single().subject, u"two"_qs);
  EXPECT_NE(store->changeTag(folder), tag);
  Change change;
  change.subject = u"three"_qs;
  EXPECT_EQ(save(single(), change).subject, u"three"_qs);
}

TEST_F(IcalendarTest, TheFirstSaveOfAFolderLeavesTheTemporaryFilesOfOtherPrograms) {
  write(u"a.ics"_qs, item("a"));
  write(u".thesis.backup.tmp"_qs, "theirs");
  age(path(u".thesis.backup.tmp"_qs));
  Change change;
  change.subject = u"new"_qs;
  save(single(), change);
  EXPECT_TRUE(QFile::exists(path(u".thesis.backup.tmp"_qs)));
}

TEST_F(IcalendarTest, TheFirstSaveOfOneFileTakesWhatACrashLeftBesideItsTargetAndNothingOfOthers) {
  write(u"real.ics"_qs, item("a"));
  ASSERT_TRUE(QFile::link(path(u"real.ics"_qs), onePath()));
  const QString ours = path(u".real.ics.x7k2m9.tmp"_qs);
  const QStringList theirs{path(u".thesis.backup.tmp"_qs), path(u".a.ics.x7k2m9.tmp"_qs),
                           QFileInfo(onePath()).path() + u"/.notes.backup.tmp"_qs};
  for (const QString& name : theirs + QStringList{ours}) {
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    age(name);
  }
  folder = u"one"_qs;
  Change change;
  change.subject = u"new"_qs;
  save(single(), change);
  EXPECT_FALSE(QFile::exists(ours));
  for (const QString& name : theirs) EXPECT_TRUE(QFile::exists(name)) << qPrintable(name);
}

TEST_F(IcalendarTest, TheFirstSaveOfAFolderTakesWhatACrashLeftBesideTheTargetsOfItsLinksAndNothingElseThere) {
  const QTemporaryDir away;
  const auto put = [&](const QString& name, const QByteArray& bytes) {
    QFile file(away.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    file.close();
    age(away.filePath(name));
  };
  put(u"real.data"_qs, item("linked"));
  ASSERT_TRUE(QDir(away.path()).mkdir(u"folder"_qs));
  const QStringList ours{u".real.data.x7k2m9.tmp"_qs, u".new.ics.x7k2m9.tmp"_qs};
  const QStringList theirs{u".thesis.backup.tmp"_qs, u".other.ics.x7k2m9.tmp"_qs, u".real.data.x7k2m9.bak"_qs,
                           u"folder/.inner.ics.x7k2m9.tmp"_qs, u".folder.x7k2m9.tmp"_qs};
  for (const QString& name : ours + theirs) put(name, "half");
  write(u"a.ics"_qs, item("a"));
  ASSERT_TRUE(QFile::link(away.filePath(u"real.data"_qs), path(u"linked.ics"_qs)));
  ASSERT_TRUE(QFile::link(away.filePath(u"new.ics"_qs), path(u"nowhere.ics"_qs)));
  ASSERT_TRUE(QFile::link(away.filePath(u"folder"_qs), path(u"folder.ics"_qs)));
  ASSERT_TRUE(QFile::link(away.filePath(u"other.ics"_qs), path(u"other.txt"_qs)));
  Item mine;
  for (const Item& one : plain())
    if (one.key.uid == u"a") mine = one;
  EXPECT_TRUE(QFile::exists(away.filePath(ours[0])));
  Change change;
  change.subject = u"new"_qs;
  save(mine, change);
  for (const QString& name : ours) EXPECT_FALSE(QFile::exists(away.filePath(name))) << qPrintable(name);
  for (const QString& name : theirs) EXPECT_TRUE(QFile::exists(away.filePath(name))) << qPrintable(name);
}

TEST_F(IcalendarTest, TheLastLineOfAnEventStaysAsItIsHoweverItIsWritten) {
  const QByteArray head = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n", tail = "END:VCALENDAR\r\n";
  const QByteArray lines = "begin:vevent\r\nUID:a\r\nSUMMARY:Old\r\nDTSTART:20240205T080000Z\r\n";
  const QByteArray others = "BEGIN:VEVENT\r\nUID:b\r\nDTSTART:20240206T080000Z\r\nend:vevent \r\n";
  for (const QByteArray end :
       {"END:VEVENT\r\n", "end:vevent\r\n", "End:VEvent\n", "END:VEVENT \t\r\n", "END:VEVENT\r\r\n",
        "END\r\n :VEVENT\r\n", "END:VEV\r\n ENT\r\n", "END;X=y:VEVENT\r\n", "\r\nEND:VEVENT\r\n",
        "END:VEVENT\r\n\r\n", "end : vevent\r\n"}) {
    for (const bool last : {false, true}) {
      for (const bool held : {false, true}) {
        SCOPED_TRACE(end.toPercentEncoding().toStdString() + (last ? " last" : "") + (held ? " held" : ""));
        const QByteArray before = head + (last ? others + lines + end : lines + end + others) + tail;
        writeOne(before);
        folder = u"one"_qs;
        Query query;
        query.uid = u"a"_qs;
        const Item item = store->items(folder, query).value(0);
        ASSERT_EQ(item.subject, u"Old"_qs);
        if (held) store->hold();
        Change change;
        change.subject = u"New"_qs;
        change.billingInformation = u"Paid"_qs;
        save(item, change);
        EXPECT_TRUE(store->flush().isEmpty());
        EXPECT_EQ(differences(before, readOne()),
                  (QByteArrayList{"-SUMMARY:Old", "+SUMMARY:New", "+X-HOURBOOK-BILLINGINFORMATION:Paid"}));
        const QByteArray changed = readOne();
        EXPECT_TRUE(changed.contains("X-HOURBOOK-BILLINGINFORMATION:Paid\r\n" + end) ||
                    changed.contains("X-HOURBOOK-BILLINGINFORMATION:Paid\r\n" + end.trimmed()));
        EXPECT_TRUE(changed.contains(end));
      }
    }
  }
}

TEST_F(IcalendarTest, TheLastLineOfAnEventStaysAsItIsWhereItsFileBreaksOff) {
  for (const QByteArray end : {"END:VEVENT", "end:vevent", "end:vevent\r", "END:VEVENT \t", "END:VEVENT\n"}) {
    for (const QByteArray lineEnd : {"\r\n", "\n", "\r"}) {
      if (lineEnd == "\r" && end.contains('\n')) continue;
      SCOPED_TRACE(end.toPercentEncoding().toStdString());
      QByteArray before =
          "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:a\r\nSUMMARY:Old\r\n"
          "DTSTART:20240205T080000Z\r\n" +
          end;
      before.replace("\r\n", lineEnd);
      write(u"a.ics"_qs, before);
      Change change;
      change.subject = u"New"_qs;
      save(single(), change);
      EXPECT_EQ(read(u"a.ics"_qs), QByteArray(before).replace("SUMMARY:Old", "SUMMARY:New"));
    }
  }
}
