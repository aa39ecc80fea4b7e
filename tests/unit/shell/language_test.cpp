#include "platform/locale/locale.h"
#include "shell/modErrorReport.h"
#include "shell/modLanguage.h"
#include "tests/unit/shell/shellworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

namespace {

class SystemOf : public platform::locale::Locale {
 public:
  explicit SystemOf(qint32 lcid) : lcid_(lcid) {}
  QString name() const override { return u"xx"_s; }
  qint32 lcid() const override { return lcid_; }
  QString listSeparator() const override { return u";"_s; }
  QString decimalSign() const override { return u"."_s; }
  QString shortDatePattern() const override { return u"yyyy-MM-dd"_s; }
  QString weekdayName(int, bool) const override { return {}; }
  QString monthName(int, bool) const override { return {}; }

 private:
  qint32 lcid_;
};

QStringList keysOfVariables() {
  QStringList keys;
#define HOURBOOK_PHRASE(key) keys.append(QStringLiteral(#key));
#include "shell/Phrases.inc"
#undef HOURBOOK_PHRASE
  return keys;
}

QByteArray utf16(const QString& text) {
  QByteArray bytes;
  for (const QChar c : text) bytes.append(char(c.cell())).append(char(c.row()));
  return bytes;
}

}  // namespace

class Language : public ShellWorld {
 protected:
  qint16 columnOf(qint32 lcid) {
    const platform::locale::ScopedLocale locale(std::make_shared<SystemOf>(lcid));
    return fncGetlocalLanguage();
  }
  /// A row whose column n holds "key-n" but for the columns named empty.
  static QString row(const QString& key, const QList<int>& empty = {}) {
    QStringList fields{key};
    for (int column = 1; column <= 16; ++column)
      fields.append(empty.contains(column) ? QString() : u"%1-%2"_s.arg(key).arg(column));
    return fields.join(u'\t') + u"\r\n"_s;
  }
  void useTable(const QByteArray& bytes) {
    values.phraseResource = documents.filePath(u"LANGUAGE"_s);
    QFile file(values.phraseResource);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }
};

TEST_F(Language, TheSystemsLanguagePicksTheColumn) {
  const QList<std::pair<qint16, QList<qint32>>> columns{
      {1, {1029}},
      {2, {1030}},
      {3, {1043, 2067}},
      {5, {1035}},
      {6, {1036, 2060, 3084, 5132, 4108}},
      {7, {1031, 3079, 5127, 4103, 2055}},
      {8, {1032}},
      {9, {1040, 2064}},
      {10, {1044}},
      {11, {2070}},
      {12, {1060}},
      {13, {3082,  1034, 11274, 16394, 13322, 9226,  5130,  7178,  12298, 4106,
            18442, 2058, 19466, 6154,  10250, 20490, 15370, 17418, 14346, 8202}},
      {14, {1053}},
      {15, {1055}}};
  for (const auto& [column, lcids] : columns)
    for (const qint32 lcid : lcids) EXPECT_EQ(columnOf(lcid), column) << lcid;
}

TEST_F(Language, BrazilRussiaAndEveryOtherSystemShowEnglish) {
  EXPECT_EQ(columnOf(1046), 4);
  EXPECT_EQ(columnOf(1049), 4);
  EXPECT_EQ(columnOf(1033), 4);
  EXPECT_EQ(columnOf(0), 4);
  world.setLocale(u"pt_BR"_s);
  EXPECT_EQ(fncGetlocalLanguage(), 4);
}

TEST_F(Language, TheTableIsLittleEndianWithAMarkAndItsLastLineIsEmpty) {
  fncGetlocalLanguage();
  LoadLanguages(4);  // links the table in
  QFile table(u":/CUSTOM/LANGUAGE"_s);
  ASSERT_TRUE(table.open(QIODevice::ReadOnly));
  const QByteArray bytes = table.readAll();
  EXPECT_TRUE(bytes.startsWith("\xFF\xFE"));
  QString text(reinterpret_cast<const QChar*>(bytes.constData() + 2), (bytes.size() - 2) / 2);
  EXPECT_TRUE(text.endsWith(u"\r\n"_s));
  EXPECT_EQ(text.count(u'\n'), text.count(u"\r\n"_s));
  const QStringList lines = text.split(u"\r\n"_s);
  EXPECT_EQ(lines.last(), QString());
  for (const QString& line : lines.mid(0, lines.size() - 1))
    EXPECT_EQ(line.count(u'\t'), 16) << qPrintable(line);
}

TEST_F(Language, EveryPhraseVariableHasItsRowAndATextInEnglish) {
  LoadLanguages(4);
  EXPECT_EQ(values.gPhrases.Count(), keysOfVariables().size());
  for (const QString& key : keysOfVariables()) {
    ASSERT_TRUE(values.gPhrases.contains(key)) << qPrintable(key);
    EXPECT_EQ(values.gPhrases.Item(key).LangConstant, key);
    EXPECT_FALSE(values.gPhrases.Item(key).LangPhrase.isEmpty()) << qPrintable(key);
  }
}

TEST_F(Language, TheVariablesAreFilledInAlphabeticalOrder) {
  QStringList sorted = keysOfVariables();
  sorted.sort();
  EXPECT_EQ(keysOfVariables(), sorted);
}

TEST_F(Language, TheEnglishTextsThatTheUserReadsStandAsTheyAre) {
  LoadLanguages(4);
  EXPECT_EQ(values.LNGABOUT, u"About"_s);
  EXPECT_EQ(values.LNGFETCHINGAPPS, u"Fetching appointments ..."_s);
  EXPECT_EQ(values.LNGNOAPPSFOUND, u"No appointments found!"_s);
  EXPECT_EQ(values.LNGNOTPOSTED, u"Not Posted"_s);
  EXPECT_EQ(values.LNGPOSTED, u"Posted"_s);
  EXPECT_EQ(values.LNGFILTERS, u"Marked appointments,Not marked appointments,All appointments"_s);
  EXPECT_EQ(values.LNGO2KNEEDED, u"You need Outlook 2000 or later to run this application."_s);
  EXPECT_EQ(values.LNGCHECKPERM, u"Check that you have the appropriate permissions!"_s);
  EXPECT_EQ(values.LNGERRINAPP, u"There has been an error in this application."_s);
  EXPECT_EQ(values.LNGERRSENDREPORT, u"Would you like to send an e-mail with an error report?"_s);
  EXPECT_EQ(values.LNGERRTHISERROR, u"This error has occured:"_s);
  EXPECT_EQ(values.LNGERRSYSTEMERROR, u"The system error message was:"_s);
  EXPECT_EQ(values.LNGERRLINE, u"Error on line"_s);
  EXPECT_EQ(values.LNGSUBROUTINE, u"Sub routine"_s);
  EXPECT_EQ(values.LNGDAYSBEFORE, u"Days before"_s);
  EXPECT_EQ(values.LNGWEEKDAY, u"Weekday"_s);
  EXPECT_EQ(values.LNGHOURS, u"Hours"_s);
  EXPECT_EQ(values.LNGSUBJECT, u"Subject"_s);
  EXPECT_EQ(values.LNGREPORT, u"Report"_s);
  EXPECT_EQ(values.LNGBY, u"By"_s);
  EXPECT_EQ(values.LNGGETVALUES, u"Get values"_s);
  EXPECT_EQ(values.LNGHBREPORTSURE1,
            u"You will not be able to change your reported time once you submit them to the database!"_s);
  EXPECT_EQ(values.LNGUNINSTALLDESC2, u"Are you sure you want to do this?"_s);
  EXPECT_EQ(values.LNGERRCONNECTIONFAILED, u"Failed to open the database!"_s);
  EXPECT_EQ(values.LNGYEARDEF, u"This year is default."_s);
  EXPECT_EQ(values.LNGWEEKDEF, u"This week is default."_s);
}

TEST_F(Language, TheTextsOfDialogsAndReportsStandAsTheyAre) {
  LoadLanguages(4);
  EXPECT_EQ(values.LNGALLVALUESNOTFILLEDOUT, u"All mandatory values are not filled out!"_s);
  EXPECT_EQ(values.LNGFAILEDSAVESETTINGS, u"Failed to save settings"_s);
  EXPECT_EQ(values.LNGCONFLICTVALUE, u"A value which previously was in the list is no longer available."_s);
  EXPECT_EQ(values.LNGCHOOSECONNECTION, u"Database connection"_s);
  EXPECT_EQ(values.LNGSELECTDATABASECONNECTION,
            u"Choose which kind of database connection is to be used for reported data."_s);
  EXPECT_EQ(values.LNGCREATENEWACCESSDATABASE, u"Create new Access database"_s);
  EXPECT_EQ(values.LNGCREATESQLDATABASE, u"Create a new database on a MS SQL Server"_s);
  EXPECT_EQ(values.LNGSELECTEXISTINGSQLDB,
            u"Choose an existing MS SQL database, which has already been created from CreateDBHB.sql"_s);
  EXPECT_EQ(values.LNGLOADEXAMPLEDATA, u"Load Example Data"_s);
  EXPECT_EQ(values.LNGSERVER, u"Server"_s);
  EXPECT_EQ(values.LNGDATABASE, u"Database"_s);
  EXPECT_EQ(values.LNGUSERNAME, u"User name"_s);
  EXPECT_EQ(values.LNGPASSWORD, u"Password"_s);
  EXPECT_EQ(values.LNGINTEGRATEDSECURITY, u"Use trusted connection  - recommended"_s);
  EXPECT_EQ(values.LNGTEST, u"Test"_s);
  EXPECT_EQ(values.LNGOK, u"OK"_s);
  EXPECT_EQ(values.LNGCANCEL, u"Cancel"_s);
  EXPECT_EQ(values.LNGCONNECTIONFAILED, u"Connection failed!"_s);
  EXPECT_EQ(values.LNGCONNECTIONSUCCEEDED, u"Connection succeeded!"_s);
  EXPECT_EQ(values.LNGCUSTOMER, u"Customer"_s);
  EXPECT_EQ(values.LNGTASK, u"Task"_s);
  EXPECT_EQ(values.LNGMONTH, u"Month"_s);
  EXPECT_EQ(values.LNGDAY, u"Day"_s);
  EXPECT_EQ(values.LNGDATE, u"Date"_s);
  EXPECT_EQ(values.LNGRATE, u"Rate"_s);
  EXPECT_EQ(values.LNGREPORTDATE, u"Report date"_s);
  EXPECT_EQ(values.LNGNAME, u"Name"_s);
  EXPECT_EQ(values.LNGCATEGORY, u"Category"_s);
  EXPECT_EQ(values.LNGSUPERCATEGORY, u"Super category"_s);
  EXPECT_EQ(values.LNGENABLE, u"Enabled"_s);
  EXPECT_EQ(values.LNGCOSTCARRIER, u"Count costs by"_s);
  EXPECT_EQ(values.LNGSETTINGS, u"Configure"_s);
  EXPECT_EQ(values.LNGERRROWREAD, u"Unable to read info from a row."_s);
  EXPECT_EQ(values.LNGFAILEDSAVEVALUE, u"Unable to save this value!"_s);
  EXPECT_EQ(values.LNGSUM, u"Sum"_s);
  EXPECT_EQ(values.LNGAPPSCREATED, u"New appointments created:"_s);
  EXPECT_EQ(values.LNGREMOVEREPORTS, u"Remove time reports"_s);
  EXPECT_EQ(values.LNGADDTOANOTHER, u"Move time reports to:"_s);
  EXPECT_EQ(values.LNGMISSINGVALUE, u"Missing value"_s);
  EXPECT_EQ(values.LNGREPORTINGDONE, u"Reporting for this period done!"_s);
  EXPECT_EQ(values.LNGANOTHERWEEK, u"Would you like to report for another period?"_s);
  EXPECT_EQ(values.LNGWHICHDEPARTMENT, u"Please state which department you belong to"_s);
}

TEST_F(Language, ThreeEnglishTextsShowTheLineBreakAsItWasWritten) {
  LoadLanguages(4);
  EXPECT_EQ(
      values.LNGERRTOMANYROWS,
      u"The period you choose has more than 99 appointments\" & vbCrLf & \"Choose a shorter period to work "
      "with all of your appointments!"_s);
  EXPECT_EQ(values.LNGERRCHART,
            u"Unable to set that chart type for this chart!\" & vbCrLf & \"Please select another type."_s);
  EXPECT_EQ(values.LNGERREDITFAILS,
            u"Your changes were not saved.\" & vbCrLf & \"Please type exactly or select from the dropdown"_s);
}

TEST_F(Language, APhraseMissingInALanguageShowsInEnglish) {
  useTable("\xFF\xFE" + utf16(row(u"LNGA"_s, {15}) + row(u"LNGB"_s)));
  subReadPhrases(15);
  EXPECT_EQ(values.gPhrases.Item(u"LNGA"_s).LangPhrase, u"LNGA-4"_s);
  EXPECT_EQ(values.gPhrases.Item(u"LNGB"_s).LangPhrase, u"LNGB-15"_s);
}

TEST_F(Language, TheMarkAtTheStartIsNoPartOfTheFirstKey) {
  useTable("\xFF\xFE" + utf16(row(u"LNGA"_s)));
  subReadPhrases(4);
  EXPECT_EQ(values.gPhrases.Item(1).LangConstant, u"LNGA"_s);
}

TEST_F(Language, ATableWithoutAMarkIsReadTheSame) {
  useTable(utf16(row(u"LNGA"_s)));
  subReadPhrases(4);
  EXPECT_EQ(values.gPhrases.Item(1).LangConstant, u"LNGA"_s);
}

TEST_F(Language, AMarkThatCameOutAsAQuestionMarkIsNoPartOfTheFirstKey) {
  useTable(utf16(u'?' + row(u"LNGA"_s)));
  subReadPhrases(4);
  EXPECT_EQ(values.gPhrases.Item(1).LangConstant, u"LNGA"_s);
}

TEST_F(Language, TheLastLineIsNotRead) {
  useTable(utf16(row(u"LNGA"_s) + row(u"LNGB"_s).chopped(2)));
  subReadPhrases(4);
  EXPECT_EQ(values.gPhrases.Count(), 1);
}

TEST_F(Language, ASecondReadingReplacesTheFirst) {
  useTable(utf16(row(u"LNGA"_s) + row(u"LNGB"_s)));
  subReadPhrases(4);
  subReadPhrases(7);
  EXPECT_EQ(values.gPhrases.Count(), 2);
  EXPECT_EQ(values.gPhrases.Item(u"LNGB"_s).LangPhrase, u"LNGB-7"_s);
}

TEST_F(Language, RussianCanBeReadThoughNoSystemPicksIt) {
  useTable(utf16(row(u"LNGA"_s)));
  subReadPhrases(16);
  EXPECT_EQ(values.gPhrases.Item(u"LNGA"_s).LangPhrase, u"LNGA-16"_s);
}

TEST_F(Language, UntilThePhrasesAreReadAllAreEmpty) {
#define HOURBOOK_PHRASE(key) EXPECT_EQ(values.key, QString());
#include "shell/Phrases.inc"
#undef HOURBOOK_PHRASE
  EXPECT_EQ(values.gPhrases.Count(), 0);
}

TEST_F(Language, ATableInTheSystemsCodePageIsReadOnRequest) {
  useTable(row(u"LNGA"_s).toLocal8Bit());
  subReadPhrases(4, true);
  EXPECT_EQ(values.gPhrases.Item(u"LNGA"_s).LangPhrase, u"LNGA-4"_s);
}

TEST_F(Language, ApostrophesAreTakenOutOfEveryPhrase) {
  EXPECT_EQ(fncCleanPhrase(u"l'heure d'été"_s), u"lheure dété"_s);
  QString text = row(u"LNGA"_s);
  text.replace(u"LNGA-6"_s, u"Choix d'une période"_s);
  useTable("\xFF\xFE" + utf16(text));
  subReadPhrases(6);
  EXPECT_EQ(values.gPhrases.Item(u"LNGA"_s).LangPhrase, u"Choix dune période"_s);
}

TEST_F(Language, AnEmptyTableGivesNoPhrases) {
  useTable({});
  subReadPhrases(4);
  EXPECT_EQ(values.gPhrases.Count(), 0);
}

TEST_F(Language, ALineWithTooFewFieldsIsReportedWithItsNumber) {
  useTable("\xFF\xFE" + utf16(row(u"LNGA"_s) + u"LNGB\tx\r\n"_s));
  EXPECT_REPORTED(world, "subReadPhrases", subReadPhrases(4));
  EXPECT_TRUE(world.dialogs.shown.first().text.contains(u"Subscript out of range LINE - 2\r\n#9\r\n"_s));
}

TEST_F(Language, AKeyThatComesTwiceIsReportedWithItsLine) {
  useTable("\xFF\xFE" + utf16(row(u"LNGA"_s) + row(u"LNGA"_s)));
  EXPECT_REPORTED(world, "subReadPhrases", subReadPhrases(4));
  EXPECT_TRUE(world.dialogs.shown.first().text.contains(u"LINE - 2\r\n#457\r\n"_s));
}

TEST_F(Language, AMissingTableIsReported) {
  values.phraseResource = documents.filePath(u"none"_s);
  EXPECT_REPORTED(world, "subReadPhrases", subReadPhrases(4));
  EXPECT_TRUE(world.dialogs.shown.first().text.contains(u"LINE - 0"_s));
}

TEST_F(Language, AKeyThatTheTableLacksEndsTheProgram) {
  useTable("\xFF\xFE" + utf16(row(u"LNGABOUT"_s)));
  EXPECT_REPORTED(world, "LoadLanguages", LoadLanguages(4));
  EXPECT_EQ(values.LNGABOUT, u"LNGABOUT-4"_s);
}

TEST_F(Language, TheStepsAreLogged) {
  subReadPhrases(4);
  EXPECT_EQ(fncLastLogText(), u"Reading language phrases from resource file"_s);
  LoadLanguages(4);
  EXPECT_EQ(fncLastLogText(), u"Reading phrases from collection into variables"_s);
}

TEST_F(Language, ThePhrasesAreReadBeforeTheyAreCopied) {
  keepLog();
  LoadLanguages(4);
  const QString log = contentOf(inProgramFolder(u"NorrdalenLog.txt"_s));
  const qsizetype read = log.indexOf(u"\tReading language phrases from resource file\r\n"_s);
  const qsizetype copied = log.indexOf(u"\tReading phrases from collection into variables\r\n"_s);
  EXPECT_GE(read, 0);
  EXPECT_GT(copied, read);
}

}  // namespace hourbook::tests
