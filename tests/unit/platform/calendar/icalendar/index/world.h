#pragma once
#include "platform/calendar/icalendar/index/indexedsource.h"
#include "tests/support/testworld.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <random>

// Calendars made by chance, and what two ways of reading them show.
namespace index_tests {

using platform::calendar::Problem;
using platform::calendar::icalendar::EventSource;
using platform::calendar::icalendar::FileCache;
using platform::calendar::icalendar::IndexedSource;
using platform::calendar::icalendar::IndexOptions;

/// Random numbers that are the same in each run of a test.
class Chance {
 public:
  explicit Chance(quint32 seed) : engine_(seed) {}
  int below(int n) { return static_cast<int>(engine_() % static_cast<quint32>(n)); }
  bool oneIn(int n) { return below(n) == 0; }
  template <class T>
  const T& of(const QList<T>& list) {
    return list[below(static_cast<int>(list.size()))];
  }

 private:
  std::mt19937 engine_;
};

/// So many trials, or so many times more as HOURBOOK_SOAK says.
quint32 many(quint32 trials);

/// One event as some program might write it. `odd`: also with what no program should write.
QByteArray someEvent(Chance& chance, int number, bool odd);
/// A calendar of so many events; `odd` as above, `broken` with lines and ENDs missing or doubled.
QByteArray someCalendar(Chance& chance, int events, bool odd = false, bool broken = false);

/// A line for each event that the source has between two moments, with all that identifies it, and its
/// problems.
QStringList shownBy(EventSource& source, const QDate& from, const QDate& to);
QStringList allShownBy(EventSource& source);
/// The items as a list would have them, of some weeks and years.
QStringList itemsOf(EventSource& source);

class IndexTest : public testing::Test {
 protected:
  QString folder() const { return root_.filePath(QStringLiteral("calendar")); }
  QString file() const { return root_.filePath(QStringLiteral("one.ics")); }
  QString cache() const { return root_.filePath(QStringLiteral("cache")); }
  QString path(const QString& name) const { return folder() + u'/' + name; }
  IndexOptions options() const;
  std::unique_ptr<IndexedSource> open(const QString& calendar) const;
  void SetUp() override;

  /// Both ways show the same.
  void expectSame(IndexedSource& index, const QString& calendar);

  tests::TestWorld world;

 private:
  QTemporaryDir root_;
};

void write(const QString& path, const QByteArray& bytes);
QByteArray contentOf(const QString& path);
/// So that the file's times say that it was written long ago.
void makeOld(const QString& path);

}  // namespace index_tests
