#include "platform/basic/failure.h"
#include "platform/files/posix/systemcalls.h"
#include "tests/unit/platform/calendar/icalendar/fixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <sys/stat.h>

using namespace icalendar_tests;
using namespace platform::calendar;

class FailuresTest : public IcalendarTest {
 protected:
  FailuresTest() { write(u"a.ics"_qs, bytes); }
  ~FailuresTest() override { QFile::setPermissions(path(QString()), QFile::Permissions(0x7700)); }

  /// The failure of a statement: its number, and its text in `text`.
  qint32 failure(const std::function<void()>& statement) {
    try {
      statement();
    } catch (const platform::Failure& failure) {
      text = failure.description();
      return failure.number();
    }
    return 0;
  }
  qint32 failedSave(const Item& item) {
    Change change;
    change.subject = u"Mine"_qs;
    return failure([&] { save(item, change); });
  }
  void expectNames(const QStringList& words) {
    for (const QString& word : words)
      EXPECT_TRUE(text.contains(word)) << qPrintable(word + u" in: "_qs + text);
  }

  const QByteArray bytes = calendar(event({"UID:a", "SUMMARY:Meeting", "DTSTART:20240205T080000Z"}));
  QString text;
};

TEST_F(FailuresTest, ACalendarThatIsReadOnlyRefusesEveryChange) {
  reopen(true);
  const Item item = single();
  EXPECT_EQ(failedSave(item), errAccessDenied);
  expectNames({u"Work"_qs});
  EXPECT_EQ(failure([&] { store->remove(folder, item.key, item.tag); }), errAccessDenied);
  EXPECT_EQ(read(u"a.ics"_qs), bytes);
}

TEST_F(FailuresTest, AWriteProtectedFileStaysAsItIs) {
  const Item item = single();
  QFile::setPermissions(path(u"a.ics"_qs), QFile::ReadOwner | QFile::ReadUser);
  EXPECT_EQ(failedSave(item), errAccessDenied);
  expectNames({u"Work"_qs, u"a.ics"_qs});
  EXPECT_EQ(read(u"a.ics"_qs), bytes);
}

TEST_F(FailuresTest, AFolderWithoutTheRightToWriteStaysAsItIs) {
  const Item item = single();
  QFile::setPermissions(path(QString()), QFile::ReadOwner | QFile::ExeOwner);
  EXPECT_EQ(failedSave(item), errAccessDenied);
  expectNames({u"Work"_qs, path(QString()).chopped(1)});
  Change change;
  change.start = moment(u"2024-02-05 09:00"_qs);
  EXPECT_EQ(failure([&] { store->save(folder, {}, {}, change); }), errAccessDenied);
  EXPECT_EQ(fileNames(), QStringList{u"a.ics"_qs});
}

TEST_F(FailuresTest, ACalendarInOneFileIsReadOnlyWhereItsFolderIs) {
  writeOne(bytes);
  const QString around = QFileInfo(onePath()).path();
  EXPECT_FALSE(store->folders().at(1).readOnly);
  QFile::setPermissions(around, QFile::ReadOwner | QFile::ExeOwner);
  EXPECT_TRUE(store->folders().at(1).readOnly);
  QFile::setPermissions(around, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  EXPECT_FALSE(store->folders().at(1).readOnly);
}

TEST_F(FailuresTest, ALinkedCalendarIsAsWritableAsTheFolderItLeadsTo) {
  ASSERT_TRUE(QFile::rename(path(u"a.ics"_qs), path(u"b.ics"_qs)));
  ASSERT_TRUE(QFile::link(path(u"b.ics"_qs), onePath()));
  folder = u"one"_qs;
  const Item item = single();
  QFile::setPermissions(path(QString()), QFile::ReadOwner | QFile::ExeOwner);
  EXPECT_TRUE(store->folders().at(1).readOnly);
  EXPECT_EQ(failedSave(item), errAccessDenied);
  expectNames({path(QString()).chopped(1)});
  EXPECT_EQ(read(u"b.ics"_qs), bytes);
}

TEST_F(FailuresTest, ACalendarInOneFileThatIsNoFileIsBrokenAndNotMissing) {
  folder = u"one"_qs;
  EXPECT_EQ(failure([&] { plain(); }), errNotFound);
  ASSERT_EQ(mkfifo(QFile::encodeName(onePath()).constData(), 0600), 0);
  EXPECT_EQ(failure([&] { plain(); }), errStoreBroken);
  expectNames({u"Archive"_qs, onePath()});
}

TEST_F(FailuresTest, ANewItemThatIsToldAsNotSavedIsNotThere) {
  using platform::files::SystemCalls;
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.fsync = [](int file) {  // folders only
    struct stat found {};
    if (::fstat(file, &found) != 0 || !S_ISDIR(found.st_mode)) return 0;
    errno = EIO;
    return -1;
  };
  Change change;
  change.subject = u"New"_qs;
  change.start = moment(u"2024-02-05 09:00"_qs);
  {
    const platform::files::ScopedSystemCalls scope(calls);
    EXPECT_EQ(failure([&] { store->save(folder, {}, {}, change); }), errStoreBroken);
  }
  EXPECT_EQ(fileNames(), QStringList{u"a.ics"_qs});
  EXPECT_EQ(failure([&] { store->save(folder, {}, {}, change); }), 0);
  EXPECT_EQ(fileNames().size(), 2);
}

TEST_F(FailuresTest, AFileThatHasVanishedIsNotFound) {
  const Item item = single();
  QFile::remove(path(u"a.ics"_qs));
  EXPECT_EQ(failedSave(item), errNotFound);
  expectNames({u"Work"_qs, u"a.ics"_qs});
  EXPECT_TRUE(fileNames().isEmpty());
}

TEST_F(FailuresTest, AnItemThatHasVanishedIsNotFound) {
  const Item item = single();
  write(u"a.ics"_qs, calendar({}));
  EXPECT_EQ(failedSave(item), errNotFound);
  EXPECT_EQ(read(u"a.ics"_qs), calendar({}));
}

TEST_F(FailuresTest, AnItemThatAnotherProgramChangedIsNamedWithItsFile) {
  const Item item = single();
  QByteArray theirs = bytes;
  theirs.replace("END:VEVENT", "LOCATION:Room 1\r\nEND:VEVENT");
  write(u"a.ics"_qs, theirs);
  EXPECT_EQ(failedSave(item), errChangedMeanwhile);
  expectNames({u"Work"_qs, u"Meeting"_qs, u"a.ics"_qs});
  EXPECT_EQ(read(u"a.ics"_qs), theirs);
}

TEST_F(FailuresTest, AnOccurrenceThatAnotherProgramMadeAnExceptionIsNotOverwritten) {
  const QByteArray series =
      event({"UID:s", "SUMMARY:S", "DTSTART:20240205T080000Z", "RRULE:FREQ=DAILY;COUNT=3"});
  write(u"a.ics"_qs, calendar(series));
  const Item item = expanded(u"2024-02-06"_qs, u"2024-02-06"_qs).at(0);
  const QByteArray theirs =
      calendar(series + event({"UID:s", "RECURRENCE-ID:20240206T080000Z", "DTSTART:20240206T090000Z"}));
  write(u"a.ics"_qs, theirs);
  EXPECT_EQ(failedSave(item), errChangedMeanwhile);
  EXPECT_EQ(read(u"a.ics"_qs), theirs);
}

TEST_F(FailuresTest, AChangeElsewhereInTheFileIsTakenIn) {
  const Item item = single();
  const QByteArray other = event({"UID:new", "SUMMARY:Theirs", "DTSTART:20240205T090000Z"});
  QByteArray theirs = bytes;
  theirs.insert(theirs.indexOf("BEGIN:VEVENT"), other);
  write(u"a.ics"_qs, theirs);
  EXPECT_EQ(failedSave(item), 0);
  EXPECT_EQ(read(u"a.ics"_qs), theirs.replace("SUMMARY:Meeting", "SUMMARY:Mine"));
}

TEST_F(FailuresTest, AnItemWithoutUidIsFoundThoughOthersWerePutInFrontOfIt) {
  const QByteArray own = event({"SUMMARY:Own", "DTSTART:20240205T080000Z"});
  write(u"a.ics"_qs, calendar(own));
  const Item item = single();
  write(u"a.ics"_qs, calendar(event({"SUMMARY:Front", "DTSTART:20240205T070000Z"}) + own));
  const qint32 number = failedSave(item);
  EXPECT_TRUE(number == 0 || number == errChangedMeanwhile) << number;
  EXPECT_TRUE(read(u"a.ics"_qs).contains("SUMMARY:Front"));
}

TEST_F(FailuresTest, APathThatDoesNotExistIsNamed) {
  EXPECT_EQ(failure([&] { store->items(u"one"_qs, {}); }), errNotFound);
  expectNames({u"Archive"_qs, u"one.ics"_qs});
  EXPECT_EQ(failure([&] { store->changeTag(u"one"_qs); }), errNotFound);
  EXPECT_EQ(failure([&] { store->items(u"no such"_qs, {}); }), errNotFound);
}

TEST_F(FailuresTest, WithoutBoundsASeriesIsNotExpanded) {
  Query query;
  query.expandSeries = true;
  EXPECT_EQ(failure([&] { store->items(folder, query); }), platform::failure::invalidProcedureCall);
}

TEST_F(FailuresTest, NothingIsLeftBesideTheFile) {
  failedSave(single());
  EXPECT_EQ(fileNames(), QStringList{u"a.ics"_qs});
}
