#include "platform/files/atomicfile.h"
#include "platform/files/posix/litternames.h"
#include "tests/unit/platform/files/folder.h"

#include <QDateTime>

using namespace platform::files;
using tests::TestFolder;

namespace {

void putAged(const TestFolder& folder, const QString& name, qint64 secondsAgo) {
  folder.put(name, "half");
  folder.setTime(name, {QDateTime::currentSecsSinceEpoch() - secondsAgo, 0});
}

}  // namespace

TEST(SweepLitter, TakesTemporaryFilesOlderThanAnHour) {
  TestFolder folder;
  putAged(folder, u".a.ics.x7k2m9.tmp"_qs, 3700);
  putAged(folder, u".b.ics.abcdef.tmp"_qs, 3500);
  EXPECT_EQ(sweepLitter(folder.path({})), 1);
  EXPECT_EQ(folder.names(), QStringList{u".b.ics.abcdef.tmp"_qs});
}

TEST(SweepLitter, OfOneNameTakesNoOthers) {
  TestFolder folder;
  const QString cut = QFile::decodeName(temporaryName(QByteArray(254, 'x')));
  for (const QString& name :
       {u".thesis.backup.tmp"_qs, u".a.ics.abcdef.tmp"_qs, u".b.ics.abcdef.tmp"_qs, cut})
    putAged(folder, name, 3700);
  EXPECT_EQ(sweepLitter(folder.path({}), 3600, [](const QString& target) { return target == u"a.ics"; }), 2);
  EXPECT_EQ(folder.names(), (QStringList{u".b.ics.abcdef.tmp"_qs, u".thesis.backup.tmp"_qs}));
}

TEST(SweepLitter, LeavesEverythingElseAlone) {
  TestFolder folder;
  const QStringList others{u".a.ics.x7k2m9"_qs, u".a.ics.X7K2M9.tmp"_qs, u".tmp"_qs, u".x7k2m9.tmp"_qs,
                           u"a.ics"_qs,         u"a.ics.x7k2m9.tmp"_qs,  u"notes"_qs};
  for (const QString& name : others) putAged(folder, name, 100'000);
  ASSERT_TRUE(QDir().mkdir(folder.path(u".d.x7k2m9.tmp"_qs)));
  ASSERT_EQ(::symlink("a.ics", folder.encoded(u".l.x7k2m9.tmp"_qs).constData()), 0);
  const QStringList before = folder.names();
  EXPECT_EQ(sweepLitter(folder.path({}), 0), 0);
  EXPECT_EQ(folder.names(), before);
}

TEST(SweepLitter, KnowsTheNamesThatSavingUses) {
  TestFolder folder;
  for (const QByteArray& target : {QByteArray("a.ics"), QByteArray("\xC3\xA5.ics"), QByteArray(250, 'x')})
    putAged(folder, QFile::decodeName(temporaryName(target)), 7200);
  EXPECT_EQ(sweepLitter(folder.path({})), 3);
}

TEST(SweepLitter, OfAMissingFolderFindsNothing) {
  TestFolder folder;
  EXPECT_EQ(sweepLitter(folder.path(u"none"_qs)), 0);
}
