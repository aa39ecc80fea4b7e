// The phrase table as it is delivered: what must hold for each text in each language.
#include "platform/basic/convert.h"
#include "shell/modLanguage.h"
#include "tests/unit/shell/shellworld.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace hourbook::tests {

namespace {

const QStringList languages{u"cs"_s, u"da"_s, u"nl"_s, u"en"_s, u"fi"_s, u"fr"_s, u"de"_s, u"el"_s,
                            u"it"_s, u"nb"_s, u"pt"_s, u"sl"_s, u"es"_s, u"sv"_s, u"tr"_s, u"ru"_s};

const QString writtenLineBreak = u"\" & vbCrLf & \""_s;
const QStringList textsWithWrittenLineBreak{u"LNGERRCHART"_s, u"LNGERREDITFAILS"_s, u"LNGERRTOMANYROWS"_s};

QStringList keysOfVariables() {
  QStringList keys;
#define HOURBOOK_PHRASE(key) keys.append(QStringLiteral(#key));
#include "shell/Phrases.inc"
#undef HOURBOOK_PHRASE
  return keys;
}

}  // namespace

class PhraseTable : public ShellWorld {
 protected:
  PhraseTable() {
    LoadLanguages(4);  // links the table in
    QFile table(u":/CUSTOM/LANGUAGE"_s);
    if (!table.open(QIODevice::ReadOnly)) return;
    const QByteArray bytes = table.readAll();
    const QString text(reinterpret_cast<const QChar*>(bytes.constData()) + 1, bytes.size() / 2 - 1);
    lines = text.split(u"\r\n"_s);
    lines.removeLast();
    for (const QString& line : std::as_const(lines)) {
      const QStringList fields = line.split(u'\t');
      for (int column = 1; column < fields.size() && column <= languages.size(); ++column)
        texts[languages[column - 1]].insert(fields[0], fields[column]);
    }
  }
  QString text(const QString& language, const QString& key) const { return texts.value(language).value(key); }
  QString english(const QString& key) const { return text(u"en"_s, key); }

  template <typename Check>
  void forEachText(const Check& check) const {
    for (const QString& language : languages)
      for (const QString& key : keysOfVariables()) {
        SCOPED_TRACE(qPrintable(language + u' ' + key + u": "_s + text(language, key)));
        check(language, key, text(language, key));
      }
  }

  QStringList lines;
  QHash<QString, QHash<QString, QString>> texts;
};

TEST_F(PhraseTable, HasOneLineForEachPhraseAndNoOther) {
  QStringList keys;
  for (const QString& line : lines) {
    keys.append(line.section(u'\t', 0, 0));
    EXPECT_EQ(line.count(u'\t'), 16) << qPrintable(line);
  }
  EXPECT_EQ(keys, keysOfVariables());
}

TEST_F(PhraseTable, HasATextForEachPhraseInEachLanguage) {
  forEachText([](const QString&, const QString&, const QString& text) { EXPECT_FALSE(text.isEmpty()); });
}

TEST_F(PhraseTable, HoldsEachLanguageInItsOwnColumn) {
  QStringList years, hours;
  for (const QString& language : languages) {
    years.append(text(language, u"LNGYEAR"_s));
    hours.append(text(language, u"LNGHOURS"_s));
  }
  EXPECT_EQ(years.join(u' '), u"Rok År Jaar Year Vuosi Année Jahr Έτος Anno År Ano Leto Año År Yıl Год"_s);
  EXPECT_EQ(hours.mid(0, 8).join(u' '), u"Hodiny Timer Uren Hours Tunnit Heures Stunden Ώρες"_s);
}

TEST_F(PhraseTable, SpeaksTheLanguageOfTheSystem) {
  const QList<std::pair<QString, QString>> years{
      {u"cs_CZ"_s, u"Rok"_s},   {u"da_DK"_s, u"År"_s},    {u"nl_BE"_s, u"Jaar"_s}, {u"en_GB"_s, u"Year"_s},
      {u"fi_FI"_s, u"Vuosi"_s}, {u"fr_CA"_s, u"Année"_s}, {u"de_AT"_s, u"Jahr"_s}, {u"el_GR"_s, u"Έτος"_s},
      {u"it_CH"_s, u"Anno"_s},  {u"nb_NO"_s, u"År"_s},    {u"pt_PT"_s, u"Ano"_s},  {u"sl_SI"_s, u"Leto"_s},
      {u"es_MX"_s, u"Año"_s},   {u"sv_SE"_s, u"År"_s},    {u"tr_TR"_s, u"Yıl"_s},  {u"pt_BR"_s, u"Year"_s},
      {u"ru_RU"_s, u"Year"_s},  {u"pl_PL"_s, u"Year"_s}};
  for (const auto& [locale, year] : years) {
    world.setLocale(locale);
    LoadLanguages(fncGetlocalLanguage());
    EXPECT_EQ(values.LNGYEAR, year) << qPrintable(locale);
  }
}

TEST_F(PhraseTable, LosesNothingWhenItIsRead) {
  for (qint16 column = 1; column <= languages.size(); ++column) {
    LoadLanguages(column);
    for (const cPhrase& phrase : values.gPhrases)
      EXPECT_EQ(phrase.LangPhrase, text(languages[column - 1], phrase.LangConstant));
  }
}

TEST_F(PhraseTable, WritesApostrophesSoThatTheyAreKept) {
  forEachText([](const QString&, const QString&, const QString& text) {
    EXPECT_FALSE(text.contains(u'\'')) << "take U+2019, which stays";
  });
}

TEST_F(PhraseTable, HoldsPlainLinesOnly) {
  forEachText([](const QString&, const QString&, const QString& text) {
    for (const QChar c : text) {
      EXPECT_NE(c.category(), QChar::Other_Control);
      EXPECT_NE(c.category(), QChar::Other_Format);
      EXPECT_NE(c.category(), QChar::Other_PrivateUse);
      EXPECT_NE(c.category(), QChar::Separator_Line);
      EXPECT_NE(c.category(), QChar::Separator_Paragraph);
      EXPECT_NE(c, QChar::ReplacementCharacter);
    }
    EXPECT_EQ(text, text.normalized(QString::NormalizationForm_C));
  });
}

TEST_F(PhraseTable, HasNoBlanksAtTheEndsAndNoDoubleOnesButTheEnglishOne) {
  forEachText([](const QString& language, const QString& key, const QString& text) {
    EXPECT_EQ(text, text.trimmed());
    const bool kept = language == u"en"_s && key == u"LNGINTEGRATEDSECURITY"_s;
    static const QRegularExpression twoBlanks(u"\\h\\h"_s);
    EXPECT_EQ(text.contains(twoBlanks), kept);
  });
}

TEST_F(PhraseTable, GivesTheCalendarFilterThreeEntries) {
  for (const QString& language : languages) {
    const QStringList entries = text(language, u"LNGFILTERS"_s).split(u',');
    ASSERT_EQ(entries.size(), 3) << qPrintable(language);
    EXPECT_EQ(QSet<QString>(entries.begin(), entries.end()).size(), 3) << qPrintable(language);
    for (const QString& entry : entries) {
      EXPECT_FALSE(entry.isEmpty()) << qPrintable(language);
      EXPECT_EQ(entry, entry.trimmed()) << qPrintable(language);
    }
  }
}

TEST_F(PhraseTable, KeepsTheWrittenLineBreakInThreeTextsAndTheAmpersandToThem) {
  forEachText([](const QString&, const QString& key, const QString& text) {
    const QStringList halves = text.split(writtenLineBreak);
    if (textsWithWrittenLineBreak.contains(key)) {
      ASSERT_EQ(halves.size(), 2);
      EXPECT_FALSE(halves[0].isEmpty());
      EXPECT_FALSE(halves[1].isEmpty());
    }
    for (const QString& half : halves) {
      EXPECT_FALSE(half.contains(u'&')) << "the window gives the mnemonics";
      EXPECT_FALSE(half.contains(u'"'));
    }
  });
}

TEST_F(PhraseTable, NamesTheCreationScriptThatTheWindowReplaces) {
  for (const QString& language : languages)
    EXPECT_EQ(text(language, u"LNGSELECTEXISTINGSQLDB"_s).count(u"CreateDBHB.sql"_s), 1)
        << qPrintable(language);
}

TEST_F(PhraseTable, IsTranslatedButForWordsThatAreTheSame) {
  const QHash<QString, QStringList> same{
      {u"cs"_s, {u"LNGSERVER"_s}},
      {u"da"_s, {u"LNGDATABASE"_s, u"LNGPERSON"_s, u"LNGSERVER"_s, u"LNGSUM"_s, u"LNGTEST"_s}},
      {u"nl"_s, {u"LNGDATABASE"_s, u"LNGSERVER"_s, u"LNGWEEK"_s}},
      {u"fr"_s, {u"LNGDATE"_s}},
      {u"de"_s, {u"LNGNAME"_s, u"LNGPERSON"_s, u"LNGSERVER"_s}},
      {u"it"_s, {u"LNGDATABASE"_s, u"LNGPASSWORD"_s, u"LNGSERVER"_s}},
      {u"nb"_s, {u"LNGDATABASE"_s, u"LNGPERSON"_s, u"LNGSERVER"_s, u"LNGSUM"_s, u"LNGTEST"_s}},
      {u"sv"_s, {u"LNGPERSON"_s, u"LNGSERVER"_s}}};
  const QStringList withAnOkOfTheirOwn{u"sl"_s, u"tr"_s};
  forEachText([&](const QString& language, const QString& key, const QString& text) {
    if (language == u"en"_s) return;
    const bool expected =
        key == u"LNGOK"_s ? !withAnOkOfTheirOwn.contains(language) : same.value(language).contains(key);
    EXPECT_EQ(text == english(key), expected);
  });
}

TEST_F(PhraseTable, KeepsNumbersAndTheNamesOfOtherProducts) {
  static const QRegularExpression fixed(u"\\d\\d+|Outlook|Access|SQL|ASP"_s);
  forEachText([&](const QString&, const QString& key, const QString& text) {
    for (auto all = fixed.globalMatch(english(key)); all.hasNext();) {
      const QString word = all.next().captured();
      EXPECT_TRUE(text.contains(word)) << qPrintable(word);
    }
  });
}

TEST_F(PhraseTable, AsksWhereEnglishAsksAndLeadsOnWhereEnglishDoes) {
  forEachText([&](const QString& language, const QString& key, const QString& text) {
    const QChar question = language == u"el"_s ? u';' : u'?';
    EXPECT_EQ(text.endsWith(question), english(key).endsWith(u'?'));
    // "By" may lead on with a colon, where a language would otherwise have to inflect the word that follows
    EXPECT_TRUE(text.endsWith(u':') == english(key).endsWith(u':') || key == u"LNGBY"_s);
    EXPECT_EQ(text.endsWith(u"..."_s) || text.endsWith(u'…'), english(key).endsWith(u" ..."_s));
  });
}

TEST_F(PhraseTable, PutsANoBreakSpaceBeforeFrenchMarks) {
  static const QRegularExpression wrong(u"[^\\x{00A0}\\x{202F}][?!:;](\\W|$)"_s);
  for (const QString& key : keysOfVariables())
    EXPECT_FALSE(text(u"fr"_s, key).contains(wrong)) << qPrintable(text(u"fr"_s, key));
}

TEST_F(PhraseTable, ReadsWellWhereTheWeekdayStandsInLowerCase) {
  for (const QString& language : languages) {
    const QString weekday = text(language, u"LNGWEEKDAY"_s);
    ASSERT_FALSE(weekday.isEmpty()) << qPrintable(language);
    EXPECT_EQ(weekday.toLower().size(), weekday.size()) << qPrintable(language);  // no letter falls apart
    EXPECT_EQ(weekday.toLower().mid(1), weekday.mid(1)) << qPrintable(language);  // no name within
    EXPECT_TRUE(weekday.front().isUpper()) << qPrintable(language);
  }
}

TEST_F(PhraseTable, TellsTheStateOfARowApart) {
  for (const QString& language : languages) {
    const QString open = text(language, u"LNGNOTPOSTED"_s);
    for (const QString& key : {u"LNGOK"_s, u"LNGMISSINGVALUE"_s, u"LNGPOSTED"_s})
      EXPECT_FALSE(text(language, key).startsWith(open)) << qPrintable(language + u' ' + key);
    EXPECT_FALSE(platform::basic::IsDate(platform::basic::Value(open))) << qPrintable(language);
  }
}

TEST_F(PhraseTable, CaptionsOfOneWindowDiffer) {
  const QList<QStringList> windows{
      {u"LNGOK"_s, u"LNGCANCEL"_s, u"LNGGETVALUES"_s, u"LNGADD"_s, u"LNGSAVE"_s, u"LNGGRID"_s, u"LNGPRINT"_s,
       u"LNGSHOW"_s, u"LNGFROM"_s, u"LNGTO"_s, u"LNGYEAR"_s, u"LNGMONTH"_s, u"LNGDAY"_s, u"LNGWEEK"_s,
       u"LNGDAYSBEFORE"_s},
      {u"LNGSUBJECT"_s, u"LNGCUSTOMER"_s, u"LNGTASK"_s, u"LNGWEEKDAY"_s, u"LNGHOURS"_s, u"LNGPOSTED"_s},
      {u"LNGSERVER"_s, u"LNGDATABASE"_s, u"LNGUSERNAME"_s, u"LNGPASSWORD"_s, u"LNGINTEGRATEDSECURITY"_s,
       u"LNGTEST"_s, u"LNGOK"_s, u"LNGCANCEL"_s},
      {u"LNGMORE"_s, u"LNGLESS"_s, u"LNGADD"_s, u"LNGADVANCED"_s},
      {u"LNGYEARDEF"_s, u"LNGWEEKDEF"_s},
      {u"LNGCONNECTIONFAILED"_s, u"LNGCONNECTIONSUCCEEDED"_s},
      {u"LNGREMOVEREPORTS"_s, u"LNGADDTOANOTHER"_s}};
  for (const QString& language : languages)
    for (const QStringList& keys : windows) {
      QSet<QString> captions;
      for (const QString& key : keys) captions.insert(text(language, key));
      EXPECT_EQ(captions.size(), keys.size()) << qPrintable(language + u' ' + keys.join(u' '));
    }
}

TEST_F(PhraseTable, CaptionsOfTheReportFormAreShort) {
  for (const QString& language : languages)
    for (const QString& key :
         {u"LNGOK"_s,         u"LNGCANCEL"_s,  u"LNGGETVALUES"_s, u"LNGADD"_s,     u"LNGSAVE"_s,
          u"LNGGRID"_s,       u"LNGPRINT"_s,   u"LNGSHOW"_s,      u"LNGFROM"_s,    u"LNGTO"_s,
          u"LNGYEAR"_s,       u"LNGMONTH"_s,   u"LNGDAY"_s,       u"LNGWEEK"_s,    u"LNGHOURS"_s,
          u"LNGDAYSBEFORE"_s, u"LNGWEEKDAY"_s, u"LNGPOSTED"_s,    u"LNGSUBJECT"_s, u"LNGBY"_s,
          u"LNGSUM"_s})
      EXPECT_LE(text(language, key).size(), 20) << qPrintable(language + u' ' + text(language, key));
}

TEST_F(PhraseTable, MixesNoAlphabetsWithinAWord) {
  static const QRegularExpression letters(u"\\p{L}+"_s);
  forEachText([&](const QString&, const QString&, const QString& text) {
    for (auto words = letters.globalMatch(text); words.hasNext();) {
      const QString word = words.next().captured();
      for (const QChar c : word) EXPECT_EQ(c.script(), word.front().script()) << qPrintable(word);
    }
  });
}

TEST_F(PhraseTable, WritesGreekInGreekAndRussianInCyrillic) {
  static const QRegularExpression greek(u"\\p{Greek}"_s), cyrillic(u"\\p{Cyrillic}"_s);
  forEachText([&](const QString& language, const QString& key, const QString& text) {
    const bool everywhereTheSame = key == u"LNGOK"_s;
    EXPECT_EQ(text.contains(greek), language == u"el"_s && !everywhereTheSame);
    EXPECT_EQ(text.contains(cyrillic), language == u"ru"_s && !everywhereTheSame);
  });
}

}  // namespace hourbook::tests
