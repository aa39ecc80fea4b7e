#include "platform/calendar/icalendar/index/indexfile.h"
#include "tests/unit/platform/calendar/icalendar/index/world.h"

#include <QFile>

// What the writing side asks of the index.
using namespace index_tests;
using platform::calendar::icalendar::EventRef;
using platform::calendar::icalendar::Snapshot;
using platform::calendar::icalendar::index::Database;
using platform::calendar::icalendar::index::IndexFile;
using platform::files::Fingerprint;
using platform::files::Splice;

class Writing : public IndexTest {
 protected:
  static QStringList described(const Snapshot& snapshot) {
    QStringList lines{snapshot.name,
                      QString::number(snapshot.newEventAt),
                      QString::fromLatin1(snapshot.lineEnd.toHex()),
                      snapshot.isEmpty ? u"empty"_qs : QString(),
                      QString::number(snapshot.fingerprint.mtimeNs),
                      QString::number(snapshot.fingerprint.size),
                      QString::number(snapshot.fingerprint.inode)};
    for (const EventRef& ref : snapshot.events)
      lines.append(QStringLiteral("%1 %2 %3 %4")
                       .arg(ref.event->uid, ref.event->place)
                       .arg(ref.file->base + ref.event->component->offset)
                       .arg(ref.file->tag(*ref.event)));
    return lines;
  }
  /// Writes as a save does: another file in the place of the old one.
  static Fingerprint replace(const QString& path, const QList<Splice>& splices) {
    QByteArray bytes = contentOf(path);
    for (auto splice = splices.crbegin(); splice != splices.crend(); ++splice)
      bytes.replace(splice->offset, splice->was.size(), splice->with);
    return platform::files::replaceFile(path, bytes).fingerprint;
  }
};

TEST_F(Writing, ASnapshotOfALargeFileTellsWhatReadingAllOfItTells) {
  for (const bool odd : {false, true}) {
    Chance chance(7);
    write(file(), someCalendar(chance, 600, odd));
    const auto index = open(file());
    FileCache plain(file(), u"Test"_qs);
    for (const char* uid : {"event-1@example.com", "event-2@example.com", "event-400@example.com", "nobody",
                            "no-uid:one.ics#3"}) {
      const QString wanted = QString::fromLatin1(uid);
      const Snapshot seen = index->snapshot(u"one.ics"_qs, wanted);
      EXPECT_EQ(described(seen), described(plain.snapshot(u"one.ics"_qs, wanted))) << uid;
      EXPECT_EQ(seen.whole, nullptr) << "the whole file was read";
    }
  }
}

TEST_F(Writing, AnEventOfASnapshotStandsInTheFileWhereItSays) {
  Chance chance(9);
  const QByteArray text = someCalendar(chance, 600);
  write(file(), text);
  const auto index = open(file());
  const Snapshot seen = index->snapshot(u"one.ics"_qs, u"event-333@example.com"_qs);
  ASSERT_EQ(seen.events.size(), 1);
  const EventRef& ref = seen.events.first();
  const QByteArray bytes = ref.file->document.raw(*ref.event->component).toByteArray();
  EXPECT_EQ(text.mid(ref.file->base + ref.event->component->offset, bytes.size()), bytes);
}

TEST_F(Writing, ASnapshotSeesWhatAnotherProgramWroteJustNow) {
  Chance chance(9);
  QByteArray text = someCalendar(chance, 600);
  write(file(), text);
  const auto index = open(file());
  index->snapshot(u"one.ics"_qs, u"event-3@example.com"_qs);
  text.replace("UID:event-3@", "UID:event-4@");
  write(file(), text);
  EXPECT_TRUE(index->snapshot(u"one.ics"_qs, u"event-3@example.com"_qs).events.isEmpty());
  EXPECT_EQ(index->snapshot(u"one.ics"_qs, u"event-4@example.com"_qs).events.size(), 2);
}

TEST_F(Writing, OwnChangesAreTakenInAtTheirPlaces) {
  Chance chance(11);
  write(file(), someCalendar(chance, 620));
  const auto index = open(file());
  expectSame(*index, file());
  for (int step = 0; step < 12; ++step) {
    SCOPED_TRACE(step);
    const QString uid = u"event-%1@example.com"_qs.arg(chance.below(620));
    const Snapshot seen = index->snapshot(u"one.ics"_qs, uid);
    QList<Splice> splices;
    for (const EventRef& ref : seen.events) {
      const QByteArray was = ref.file->document.raw(*ref.event->component).toByteArray();
      QByteArray with = was;
      with.replace("END:VEVENT", "SUMMARY:step " + QByteArray::number(step) + "\r\nEND:VEVENT");
      if (chance.oneIn(4)) with.clear();
      splices.append({ref.file->base + ref.event->component->offset, was, with});
    }
    if (chance.oneIn(2)) splices.append({seen.newEventAt, {}, someEvent(chance, 2000 + step, false)});
    const Fingerprint after = replace(file(), splices);
    index->written(u"one.ics"_qs, splices, after);
    FileCache plain(file(), u"Test"_qs);
    EXPECT_EQ(allShownBy(*index), allShownBy(plain));
    EXPECT_TRUE(index->answeredFromIndex());
  }
  expectSame(*index, file());
  expectSame(*open(file()), file());
}

TEST_F(Writing, OwnChangesOfSmallFilesAreTakenIn) {
  Chance chance(12);
  for (int i = 0; i < 5; ++i) write(path(u"%1.ics"_qs.arg(i)), someCalendar(chance, 1));
  const auto index = open(folder());
  expectSame(*index, folder());
  const QString tag = index->changeTag();
  const auto result = platform::files::replaceFile(path(u"2.ics"_qs), someCalendar(chance, 2));
  index->written(u"2.ics"_qs, {}, result.fingerprint);
  EXPECT_NE(index->changeTag(), tag);
  const QString after = index->changeTag();
  expectSame(*index, folder());
  EXPECT_EQ(index->changeTag(), after);
  QFile::remove(path(u"2.ics"_qs));
  index->written(u"2.ics"_qs, {}, {});
  expectSame(*index, folder());
}

TEST_F(Writing, AWriteOfAnotherProgramRightBehindOnesOwnIsNotMissed) {
  Chance chance(13);
  write(path(u"a.ics"_qs), someCalendar(chance, 1));
  const auto index = open(folder());
  expectSame(*index, folder());
  const auto result = platform::files::replaceFile(path(u"a.ics"_qs), someCalendar(chance, 2));
  write(path(u"a.ics"_qs), someCalendar(chance, 3));
  index->written(u"a.ics"_qs, {}, result.fingerprint);
  write(path(u"b.ics"_qs), someCalendar(chance, 3));
  expectSame(*index, folder());
}

TEST_F(Writing, RowsOfAnotherStateThanTheOneThatWasChangedAreNotBuiltUpon) {
  Chance chance(14);
  QByteArray text = someCalendar(chance, 620);
  write(file(), text);
  const auto index = open(file());
  const Snapshot seen = index->snapshot(u"one.ics"_qs, u"event-600@example.com"_qs);
  ASSERT_FALSE(seen.events.isEmpty());
  const EventRef& ref = seen.events.first();
  const QByteArray was = ref.file->document.raw(*ref.event->component).toByteArray();
  // of the same size, taken in by another program, and taken back before this one's own change
  QByteArray between = text;
  between.replace("UID:event-3@", "UID:event-4@");
  write(file(), between);
  expectSame(*open(file()), file());
  write(file(), text);
  const QList<Splice> splices{{ref.file->base + ref.event->component->offset, was, {}}};
  index->written(u"one.ics"_qs, splices, replace(file(), splices));
  FileCache plain(file(), u"Test"_qs);
  EXPECT_EQ(allShownBy(*index), allShownBy(plain));
  expectSame(*index, file());
}

TEST_F(Writing, ANewEventGoesWhereTheFileHasItsEndWhateverTheIndexSays) {
  Chance chance(15);
  const QByteArray text = someCalendar(chance, 600);
  write(file(), text);
  makeOld(file());
  const auto index = open(file());
  const QString wanted = u"event-1@example.com"_qs;
  const qint64 right = index->snapshot(u"one.ics"_qs, wanted).newEventAt;
  {
    Database other(index->indexPath(), IndexFile(cache(), file()).identity(), Database::Access::ReadWrite);
    other.script("UPDATE segment SET lastEnd = lastEnd - 40 WHERE lastEnd > 40");
  }
  EXPECT_EQ(index->snapshot(u"one.ics"_qs, wanted).newEventAt, right);
}
