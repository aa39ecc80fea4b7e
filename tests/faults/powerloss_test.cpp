// The power goes at every moment of every save: whatever was not synced may be lost, be there by half, or be
// there before what was written ahead of it.
#include "tests/faults/powerloss.h"

#include "platform/files/posix/systemcalls.h"
#include "platform/sql/sqlite/engine.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace faults {
namespace {

using namespace Qt::StringLiterals;

struct CutPower : testing::TestWithParam<size_t> {};

TEST_P(CutPower, LeavesTheOldStateOrTheNewAndAlwaysTheNewOnceTheSaveHasSucceeded) {
  Place place(GetParam());
  const Verdict verdict = judged(place);
  EXPECT_TRUE(verdict.faults.isEmpty()) << place.saver().name() << "\n"
                                        << qPrintable(verdict.faults.mid(0, 5).join(u'\n'));
  EXPECT_GT(verdict.cuts, 3);
  EXPECT_GT(verdict.states, 2);
  std::printf("    %d moments, %d states\n", verdict.cuts, verdict.states);
}

INSTANTIATE_TEST_SUITE_P(EverySaver, CutPower, testing::Range(size_t{0}, saverCount()));

/// The savers themselves without one of their syncs: from that process on, which is not this one.
void leaveOutSyncs(bool ofFolders) {
  using platform::files::SystemCalls;
  static SystemCalls calls = SystemCalls::ofTheSystem();
  calls.fsync = [ofFolders](int file) {
    struct stat found {};
    ::fstat(file, &found);
    return bool(S_ISDIR(found.st_mode)) == ofFolders ? 0 : ::fsync(file);
  };
  static const platform::files::ScopedSystemCalls scope(calls);
}

TEST_P(CutPower, WouldTakeWhatWasSavedWithoutASyncOfTheFolder) {
  Place place(GetParam());
  EXPECT_FALSE(judged(place, [] { leaveOutSyncs(true); }).faults.isEmpty());
}

TEST_P(CutPower, WouldTakeWhatWasSavedWithoutASyncOfTheFile) {
  Place place(GetParam());
  const std::string name = place.saver().name();
  const bool writesNone = name.find("removal") != std::string::npos;
  EXPECT_EQ(judged(place, [] { leaveOutSyncs(false); }).faults.isEmpty(), writesNone);
}

/// A reported row is on the disk when its statement comes back: SQLite's own proof, for which it must be
/// asked.
TEST(CutPower, CostsNoRowBecauseTheDatabaseIsWrittenThrough) {
  QTemporaryDir folder;
  platform::sql::sqlite::SqliteEngine().createDatabase(folder.filePath(u"reports.mdb"_s));
  platform::sql::ConnectionString connection;
  connection.set(u"Provider"_s, u"Microsoft.Jet.OLEDB.4.0"_s);
  connection.set(u"Data Source"_s, folder.filePath(u"reports.mdb"_s));
  const auto session = platform::sql::sqlite::SqliteDriver().connect(connection);
  constexpr qint32 full = 2;
  EXPECT_GE(std::get<qint32>(session->execute(u"PRAGMA synchronous"_s).rows.at(0).at(0)), full);
}

/// Savers that lack something: what the model is there to find.
enum class Lack { Nothing, SyncOfTheFolder, SyncOfTheFile, ANewFile, OrderOfTheSyncs, Emptying };

class CarelessSaver : public Saver {
 public:
  CarelessSaver(const QString& folder, Lack lack) : Saver(folder), lack_(lack) {}
  const char* name() const override { return "a careless save"; }
  void prepare() override {
    QFile file(path(u"it.ics"_s));
    file.open(QIODevice::WriteOnly);
    file.write(QByteArray(200, 'o'));
  }
  void save() override {
    const QByteArray target = QFile::encodeName(path(u"it.ics"_s)), beside = target + ".tmp";
    const int flags = O_WRONLY | O_CREAT | (lack_ == Lack::Emptying ? O_TRUNC : 0);
    const bool inPlace = lack_ == Lack::ANewFile || lack_ == Lack::Emptying;
    const int file = ::open((inPlace ? target : beside).constData(), flags, 0600);
    const QByteArray bytes(300, 'n');
    if (::write(file, bytes.constData(), size_t(bytes.size())) != bytes.size()) throw std::runtime_error("");
    if (lack_ != Lack::SyncOfTheFile && lack_ != Lack::OrderOfTheSyncs) ::fsync(file);
    if (!inPlace) ::rename(beside.constData(), target.constData());
    const int place = ::open(QFile::encodeName(folder()).constData(), O_RDONLY | O_DIRECTORY);
    if (lack_ != Lack::SyncOfTheFolder) ::fsync(place);
    if (lack_ == Lack::OrderOfTheSyncs) ::fsync(file);
    ::close(place);
    ::close(file);
  }
  Contents contents() override {
    QFile file(path(u"it.ics"_s));
    file.open(QIODevice::ReadOnly);
    return {{u"it.ics"_s, file.readAll()}};
  }
  void startAgain() override { QFile::remove(path(u"it.ics.tmp"_s)); }
  QStringList places() const override { return {}; }

 private:
  Lack lack_;
};

class QtSaver : public CarelessSaver {
 public:
  explicit QtSaver(const QString& folder) : CarelessSaver(folder, Lack::Nothing) {}
  void save() override {
    QSaveFile file(path(u"it.ics"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(QByteArray(300, 'n')) != 300 || !file.commit())
      throw std::runtime_error("not saved");
  }
};

Verdict verdictOn(Lack lack) {
  Place place([lack](const QString& folder) {
    QDir().mkpath(folder + u"/it"_s);
    return std::make_unique<CarelessSaver>(folder + u"/it"_s, lack);
  });
  return judged(place);
}

TEST(PowerLossModel, FindsNothingWhereNothingIsLacking) {
  EXPECT_EQ(verdictOn(Lack::Nothing).faults, QStringList());
}

TEST(PowerLossModel, FindsASaveWithoutASyncOfTheFolder) {
  const Verdict verdict = verdictOn(Lack::SyncOfTheFolder);
  ASSERT_FALSE(verdict.faults.isEmpty());
  for (const QString& fault : verdict.faults) EXPECT_TRUE(fault.startsWith(u"at the end"_s));
}

TEST(PowerLossModel, FindsASaveWithoutASyncOfTheFile) {
  const QStringList faults = verdictOn(Lack::SyncOfTheFile).faults;
  EXPECT_FALSE(faults.filter(QRegularExpression(u"^cut after .*neither old nor new"_s)).isEmpty());
  EXPECT_FALSE(faults.filter(QRegularExpression(u"^at the end"_s)).isEmpty());
}

TEST(PowerLossModel, FindsANameThatIsThereBeforeItsBytes) {
  const QStringList faults = verdictOn(Lack::OrderOfTheSyncs).faults;
  EXPECT_FALSE(faults.isEmpty());
  for (const QString& fault : faults) EXPECT_TRUE(fault.startsWith(u"cut after"_s)) << qPrintable(fault);
}

TEST(PowerLossModel, FindsASaveIntoTheFileItself) {
  EXPECT_FALSE(verdictOn(Lack::ANewFile).faults.isEmpty());
  EXPECT_FALSE(verdictOn(Lack::Emptying).faults.isEmpty());
}

TEST(PowerLossModel, FindsWhatQSaveFileLeavesOut) {
  Place place([](const QString& folder) {
    QDir().mkpath(folder + u"/it"_s);
    return std::make_unique<QtSaver>(folder + u"/it"_s);
  });
  EXPECT_FALSE(judged(place).faults.isEmpty());
}

}  // namespace
}  // namespace faults
