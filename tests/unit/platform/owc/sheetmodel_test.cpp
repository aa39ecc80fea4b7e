#include "platform/owc/view/sheetmodel.h"

#include "platform/locale/locale.h"

#include <QAbstractItemModelTester>
#include <QBrush>
#include <QCoreApplication>
#include <QSignalSpy>

using namespace platform::owc;
using platform::basic::Date;
using platform::basic::Value;
using namespace Qt::StringLiterals;

namespace {

class Models : public testing::Test {
 protected:
  Models() {
    set(u"A1"_s, u"Subject"_s);
    set(u"F1"_s, u"Hours"_s);
    set(u"A2"_s, u"Lunch"_s);
    set(u"F2"_s, u"7.25"_s);
    sheet.setViewableRange(u"A1:G3"_s);
    QCoreApplication::processEvents();
  }
  void set(const QString& address, const QString& text) { sheet.Range(address).setValue(Value(text)); }
  QVariant at(const QString& address, int role = Qt::DisplayRole) {
    const Range cell = sheet.Range(address);
    return model.data(model.indexOf(cell.Row(), cell.Column()), role);
  }
  Qt::Alignment alignment(const QString& address) {
    return Qt::Alignment(at(address, Qt::TextAlignmentRole).toInt()) & Qt::AlignHorizontal_Mask;
  }
  QVariant heading(int section, int role = Qt::DisplayRole) {
    return model.headerData(section, Qt::Horizontal, role);
  }

  platform::locale::ScopedLocale american{u"en_US"_s};
  Spreadsheet sheet;
  SheetModel model{sheet};
};

}  // namespace

TEST_F(Models, TheFirstRowIsTheHeadingAndTheOthersAreTheBody) {
  EXPECT_EQ(model.rowCount(), 2);
  EXPECT_EQ(model.columnCount(), 7);
  EXPECT_EQ(heading(0), u"Subject"_s);
  EXPECT_EQ(heading(5), u"Hours"_s);
  EXPECT_TRUE(heading(0, Qt::FontRole).value<QFont>().bold());
  EXPECT_EQ(at(u"A2"_s), u"Lunch"_s);
  EXPECT_EQ(model.headerData(0, Qt::Vertical, Qt::DisplayRole), 2) << "the sheet's own row numbers";
}

TEST_F(Models, ARangeBelowTheFirstRowHasLettersForHeadings) {
  sheet.setViewableRange(u"B5:C9"_s);
  EXPECT_EQ(model.rowCount(), 5);
  EXPECT_EQ(heading(0), u"B"_s);
  EXPECT_EQ(model.headerData(0, Qt::Vertical, Qt::DisplayRole), 5);
}

TEST_F(Models, ATextIsShownInOneLineAndKeptWhole) {
  set(u"A2"_s, u"one\r\ntwo\nthree\tfour"_s);
  EXPECT_EQ(at(u"A2"_s), u"one two three four"_s);
  EXPECT_EQ(at(u"A2"_s, SheetModel::wholeTextRole), u"one\r\ntwo\nthree\tfour"_s);
}

TEST_F(Models, OfALongTextOnlyTheBeginningIsShown) {
  const QString subject(10000, u'x');
  set(u"A2"_s, subject);
  const QString shown = at(u"A2"_s).toString();
  EXPECT_EQ(shown.size(), 1001);
  EXPECT_EQ(shown.back(), QChar(u'\u2026'));
  EXPECT_EQ(at(u"A2"_s, SheetModel::wholeTextRole), subject);
}

TEST_F(Models, ALongTextIsNotCutInTheMiddleOfACharacter) {
  const QString smile = QString::fromUcs4(U"\U0001F600", 1);
  EXPECT_EQ(beginningInOneLine(QString(999, u'x') + smile + u"yy"_s), QString(999, u'x') + u"\u2026"_s);
  EXPECT_EQ(beginningInOneLine(QString(998, u'x') + smile), QString(998, u'x') + smile);
}

TEST_F(Models, NumbersDatesAndHourTextsStandRightAndOtherTextsLeft) {
  EXPECT_EQ(alignment(u"A2"_s), Qt::AlignLeft);
  EXPECT_EQ(alignment(u"F2"_s), Qt::AlignRight);
  for (const QString& number : {u"8"_s, u"-7.5"_s, u"0,25"_s}) {
    set(u"F2"_s, number);
    EXPECT_EQ(alignment(u"F2"_s), Qt::AlignRight) << qPrintable(number);
  }
  for (const QString& text :
       {u"8 h"_s, u"1.2.3"_s, u"-"_s, u"."_s, u"8."_s, u".5"_s, u""_s, u"1234567890123456"_s}) {
    set(u"F2"_s, text);
    EXPECT_EQ(alignment(u"F2"_s), Qt::AlignLeft) << qPrintable(text);
  }
  sheet.Range(u"F2"_s).setValue(Value(7.25));
  EXPECT_EQ(alignment(u"F2"_s), Qt::AlignRight);
  sheet.Range(u"F2"_s).setValue(Value(Date::of(2024, 5, 15)));
  EXPECT_EQ(alignment(u"F2"_s), Qt::AlignRight);
  sheet.Range(u"F2"_s).setValue(Value(true));
  EXPECT_EQ(alignment(u"F2"_s), Qt::AlignHCenter);
  EXPECT_EQ(alignment(u"B3"_s), Qt::AlignLeft) << "an empty cell";
}

TEST_F(Models, AnAlignmentThatWasSetCounts) {
  Range cell = sheet.Range(u"F2"_s);
  cell.setHorizontalAlignment(xlLeft);
  EXPECT_EQ(alignment(u"F2"_s), Qt::AlignLeft);
  cell.setHorizontalAlignment(xlCenter);
  EXPECT_EQ(alignment(u"F2"_s), Qt::AlignHCenter);
  cell.setHorizontalAlignment(xlRight);
  EXPECT_EQ(alignment(u"F2"_s), Qt::AlignRight);
}

TEST_F(Models, AHeadingStandsOverItsColumnsContents) {
  const auto headed = [&](int section) {
    const auto told = Qt::Alignment(heading(section, Qt::TextAlignmentRole).toInt());
    return told & (Qt::AlignLeft | Qt::AlignRight | Qt::AlignHCenter);
  };
  EXPECT_EQ(headed(0), Qt::AlignLeft);
  EXPECT_EQ(headed(5), Qt::AlignRight);
  sheet.Range(u"F1"_s).setHorizontalAlignment(xlCenter);
  EXPECT_EQ(headed(5), Qt::AlignHCenter);
}

TEST_F(Models, FontsAreMadeFromTheDesktopsOwnAndOnlyWhereTheyDiffer) {
  QFont desktop(u"Desktop Sans"_s);
  desktop.setPointSizeF(10);
  model.setDesktopFont(desktop);
  EXPECT_FALSE(at(u"A2"_s, Qt::FontRole).isValid());
  sheet.Range(u"A2"_s).setFontBold(true);
  QFont bold = desktop;
  bold.setBold(true);
  EXPECT_EQ(at(u"A2"_s, Qt::FontRole).value<QFont>(), bold);
  sheet.Range(u"A2"_s).setFontBold(false);
  sheet.Range(u"A2"_s).setFontSize(12);
  EXPECT_DOUBLE_EQ(at(u"A2"_s, Qt::FontRole).value<QFont>().pointSizeF(), 15);
}

TEST_F(Models, AnInteriorIsToldOnlyWhereItIsSet) {
  EXPECT_FALSE(at(u"A2"_s, Qt::BackgroundRole).isValid());
  sheet.Range(u"A2"_s).setInteriorColor(0xFFCC99);
  EXPECT_EQ(at(u"A2"_s, Qt::BackgroundRole).value<QBrush>().color(), QColor(0x99, 0xCC, 0xFF));
}

TEST_F(Models, ChangesAreGatheredIntoOne) {
  QSignalSpy changed(&model, &SheetModel::dataChanged);
  QSignalSpy headed(&model, &SheetModel::headerDataChanged);
  set(u"B2"_s, u"x"_s);
  set(u"D3"_s, u"y"_s);
  EXPECT_EQ(changed.count(), 0);
  EXPECT_EQ(at(u"D3"_s), u"y"_s) << "contents are never old";
  QCoreApplication::processEvents();
  ASSERT_EQ(changed.count(), 1);
  EXPECT_EQ(changed[0][0].toModelIndex(), model.indexOf(2, 2));
  EXPECT_EQ(changed[0][1].toModelIndex(), model.indexOf(3, 4));
  EXPECT_EQ(headed.count(), 1) << "the first row says how headings are aligned";
}

TEST_F(Models, AChangeOutsideOfTheRangeIsNotPassedOn) {
  QSignalSpy changed(&model, &SheetModel::dataChanged);
  set(u"H2"_s, u"hidden"_s);
  set(u"A4"_s, u"below"_s);
  QCoreApplication::processEvents();
  EXPECT_EQ(changed.count(), 1) << "what was gathered spans the range";
  set(u"H2"_s, u"hidden"_s);
  QCoreApplication::processEvents();
  EXPECT_EQ(changed.count(), 1);
}

TEST_F(Models, AHeadingThatChangesIsToldAsOne) {
  QSignalSpy headed(&model, &SheetModel::headerDataChanged), changed(&model, &SheetModel::dataChanged);
  set(u"C1"_s, u"Project"_s);
  QCoreApplication::processEvents();
  ASSERT_EQ(headed.count(), 1);
  EXPECT_EQ(headed[0][1], 2);
  EXPECT_EQ(changed.count(), 0);
}

TEST_F(Models, AnotherNumberOfRowsComesAndGoesAtTheEnd) {
  const QAbstractItemModelTester tester(&model);
  QSignalSpy inserted(&model, &SheetModel::rowsInserted), removed(&model, &SheetModel::rowsRemoved);
  QSignalSpy reset(&model, &SheetModel::modelReset);
  sheet.setViewableRange(u"A1:G199"_s);
  EXPECT_EQ(model.rowCount(), 198);
  sheet.setViewableRange(u"A1:G2"_s);
  EXPECT_EQ(model.rowCount(), 1);
  EXPECT_EQ(inserted.count(), 1);
  EXPECT_EQ(removed.count(), 1);
  EXPECT_EQ(reset.count(), 0);
  sheet.setViewableRange(u"A1:J2"_s);
  EXPECT_EQ(reset.count(), 1);
  EXPECT_EQ(model.columnCount(), 10);
}

TEST_F(Models, ARangeOfTheHeadingAloneHasNoBody) {
  sheet.setViewableRange(u"A1:G1"_s);
  EXPECT_EQ(model.rowCount(), 0);
  EXPECT_EQ(heading(0), u"Subject"_s);
  set(u"A2"_s, u"below"_s);
  QCoreApplication::processEvents();
}

TEST(SheetModel, IsEmptyOnceTheSheetIsGone) {
  auto sheet = std::make_unique<Spreadsheet>();
  sheet->setViewableRange(u"A1:G9"_s);
  SheetModel model(*sheet);
  EXPECT_EQ(model.rowCount(), 8);
  sheet->Range(u"A2"_s).setValue(Value(1.0));
  sheet.reset();
  EXPECT_EQ(model.rowCount(), 0);
  EXPECT_EQ(model.columnCount(), 0);
  QCoreApplication::processEvents();
}
