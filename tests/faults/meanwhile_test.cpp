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

enum class Deed { Edit, EditInPlace, Remove, Rename };
constexpr Deed deeds[] = {Deed::Edit, Deed::EditInPlace, Deed::Remove, Deed::Rename};
constexpr const char* words[] = {"edits the event", "edits it in place", "removes the file",
                                 "renames the file"};

QByteArray content(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void put(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) file.write(bytes);
}

void carryOut(Deed deed, const QString& path) {
  const QByteArray name = QFile::encodeName(path), away = QFile::encodeName(path + u".away"_s);
  QByteArray edited = content(path);
  edited.replace("UID:first\r\n", "UID:first\r\nLOCATION:Outside\r\n");
  switch (deed) {
    case Deed::Edit:
      put(path + u".other"_s, edited);
      ::rename(QFile::encodeName(path + u".other"_s).constData(), name.constData());
      break;
    case Deed::EditInPlace:
      put(path, edited);
      break;
    case Deed::Remove:
      QFile::remove(path);
      break;
    case Deed::Rename:
      ::rename(name.constData(), away.constData());
      break;
  }
}

/// The rename that puts a save in place, and the closing of files right before it.
bool isUnseen(const QByteArrayList& calls, qsizetype rename, qsizetype at) {
  if (at > rename) return false;
  return std::all_of(calls.begin() + at, calls.begin() + rename,
                     [](const QByteArray& call) { return call == "close"; });
}

struct OtherProgram : testing::TestWithParam<size_t> {};
struct Anywhere : testing::TestWithParam<size_t> {};
struct Elsewhere : testing::TestWithParam<size_t> {};

TEST_P(OtherProgram, LosesNothingWheneverItChangesTheFile) {
  Place place(GetParam());
  place.renew();
  Saver& saver = place.saver();
  const Course course = courseOf(saver);
  const QString path =
      saver.path(course.before.contains(u"first.ics"_s) ? u"first.ics"_s : u"calendar.ics"_s);
  const qsizetype rename = course.calls.indexOf("renameat");
  ASSERT_GT(rename, 0);
  int moments = 0, lost = 0, both = 0, refused = 0;
  for (size_t which = 0; which < std::size(deeds); ++which) {
    const Deed deed = deeds[which];
    if (course.heavy() && soak() == 1 && deed != Deed::EditInPlace) continue;  // a big file takes its time
    for (int at = 0; at < course.calls.size(); ++at) {
      place.renew();
      QFile::remove(path + u".away"_s);
      SCOPED_TRACE(testing::Message() << saver.name() << ": another program " << words[which]
                                      << " before call " << at << ", " << course.calls[at].constData());
      const Trial trial = tried(saver, Plan{Effect::Call, at, 0, [&] { carryOut(deed, path); }});
      const QByteArray now = content(path);
      ++moments;
      bool kept = true;
      if (deed == Deed::Edit || deed == Deed::EditInPlace)
        kept = now.contains("LOCATION:Outside");
      else if (deed == Deed::Remove)
        kept = now.isEmpty();
      else
        kept = now.isEmpty() && content(path + u".away"_s).contains("UID:first");
      // kept: what happens between the last comparison and the rename, a few microseconds, is not seen
      const bool unseen = isUnseen(course.calls, rename, at);
      if (unseen)
        lost += !kept;
      else
        EXPECT_TRUE(kept) << "lost";
      if (kept && trial.succeeded && now.contains("Changed")) ++both;
      refused += !trial.succeeded;
      EXPECT_TRUE(now.isEmpty() || now.endsWith("END:VCALENDAR\r\n")) << "damaged";
      EXPECT_EQ(trial.message.isEmpty(), trial.succeeded);
    }
  }
  std::printf("    %d moments: %d lost in the last ones, %d with both changes, %d refused\n", moments, lost,
              both, refused);
  EXPECT_GT(both, 0);
  EXPECT_GT(refused, 0);
}

/// A second instance of this program saves something else at every moment of a save: while the first one
/// stands still, as on a machine that has gone to sleep, and on a clock that was set back by an hour.
TEST_P(Elsewhere, ASecondInstanceLosesNothingWheneverItSaves) {
  Place place(GetParam());
  place.renew();
  Saver& saver = place.saver();
  const Course course = courseOf(saver);
  if (course.heavy() && soak() == 1) return;  // the small file goes the same way
  const qsizetype rename = course.calls.lastIndexOf("renameat");
  ASSERT_GT(rename, 0);
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
  int both = 0;
  for (int at = 0; at < course.calls.size(); ++at) {
    place.renew();
    SCOPED_TRACE(testing::Message() << saver.name() << ": before call " << at << ", "
                                    << course.calls[at].constData());
    const Trial trial = tried(saver, Plan{Effect::Call, at, 0, saveInAnotherProcess});
    EXPECT_TRUE(trial.succeeded) << qPrintable(trial.message);
    QByteArray all;
    for (const QByteArray& each : saver.contents()) all += each;
    const bool unseen = isUnseen(course.calls, rename, at);  // kept: as above
    EXPECT_TRUE(unseen || all.contains("Next start"));
    EXPECT_TRUE(all.contains("Changed") || all.contains("Another value"));
    both += all.contains("Next start");
  }
  EXPECT_GE(both, course.calls.size() - 3);
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
INSTANTIATE_TEST_SUITE_P(FileSavers, Elsewhere, testing::Values(size_t{0}, size_t{3}, size_t{4}, size_t{5}));
INSTANTIATE_TEST_SUITE_P(EverySaver, Anywhere, testing::Range(size_t{0}, size_t{7}));

}  // namespace
}  // namespace faults
