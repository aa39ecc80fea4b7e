#pragma once
#include "platform/calendar/memory/recurrence.h"
#include "platform/calendar/store.h"
#include "tests/support/testworld.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>

// What every calendar store must do, run on each back end. A back end comes with a maker and one
// INSTANTIATE_TEST_SUITE_P(Name, CalendarStoreContract, testing::Values(...)); what it is unable to do, its
// maker says by one of the named functions, and the suite then holds it to what it can.
namespace contract {

/// An item as another program wrote it. `item.key.uid` is always given; with a recurrence id it is an
/// exception of the series of that UID. The zone of `item.start` is the one it is written in, Qt::LocalTime
/// is a floating time.
struct Described {
  platform::calendar::Item item;
  std::optional<platform::calendar::Recurrence> rule;  // heads a series
};

struct DescribedFolder {
  QString name = QStringLiteral("Calendar");
  QList<Described> items;
  bool readOnly = false;
  bool holdsAppointments = true;
};

class StoreMaker {
 public:
  virtual ~StoreMaker() = default;
  /// A store with these folders, in this order. Called once.
  virtual std::shared_ptr<platform::calendar::Store> make(const QList<DescribedFolder>& folders) = 0;
  /// Another store over the same data, as after a new start of the program.
  virtual std::shared_ptr<platform::calendar::Store> reopened() = 0;
  /// What another program does to the single item or master of this UID, without asking.
  virtual void changeSubjectByAnother(int folder, const QString& uid, const QString& subject) = 0;
  virtual void removeByAnother(int folder, const QString& uid) = 0;

  virtual bool hasMailFolders() const { return true; }
  virtual bool hasReadOnlyFolders() const { return true; }
  virtual bool hasSeveralFolders() const { return true; }
  /// Whether held changes wait for the flush; else they are stored at once.
  virtual bool keepsChangesBack() const { return false; }
};

struct NamedMaker {
  const char* name;
  std::function<std::unique_ptr<StoreMaker>()> make;
};
inline void PrintTo(const NamedMaker& maker, std::ostream* out) {
  *out << maker.name;
}

class CalendarStoreContract : public testing::TestWithParam<NamedMaker> {
 protected:
  using Item = platform::calendar::Item;
  using Change = platform::calendar::Change;
  using Query = platform::calendar::Query;

  /// A store of one folder with these items.
  void open(const QList<Described>& items, bool readOnly = false);
  /// All items without expanding, and all occurrences of 2020 to 2030.
  QList<Item> plain();
  QList<Item> expanded();
  /// The one item of this subject in `items`; the test fails when there is none or more.
  static Item named(const QList<Item>& items, const QString& subject);
  Item single(const QString& subject) { return named(plain(), subject); }
  Item save(const Item& item, const Change& change) {
    return store->save(folder, item.key, item.tag, change);
  }
  void reopen();

  tests::TestWorld world;
  std::unique_ptr<StoreMaker> maker = GetParam().make();
  std::shared_ptr<platform::calendar::Store> store;
  QString folder;
};

/// The number of the failure that the statement ends with; 0 for none.
qint32 failureOf(const std::function<void()>& statement);

/// A timed item of an hour. `zone` empty: floating.
Described timed(const QString& uid, const QString& subject, const QString& start,
                const QByteArray& zone = "Europe/Stockholm", int minutes = 60);
Described wholeDay(const QString& uid, const QString& subject, const QDate& day, int days = 1);
Described repeated(Described first, platform::calendar::Recurrence::Unit unit, int interval, int count,
                   const QStringList& excluded = {});
/// An occurrence that was changed by itself.
Described changedOccurrence(Described item, const QString& recurrenceId);

/// A weekly series of four from Monday, 5 February 2024, 09:00 in Stockholm, of the UID "series".
Described standUp();

inline constexpr auto day = platform::calendar::Recurrence::Unit::Day;
inline constexpr auto week = platform::calendar::Recurrence::Unit::Week;

QStringList subjectsOf(const QList<platform::calendar::Item>& items);
QStringList startsOf(
    const QList<platform::calendar::Item>& items);  // "2024-02-05 09:00", in the items' own zone
QDateTime moment(const QString& text, const QByteArray& zone = "Europe/Stockholm");

}  // namespace contract
