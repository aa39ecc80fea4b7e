// Reading the rows and making the report recordset.
#include "platform/basic/convert.h"
#include "reportingworld.h"

using namespace hourbook;
using platform::basic::CStr;
using platform::basic::Currency;
using platform::basic::Date;
using platform::basic::IsNull;
using platform::basic::Value;
namespace ado = platform::ado;

class ReportRows : public testing::Test {
 protected:
  cReportRows& read() {
    rows.ReportsRange = w.sheet.Range(u"a2:g%1"_qs.arg(w.lastRow));
    rows.ReadReportsFromRange();
    return rows;
  }
  tests::ReportingWorld w;
  cReportRows rows;
};

TEST_F(ReportRows, ARowIsReadFromTheListAndItsAppointment) {
  w.add(
      {u"Meeting"_qs, {u"Acme"_qs, u"Website"_qs, u"Design"_qs}, u"7.25"_qs, u"first line\r\nsecond\r\n"_qs});
  read();
  ASSERT_EQ(rows.Reports.Count(), 1);
  const cRowInfo& row = *rows.Reports.Item(u"1"_qs);
  EXPECT_EQ(row.RowNumber, 1);
  EXPECT_EQ(row.Subject, u"Meeting"_qs);
  EXPECT_EQ(row.Marking->colMarkings.Count(), 3);
  EXPECT_EQ(row.Marking->colMarkings.Item(1)->MetaName, u"Acme"_qs);
  EXPECT_EQ(row.Marking->colMarkings.Item(2)->MetaName, u"Website"_qs);
  EXPECT_EQ(row.Marking->colMarkings.Item(3)->MetaName, u"Design"_qs);
  EXPECT_EQ(CStr(row.Hours), u"7.25"_qs);
  EXPECT_TRUE(row.StartTime == Date::of(QDate(2024, 5, 13), QTime(9, 30)));
  EXPECT_EQ(row.NotesField, u"first line\r\nsecond"_qs);
}

TEST_F(ReportRows, OnlyRowsThatAreNotPostedAreRead) {
  w.addComplete(u"a"_qs);
  w.add({u"b"_qs, {u"Acme"_qs}, u"1"_qs, {}, QDateTime(QDate(2024, 5, 14), QTime(9, 0)), true});
  w.addComplete(u"c"_qs);
  w.sheet.Cell(4, 7).setValue(u"  "_qs + w.shell->LNGNOTPOSTED + u"!"_qs);
  read();
  EXPECT_EQ(rows.Reports.Count(), 2);
  EXPECT_EQ(rows.Reports.Item(u"3"_qs)->Subject, u"c"_qs) << "the phrase may stand anywhere in the cell";
  EXPECT_FALSE(rows.Reports.contains(u"2"_qs));
}

TEST_F(ReportRows, ThePhraseIsSoughtWithCase) {
  w.addComplete(u"a"_qs);
  w.sheet.Cell(2, 7).setValue(w.shell->LNGNOTPOSTED.toUpper());
  EXPECT_EQ(read().Reports.Count(), 0);
}

TEST_F(ReportRows, EachRowHasTheAppointmentOfItsOwnLine) {
  const auto start = [](int day) {
    return QDateTime(QDate(2024, 5, day), QTime(8, 0), QTimeZone("Europe/Stockholm"));
  };
  w.add({u"first"_qs, {}, u"1"_qs, {}, start(13)});
  w.add({u"second"_qs, {}, u"1"_qs, {}, start(14)});
  read();
  EXPECT_EQ(rows.Reports.Item(1)->StartTime.day(), 13);
  EXPECT_EQ(rows.Reports.Item(2)->StartTime.day(), 14);
}

TEST_F(ReportRows, ColumnsBeyondTheListsInUseAreNotRead) {
  w.personal().subPopulateMetadataList(u"Customer:Acme;\r\n"_qs);
  w.addComplete(u"a"_qs);
  EXPECT_EQ(read().Reports.Item(1)->Marking->colMarkings.Count(), 1);
  const auto rs = rows.ToRecordset();
  EXPECT_TRUE((*rs)[u"strMeta1"_qs].Value() == Value(u"Acme"_qs));
  EXPECT_TRUE(IsNull((*rs)[u"strMeta2"_qs].Value()));
  EXPECT_TRUE(IsNull((*rs)[u"strMeta3"_qs].Value()));
}

TEST_F(ReportRows, AMissingAppointmentIsReported) {
  w.addComplete(u"a"_qs);
  w.outlook->gRowItems = {};
  w.expectFailure(u"ReadReportsFromRange"_qs, u"Reading values to report from range"_qs, [&] { read(); });
}

TEST_F(ReportRows, SubjectsAreListedLineByLine) {
  EXPECT_EQ(rows.ToTabSep(), QString());
  w.addComplete(u"a"_qs);
  w.addComplete(u"b"_qs);
  EXPECT_EQ(read().ToTabSep(), u"a\r\nb\r\n"_qs);
}

TEST_F(ReportRows, TheRecordsetHasItsColumnsInTheirOrder) {
  w.addComplete(u"a"_qs);
  read();
  const auto rs = rows.ToRecordset();
  QStringList columns;
  for (int i = 0; i < rs->Fields().Count(); ++i)
    columns.append(u"%1 %2 %3"_qs.arg(rs->Fields().Item(i).Name())
                       .arg(rs->Fields().Item(i).Type())
                       .arg(rs->Fields().Item(i).DefinedSize()));
  EXPECT_EQ(columns, QStringList({u"intRowCounter 20 0"_qs, u"dteStartDate 133 0"_qs,
                                  u"strSubject 202 255"_qs, u"intHours 4 0"_qs, u"strMeta1 202 255"_qs,
                                  u"strMeta2 202 255"_qs, u"strMeta3 202 255"_qs, u"curPersonalRate 6 0"_qs,
                                  u"intResult 20 0"_qs, u"strPerson 202 255"_qs, u"strBody 8 0"_qs}));
}

TEST_F(ReportRows, TheRecordsetHoldsTheRows) {
  w.personal().PersonalRate = Currency::fromTenThousandths(1255000);
  w.add({u"Meeting"_qs, {u"Acme"_qs, u"Website"_qs, u"Design"_qs}, u"7.25"_qs, u"text\r\n"_qs});
  read();
  const auto rs = rows.ToRecordset();
  ASSERT_EQ(rs->RecordCount(), 1);
  rs->MoveFirst();
  const auto value = [&](const QString& name) { return (*rs)[name].Value(); };
  EXPECT_TRUE(value(u"intRowCounter"_qs) == Value(qint64{1}));
  EXPECT_TRUE(value(u"dteStartDate"_qs) == Value(Date::of(2024, 5, 13))) << "a day, without the time of day";
  EXPECT_TRUE(value(u"strSubject"_qs) == Value(u"Meeting"_qs));
  EXPECT_TRUE(value(u"intHours"_qs) == Value(7.25F));
  EXPECT_TRUE(value(u"strMeta3"_qs) == Value(u"Design"_qs));
  EXPECT_TRUE(value(u"curPersonalRate"_qs) == Value(Currency::fromTenThousandths(1255000)));
  EXPECT_TRUE(IsNull(value(u"intResult"_qs)));
  EXPECT_TRUE(value(u"strPerson"_qs) == Value(u"Jane Doe"_qs));
  EXPECT_TRUE(value(u"strBody"_qs) == Value(u"text"_qs));
  EXPECT_EQ(w.shell->gLastLogText, u"Reading the value of the Other Setting ADDepartment"_qs);
}

TEST_F(ReportRows, HoursAreReadWithAPointInEveryLanguage) {
  w.world.setLocale(u"de_DE"_qs);
  w.add({u"a"_qs, {u"Acme"_qs, u"Website"_qs, u"Design"_qs}, u"7.25"_qs});
  read();
  EXPECT_TRUE((*rows.ToRecordset())[u"intHours"_qs].Value() == Value(7.25F));
}

TEST_F(ReportRows, RowsThatAreNotCompletelyMarkedAreLeftOut) {
  w.add({u"half"_qs, {u"Acme"_qs, QString(), u"Design"_qs}});
  w.addComplete(u"whole"_qs);
  read();
  EXPECT_EQ(rows.Reports.Count(), 2);
  const auto rs = rows.ToRecordset();
  EXPECT_EQ(rs->RecordCount(), 1);
  EXPECT_TRUE((*rs)[u"intRowCounter"_qs].Value() == Value(qint64{2}));
}

TEST_F(ReportRows, TheEndOfAVeryLongSubjectIsLeftOut) {
  w.addComplete(QString(300, u'x'));
  read();
  EXPECT_TRUE((*rows.ToRecordset())[u"strSubject"_qs].Value() == Value(QString(255, u'x')));
}

TEST_F(ReportRows, ALongSubjectIsCutBetweenCharacters) {
  const QString wave = QString::fromUcs4(U"\U0001F44B");
  w.addComplete(QString(254, u'x') + wave + u"end"_qs);
  w.addComplete(QString(253, u'x') + wave + u"end"_qs);
  read();
  const auto rs = rows.ToRecordset();
  rs->MoveFirst();
  EXPECT_TRUE((*rs)[u"strSubject"_qs].Value() == Value(QString(254, u'x')));
  rs->MoveNext();
  EXPECT_TRUE((*rs)[u"strSubject"_qs].Value() == Value(QString(253, u'x') + wave));
}

TEST_F(ReportRows, MoreRowsThanTheirCounterHoldsFailBeforeAnythingIsStored) {
  w.addComplete(u"a"_qs);
  w.sheet.Cell(32769, 7).setValue(w.shell->LNGNOTPOSTED);  // row 32768 of the range
  w.lastRow = 32769;
  w.expectFailure(u"ReadReportsFromRange"_qs, u"Overflow"_qs, [&] { w.report(); });
  EXPECT_EQ(w.storedRows(), 0);
}

TEST_F(ReportRows, HoursThatAreNoNumberAreReported) {
  w.add({u"a"_qs, {u"Acme"_qs, u"Website"_qs, u"Design"_qs}, u"many"_qs});
  read();
  w.expectFailure(u"ToRecordset"_qs, u"wrong type"_qs, [&] { rows.ToRecordset(); });
}
