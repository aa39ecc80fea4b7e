#include "settings/cMarking.h"
#include "settings/cPersonalSettings.h"
#include "settings/modNameCheck.h"
#include "tests/unit/settings/settingsworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

class NameCheck : public SettingsWorld {
 protected:
  /// What a marking with this value in the second of two lists reads back as.
  QString throughCategories(const QString& value) {
    useLists({{u"first"_s}, {value}});
    cMarking marking;
    marking.colMarkings.Item(2)->MetaName = value;
    cMarking again;
    again.BillingToMarkings(marking.MarkingCategories());
    return again.colMarkings.Item(2)->MetaName;
  }
  /// The lists of the personal settings after they were stored as text and read again.
  QStringList throughLines(const QString& list, const QString& value) {
    cPersonalSettings settings;
    settings.MetaDataLists.Add(listOf(list, {value}));
    cPersonalSettings again;
    again.subPopulateMetadataList(settings.fncMetadataList());
    QStringList found;
    for (const auto& each : again.MetaDataLists) found << each->MetaName() << each->MetaDic->Keys();
    return found;
  }
};

TEST_F(NameCheck, OrdinaryNamesAreFine) {
  for (const QString& name :
       {u"Acme"_s, u"R & D"_s, u"O'Neill \"Bob\""_s, u"Größe 😀 ÅÄÖ"_s, u"1"_s, u"a\u00A0b"_s}) {
    EXPECT_EQ(fncFindNameProblem(name), NameProblem::None) << qPrintable(name);
    EXPECT_EQ(throughCategories(name), name);
    EXPECT_EQ(throughLines(name, name), (QStringList{name, name}));
    EXPECT_TRUE(fncNameProblem(name).isEmpty());
  }
}

TEST_F(NameCheck, AnEmptyNameAndOneOfBlanksAreRefused) {
  for (const QString& name : {QString(), u""_s, u"  "_s, u"\u00A0"_s, u"\t"_s})
    EXPECT_EQ(fncFindNameProblem(name), NameProblem::Empty);
}

TEST_F(NameCheck, BlanksAtEitherEndAreRefusedSinceReadersTrimThem) {
  EXPECT_EQ(fncFindNameProblem(u" Acme"_s), NameProblem::Blank);
  EXPECT_EQ(fncFindNameProblem(u"Acme "_s), NameProblem::Blank);
  EXPECT_EQ(fncFindNameProblem(u"Acme\u3000"_s), NameProblem::Blank);
  EXPECT_EQ(throughCategories(u" Acme"_s), QString());
}

TEST_F(NameCheck, LineBreaksAndOtherSignsWithoutAPictureAreRefused) {
  for (const QString& name : {u"a\nb"_s, u"a\r\nb"_s, u"a\tb"_s, u"a\u0085b"_s, u"a\u2028b"_s, u"a\u2029b"_s,
                              u"a"_s + QChar(0) + u'b', u"a"_s + QChar(0xD83D), QChar(0xDE00) + u"a"_s}) {
    EXPECT_EQ(fncFindNameProblem(name), NameProblem::Unprinted);
  }
  EXPECT_NE(throughLines(u"a\r\nb"_s, u"v"_s), (QStringList{u"a\r\nb"_s, u"v"_s}));
}

TEST_F(NameCheck, TheMachinesListSeparatorIsRefused) {
  EXPECT_EQ(fncFindNameProblem(u"Smith, Jones"_s), NameProblem::Separator);
  EXPECT_NE(throughCategories(u"Smith, Jones"_s), u"Smith, Jones"_s);
  values.gListSeparator = u";"_s;
  EXPECT_EQ(fncFindNameProblem(u"Smith, Jones"_s), NameProblem::None);
  EXPECT_EQ(throughCategories(u"Smith, Jones"_s), u"Smith, Jones"_s);
}

TEST_F(NameCheck, ASeparatorThatIsNotKnownYetRefusesNothing) {
  values.gListSeparator.clear();
  EXPECT_EQ(fncFindNameProblem(u"Smith, Jones"_s), NameProblem::None);
}

TEST_F(NameCheck, ASemicolonIsRefusedWhateverTheSeparator) {
  EXPECT_EQ(fncFindNameProblem(u"a;b"_s), NameProblem::Semicolon);
  EXPECT_EQ(throughLines(u"List"_s, u"a;b"_s), (QStringList{u"List"_s, u"a"_s, u"b"_s}));
}

TEST_F(NameCheck, AColonIsRefused) {
  EXPECT_EQ(fncFindNameProblem(u"a:b"_s), NameProblem::Colon);
  EXPECT_EQ(throughLines(u"a:b"_s, u"v"_s), (QStringList{u"a"_s, u"b:v"_s}));
}

TEST_F(NameCheck, ANameFillsItsColumnAndIsNoLonger) {
  EXPECT_EQ(fncFindNameProblem(QString(255, u'x')), NameProblem::None);
  EXPECT_EQ(fncFindNameProblem(QString(256, u'x')), NameProblem::TooLong);
}

TEST_F(NameCheck, ANameThatAnotherBearsInAnyCaseIsRefused) {
  const QStringList others{u"Acme"_s, u"ÄPFEL"_s};
  EXPECT_EQ(fncFindNameProblem(u"acme"_s, others), NameProblem::Double);
  EXPECT_EQ(fncFindNameProblem(u"äpfel"_s, others), NameProblem::Double);
  EXPECT_EQ(fncFindNameProblem(u"Acme 2"_s, others), NameProblem::None);
}

TEST_F(NameCheck, EachProblemHasATextOfItsOwn) {
  values.LNGNODOUBLES = u"This value is in the list already."_s;
  EXPECT_EQ(fncNameProblemText(NameProblem::None), QString());
  EXPECT_EQ(fncNameProblem(QString()), u"A name must not be empty."_s);
  EXPECT_EQ(fncNameProblem(u"a\n"_s),
            u"A name must not hold line breaks, tabs or other signs without a picture."_s);
  EXPECT_EQ(fncNameProblem(u"a "_s), u"A name must not begin or end with a blank."_s);
  EXPECT_EQ(fncNameProblem(u"a,b"_s),
            u"A name must not hold \",\", which separates the values of an appointment on this system."_s);
  EXPECT_EQ(fncNameProblem(u"a;b"_s),
            u"A name must not hold \";\", which separates values where they are stored."_s);
  EXPECT_EQ(fncNameProblem(u"a:b"_s),
            u"A name must not hold \":\", which ends the name of a list where it is stored."_s);
  EXPECT_EQ(fncNameProblem(QString(256, u'x')), u"A name must not be longer than 255 characters."_s);
  EXPECT_EQ(fncNameProblem(u"A"_s, {u"a"_s}), u"This value is in the list already."_s);
}

}  // namespace hourbook::tests
