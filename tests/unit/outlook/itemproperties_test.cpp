#include "outlook/modItemProperties.h"
#include "platform/basic/convert.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "tests/unit/outlook/outlookworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using namespace platform::basic;
using platform::dialogs::vbOK;
using platform::outlook::AppointmentItem;
using platform::outlook::olDateTime;
using platform::outlook::olNumber;
using platform::outlook::olText;
using platform::outlook::olYesNo;

class ItemProperties : public OutlookWorld {
 protected:
  ItemProperties() {
    connect();
    item = addAppointment(u"Planning"_s);
  }
  void set(const QString& name, int type, const Value& value) {
    item->userProperties().Add(name, type)->setValue(value);
  }
  QString text(const QString& name) {
    const auto property = item->userProperties().Find(name);
    return property ? CStr(property->Value()) : u"<none>"_s;
  }
  /// Saves the item and reads it anew from the store.
  void saveAndReread() {
    item->Save();
    item = platform::outlook::Items(store, folderInfo.id).Item(item->Subject());
  }
  std::shared_ptr<AppointmentItem> item;
};

TEST_F(ItemProperties, AnAbsentNumberIsTheDefaultWhenThatIsANumber) {
  EXPECT_EQ(fncGetOutlookValue(*item, u"none"_s, vbInteger, qint16(5)), Value(qint16(5)));
  EXPECT_EQ(fncGetOutlookValue(*item, u"none"_s, vbInteger, qint16(0)), Value(qint16(0)));
  EXPECT_EQ(fncGetOutlookValue(*item, u"none"_s, vbInteger, u"x"_s), Value(qint16(0)));
  EXPECT_EQ(fncGetOutlookValue(*item, u"none"_s, vbInteger), Value(qint16(0)));
  EXPECT_EQ(fncLastLogText(), u"Reading the value of the Outlook property none"_s);
}

TEST_F(ItemProperties, AnAbsentDateIsTheZeroDateWhateverTheDefault) {
  EXPECT_EQ(fncGetOutlookValue(*item, u"none"_s, vbDate, Date::of(2024, 1, 1)), Value(Date()));
}

TEST_F(ItemProperties, AnAbsentTextIsTheDefaultAsText) {
  EXPECT_EQ(fncGetOutlookValue(*item, u"none"_s, vbString, u"abc"_s), Value(u"abc"_s));
  EXPECT_EQ(fncGetOutlookValue(*item, u"none"_s, vbString, qint32(7)), Value(u"7"_s));
  EXPECT_EQ(CStr(fncGetOutlookValue(*item, u"none"_s, vbString)), QString());
}

TEST_F(ItemProperties, AnAbsentBooleanIsTheDefaultWhenThatIsANumberAndElseNothing) {
  EXPECT_EQ(fncGetOutlookValue(*item, u"none"_s, vbBoolean, qint16(1)), Value(true));
  EXPECT_EQ(fncGetOutlookValue(*item, u"none"_s, vbBoolean, u"0"_s), Value(false));
  EXPECT_EQ(fncGetOutlookValue(*item, u"none"_s, vbBoolean, u"x"_s), Value());
  EXPECT_EQ(fncGetOutlookValue(*item, u"none"_s, vbBoolean), Value());
  EXPECT_FALSE(CBool(fncGetOutlookValue(*item, u"none"_s, vbBoolean)));
}

TEST_F(ItemProperties, APresentNumberIsItsValueAndATextThatIsNoneIsZero) {
  set(u"n"_s, olNumber, 8.0);
  EXPECT_EQ(CInt(fncGetOutlookValue(*item, u"n"_s, vbInteger, qint16(5))), 8);
  set(u"t"_s, olText, u"abc"_s);
  EXPECT_EQ(fncGetOutlookValue(*item, u"t"_s, vbInteger, qint16(5)), Value(qint16(0)));
}

TEST_F(ItemProperties, APresentDateIsItsValueAndATextThatIsNoneIsTheZeroDate) {
  set(u"d"_s, olDateTime, Date::of(2024, 5, 15));
  EXPECT_EQ(fncGetOutlookValue(*item, u"d"_s, vbDate), Value(Date::of(2024, 5, 15)));
  set(u"t"_s, olText, u"5/15/2024"_s);
  EXPECT_EQ(fncGetOutlookValue(*item, u"t"_s, vbDate), Value(Date::of(2024, 5, 15)));
  set(u"x"_s, olText, u"abc"_s);
  EXPECT_EQ(fncGetOutlookValue(*item, u"x"_s, vbDate), Value(Date()));
}

TEST_F(ItemProperties, APresentTextIsItsValueAndAnEmptyOneTheDefault) {
  set(u"t"_s, olText, u"abc"_s);
  EXPECT_EQ(fncGetOutlookValue(*item, u"t"_s, vbString, u"d"_s), Value(u"abc"_s));
  set(u"e"_s, olText, QString());
  EXPECT_EQ(fncGetOutlookValue(*item, u"e"_s, vbString, u"d"_s), Value(u"d"_s));
  EXPECT_EQ(CStr(fncGetOutlookValue(*item, u"e"_s, vbString)), QString());
  set(u"n"_s, olNumber, 3.0);
  EXPECT_EQ(fncGetOutlookValue(*item, u"n"_s, vbString), Value(u"3"_s));
}

TEST_F(ItemProperties, APresentBooleanIsItsValueAndWhatCannotBeOneIsNothing) {
  set(u"b"_s, olYesNo, true);
  EXPECT_EQ(fncGetOutlookValue(*item, u"b"_s, vbBoolean), Value(true));
  set(u"f"_s, olYesNo, false);
  EXPECT_EQ(fncGetOutlookValue(*item, u"f"_s, vbBoolean, qint16(1)), Value(false));
  set(u"t"_s, olText, u"abc"_s);
  EXPECT_EQ(fncGetOutlookValue(*item, u"t"_s, vbBoolean), Value());
}

TEST_F(ItemProperties, AnUnknownTypeGivesNothing) {
  set(u"t"_s, olText, u"abc"_s);
  EXPECT_EQ(fncGetOutlookValue(*item, u"t"_s, 3), Value());
  EXPECT_EQ(fncGetOutlookValue(*item, u"none"_s, 3, u"d"_s), Value());
}

TEST_F(ItemProperties, ALongTextIsSplitIntoPiecesOfAThousandCharacters) {
  const QString longText = QString(1000, u'a') + QString(1000, u'b') + QString(300, u'c');
  EXPECT_EQ(&subFixLongProperty(*item, longText, u"Settings"_s), item.get());
  EXPECT_EQ(text(u"Settings0"_s), QString(1000, u'a'));
  EXPECT_EQ(text(u"Settings1"_s), QString(1000, u'b'));
  EXPECT_EQ(text(u"Settings2"_s), QString(300, u'c'));
  EXPECT_EQ(text(u"Settings3"_s), u"<none>"_s);
  EXPECT_EQ(text(u"SettingsCount"_s), u"2"_s);
  EXPECT_EQ(fncLastLogText(), u"Entering subFixLongProperty to save Settings"_s);
}

TEST_F(ItemProperties, TheIndexOfTheLastPieceIsRoundedHalvesToEven) {
  const QList<std::pair<int, QString>> lasts{{0, u"0"_s},    {499, u"0"_s},  {500, u"0"_s},
                                             {501, u"1"_s},  {1000, u"1"_s}, {1500, u"2"_s},
                                             {1501, u"2"_s}, {2500, u"2"_s}, {2501, u"3"_s}};
  for (const auto& [length, last] : lasts) {
    subFixLongProperty(*item, QString(length, u'x'), u"S"_s);
    EXPECT_EQ(text(u"SCount"_s), last) << length;
  }
}

TEST_F(ItemProperties, ATextOfExactlyAThousandHasAnEmptySecondPiece) {
  subFixLongProperty(*item, QString(1000, u'x'), u"S"_s);
  EXPECT_EQ(text(u"S0"_s), QString(1000, u'x'));
  EXPECT_EQ(text(u"S1"_s), QString());
  EXPECT_EQ(text(u"SCount"_s), u"1"_s);
}

TEST_F(ItemProperties, TheItemIsNotSavedByIt) {
  subFixLongProperty(*item, u"x"_s, u"S"_s);
  EXPECT_TRUE(stored(u"Planning"_s).userProperties.isEmpty());
}

TEST_F(ItemProperties, TheTypesAreTextAndNumber) {
  subFixLongProperty(*item, u"x"_s, u"S"_s);
  saveAndReread();
  EXPECT_EQ(stored(u"Planning"_s).userProperties.value(u"S0"_s).type, olText);
  EXPECT_EQ(stored(u"Planning"_s).userProperties.value(u"SCount"_s).type, olNumber);
}

TEST_F(ItemProperties, ALongTextReadsBackAsItWas) {
  for (const int length : {0, 1, 999, 1000, 1001, 1500, 2499, 3001}) {
    QString longText;
    for (int i = 0; i < length; ++i) longText += QChar(u'a' + i % 26);
    subFixLongProperty(*item, longText, u"S"_s);
    saveAndReread();
    EXPECT_EQ(fncGetLongProperty(*item, u"S"_s), longText) << length;
  }
}

TEST_F(ItemProperties, APairOfHalvesIsNotSplit) {
  const QString longText = QString(999, u'a') + u"😀"_s + QString(998, u'b') + u"😀😀"_s;
  subFixLongProperty(*item, longText, u"S"_s);
  EXPECT_EQ(text(u"S0"_s), QString(999, u'a'));
  EXPECT_EQ(text(u"S1"_s), u"😀"_s + QString(998, u'b'));
  EXPECT_EQ(text(u"S2"_s), u"😀😀"_s);
  EXPECT_EQ(fncGetLongProperty(*item, u"S"_s), longText);
}

TEST_F(ItemProperties, ALineBreakIsNotSplit) {
  const QString longText = QString(999, u'a') + u"\r\n"_s + QString(998, u'b') + u"\n\rc"_s;
  subFixLongProperty(*item, longText, u"S"_s);
  EXPECT_EQ(text(u"S0"_s), QString(999, u'a'));
  EXPECT_EQ(text(u"S1"_s), u"\r\n"_s + QString(998, u'b') + u'\n');
  EXPECT_EQ(text(u"S2"_s), u"\rc"_s);
  EXPECT_EQ(fncGetLongProperty(*item, u"S"_s), longText);
}

TEST_F(ItemProperties, HigherPiecesOfAnOlderTextStayAndAreNotRead) {
  subFixLongProperty(*item, QString(2600, u'x'), u"S"_s);
  subFixLongProperty(*item, u"short"_s, u"S"_s);
  EXPECT_EQ(text(u"S2"_s), QString(600, u'x'));
  EXPECT_EQ(fncGetLongProperty(*item, u"S"_s), u"short"_s);
}

TEST_F(ItemProperties, AnItemWithoutALongTextGivesAnEmptyOne) {
  EXPECT_EQ(fncGetLongProperty(*item, u"S"_s), QString());
}

TEST_F(ItemProperties, ACountThatIsNoneReadsTheFirstPieceOnly) {
  set(u"SCount"_s, olText, u"abc"_s);
  set(u"S0"_s, olText, u"first"_s);
  set(u"S1"_s, olText, u"second"_s);
  EXPECT_EQ(fncGetLongProperty(*item, u"S"_s), u"first"_s);
}

TEST_F(ItemProperties, ACountOutOfRangeIsReported) {
  set(u"SCount"_s, olNumber, 1e12);
  EXPECT_REPORTED(world, "fncGetLongProperty", fncGetLongProperty(*item, u"S"_s));
}

TEST_F(ItemProperties, ACountAbove32767IsReported) {
  set(u"SCount"_s, olNumber, 32768.0);
  EXPECT_REPORTED(world, "fncGetLongProperty", fncGetLongProperty(*item, u"S"_s));
  EXPECT_TRUE(world.dialogs.shown.first().text.contains(u"#6\r\n"_s));
}

TEST_F(ItemProperties, ReadingALongTextIsLogged) {
  keepLog();
  fncGetLongProperty(*item, u"S"_s);
  EXPECT_TRUE(wasLogged(u"Entering fncGetLongProperty"_s));
}

TEST_F(ItemProperties, APropertyThatCannotBeAddedIsToldAndTheNextOneIsTried) {
  values.LNGCHECKPERM = u"Check that you have the appropriate permissions!"_s;
  // A property that is there as a date takes no text.
  set(u"S0"_s, olDateTime, Date::of(2024, 1, 1));
  world.dialogs.expect(u"Check that you have the appropriate permissions!"_s, vbOK);
  subFixLongProperty(*item, u"no date"_s, u"S"_s);
  EXPECT_EQ(world.dialogs.shown.first().kind, platform::dialogs::Shown::Kind::Alert);
  EXPECT_EQ(text(u"SCount"_s), u"0"_s);
}

class BodyThroughVcal : public OutlookWorld {
 protected:
  BodyThroughVcal() { connect(); }
  QString readBack(const QString& body) {
    const auto item = addAppointment(u"Item %1"_s.arg(++count_), body);
    return fncReadBodyThroughVcal(*item);
  }
  static QString vcal(const QString& description) {
    return u"BEGIN:VEVENT\r\nDESCRIPTION;ENCODING=QUOTED-PRINTABLE:"_s + description +
           u"\r\nEND:VEVENT\r\n"_s;
  }

 private:
  int count_ = 0;
};

TEST_F(BodyThroughVcal, TheBodyOfAnAppointmentIsReadWithItsLineBreaks) {
  EXPECT_EQ(readBack(u"One line"_s), u"One line"_s);
  EXPECT_EQ(readBack(u"One line\r\nand another"_s), u"One line\r\nand another"_s);
  const QString longLine =
      u"A line that is a good deal longer than the seventy-six characters "_s.repeated(3);
  EXPECT_EQ(readBack(longLine + u"\r\n\r\nend"_s), longLine + u"\r\n\r\nend"_s);
}

TEST_F(BodyThroughVcal, AnAppointmentWithoutABodyGivesAnEmptyText) {
  EXPECT_EQ(readBack({}), QString());
}

TEST_F(BodyThroughVcal, NoFileIsLeftBehind) {
  readBack(u"text"_s);
  EXPECT_FALSE(QFile::exists(QDir::temp().filePath(u"HBTemp.txt"_s)));
}

TEST_F(BodyThroughVcal, AFileThatCannotBeWrittenGivesAnEmptyText) {
  QDir::temp().mkpath(u"HBTemp.txt/inner"_s);
  EXPECT_EQ(readBack(u"text"_s), QString());
  QDir(QDir::temp().filePath(u"HBTemp.txt"_s)).removeRecursively();
}

TEST_F(BodyThroughVcal, AReadOnlyFileOfThatNameIsDeletedByForce) {
  const QString path = QDir::temp().filePath(u"HBTemp.txt"_s);
  writeFile(path, vcal(u"Of another=0D=0A"_s));
  ASSERT_TRUE(QFile::setPermissions(path, QFile::ReadOwner));
  EXPECT_NE(readBack(u"text"_s), u"Of another"_s);
  EXPECT_FALSE(QFile::exists(path));
  EXPECT_EQ(readBack(u"text"_s), u"text"_s);
}

TEST_F(BodyThroughVcal, AFileOfThatNameIsNotTakenForTheBodyWhenTheNewOneCannotBeSaved) {
  class Files : public platform::scripting::FileSystemObject {
   public:
    QString old;
    std::shared_ptr<platform::scripting::TextStream> OpenTextFile(const QString&, int, bool) override {
      return FileSystemObject::OpenTextFile(old);
    }
  };
  const auto files = std::make_shared<Files>();
  files->old = documents.filePath(u"HBTemp.txt"_s);
  writeFile(files->old, vcal(u"Of another=0D=0A"_s));
  values.gFileSystem = files;
  const QString path = QDir::temp().filePath(u"HBTemp.txt"_s);
  QDir().mkpath(path);  // nothing can be saved under the name of a folder
  EXPECT_EQ(readBack(u"text"_s), QString());
  QDir().rmdir(path);
}

TEST_F(BodyThroughVcal, TheFileIsItsOwnersAlone) {
  class Files : public platform::scripting::FileSystemObject {
   public:
    QFile::Permissions met;
    std::shared_ptr<platform::scripting::TextStream> OpenTextFile(const QString& path, int mode,
                                                                  bool create) override {
      met = QFile::permissions(platform::scripting::systemPath(path));
      return FileSystemObject::OpenTextFile(path, mode, create);
    }
  };
  const auto files = std::make_shared<Files>();
  values.gFileSystem = files;
  EXPECT_EQ(readBack(u"text"_s), u"text"_s);
  EXPECT_TRUE(files->met & QFile::ReadOwner);
  EXPECT_FALSE(files->met & (QFile::ReadGroup | QFile::ReadOther));
}

TEST_F(BodyThroughVcal, SoftLineBreaksAreTakenOutAndMarkedOnesMadeReal) {
  EXPECT_EQ(fncDescriptionOfVcal(vcal(u"One=0D=0A=\r\nTwo is long=\r\ner=0D=0A"_s)),
            u"One\r\nTwo is longer"_s);
}

TEST_F(BodyThroughVcal, OtherEscapesStandAsTheyCame) {
  EXPECT_EQ(fncDescriptionOfVcal(vcal(u"caf=E9 =3D=0D=0A"_s)), u"caf=E9 =3D"_s);
}

TEST_F(BodyThroughVcal, ABodyWhoseLastLineIsNotClosedGivesAnEmptyText) {
  EXPECT_EQ(fncDescriptionOfVcal(vcal(u"One=0D=0A=\r\nTwo"_s)), QString());
}

TEST_F(BodyThroughVcal, WithoutADescriptionTheSearchRunsFromThe38thCharacter) {
  const QString before(37, u'-');
  EXPECT_EQ(fncDescriptionOfVcal(before + u"rest=0D=0A\r\n"_s), u"rest"_s);
  // A line closed in front of that place is not seen.
  EXPECT_EQ(fncDescriptionOfVcal(u"x=0D=0A\r\n"_s + before), QString());
  EXPECT_EQ(fncDescriptionOfVcal({}), QString());
}

}  // namespace hourbook::tests
