#include "tests/contract/calendarstore/calendarstore.h"

using namespace Qt::StringLiterals;
using namespace platform::calendar;

namespace contract {

TEST_P(CalendarStoreContract, EveryChangedFieldComesBackAndIsKept) {
  open({timed(u"a"_s, u"Old"_s, u"2024-03-04 09:00"_s)});
  Change change;
  change.subject = u"New; \"plan, do\" \\ åäö 🙂"_s;
  change.body = u"One\r\n\r\ntwo, three; \\n four\r\n"_s;
  change.sensitivity = Sensitivity::Private;
  change.billingInformation = u"2024-03-05 10:11:12; paid, once"_s;
  change.start = moment(u"2024-03-06 13:30"_s);
  change.durationMinutes = 45;
  const Item saved = save(single(u"Old"_s), change);
  reopen();
  for (const Item& item : {saved, single(*change.subject)}) {
    EXPECT_EQ(item.key.uid, u"a"_s);
    EXPECT_EQ(item.subject, *change.subject);
    EXPECT_EQ(item.body, *change.body);
    EXPECT_EQ(item.sensitivity, Sensitivity::Private);
    EXPECT_EQ(item.billingInformation, *change.billingInformation);
    EXPECT_EQ(item.start, *change.start);
    EXPECT_EQ(item.durationMinutes(), 45);
  }
}

TEST_P(CalendarStoreContract, WhatIsNotChangedStays) {
  Described written = timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s, "Europe/Stockholm", 90);
  written.item.body = u"Kept\r\n"_s;
  written.item.categories = {u"Acme"_s};
  written.item.sensitivity = Sensitivity::Confidential;
  open({written});
  Change change;
  change.billingInformation = u"paid"_s;
  save(single(u"A"_s), change);
  const Item item = single(u"A"_s);
  EXPECT_EQ(item.body, u"Kept\r\n"_s);
  EXPECT_EQ(item.categories, QStringList{u"Acme"_s});
  EXPECT_TRUE(item.categoriesText.isNull());
  EXPECT_EQ(item.sensitivity, Sensitivity::Confidential);
  EXPECT_EQ(item.start, written.item.start);
  EXPECT_EQ(item.durationMinutes(), 90);
}

TEST_P(CalendarStoreContract, ATextOfCategoriesComesBackExactlyBesideTheSingleNames) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  const QList<std::pair<QString, QStringList>> texts{
      {u";Support;Acme, Inc;Phone"_s, {u"Support"_s, u"Acme, Inc"_s, u"Phone"_s}},
      {u",Acme"_s, {u"Acme"_s}},
      {u" ; odd;; te\\xt; "_s, {u"odd"_s, u"te\\xt"_s}},
      {u";Same;Same"_s, {u"Same"_s, u"Same"_s}},
      {u"Ärende 🙂"_s, {u"Ärende 🙂"_s}}};
  for (const auto& [text, names] : texts) {
    Change change;
    change.categoriesText = text;
    change.categories = names;
    const Item saved = save(single(u"A"_s), change);
    reopen();
    for (const Item& item : {saved, single(u"A"_s)}) {
      EXPECT_EQ(item.categoriesText, text);
      EXPECT_EQ(item.categories, names);
    }
  }
}

TEST_P(CalendarStoreContract, AnUntouchedTextOfCategoriesSurvivesOtherChanges) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  Change change, other;
  change.categoriesText = u";Acme;Phone"_s;
  change.categories = QStringList{u"Acme"_s, u"Phone"_s};
  other.billingInformation = u"paid"_s;
  save(save(single(u"A"_s), change), other);
  reopen();
  EXPECT_EQ(single(u"A"_s).categoriesText, u";Acme;Phone"_s);
}

TEST_P(CalendarStoreContract, NamesAloneTakeTheTextAway) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  Change text, names;
  text.categoriesText = u";Acme"_s;
  text.categories = QStringList{u"Acme"_s};
  names.categories = QStringList{u"Other"_s};
  save(save(single(u"A"_s), text), names);
  reopen();
  EXPECT_EQ(single(u"A"_s).categories, QStringList{u"Other"_s});
  EXPECT_TRUE(single(u"A"_s).categoriesText.isNull());
}

TEST_P(CalendarStoreContract, AnEmptiedTextOfCategoriesIsEmpty) {
  Described written = timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s);
  written.item.categories = {u"Acme"_s};
  open({written});
  Change change;
  change.categoriesText = u""_s;
  change.categories = QStringList{};
  EXPECT_TRUE(save(single(u"A"_s), change).categories.isEmpty());
  reopen();
  EXPECT_TRUE(single(u"A"_s).categories.isEmpty());
  EXPECT_TRUE(single(u"A"_s).categoriesText.isEmpty());
}

TEST_P(CalendarStoreContract, ALongTextOfCategoriesWithLineBreaksIsKept) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  QString text;
  while (text.size() < 4000) text += u"Customers:Acme;Björk & Söner;\r\n"_s;
  text.truncate(4000);
  Change change;
  change.categoriesText = text;
  QStringList names;
  for (const QString& name : text.split(u';')) names.append(name.trimmed());
  names.removeAll(QString());
  change.categories = names;
  save(single(u"A"_s), change);
  reopen();
  EXPECT_EQ(single(u"A"_s).categoriesText, text);
}

TEST_P(CalendarStoreContract, UserPropertiesKeepNameTypeAndValue) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  const QMap<QString, UserProperty> properties{
      {u"Settings0"_s, {1, QString(1000, u'x') + u"\r\n\"quoted\", and; more \\ åäö"_s}},
      {u"SettingsCount"_s, {3, u"12"_s}},
      {u"When it was"_s, {5, u"2024-03-04T09:00:00"_s}},
      {u"blnStartGrid"_s, {6, u"TRUE"_s}},
      {u"Empty"_s, {1, u""_s}}};
  Change change;
  change.userProperties = properties;
  EXPECT_EQ(save(single(u"A"_s), change).userProperties, properties);
  reopen();
  EXPECT_EQ(single(u"A"_s).userProperties, properties);
}

TEST_P(CalendarStoreContract, AUserPropertyIsReplacedAndTheOthersStay) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  Change first, second;
  first.userProperties = {{u"One"_s, {1, u"1"_s}}, {u"Two"_s, {1, u"2"_s}}};
  second.userProperties = {{u"Two"_s, {1, u"changed"_s}}};
  save(single(u"A"_s), first);
  save(single(u"A"_s), second);
  const QMap<QString, UserProperty> expected{{u"One"_s, {1, u"1"_s}}, {u"Two"_s, {1, u"changed"_s}}};
  EXPECT_EQ(single(u"A"_s).userProperties, expected);
}

TEST_P(CalendarStoreContract, ANewStartAloneKeepsTheDuration) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s, "America/New_York", 90)});
  Change change;
  change.start = moment(u"2024-03-20 08:15"_s);
  save(single(u"A"_s), change);
  const Item item = single(u"A"_s);
  EXPECT_EQ(item.start, *change.start);
  EXPECT_EQ(item.durationMinutes(), 90);
}

TEST_P(CalendarStoreContract, ANewDurationAloneKeepsTheStart) {
  open({timed(u"a"_s, u"Zoned"_s, u"2024-03-04 09:00"_s),
        timed(u"b"_s, u"Universal"_s, u"2024-03-04 09:00"_s, "UTC"),
        timed(u"c"_s, u"Floating"_s, u"2024-03-04 09:00"_s, "")});
  for (const QString& subject : {u"Zoned"_s, u"Universal"_s, u"Floating"_s}) {
    const QDateTime start = single(subject).start;
    Change change;
    change.durationMinutes = 15;
    save(single(subject), change);
    EXPECT_EQ(single(subject).start, start) << qPrintable(subject);
    EXPECT_EQ(single(subject).durationMinutes(), 15) << qPrintable(subject);
  }
}

TEST_P(CalendarStoreContract, AFloatingItemThatIsMovedStaysFloating) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s, "")});
  Change change;
  change.start = moment(u"2024-03-05 10:30"_s);
  save(single(u"A"_s), change);
  Query query;
  query.zone = QTimeZone("America/New_York");
  EXPECT_EQ(startsOf(store->items(folder, query)), QStringList{u"2024-03-05 10:30"_s});
}

TEST_P(CalendarStoreContract, AnAllDayItemThatIsMovedTakesTheDate) {
  open({wholeDay(u"a"_s, u"A"_s, QDate(2024, 3, 4), 2)});
  Change change;
  change.start = moment(u"2024-03-20 00:00"_s);
  save(single(u"A"_s), change);
  const Item item = single(u"A"_s);
  EXPECT_TRUE(item.allDay);
  EXPECT_EQ(item.start.date(), QDate(2024, 3, 20));
  EXPECT_EQ(item.durationMinutes(), 2880);
}

TEST_P(CalendarStoreContract, AnItemCanBecomeAnAllDayItemAndBack) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  Change change;
  change.allDay = true;
  change.start = moment(u"2024-03-04 00:00"_s);
  change.durationMinutes = 1440;
  save(single(u"A"_s), change);
  reopen();
  EXPECT_TRUE(single(u"A"_s).allDay);
  EXPECT_EQ(single(u"A"_s).start.date(), QDate(2024, 3, 4));
  EXPECT_EQ(single(u"A"_s).durationMinutes(), 1440);
  change.allDay = false;
  change.start = moment(u"2024-03-04 10:00"_s);
  change.durationMinutes = 30;
  save(single(u"A"_s), change);
  reopen();
  EXPECT_FALSE(single(u"A"_s).allDay);
  EXPECT_EQ(single(u"A"_s).start, *change.start);
  EXPECT_EQ(single(u"A"_s).durationMinutes(), 30);
}

TEST_P(CalendarStoreContract, TheTagChangesWithTheItemAndAllowsTheNextChange) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  const Item before = single(u"A"_s);
  Change change;
  change.billingInformation = u"once"_s;
  const Item saved = save(before, change);
  EXPECT_NE(saved.tag, before.tag);
  EXPECT_EQ(saved.tag, single(u"A"_s).tag);
  change.billingInformation = u"twice"_s;
  save(saved, change);
  EXPECT_EQ(single(u"A"_s).billingInformation, u"twice"_s);
}

TEST_P(CalendarStoreContract, ATagStaysAsLongAsNothingChanges) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s), standUp()});
  QStringList before, after;
  for (const Item& item : expanded()) before.append(item.tag);
  reopen();
  for (const Item& item : expanded()) after.append(item.tag);
  EXPECT_EQ(before, after);
}

TEST_P(CalendarStoreContract, ANewItemGetsAnIdentityOfItsOwn) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  Change change;
  change.subject = u"New"_s;
  change.start = moment(u"2024-03-04 13:00"_s);
  change.durationMinutes = 120;
  change.categoriesText = u";Acme"_s;
  change.categories = QStringList{u"Acme"_s};
  const Item first = store->save(folder, {}, {}, change);
  const Item second = store->save(folder, {}, {}, change);
  EXPECT_FALSE(first.key.uid.isEmpty());
  EXPECT_NE(first.key.uid, second.key.uid);
  EXPECT_EQ(first.kind, Kind::Single);
  reopen();
  EXPECT_EQ(subjectsOf(plain()), (QStringList{u"A"_s, u"New"_s, u"New"_s}));
  Query query;
  query.uid = first.key.uid;
  query.zone = QTimeZone("Europe/Stockholm");
  const Item item = store->items(folder, query).value(0);
  EXPECT_EQ(item.start, *change.start);
  EXPECT_EQ(item.durationMinutes(), 120);
  EXPECT_EQ(item.categoriesText, u";Acme"_s);
}

TEST_P(CalendarStoreContract, ANewItemReachesAnEmptyFolder) {
  open({});
  Change change;
  change.subject = u"First"_s;
  change.start = moment(u"2024-03-04 13:00"_s);
  change.durationMinutes = 30;
  store->save(folder, {}, {}, change);
  reopen();
  EXPECT_EQ(subjectsOf(plain()), QStringList{u"First"_s});
}

TEST_P(CalendarStoreContract, AChangedOccurrenceBecomesAnExceptionAndTheSeriesStaysAsItIs) {
  open({standUp()});
  const Item master = single(u"Stand-up"_s);
  const Item occurrence = expanded().value(1);
  Change change;
  change.subject = u"Stand-up with guests"_s;
  change.billingInformation = u"paid"_s;
  const Item saved = save(occurrence, change);
  EXPECT_EQ(saved.kind, Kind::Exception);
  EXPECT_EQ(saved.key.uid, u"series"_s);
  EXPECT_EQ(saved.key.recurrenceId, u"20240212T090000"_s);
  reopen();
  const QList<Item> items = expanded();
  EXPECT_EQ(startsOf(items), (QStringList{u"2024-02-05 09:00"_s, u"2024-02-12 09:00"_s, u"2024-02-19 09:00"_s,
                                          u"2024-02-26 09:00"_s}));
  EXPECT_EQ(items.value(1).kind, Kind::Exception);
  EXPECT_EQ(items.value(1).subject, u"Stand-up with guests"_s);
  EXPECT_EQ(items.value(1).billingInformation, u"paid"_s);
  EXPECT_EQ(items.value(1).durationMinutes(), 60);
  EXPECT_EQ(items.value(2).kind, Kind::Occurrence);
  EXPECT_TRUE(items.value(2).billingInformation.isEmpty());
  EXPECT_EQ(single(u"Stand-up"_s).tag, master.tag);
}

TEST_P(CalendarStoreContract, AnExceptionCarriesWhatItsSeriesHad) {
  Described series = standUp();
  series.item.body = u"Agenda\r\n"_s;
  series.item.categories = {u"Acme"_s};
  series.item.sensitivity = Sensitivity::Private;
  open({series});
  Change change;
  change.billingInformation = u"paid"_s;
  save(expanded().value(1), change);
  reopen();
  const Item exception = expanded().value(1);
  EXPECT_EQ(exception.subject, u"Stand-up"_s);
  EXPECT_EQ(exception.body, u"Agenda\r\n"_s);
  EXPECT_EQ(exception.categories, QStringList{u"Acme"_s});
  EXPECT_EQ(exception.sensitivity, Sensitivity::Private);
}

TEST_P(CalendarStoreContract, OccurrencesReadTogetherCanBeSavedOneByOne) {
  open({standUp()});
  const QList<Item> items = expanded();
  for (const Item& item : items) {
    Change change;
    change.billingInformation = item.key.recurrenceId;
    save(item, change);
  }
  reopen();
  ASSERT_EQ(expanded().size(), 4);
  for (const Item& item : expanded()) EXPECT_EQ(item.billingInformation, item.key.recurrenceId);
}

TEST_P(CalendarStoreContract, AnExceptionCanBeChangedAgain) {
  open({standUp()});
  Change change;
  change.subject = u"Once"_s;
  const Item saved = save(expanded().value(0), change);
  change.subject = u"Twice"_s;
  save(saved, change);
  EXPECT_EQ(subjectsOf(expanded()), (QStringList{u"Twice"_s, u"Stand-up"_s, u"Stand-up"_s, u"Stand-up"_s}));
}

TEST_P(CalendarStoreContract, AnOccurrenceCanBeMovedAndOfAnAllDaySeriesToo) {
  open({standUp(), repeated(wholeDay(u"days"_s, u"On call"_s, QDate(2024, 4, 1)), day, 1, 2)});
  Change change;
  change.start = moment(u"2024-02-06 11:00"_s);
  save(expanded().value(0), change);
  EXPECT_EQ(expanded().value(0).start, *change.start);
  EXPECT_EQ(expanded().value(0).durationMinutes(), 60);
  Change mark;
  mark.subject = u"Marked"_s;
  save(expanded().value(5), mark);
  reopen();
  const Item marked = named(expanded(), u"Marked"_s);
  EXPECT_TRUE(marked.allDay);
  EXPECT_EQ(marked.key.recurrenceId, u"20240402"_s);
  EXPECT_EQ(marked.start.date(), QDate(2024, 4, 2));
  EXPECT_EQ(expanded().size(), 6);
}

TEST_P(CalendarStoreContract, AChangeOfTheSeriesReachesItsOccurrences) {
  open({standUp()});
  Change change;
  change.subject = u"Daily"_s;
  change.categoriesText = u";Acme"_s;
  change.categories = QStringList{u"Acme"_s};
  const Item saved = save(single(u"Stand-up"_s), change);
  EXPECT_EQ(saved.kind, Kind::Master);
  reopen();
  ASSERT_EQ(expanded().size(), 4);
  for (const Item& item : expanded()) {
    EXPECT_EQ(item.subject, u"Daily"_s);
    EXPECT_EQ(item.categoriesText, u";Acme"_s);
  }
}

}  // namespace contract
