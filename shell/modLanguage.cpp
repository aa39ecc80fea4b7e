#include "shell/modLanguage.h"

#include "platform/basic/text.h"
#include "platform/locale/locale.h"
#include "shell/modErrorReport.h"

#include <QFile>
#include <QStringDecoder>

#include <algorithm>
#include <array>

// The table is linked in with a static library, so it has to be asked for by name.
static void linkPhraseTable() {
  Q_INIT_RESOURCE(phrases);
}

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::basic::Split;
using platform::basic::vbCrLf;
using platform::basic::vbTab;

namespace {

inline constexpr qint16 englishColumn = 4;
inline constexpr QChar byteOrderMark(0xFEFF);

struct LanguageOfSystem {
  qint32 lcid;
  qint16 column;
};

// Brazilian Portuguese (1046) and Russian (1049) are left out on purpose: such systems show English.
constexpr std::array languages{
    LanguageOfSystem{1029, 1},    // Czech
    LanguageOfSystem{1030, 2},    // Danish
    LanguageOfSystem{1043, 3},    // Dutch
    LanguageOfSystem{2067, 3},    //
    LanguageOfSystem{1035, 5},    // Finnish
    LanguageOfSystem{1036, 6},    // French
    LanguageOfSystem{2060, 6},    //
    LanguageOfSystem{3084, 6},    //
    LanguageOfSystem{5132, 6},    //
    LanguageOfSystem{4108, 6},    //
    LanguageOfSystem{1031, 7},    // German
    LanguageOfSystem{3079, 7},    //
    LanguageOfSystem{5127, 7},    //
    LanguageOfSystem{4103, 7},    //
    LanguageOfSystem{2055, 7},    //
    LanguageOfSystem{1032, 8},    // Greek
    LanguageOfSystem{1040, 9},    // Italian
    LanguageOfSystem{2064, 9},    //
    LanguageOfSystem{1044, 10},   // Norwegian
    LanguageOfSystem{2070, 11},   // Portuguese
    LanguageOfSystem{1060, 12},   // Slovenian
    LanguageOfSystem{3082, 13},   // Spanish
    LanguageOfSystem{1034, 13},   //
    LanguageOfSystem{11274, 13},  //
    LanguageOfSystem{16394, 13},  //
    LanguageOfSystem{13322, 13},  //
    LanguageOfSystem{9226, 13},   //
    LanguageOfSystem{5130, 13},   //
    LanguageOfSystem{7178, 13},   //
    LanguageOfSystem{12298, 13},  //
    LanguageOfSystem{4106, 13},   //
    LanguageOfSystem{18442, 13},  //
    LanguageOfSystem{2058, 13},   //
    LanguageOfSystem{19466, 13},  //
    LanguageOfSystem{6154, 13},   //
    LanguageOfSystem{10250, 13},  //
    LanguageOfSystem{20490, 13},  //
    LanguageOfSystem{15370, 13},  //
    LanguageOfSystem{17418, 13},  //
    LanguageOfSystem{14346, 13},  //
    LanguageOfSystem{8202, 13},   //
    LanguageOfSystem{1053, 14},   // Swedish
    LanguageOfSystem{1055, 15},   // Turkish
};

/// Without a first character that no code page holds, which is how the mark of the table comes out in one.
QString withoutMark(const QString& text) {
  return text.startsWith(byteOrderMark) || text.startsWith(u'?') ? text.mid(1) : text;
}

QString readTable(bool ansi) {
  linkPhraseTable();
  QFile table(shellValues().phraseResource);
  if (!table.open(QIODevice::ReadOnly))
    throw platform::Failure(326, QStringLiteral("Resource with identifier 'LANGUAGE' not found"));
  const QByteArray bytes = table.readAll();
  if (ansi) return withoutMark(QString::fromLocal8Bit(bytes));
  return withoutMark(QStringDecoder(QStringDecoder::Utf16LE, QStringDecoder::Flag::ConvertInitialBom)(bytes));
}

QString field(const QList<QStringView>& fields, qsizetype column) {
  if (column < 0 || column >= fields.size())
    throw platform::Failure(platform::failure::subscriptOutOfRange, QStringLiteral("Subscript out of range"));
  return fields[column].toString();
}

void addPhrase(const QString& line, qint16 column) {
  // one of all the languages is wanted, so the others are not made texts of their own
  const auto fields = line.isEmpty() ? QList<QStringView>() : QStringView(line).split(vbTab);
  QString text = field(fields, column);
  if (text.isEmpty()) text = field(fields, englishColumn);
  cPhrase phrase;
  phrase.LangConstant = withoutMark(field(fields, 0));
  phrase.LangPhrase = fncCleanPhrase(text);
  shellValues().gPhrases.Add(phrase, phrase.LangConstant);
}

}  // namespace

qint16 fncGetlocalLanguage() {
  const qint32 lcid = platform::locale::current().lcid();
  const auto* found = std::ranges::find(languages, lcid, &LanguageOfSystem::lcid);
  return found == languages.end() ? englishColumn : found->column;
}

void subReadPhrases(qint16 column, bool blnANSI) {
  qsizetype number = 0;
  try {
    subLog(QStringLiteral("Reading language phrases from resource file"));
    QStringList lines = Split(readTable(blnANSI), vbCrLf);
    shellValues().gPhrases = {};
    if (!lines.isEmpty()) lines.removeLast();
    for (const QString& line : lines) {
      ++number;
      addPhrase(line, column);
    }
  } catch (const platform::Failure& failure) {
    subHandleError(
        platform::Failure(failure.number(), failure.description() + u" LINE - "_s + QString::number(number)),
        QStringLiteral("subReadPhrases"));
  }
}

QString fncCleanPhrase(const QString& text) {
  return QString(text).remove(u'\'');
}

void LoadLanguages(qint16 column) try {
  subReadPhrases(column);
  subLog(QStringLiteral("Reading phrases from collection into variables"));
  ShellValues& values = shellValues();
#define HOURBOOK_PHRASE(key) values.key = values.gPhrases.Item(QStringLiteral(#key)).LangPhrase;
#include "shell/Phrases.inc"
#undef HOURBOOK_PHRASE
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("LoadLanguages"));
}

}  // namespace hourbook
