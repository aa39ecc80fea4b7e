#include "platform/calendar/icalendar/index/runs.h"

#include "platform/calendar/icalendar/index/indexfile.h"
#include "platform/calendar/icalendar/index/packs.h"
#include "tests/unit/platform/calendar/icalendar/index/world.h"

#include <QTemporaryDir>

#include <limits>
#include <random>
#include <set>
#include <tuple>

namespace platform::calendar::icalendar::index {
namespace {

constexpr qint64 lowest = std::numeric_limits<qint64>::min(), highest = std::numeric_limits<qint64>::max();

using Tuple = std::tuple<qint64, qint64, qint64, qint64>;

class IndexRuns : public ::testing::Test {
 protected:
  IndexRuns() : database_(folder_.filePath(u"index.sqlite"_qs), 7, Database::Access::Create) {
    database_.script("PRAGMA synchronous = OFF; PRAGMA journal_mode = MEMORY");
    createTables(database_, u"/calendar"_qs);
  }
  Runs& runs() { return database_.runs(); }
  std::multiset<Tuple> found(Search search, qint64 from, qint64 to) {
    std::multiset<Tuple> found;
    runs().each(search, from, to, [&](const Entry& entry) {
      found.insert({entry.key, entry.home, entry.bound, entry.uid});
    });
    return found;
  }
  static Entry entryOf(const Tuple& tuple) {
    return {std::get<0>(tuple), std::get<1>(tuple), std::get<2>(tuple), std::get<3>(tuple)};
  }

  QTemporaryDir folder_;
  Database database_;
};

std::multiset<Tuple> between(const std::set<Tuple>& all, qint64 from, qint64 to) {
  std::multiset<Tuple> some;
  for (const Tuple& one : all)
    if (std::get<0>(one) >= from && std::get<0>(one) <= to) some.insert(one);
  return some;
}

TEST_F(IndexRuns, WhateverComesAndGoesTheRestIsFound) {
  for (const Search search : {Search::Short, Search::Wide, Search::Uid, Search::Subject, Search::Nameless}) {
    const bool ofTimes = search == Search::Short || search == Search::Wide;
    std::mt19937 random(static_cast<unsigned>(search));
    const auto below = [&](int n) { return static_cast<qint64>(random() % static_cast<unsigned>(n)); };
    std::set<Tuple> present;
    for (int round = 0; round < 60; ++round) {
      // few keys and few homes, so that many entries are alike in their first numbers
      const int keys = round % 3 == 0 ? 3 : 400, many = round % 5 == 0 ? 700 : 25;
      for (int i = 0; i < many; ++i) {
        const Tuple one{(below(keys) - keys / 2) * 1'000'000'007, below(40), ofTimes ? below(3) : 0,
                        ofTimes ? below(9) : 0};
        if (present.insert(one).second) {
          runs().add(search, entryOf(one));
        } else if (below(2) == 0) {
          present.erase(one);
          runs().remove(search, entryOf(one));
        }
      }
      for (auto one = present.begin(); round % 11 == 10 && one != present.end();) {
        const bool goes = below(4) != 0;
        if (goes) runs().remove(search, entryOf(*one));
        one = goes ? present.erase(one) : std::next(one);
      }
      runs().flush();
      ASSERT_EQ(found(search, lowest, highest), between(present, lowest, highest)) << round;
      for (int i = 0; i < 10; ++i) {
        const qint64 a = (below(500) - 250) * 1'000'000'007, b = a + below(3) * 20'000'000'000;
        ASSERT_EQ(found(search, a, b), between(present, a, b)) << round;
      }
    }
  }
}

TEST_F(IndexRuns, TheLowestAndTheHighestNumbersAreFound) {
  runs().add(Search::Wide, {highest, 1, highest, lowest});
  runs().add(Search::Wide, {lowest, 2, 0, 0});
  runs().flush();
  EXPECT_EQ(found(Search::Wide, lowest, highest).size(), 2U);
  EXPECT_EQ(found(Search::Wide, highest, highest), (std::multiset<Tuple>{{highest, 1, highest, lowest}}));
  EXPECT_EQ(found(Search::Wide, lowest, lowest), (std::multiset<Tuple>{{lowest, 2, 0, 0}}));
}

TEST_F(IndexRuns, AnEntryThatIsMissingOrThereTwiceIsDamage) {
  runs().add(Search::Uid, {5, 1});
  runs().flush();
  runs().remove(Search::Uid, {6, 1});
  EXPECT_THROW(runs().flush(), IndexFailure);
  runs().drop();
  runs().add(Search::Uid, {5, 1});
  EXPECT_THROW(runs().flush(), IndexFailure);
}

TEST_F(IndexRuns, ARunThatBecomesTooLongIsHalved) {
  constexpr int most = 960 / 32;
  for (int i = 0; i <= most; ++i) {
    runs().add(Search::Short, {i, 1, 1, 1});
    runs().flush();
  }
  EXPECT_EQ(database_.number("SELECT count(*) FROM run"), 2);
}

TEST_F(IndexRuns, RunsThatAreOutOfOrderAreDamage) {
  for (int i = 0; i < 100; ++i) runs().add(Search::Short, {i, 1, 1, 1});
  runs().flush();
  database_.script("UPDATE run SET key = 'x' WHERE key = (SELECT max(key) FROM run)");
  for (int i = 200; i < 300; ++i) runs().add(Search::Short, {i, 1, 1, 1});
  EXPECT_THROW(runs().flush(), IndexFailure);
}

TEST_F(IndexRuns, WhatIsTakenBackWhileAnIndexIsMadeIsGone) {
  IndexFile file(folder_.filePath(u"indexes"_qs), u"/calendar"_qs);
  file.make([&](Database& fresh) {
    fresh.script("SAVEPOINT stretch");
    fresh.script("INSERT INTO run VALUES (1, 1, 1, x'00')");
    fresh.script("ROLLBACK TO stretch; RELEASE stretch");
    EXPECT_EQ(fresh.number("SELECT count(*) FROM run"), 0);
  });
}

TEST_F(IndexRuns, WhatWasNotedForAChangeThatIsTakenBackIsForgotten) {
  {
    Change change(database_);
    runs().add(Search::Uid, {5, 1});
  }
  {
    Change change(database_);
    runs().add(Search::Uid, {6, 1});
    change.commit();
  }
  EXPECT_EQ(found(Search::Uid, lowest, highest), (std::multiset<Tuple>{{6, 1, 0, 0}}));
}

TEST_F(IndexRuns, ARunOrEventsOfAnOddSizeAreDamage) {
  runs().add(Search::Uid, {5, 1});
  runs().flush();
  database_.script("UPDATE run SET entries = substr(entries, 2)");
  EXPECT_THROW(found(Search::Uid, 5, 5), IndexFailure);
  runs().add(Search::Uid, {6, 1});
  EXPECT_THROW(runs().flush(), IndexFailure);
  runs().drop();
  database_.script("INSERT INTO pack VALUES (2, x'0102')");
  EXPECT_THROW(packAt(database_, Home::ofSegment(1)), IndexFailure);
}

StoredEvent anEvent(int number, bool hasUid) {
  StoredEvent event;
  event.row.uid = ~quint64(number);
  event.row.hasUid = hasUid;
  event.row.recurrenceId = 0xFEDCBA9876543210ULL;
  event.row.subject = 77;
  event.row.earliest = number == 0 ? highest : -number;
  event.row.latest = number == 0 ? lowest : number;
  event.place = {3'000'000'000LL + number, 64 * 1024 * 1024, 1'000'000, number + 1, 12, ~quint64(number) - 1};
  return event;
}

TEST_F(IndexRuns, EventsAreReadBackAsTheyWereKept) {
  const Home home = Home::ofSegment(9);
  const Pack pack{anEvent(0, true), anEvent(1, false), anEvent(2, true)};
  insertPack(database_, 4, home, pack);
  const Pack read = packAt(database_, home);
  ASSERT_EQ(read.size(), pack.size());
  for (size_t i = 0; i < pack.size(); ++i) {
    const auto all = [](const StoredEvent& e) {
      return std::tuple(e.row.uid, e.row.hasUid, e.row.recurrenceId, e.row.subject, e.row.earliest,
                        e.row.latest, e.place.offset, e.place.length, e.place.line, e.place.number,
                        e.place.calendar, e.place.sum);
    };
    EXPECT_EQ(all(read[i]), all(pack[i])) << i;
  }
}

TEST_F(IndexRuns, EventsAreFoundByWhatTheyHaveNowAndNotByWhatTheyHad) {
  const Home home = Home::ofSegment(9), other = Home::ofWholeFile(9);
  const Pack before{anEvent(1, true), anEvent(2, false)};
  Pack after{anEvent(1, true), anEvent(3, true)};
  after[0].row.subject = 78;
  insertPack(database_, 4, home, before);
  insertPack(database_, 5, other, {anEvent(1, true)});
  runs().flush();
  EXPECT_EQ(homesOf(database_, Search::Uid, ~quint64(1)).size(), 2);
  EXPECT_EQ(homesOf(database_, Search::Nameless, 4), QList<Home>{home});
  EXPECT_EQ(uidsBetween(database_, 2, 2), QSet<quint64>{~quint64(2)});
  EXPECT_EQ(uidsWithSubject(database_, 77), (QSet<quint64>{~quint64(1), ~quint64(2)}));
  EXPECT_EQ(countEvents(database_, 100), 3);
  EXPECT_EQ(countEvents(database_, 2), 2);
  replacePack(database_, 4, home, before, after);
  runs().flush();
  EXPECT_TRUE(homesOf(database_, Search::Uid, ~quint64(2)).isEmpty());
  EXPECT_TRUE(homesOf(database_, Search::Nameless, 4).isEmpty());
  EXPECT_EQ(uidsBetween(database_, 2, 2), QSet<quint64>{~quint64(3)});
  EXPECT_EQ(uidsWithSubject(database_, 78), QSet<quint64>{~quint64(1)});
  removePack(database_, 4, home);
  removePack(database_, 5, other);
  runs().flush();
  EXPECT_EQ(database_.number("SELECT count(*) FROM run"), 0);
  EXPECT_EQ(countEvents(database_, 100), 0);
}

}  // namespace
}  // namespace platform::calendar::icalendar::index
