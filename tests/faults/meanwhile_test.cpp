// Another program changes the same file before each single call of a save. Whatever it has done stays done.
#include "platform/basic/clock.h"
#include "tests/faults/trials.h"

#include <QFile>
#include <QLocale>

#include <ctime>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace faults {
namespace {

using namespace Qt::StringLiterals;

enum class Deed { Edit, EditInPlace, EditWhatItHasOpen, Remove, Rename };
constexpr Deed deeds[] = {Deed::Edit, Deed::EditInPlace, Deed::EditWhatItHasOpen, Deed::Remove, Deed::Rename};
constexpr const char* words[] = {"edits the event", "edits it in place", "edits what it has had open before",
                                 "removes the file", "renames the file"};

QByteArray content(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void put(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) file.write(bytes);
}

QByteArray edited(QByteArray bytes) {
  return bytes.replace("UID:first\r\n", "UID:first\r\nLOCATION:Outside\r\n");
}

/// `opened` is the file as it was when the save began.
void carryOut(Deed deed, const QString& path, QFile& opened) {
  const QByteArray name = QFile::encodeName(path), away = QFile::encodeName(path + u".away"_s);
  switch (deed) {
    case Deed::Edit:
      put(path + u".other"_s, edited(content(path)));
      ::rename(QFile::encodeName(path + u".other"_s).constData(), name.constData());
      break;
    case Deed::EditInPlace:
      put(path, edited(content(path)));
      break;
    case Deed::EditWhatItHasOpen: {
      const QByteArray bytes = edited(opened.readAll());
      opened.seek(0);
      opened.write(bytes);
      opened.close();
      break;
    }
    case Deed::Remove:
      QFile::remove(path);
      break;
    case Deed::Rename:
      ::rename(name.constData(), away.constData());
      break;
  }
}

struct OtherProgram : testing::TestWithParam<size_t> {};
struct Anywhere : testing::TestWithParam<size_t> {};
struct Elsewhere : testing::TestWithParam<size_t> {};
struct Asleep : testing::TestWithParam<size_t> {};

TEST_P(OtherProgram, LosesNothingWheneverItChangesTheFile) {
  Place place(GetParam());
  place.renew();
  Saver& saver = place.saver();
  const Course course = courseOf(saver);
  const QString path =
      saver.path(course.before.contains(u"first.ics"_s) ? u"first.ics"_s : u"calendar.ics"_s);
  ASSERT_TRUE(course.calls.contains("renameat2")) << "this file system cannot let two files change places";
  int moments = 0, both = 0, refused = 0;
  for (size_t which = 0; which < std::size(deeds); ++which) {
    const Deed deed = deeds[which];
    const bool inPlace = deed == Deed::EditInPlace || deed == Deed::EditWhatItHasOpen;
    if (course.heavy() && soak() == 1 && !inPlace) continue;  // a big file takes its time
    for (int at = 0; at < course.calls.size(); ++at) {
      place.renew();
      QFile::remove(path + u".away"_s);
      SCOPED_TRACE(testing::Message() << saver.name() << ": another program " << words[which]
                                      << " before call " << at << ", " << course.calls[at].constData());
      QFile opened(path);
      Plan plan{Effect::Call, at, 0, [&] { carryOut(deed, path, opened); }};
      if (deed == Deed::EditWhatItHasOpen)
        plan.first = [&] { opened.open(QIODevice::ReadWrite | QIODevice::Unbuffered); };
      const Trial trial = tried(saver, plan);
      const QByteArray now = content(path);
      ++moments;
      if (deed == Deed::Remove)
        EXPECT_TRUE(now.isEmpty()) << "lost";
      else if (deed == Deed::Rename)
        EXPECT_TRUE(now.isEmpty() && content(path + u".away"_s).contains("UID:first")) << "lost";
      else
        EXPECT_TRUE(now.contains("LOCATION:Outside")) << "lost";
      if (trial.succeeded && now.contains("Changed")) ++both;
      refused += !trial.succeeded;
      EXPECT_TRUE(now.isEmpty() || now.endsWith("END:VCALENDAR\r\n")) << "damaged";
      EXPECT_EQ(trial.message.isEmpty(), trial.succeeded);
      EXPECT_TRUE(saver.litter().isEmpty()) << qPrintable(saver.litter().join(u", "));
    }
  }
  std::printf("    %d moments: %d with both changes, %d refused\n", moments, both, refused);
  EXPECT_GT(both, 0);
  EXPECT_GT(refused, 0);
}

/// A big file takes its time: of the moments of its save some, since the small file goes the same way.
int stepOf(const Course& course) {
  constexpr int momentsOfABigFile = 8;
  if (!course.heavy() || soak() > 1) return 1;
  return qMax(1, static_cast<int>(course.calls.size()) / momentsOfABigFile);
}

/// A second instance of this program saves something else at every moment of a save: while the first one
/// stands still, as on a machine that has gone to sleep, and on a clock that was set back by an hour.
TEST_P(Elsewhere, ASecondInstanceLosesNothingWheneverItSaves) {
  Place place(GetParam());
  place.renew();
  Saver& saver = place.saver();
  const Course course = courseOf(saver);
  const auto saveInAnotherProcess = [&] {
    const pid_t other = ::fork();
    if (other == 0) {
      const platform::basic::ScopedClock earlier(std::make_shared<platform::basic::FixedClock>(
          QDateTime(QDate(2024, 5, 15), QTime(9, 0)), "Europe/Stockholm"));
      int code = 1;
      try {
        saver.startAgain();
        code = 0;
      } catch (const std::exception&) {
      }
      ::_exit(code);
    }
    int status = 0;
    if (::waitpid(other, &status, 0) != other || status != 0) std::abort();
  };
  for (int at = 0; at < course.calls.size(); at += stepOf(course)) {
    place.renew();
    SCOPED_TRACE(testing::Message() << saver.name() << ": before call " << at << ", "
                                    << course.calls[at].constData());
    const Trial trial = tried(saver, Plan{Effect::Call, at, 0, saveInAnotherProcess});
    EXPECT_TRUE(trial.succeeded) << qPrintable(trial.message);
    QByteArray all;
    for (const QByteArray& each : saver.contents()) all += each;
    EXPECT_TRUE(all.contains("Next start")) << "lost";
    EXPECT_TRUE(all.contains("Changed") || all.contains("Another value"));
  }
}

/// The process stands still between two of its calls, for as long as the machine sleeps; another instance, on
/// a clock that was set back by an hour, saves into the same file meanwhile.
TEST_P(Asleep, LosesNothingWhateverHappensToTheFileMeanwhile) {
  Place place(GetParam());
  place.renew();
  Saver& saver = place.saver();
  const Course course = courseOf(saver);
  int both = 0, refused = 0;
  for (int at = 0; at < course.calls.size(); at += stepOf(course)) {
    place.renew();
    SCOPED_TRACE(testing::Message() << saver.name() << ", asleep before call " << at << ", "
                                    << course.calls[at].constData());
    const Trial trial = tried(saver, Plan{Effect::Stop, at, 0, {}}, Then::Look, [&] {
      const platform::basic::ScopedClock earlier(std::make_shared<platform::basic::FixedClock>(
          QDateTime(QDate(2024, 5, 15), QTime(9, 0)), "Europe/Stockholm"));
      saver.saveElse();
    });
    QByteArray all;
    for (const QByteArray& each : saver.contents()) all += each;
    EXPECT_TRUE(all.contains("Next start")) << "lost";
    EXPECT_EQ(trial.succeeded, all.contains("Changed") || all.contains("Another value"))
        << qPrintable(trial.message);
    (trial.succeeded ? both : refused) += 1;
    EXPECT_TRUE(saver.litter().isEmpty()) << qPrintable(saver.litter().join(u", "));
    EXPECT_NO_THROW(saver.startAgain());
  }
  std::printf("    %d times with both, %d refused\n", both, refused);
  EXPECT_GT(both, 0);
}

/// The same bytes and rows, wherever in the world and in whatever language.
TEST_P(Anywhere, AnotherLanguageOrZoneOfTheMachineChangesNoByte) {
  Place place(GetParam());
  place.renew();
  Saver& saver = place.saver();
  const Course course = courseOf(saver);
  for (const char* locale : {"C", "sv_SE", "tr_TR", "ar_EG"}) {
    for (const char* zone : {"UTC", "America/St_Johns", "Pacific/Apia"}) {
      place.renew();
      SCOPED_TRACE(testing::Message() << saver.name() << ", " << locale << ", " << zone);
      const Trial trial = tried(saver, Plan{Effect::Call, 0, 0, [&] {
                                              qputenv("TZ", zone);
                                              ::tzset();
                                              qputenv("LANG", locale);
                                              QLocale::setDefault(QLocale(QString::fromLatin1(locale)));
                                            }});
      EXPECT_TRUE(trial.succeeded) << qPrintable(trial.message);
      EXPECT_EQ(trial.after, course.after) << text(trial.after, course.before, course.after);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EventSavers, OtherProgram, testing::Values(size_t{0}, size_t{3}, size_t{4}));
// not those with an index: the second one would wait for it at each moment at which the first one has it
INSTANTIATE_TEST_SUITE_P(FileSavers, Elsewhere, testing::Values(size_t{0}, size_t{3}, size_t{4}, size_t{5}));
INSTANTIATE_TEST_SUITE_P(FileSavers, Asleep, testing::Values(size_t{0}, size_t{3}, size_t{4}, size_t{5}));
INSTANTIATE_TEST_SUITE_P(EverySaver, Anywhere, testing::Range(size_t{0}, saverCount()));

}  // namespace
}  // namespace faults
