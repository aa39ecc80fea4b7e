// What the journal's folder holds, and what becomes of files in it that are none of ours.
#include "journalworld.h"
#include "platform/files/posix/systemcalls.h"
#include "reporting/cDatabaseTarget.h"

#include <QFileInfo>

using namespace hourbook;
using namespace Qt::StringLiterals;
using platform::Failure;
using tests::JournalWorld;

namespace {

ReportRun sampleRun() {
  ReportRun run;
  run.target = 3;
  run.place = u"sqloledb server  Hourbook"_s;
  run.person = u"Jane Doe"_s;
  run.begun = u"2024-05-15 10:00"_s;
  run.mark = {{u"lastReportID"_s, 12}, {u"personID"_s, 1}};
  ReportedRow row;
  row.folder = u"cal"_s;
  row.entryId = u"a%2Fb//c.ics"_s;
  row.tag = u"t"_s;
  row.subject = u"Größe \"x\"\n週次 😀"_s;
  row.start = u"2024-05-13T07:30:00Z"_s;
  row.minutes = 90;
  row.line.day = QDate(2024, 5, 13);
  row.line.subject = row.subject;
  row.line.hours = 1.33F;
  row.line.names = {u"Acme"_s, QString(u""_s), u"Design"_s};
  row.line.keys = {1, std::nullopt, 7};
  row.stored = platform::basic::Date::of(QDate(2024, 5, 15), QTime(10, 0, 1));
  run.rows = {row, row};
  run.rows[1].stored.reset();
  run.rows[1].line.hours.reset();
  run.rows[0].settled = run.rows[0].stampedElsewhere = true;
  return run;
}

QString refusal(const QByteArray& text) {
  try {
    fncRunOfJournalText(text);
  } catch (const Failure& failure) {
    return failure.description();
  }
  return u"(taken)"_s;
}

}  // namespace

TEST(JournalText, ComesBackAsItWas) {
  const ReportRun run = sampleRun();
  const ReportRun back = fncRunOfJournalText(fncJournalText(run));
  EXPECT_EQ(fncJournalText(back), fncJournalText(run));
  ASSERT_EQ(back.rows.size(), 2);
  EXPECT_EQ(back.rows[0].subject, run.rows[0].subject);
  EXPECT_EQ(back.rows[0].line.hours, 1.33F);
  EXPECT_EQ(back.rows[0].line.keys, run.rows[0].line.keys);
  EXPECT_EQ(back.rows[0].stored, run.rows[0].stored);
  EXPECT_FALSE(back.rows[1].stored);
  EXPECT_FALSE(back.rows[1].line.hours);
  EXPECT_TRUE(back.rows[0].settled && back.rows[0].stampedElsewhere);
  EXPECT_FALSE(back.rows[1].settled || back.rows[1].stampedElsewhere);
}

TEST(JournalText, WithKeysOfALaterReleaseIsReadAllTheSame) {
  QByteArray text = fncJournalText(sampleRun());
  text.replace("\"place\"", "\"reason\": [1, 2],\n \"place\"");
  EXPECT_EQ(fncRunOfJournalText(text).rows.size(), 2);
}

TEST(JournalText, OfAnEarlierVersionIsReadAndOneOfALaterIsNot) {
  QByteArray earlier = fncJournalText(sampleRun());
  earlier.replace("\"version\": 1", "\"version\": 0").replace("\"told\": \"\",", "");
  EXPECT_EQ(fncRunOfJournalText(earlier).rows.size(), 2);
  QByteArray later = fncJournalText(sampleRun());
  EXPECT_TRUE(refusal(later.replace("\"version\": 1", "\"version\": 2")).contains(u"version 2"_s));
}

TEST(JournalText, CutOffAnywhereIsRefused) {
  const QByteArray text = fncJournalText(sampleRun()).trimmed();
  for (qsizetype length = 0; length < text.size(); length += 7)
    EXPECT_NE(refusal(text.left(length)), u"(taken)"_s) << length;
}

TEST(JournalText, WithoutWhatItNeedsIsRefused) {
  for (const char* key :
       {"kind", "version", "target", "place", "person", "begun", "mark", "rows", "calendar", "appointment",
        "tag", "subject", "start", "minutes", "line", "day", "names", "keys"}) {
    QByteArray text = fncJournalText(sampleRun());
    text.replace(QByteArray("\"") + key + "\":", "\"other\":");
    EXPECT_NE(refusal(text), u"(taken)"_s) << key;
  }
}

TEST(Journal, StandsOnTheDiskBeforeTheFirstRowAndIsGoneAfterTheLastStamp) {
  JournalWorld w;
  for (const QString& subject : {u"a"_s, u"b"_s}) w.addComplete(subject);
  QStringList atFirstRow;
  ReportRun noted;
  w.plan->rules.append({u"insert into [tblReports]"_s, 0, 1, false, std::nullopt, [&] {
                          atFirstRow = w.journals();
                          noted = w.run();
                        }});
  w.expectDone();
  w.report();
  ASSERT_EQ(atFirstRow.size(), 1);
  EXPECT_EQ(noted.rows.size(), 2);
  EXPECT_EQ(noted.person, u"Jane Doe"_s);
  EXPECT_EQ(noted.begun, u"2024-05-15 10:00"_s);
  EXPECT_TRUE(noted.place.endsWith(u"/Hourbook3.mdb"_s)) << qPrintable(noted.place);
  EXPECT_EQ(noted.rows[0].subject, u"a"_s);
  EXPECT_EQ(noted.rows[0].line.day, QDate(2024, 5, 13));
  EXPECT_EQ(w.journals(), QStringList());
}

TEST(Journal, IsWrittenOnceAndRemovedOnceARun) {
  JournalWorld w;
  for (int i = 0; i < 20; ++i) w.addComplete(u"row %1"_s.arg(i));
  int renames = 0, removals = 0;
  platform::files::SystemCalls calls = platform::files::SystemCalls::ofTheSystem();
  const auto real = calls;
  calls.renameat = [&](int folder, const char* from, const char* to) {
    renames += QByteArray(to).startsWith("report-");
    return real.renameat(folder, from, to);
  };
  calls.renameatNoReplace = [&](int folder, const char* from, const char* to) {
    renames += QByteArray(to).startsWith("report-");
    return real.renameatNoReplace(folder, from, to);
  };
  calls.unlinkat = [&](int folder, const char* name) {
    removals += QByteArray(name).startsWith("report-");
    return real.unlinkat(folder, name);
  };
  w.expectDone();
  int renamesAtTheEnd = -1;
  {
    const platform::files::ScopedSystemCalls scope(calls);
    w.plan->rules.append({u"compact "_s, 0, 1, false, std::nullopt, [&] { renamesAtTheEnd = renames; }});
    w.report();
  }
  EXPECT_EQ(renamesAtTheEnd, 1);
  EXPECT_EQ(removals, 1);
}

TEST(Journal, MayBeReadByItsOwnerOnly) {
  JournalWorld w;
  w.addComplete(u"a"_s);
  w.crashBeforeTheStamps();
  const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther |
                      QFile::WriteOther | QFile::ExeOther;
  EXPECT_FALSE(QFileInfo(w.journals().first()).permissions() & others);
  EXPECT_FALSE(QFileInfo(w.journalFolder()).permissions() & others);
}

TEST(Journal, KnowsADatabaseWithoutWhoLogsOn) {
  const QString text =
      u"Provider=SQLOLEDB;Data Source=Tellus;Initial Catalog=Hourbook;User ID=jane;Password=s3cret"_s;
  EXPECT_EQ(fncPlaceOfConnection(text), u"sqloledb tellus  Hourbook"_s);
}

TEST(Journal, KnowsADatabaseThatFollowsFromTheLoginByTheLoginUnderAnyOfItsNames) {
  for (const QString& key : {u"User ID"_s, u"UID"_s, u"User"_s, u"UserName"_s, u"User Name"_s})
    EXPECT_EQ(fncPlaceOfConnection(u"Provider=PostgreSQL;Data Source=Tellus;%1=jane"_s.arg(key)),
              u"postgresql tellus  of jane"_s)
        << qPrintable(key);
}

TEST(Journal, KeepsTheRowsOutThatTheTargetRefuses) {
  JournalWorld w;
  w.addComplete(u"a"_s);
  w.add({u"b"_s, {u"Gone"_s, u"Website"_s, u"Design"_s}});
  int rows = -1;
  w.plan->rules.append(
      {u"insert into [tblReports]"_s, 0, 1, false, std::nullopt, [&] { rows = int(w.run().rows.size()); }});
  w.report();
  EXPECT_EQ(rows, 1);
}

TEST(Journal, ThatCannotBeKeptLetsNothingBeStored) {
  JournalWorld w;
  w.addComplete(u"a"_s);
  w.write(u"taken"_s, "a file where the folder should be");
  w.reporting->journalFolder = w.path(u"taken/reports"_s);
  w.expectFailure(u"Report"_s, u"The journal of reports cannot be kept: "_s, [&] { w.report(); });
  EXPECT_EQ(w.storedRows(), 0);
  EXPECT_EQ(w.stamped(), QList<bool>{false});
}

TEST(Journal, ThatCannotBeWrittenLetsNothingBeStored) {
  JournalWorld w;
  w.addComplete(u"a"_s);
  platform::files::SystemCalls calls = platform::files::SystemCalls::ofTheSystem();
  calls.write = [](int, const void*, size_t) -> ssize_t {
    errno = ENOSPC;
    return -1;
  };
  const platform::files::ScopedSystemCalls scope(calls);
  w.expectFailure(u"fncReportToAccess"_s, u"The journal of reports cannot be kept: "_s, [&] { w.report(); });
  EXPECT_EQ(w.storedRows(), 0);
  EXPECT_EQ(w.journals(), QStringList());
}

TEST(Journal, ThatNobodyCanReadIsNamedAndSetAsideAndBlocksNothing) {
  for (const QByteArray& broken :
       {QByteArray(), QByteArray("{\"kind\": \"Hourbook rep"), QByteArray("[1, 2]"), QByteArray(100, '\0')}) {
    JournalWorld w;
    QDir().mkpath(w.journalFolder());
    const QString file = w.journalFolder() + u"/report-00000003.json"_s;
    {
      QFile out(file);
      ASSERT_TRUE(out.open(QIODevice::WriteOnly));
      out.write(broken);
    }
    w.world.dialogs.expect(u"The file is kept as \"%1.unreadable\"."_s.arg(file), platform::dialogs::vbOK);
    w.start();
    EXPECT_EQ(w.journals(), QStringList());
    QFile kept(file + u".unreadable"_s);
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), broken);
    w.start();  // and no word more
    w.addComplete(u"a"_s);
    w.expectDone();
    w.report();
    EXPECT_EQ(w.storedRows(), 1);
  }
}

namespace {

const QString laterVersion = u"A later version of this program has left a report that was interrupted"_s;
const QString equalStand = u"Equal time reports stand in the database already."_s;

/// What a later version of the program wrote, which was killed when two of three rows were stored.
class LaterJournal : public testing::Test {
 protected:
  LaterJournal() {
    for (const QString& subject : {u"a"_s, u"b"_s, u"c"_s}) w.addComplete(subject);
    w.crashAfterRows(2);
    file_ = w.journals().value(0);
    QFile journal(file_);
    EXPECT_TRUE(journal.open(QIODevice::ReadWrite));
    text_ = journal.readAll().replace("\"version\": 1", "\"version\": 2").replace("rows", "entries");
    journal.resize(0);
    journal.write(text_);
  }
  void startTold() {
    w.world.dialogs.expect(laterVersion, platform::dialogs::vbOK);
    w.start();
  }
  void expectKept() {
    QFile journal(file_);
    ASSERT_TRUE(journal.open(QIODevice::ReadOnly));
    EXPECT_EQ(journal.readAll(), text_);
  }
  JournalWorld w;
  QString file_;
  QByteArray text_;
};

}  // namespace

TEST_F(LaterJournal, StaysForThatVersionAndIsToldOnce) {
  startTold();
  EXPECT_TRUE(w.world.dialogs.shown.last().text.contains(u"report-00000001.json: it is of version 2"_s))
      << qPrintable(w.world.dialogs.shown.last().text);
  expectKept();
  w.start();  // and no word more
  expectKept();
  EXPECT_EQ(w.stamped(), QList<bool>({false, false, false}));
}

TEST_F(LaterJournal, LetsTheUserLeaveOutTheRowsThatStandAlready) {
  startTold();
  w.world.dialogs.expect(equalStand, platform::dialogs::vbNo);
  w.expectDone();
  w.report();
  const QString question = w.world.dialogs.shown[w.world.dialogs.shown.size() - 2].text;
  EXPECT_TRUE(question.contains(u"\"a\" (2024-05-13)\r\n\"b\" (2024-05-13)\r\n"_s)) << qPrintable(question);
  EXPECT_FALSE(question.contains(u"\"c\""_s));
  EXPECT_EQ(w.storedRows(), 3);
  EXPECT_EQ(w.stamped(), QList<bool>({false, false, true}));
  expectKept();
}

TEST_F(LaterJournal, LetsThemBeReportedWhereTheUserKnowsThatTheyAreOthers) {
  startTold();
  w.world.dialogs.expect(equalStand, platform::dialogs::vbYes);
  w.expectDone();
  w.report();
  EXPECT_EQ(w.storedRows(), 5);
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
}

TEST_F(LaterJournal, AsksNothingWhereNoEqualRowStands) {
  startTold();
  w.other()->execute(u"delete from tblReports"_s);
  w.expectDone();
  w.report();
  EXPECT_EQ(w.storedRows(), 3);
}

TEST_F(LaterJournal, AsksNothingOfAPersonWhoHasReportedNothing) {
  startTold();
  w.outlook->gCurrentUser = u"Pat Smith"_s;
  w.expectDone();
  w.report();
  EXPECT_EQ(w.storedRows(), 5);
}

TEST_F(LaterJournal, LetsNothingBeReportedWhereTheDatabaseCannotBeAsked) {
  startTold();
  w.plan->failContaining(u"where intReportID >"_s, tests::diskFull);
  w.expectFailure(u"Report"_s, u"Not enough space on disk."_s, [&] { w.report(); });
  EXPECT_EQ(w.storedRows(), 2);
}

TEST(Journal, NeverTakesTheNameOfAFileThatWasSetAside) {
  JournalWorld w;
  w.addComplete(u"a"_s);
  for (int round = 0; round < 2; ++round) {
    w.crashBeforeTheStamps();
    const QString file = w.journals().first();
    QFile out(file);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write("no journal");
    out.close();
    w.world.dialogs.expect(u"cannot be read"_s, platform::dialogs::vbOK);
    w.start();
    EXPECT_TRUE(QFile::exists(file + u".unreadable"_s));
  }
  EXPECT_EQ(QDir(w.journalFolder()).entryList({u"*.unreadable*"_s}).size(), 2);
}

TEST(Journal, OrdersRunsByTheirNumbers) {
  const QTemporaryDir folder;
  const cReportJournal journal(folder.path());
  for (int i = 0; i < 12; ++i) journal.Add(sampleRun());
  QFile::rename(journal.Files().last(), folder.filePath(u"report-00000100.json"_s));
  const QString next = journal.Add(sampleRun());
  EXPECT_TRUE(next.endsWith(u"report-00000101.json"_s)) << qPrintable(next);
  EXPECT_EQ(journal.Files().size(), 13);
  EXPECT_TRUE(journal.Files().first().endsWith(u"report-00000001.json"_s));
  EXPECT_EQ(journal.Files().last(), next);
}

TEST(Journal, IsLockedForOneProgramAtATime) {
  const QTemporaryDir folder;
  const cReportJournal journal(folder.filePath(u"state/reports"_s));
  const QString left = folder.filePath(u"state/reports/.report-000001.json.x7k2m9.tmp"_s);
  ASSERT_TRUE(QDir().mkpath(QFileInfo(left).path()));
  QFile file(left);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_TRUE(
      file.setFileTime(QDateTime::fromSecsSinceEpoch(1'000'000'000), QFileDevice::FileModificationTime));
  file.close();
  auto lock = journal.Lock();
  EXPECT_FALSE(QFile::exists(left)) << "what a crash has left goes with the lock";
  EXPECT_TRUE(lock);
  EXPECT_FALSE(cReportJournal(folder.filePath(u"state/reports"_s)).Lock());
  lock.reset();
  EXPECT_TRUE(journal.Lock());
}
