#include "companions/settings/places.h"
#include "companions/settings/texts.h"
#include "settingshome.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {
namespace {

class Buffer : public SettingsHome {
 protected:
  SettingsStore store{config()};
};

TEST_F(Buffer, OfTheUsualSettingsNamesWhatIsStillMissing) {
  QList<Field> fields;
  for (const FieldText& problem : problemsOf(defaultSettings(), config(), false))
    fields.append(problem.field);
  EXPECT_EQ(fields, (QList<Field>{Field::PersonName, Field::Calendars, Field::DatabaseFolder, Field::Lists}));
}

TEST_F(Buffer, FilledInHasNoProblem) {
  EXPECT_EQ(problemsOf(filledIn(store), config(), false).size(), 0);
}

TEST_F(Buffer, NamesTheCalendarAndTheListOfAProblem) {
  SettingsBuffer buffer = filledIn(store);
  buffer.calendars.append({u"x"_s, u""_s, path(u"nowhere"_s), false});
  buffer.lists.append({u"Third"_s, {}});
  const QList<FieldText> problems = problemsOf(buffer, config(), false);
  ASSERT_EQ(problems.size(), 3);
  EXPECT_EQ(problems[0].field, Field::CalendarName);
  EXPECT_EQ(problems[1].field, Field::CalendarPath);
  EXPECT_EQ(problems[1].index, 1);
  EXPECT_EQ(problems[2].field, Field::ListValues);
  EXPECT_EQ(problems[2].index, 2);
}

TEST_F(Buffer, ChecksValuesThatCameInByAnotherWay) {
  SettingsBuffer buffer = filledIn(store);
  buffer.lists[0].values = {u"Acme"_s, u"ACME"_s, u"a;b"_s};
  EXPECT_EQ(problemsOf(buffer, config(), false).size(), 3);  // both of the equal ones
  buffer.lists = {{u"a"_s, {u"1"_s}}, {u"b"_s, {u"1"_s}}, {u"c"_s, {u"1"_s}}, {u"d"_s, {u"1"_s}}};
  EXPECT_EQ(problemsOf(buffer, config(), false).value(0).text, texts::tooManyLists);
}

TEST_F(Buffer, TakesHoursAndRatesUpToTheirBounds) {
  for (const QString& hours : {u"0.25"_s, u"24"_s, u" 8 "_s}) EXPECT_EQ(wholeDayProblem(hours), QString());
  for (const QString& hours : {u"0"_s, u"-1"_s, u"24.01"_s, u""_s, u"8h"_s, u"1e400"_s})
    EXPECT_NE(wholeDayProblem(hours), QString()) << qPrintable(hours);
  for (const QString& hours : {u"0"_s, u"7"_s}) EXPECT_EQ(lunchProblem(hours), QString());
  for (const QString& hours : {u"-0.1"_s, u"7.01"_s, u""_s}) EXPECT_NE(lunchProblem(hours), QString());
  for (const QString& rate : {u"0"_s, u"32767"_s, u"450.1234"_s}) EXPECT_EQ(rateProblem(rate), QString());
  for (const QString& rate : {u""_s, u"-0.01"_s, u"32767.5"_s, u"0.12345"_s, u"nan"_s, u"inf"_s})
    EXPECT_NE(rateProblem(rate), QString()) << qPrintable(rate);
}

TEST_F(Buffer, ComparesItsListsWithTheCommonOnesByTheirPlace) {
  const QList<NamedList> common{{u"Customer"_s, {u"Acme"_s}}, {u"Task"_s, {u"Support"_s}}};
  const QList<NamedList> mine{
      {u"customer"_s, {u"acme"_s, u"Bolt"_s}}, {u"Job"_s, {u"Support"_s}}, {u"x"_s, {u"y"_s}}};
  EXPECT_EQ(listNotes(mine, common),
            (QStringList{texts::notCommon.arg(u"Bolt"_s), texts::otherListName.arg(u"Task"_s), QString()}));
}

TEST_F(Buffer, TextsThatWouldBreakAConnectionTextAreRefused) {
  for (const QString& text : {u"a;b"_s, u"a=b"_s, u"a\"b"_s, u"a'b"_s, u"a\nb"_s})
    EXPECT_NE(serverTextProblem(text), QString()) << qPrintable(text);
  EXPECT_EQ(serverTextProblem(u"host\\instance,1433"_s), QString());
}

TEST_F(Buffer, TellsWhatACalendarPlaceHolds) {
  EXPECT_EQ(lookAtCalendar(path(u"calendar"_s), false).note, texts::folderIsEmpty);
  write(path(u"calendar/a.ICS"_s), "");
  write(path(u"calendar/notes.txt"_s), "");
  EXPECT_EQ(lookAtCalendar(path(u"calendar"_s), false).note, texts::folderHolds.arg(1));
  write(path(u"bom.ics"_s),
        "\xEF\xBB\xBF"
        "begin:vcalendar\r\nend:vcalendar\r\n");
  EXPECT_EQ(lookAtCalendar(path(u"bom.ics"_s), false).note, texts::fileIsCalendar);
  EXPECT_EQ(lookAtCalendar(u"/dev/null"_s, true).problem, texts::pathIsSpecial.arg(u"/dev/null"_s));
}

TEST_F(Buffer, TellsWhatADatabasePlaceHolds) {
  write(path(u"file"_s), "");
  EXPECT_EQ(lookAtDatabase(path(u"file"_s), false).problem, texts::folderIsFile.arg(path(u"file"_s)));
  EXPECT_EQ(lookAtDatabase(path(u"file/deeper"_s), true).problem, texts::folderIsFile.arg(path(u"file"_s)));
  write(path(u"database/Hourbook3.mdb"_s), "something else");
  EXPECT_EQ(lookAtDatabase(path(u"database"_s), false).problem,
            texts::databaseIsNone.arg(path(u"database/Hourbook3.mdb"_s)));
}

}  // namespace
}  // namespace hourbook::tests
