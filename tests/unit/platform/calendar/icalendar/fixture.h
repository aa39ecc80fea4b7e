#pragma once
#include "platform/calendar/icalendar/icalendarstore.h"
#include "tests/support/testworld.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

// Calendars in files of a temporary folder, and what they show. All of it holds with an index as without:
// HOURBOOK_TEST_INDEX=1 runs these tests on indexed calendars.
namespace icalendar_tests {

using platform::calendar::Change;
using platform::calendar::Item;
using platform::calendar::Kind;
using platform::calendar::Problem;
using platform::calendar::Query;
using platform::calendar::Sensitivity;

/// Lines joined as a file has them.
QByteArray joined(const QByteArrayList& lines, const QByteArray& lineEnd = "\r\n");
/// An event of these lines, and a calendar around events.
QByteArray event(const QByteArrayList& lines, const QByteArray& lineEnd = "\r\n");
QByteArray calendar(const QByteArray& content, const QByteArray& lineEnd = "\r\n");

/// The lines that are in `after` and not in `before`, with "+", and the other way round with "-", in order.
QByteArrayList differences(const QByteArray& before, const QByteArray& after);

class IcalendarTest : public testing::Test {
 protected:
  IcalendarTest();

  /// The calendar "cal" is the folder of files below, the calendar "one" the file "one.ics" outside of it.
  void write(const QString& name, const QByteArray& bytes);
  QByteArray read(const QString& name) const;
  QString path(const QString& name) const;
  void writeOne(const QByteArray& bytes);
  QByteArray readOne() const;
  QString onePath() const { return root_.filePath(QStringLiteral("one.ics")); }
  QStringList fileNames() const;
  /// A new store over the same files, as after a start of the program.
  void reopen(bool readOnly = false);

  /// The occurrences between two days (both included): "2024-02-05 09:00 - 10:00 Subject", of an all-day item
  /// "2024-02-05 - 2024-02-06 all day Subject" with the day behind its last.
  QStringList shown(const QString& from, const QString& to, const QByteArray& zone = "Europe/Stockholm");
  QList<Item> expanded(const QString& from, const QString& to, const QByteArray& zone = "Europe/Stockholm");
  QList<Item> plain(const QByteArray& zone = "Europe/Stockholm");
  /// The one item of the calendar, seen from Stockholm.
  Item single();
  Item save(const Item& item, const Change& change) {
    return store->save(folder, item.key, item.tag, change);
  }
  QStringList problemTexts();

  tests::TestWorld world;
  std::unique_ptr<platform::calendar::IcalendarStore> store;
  QString folder = QStringLiteral("cal");

 private:
  QTemporaryDir root_;
};

QDateTime moment(const QString& text, const QByteArray& zone = "Europe/Stockholm");
QStringList described(const QList<Item>& items);

}  // namespace icalendar_tests
