// The build's own step from the phrase files to the table.
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tests {

class JoiningPhrases : public testing::Test {
 protected:
  void write(const QString& language, const QByteArray& content) {
    QFile file(folder.filePath(language + u".tsv"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
  }
  /// What the step complains of; empty when it made the table.
  QString join() {
    QProcess step;
    step.start(QStringLiteral(PHRASETABLE), {folder.path(), folder.filePath(u"LANGUAGE"_s)});
    EXPECT_TRUE(step.waitForFinished(-1));
    const QString complaint = QString::fromUtf8(step.readAllStandardError());
    EXPECT_EQ(step.exitCode() == 0, complaint.isEmpty()) << qPrintable(complaint);
    EXPECT_EQ(QFile::exists(folder.filePath(u"LANGUAGE"_s)), complaint.isEmpty());
    return complaint.trimmed().remove(folder.path() + u'/');
  }
  QByteArray table() const {
    QFile file(folder.filePath(u"LANGUAGE"_s));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
  static QByteArray utf16(const QString& text) {
    QByteArray bytes("\xFF\xFE");
    for (const QChar c : text) bytes.append(char(c.cell())).append(char(c.row()));
    return bytes;
  }

  QTemporaryDir folder;
};

TEST_F(JoiningPhrases, GivesEachLanguageItsColumn) {
  const QStringList languages{u"cs"_s, u"da"_s, u"nl"_s, u"en"_s, u"fi"_s, u"fr"_s, u"de"_s, u"el"_s,
                              u"it"_s, u"nb"_s, u"pt"_s, u"sl"_s, u"es"_s, u"sv"_s, u"tr"_s, u"ru"_s};
  for (const QString& language : languages) write(language, "LNGA\t" + language.toUtf8() + "\n");
  EXPECT_EQ(join(), QString());
  EXPECT_EQ(table(), utf16(u"LNGA\t"_s + languages.join(u'\t') + u"\r\n"_s));
}

TEST_F(JoiningPhrases, LeavesTheCellsEmptyOfWhatALanguageLacks) {
  write(u"en"_s, "LNGA\tone\nLNGB\ttwo\n");
  write(u"el"_s, "LNGB\tδύο\n");
  EXPECT_EQ(join(), QString());
  EXPECT_EQ(table(), utf16(u"LNGA\t\t\t\tone\t\t\t\t\t\t\t\t\t\t\t\t\r\n"
                           "LNGB\t\t\t\ttwo\t\t\t\tδύο\t\t\t\t\t\t\t\t\r\n"_s));
}

TEST_F(JoiningPhrases, RefusesAKeyThatComesTwice) {
  write(u"en"_s, "LNGA\tone\nLNGA\ttwo\n");
  EXPECT_EQ(join(), u"en.tsv:2: repeats the key LNGA"_s);
}

TEST_F(JoiningPhrases, RefusesATextWithATabAndALineWithoutOne) {
  write(u"en"_s, "LNGA\tone\n");
  write(u"de"_s, "LNGA\teins\tzwei\n");
  EXPECT_EQ(join(), u"de.tsv:1: has 2 tabs, not one"_s);
  write(u"de"_s, "LNGA\teins\nzwei\n");
  EXPECT_EQ(join(), u"de.tsv:2: has 0 tabs, not one"_s);
}

TEST_F(JoiningPhrases, RefusesALineBreakWithinAText) {
  write(u"en"_s, "LNGA\tone\r\n");
  EXPECT_EQ(join(), u"en.tsv:1: holds a line break"_s);
}

TEST_F(JoiningPhrases, RefusesALineWithoutAKey) {
  write(u"en"_s, "\tone\n");
  EXPECT_EQ(join(), u"en.tsv:1: has no key"_s);
}

TEST_F(JoiningPhrases, RefusesAPhraseThatHasNoEnglishText) {
  write(u"en"_s, "LNGA\tone\n");
  write(u"sv"_s, "LNGA\tett\nLNGB\ttvå\n");
  EXPECT_EQ(join(), u"sv.tsv: LNGB has no English text"_s);
  write(u"sv"_s, "LNGA\tett\n");
  write(u"en"_s, "LNGA\t\n");
  EXPECT_EQ(join(), u"en.tsv: LNGA has no English text"_s);
}

TEST_F(JoiningPhrases, RefusesAFileThatIsCutOff) {
  write(u"en"_s, "LNGA\tone\nLNGB\ttw");
  EXPECT_EQ(join(), u"en.tsv: the last line is not closed"_s);
}

TEST_F(JoiningPhrases, RefusesAFileThatIsNotUtf8) {
  write(u"en"_s, "LNGA\tone\n");
  write(u"sv"_s, "LNGA\t\xE5\xE4\xF6\n");
  EXPECT_EQ(join(), u"sv.tsv: is not UTF-8"_s);
}

TEST_F(JoiningPhrases, SaysWhenTheTableCannotBeWritten) {
  write(u"en"_s, "LNGA\tone\n");
  QProcess step;
  step.start(QStringLiteral(PHRASETABLE), {folder.path(), folder.filePath(u"none/LANGUAGE"_s)});
  EXPECT_TRUE(step.waitForFinished(-1));
  EXPECT_EQ(step.exitCode(), 1);
  EXPECT_TRUE(QString::fromUtf8(step.readAllStandardError()).contains(u"none/LANGUAGE: "_s));
}

}  // namespace tests
