#include "tests/unit/platform/calendar/icalendar/fixture.h"

using namespace icalendar_tests;

class PropertiesTest : public IcalendarTest {
 protected:
  Item with(const QByteArrayList& lines) {
    write(u"a.ics"_qs, calendar(event(QByteArrayList{"UID:a", "DTSTART:20240205T080000Z"} + lines)));
    return single();
  }
};

TEST_F(PropertiesTest, TheSubjectIsReadWhateverItsLanguage) {
  EXPECT_EQ(with({"SUMMARY;LANGUAGE=de:Besprechung\\, gro\xC3\x9F\\; Saal \\\\ 1"}).subject,
            u"Besprechung, groß; Saal \\ 1"_qs);
  EXPECT_EQ(with({"SUMMARY:one\\ntwo"}).subject, u"one two"_qs);
  EXPECT_EQ(with({}).subject, QString());
}

TEST_F(PropertiesTest, TheBodysLineBreaksAreThoseOfAText) {
  EXPECT_EQ(with({"DESCRIPTION:line1\\nline2\\Nline3\\, end"}).body, u"line1\r\nline2\r\nline3, end"_qs);
}

TEST_F(PropertiesTest, ABodyOfLineBreaksAloneIsEmpty) {
  EXPECT_EQ(with({"DESCRIPTION:\\n"}).body, QString());
}

TEST_F(PropertiesTest, CategoriesOfSeveralLinesAreOneList) {
  EXPECT_EQ(
      with({"CATEGORIES:cat1  ,  cat2", "CATEGORIES;LANGUAGE=en:Smith\\, Jones", "CATEGORIES:"}).categories,
      (QStringList{u"cat1"_qs, u"cat2"_qs, u"Smith, Jones"_qs}));
}

TEST_F(PropertiesTest, EncodedCategoriesAreDecodedAndWrittenPlain) {
  for (const char* head : {"CATEGORIES;ENCODING=QUOTED-PRINTABLE:", "CATEGORIES;QUOTED-PRINTABLE:",
                           "CATEGORIES;X-A=1;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:"}) {
    SCOPED_TRACE(head);
    const Item item =
        with({"SUMMARY;QUOTED-PRINTABLE:a=2Cb", QByteArray(head) + "K=C3=BCche", "CLASS:PUBLIC"});
    EXPECT_EQ(item.categories, QStringList{u"Küche"_qs});
    EXPECT_EQ(item.subject, u"a,b"_qs);
    Change change;
    change.categories = QStringList{u"Küche"_qs, u"A="_qs};
    change.subject = u"A, b="_qs;
    save(item, change);
    const Item again = single();
    EXPECT_EQ(again.categories, *change.categories);
    EXPECT_EQ(again.subject, u"A, b="_qs);
    EXPECT_EQ(again.start, item.start);
    EXPECT_FALSE(read(u"a.ics"_qs).contains("QUOTED"));
    EXPECT_TRUE(read(u"a.ics"_qs).contains("\r\nCLASS:PUBLIC\r\n"));
  }
}

TEST_F(PropertiesTest, EachClassIsASensitivity) {
  const QList<QPair<QByteArray, Sensitivity>> classes{{"PUBLIC", Sensitivity::Normal},
                                                      {"PERSONAL", Sensitivity::Personal},
                                                      {"X-PERSONAL", Sensitivity::Personal},
                                                      {"PRIVATE", Sensitivity::Private},
                                                      {"private", Sensitivity::Private},
                                                      {"CONFIDENTIAL", Sensitivity::Confidential},
                                                      {"", Sensitivity::Normal},
                                                      {"X-SECRET", Sensitivity::Normal}};
  for (const auto& [text, sensitivity] : classes)
    EXPECT_EQ(with({"CLASS:" + text}).sensitivity, sensitivity) << text.constData();
}

TEST_F(PropertiesTest, TheTextOfTheCategoriesIsBelievedWhileItSaysWhatTheySay) {
  EXPECT_EQ(with({"CATEGORIES:A,B", "X-HOURBOOK-CATEGORIES:\\; A\\;B"}).categoriesText, u"; A;B"_qs);
  EXPECT_EQ(with({"CATEGORIES:A,B", "X-HOURBOOK-CATEGORIES:A\\, B"}).categoriesText, u"A, B"_qs);
  EXPECT_EQ(with({"CATEGORIES:A,B", "X-HOURBOOK-CATEGORIES:|A|B"}).categoriesText, u"|A|B"_qs);
  EXPECT_EQ(with({"CATEGORIES:A\\, Inc,B", "X-HOURBOOK-CATEGORIES:\\;A\\, Inc\\;B"}).categoriesText,
            u";A, Inc;B"_qs);
}

TEST_F(PropertiesTest, TheTextOfTheCategoriesIsForgottenWhenAnotherProgramChangedThem) {
  for (const char* categories : {"A", "A,B,C", "B,A", "A,X"})
    EXPECT_TRUE(with({QByteArray("CATEGORIES:") + categories, "X-HOURBOOK-CATEGORIES:\\;A\\;B"})
                    .categoriesText.isNull())
        << categories;
  EXPECT_TRUE(with({"X-HOURBOOK-CATEGORIES:\\;A\\;B"}).categoriesText.isNull());
  EXPECT_TRUE(with({"CATEGORIES:A,B"}).categoriesText.isNull());
}

TEST_F(PropertiesTest, BillingInformationAndUserPropertiesAreRead) {
  const Item item = with({"X-HOURBOOK-BILLINGINFORMATION:2024-02-05 10:00\\; paid",
                          "X-HOURBOOK-USERPROPERTY;X-NAME=\"Settings^'0^'\";X-TYPE=1:a\\nb\\, c",
                          "X-HOURBOOK-USERPROPERTY;X-NAME=Count;X-TYPE=3:12"});
  EXPECT_EQ(item.billingInformation, u"2024-02-05 10:00; paid"_qs);
  ASSERT_EQ(item.userProperties.size(), 2);
  EXPECT_EQ(item.userProperties.value(u"Settings\"0\""_qs).value, u"a\r\nb, c"_qs);
  EXPECT_EQ(item.userProperties.value(u"Count"_qs).type, 3);
}

TEST_F(PropertiesTest, PropertiesOfTheAlarmAreNotTheItems) {
  const Item item =
      with({"BEGIN:VALARM", "SUMMARY:Alarm", "DESCRIPTION:Reminder", "END:VALARM", "SUMMARY:Own"});
  EXPECT_EQ(item.subject, u"Own"_qs);
  EXPECT_EQ(item.body, QString());
}

TEST_F(PropertiesTest, BytesThatAreNotUtf8AreReadAsWindowsText) {
  EXPECT_EQ(with({"SUMMARY:M\xF6te"}).subject, u"Möte"_qs);
}

TEST_F(PropertiesTest, EachItemHasAnIdentityATagAndAKind) {
  const Item item = with({"SUMMARY:x"});
  EXPECT_EQ(item.key.uid, u"a"_qs);
  EXPECT_EQ(item.key.place, u"a.ics"_qs);
  EXPECT_FALSE(item.tag.isEmpty());
  EXPECT_EQ(item.kind, Kind::Single);
  EXPECT_NE(with({"SUMMARY:y"}).tag, item.tag);
}
