#include "platform/outlook/mime.h"
#include "tests/unit/platform/outlook/calendarfixture.h"

#include <QDir>
#include <QFile>
#include <QUrlQuery>

using namespace Qt::StringLiterals;
using namespace platform;
using namespace platform::outlook;

namespace {

QByteArray contentOf(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
  return file.readAll();
}

class MailTest : public tests::CalendarTest {
 protected:
  MailItem mail() const {
    MailItem made(drafts.filePath(u"deep/drafts"_s));
    made.To = u"support@example.com"_s;
    made.Subject = u"Error in Hourbook"_s;
    made.Body = u"First line\r\nsecond & last?\r\n"_s;
    return made;
  }
  QTemporaryDir drafts;
};

QByteArray headerOf(const QByteArray& message, const QByteArray& name) {
  const qsizetype start = message.indexOf("\r\n" + name + ": ");
  if (start < 0) return {};
  const qsizetype value = start + name.size() + 4;
  qsizetype end = message.indexOf("\r\n", value);
  while (message.mid(end, 3) == "\r\n ") end = message.indexOf("\r\n", end + 2);
  return message.mid(value, end - value);
}

QString decodedWords(QByteArray header) {
  QString text;
  for (const QByteArray& word : header.replace("\r\n ", "\n").split('\n')) {
    EXPECT_TRUE(word.startsWith("=?UTF-8?B?") && word.endsWith("?="));
    EXPECT_LE(word.size(), 75);
    const QByteArray bytes = QByteArray::fromBase64(word.mid(10, word.size() - 12));
    text += QString::fromUtf8(bytes);
    EXPECT_FALSE(QString::fromUtf8(bytes).contains(QChar::ReplacementCharacter));
  }
  return text;
}

}  // namespace

TEST_F(MailTest, ADraftIsAnInternetMessageThatIsNotYetSent) {
  MailItem draft = mail();
  draft.Save();
  const QByteArray text = contentOf(draft.draftFile());
  EXPECT_TRUE(text.startsWith("Date: 15 May 2024 10:00:00 +0200\r\n"));
  EXPECT_TRUE(headerOf(text, "From").contains('@'));
  EXPECT_EQ(headerOf(text, "To"), "support@example.com");
  EXPECT_EQ(headerOf(text, "Subject"), "Error in Hourbook");
  EXPECT_TRUE(headerOf(text, "Message-ID").startsWith('<') && headerOf(text, "Message-ID").endsWith('>'));
  EXPECT_EQ(headerOf(text, "X-Unsent"), "1");
  EXPECT_EQ(headerOf(text, "MIME-Version"), "1.0");
  EXPECT_EQ(headerOf(text, "Content-Type"), "text/plain; charset=utf-8");
  EXPECT_TRUE(text.endsWith("\r\n\r\nFirst line\r\nsecond & last?\r\n"));
  EXPECT_TRUE(draft.draftFile().endsWith(u".eml"_s));
}

TEST_F(MailTest, TheWriterIsTheUserOfTheMachine) {
  world.process.environment.insert(u"USERNAME"_s, u"jane doe ."_s);
  EXPECT_TRUE(headerOf(messageOf(mail()), "From").startsWith("janedoe@"));
}

TEST_F(MailTest, EveryLineIsShortAndEndsWithReturnAndFeed) {
  MailItem long_ = mail();
  long_.Subject = QString(300, u'å');
  long_.Body = QString(500, u'x') + u'\n' + QString(300, u'=') + u" \nå\r"_s;
  for (const QByteArray& line : messageOf(long_).split('\n')) {
    EXPECT_LE(line.size(), 78);
    EXPECT_TRUE(line.isEmpty() || line.endsWith('\r'));
  }
}

TEST_F(MailTest, TheTextIsQuotedPrintableInUtf8) {
  MailItem accents = mail();
  accents.Body = u"Grüße = 1 \nend"_s;
  const QByteArray text = messageOf(accents);
  EXPECT_EQ(headerOf(text, "Content-Transfer-Encoding"), "quoted-printable");
  EXPECT_TRUE(text.endsWith("\r\n\r\nGr=C3=BC=C3=9Fe =3D 1=20\r\nend\r\n"));
}

TEST_F(MailTest, ASubjectThatIsNotPlainIsEncodedAndCannotAddHeaders) {
  MailItem accents = mail();
  accents.Subject = u"Fel i Hourbook: åäö 🙂 "_s.repeated(6);
  EXPECT_EQ(decodedWords(headerOf(messageOf(accents), "Subject")), accents.Subject);
  accents.Subject = u"A\r\nBcc: everybody@example.com"_s;
  accents.To = u"a@example.com\r\nBcc: everybody@example.com"_s;
  EXPECT_EQ(headerOf(messageOf(accents), "Bcc"), QByteArray());
  EXPECT_EQ(headerText(u"a =?b"_s, 9), "=?UTF-8?B?YSA9P2I=?=");
}

TEST_F(MailTest, AttachmentsAreCarriedWhole) {
  MailItem forwarded = mail();
  const QByteArray content = QByteArray("line\r\n\0\xff", 8).repeated(40);
  forwarded.Attachments.emplace_back(content, u"a\"b.vcs"_s, "text/x-vcalendar");
  const QByteArray text = messageOf(forwarded);
  const QByteArray type = headerOf(text, "Content-Type");
  ASSERT_TRUE(type.startsWith("multipart/mixed; boundary=\""));
  const QByteArray boundary = type.mid(27, type.size() - 28);
  const QByteArray head = "Content-Disposition: attachment; filename=\"ab.vcs\"\r\n\r\n";
  const qsizetype start = text.indexOf(head) + head.size();
  const qsizetype end = text.indexOf("--" + boundary + "--\r\n");
  ASSERT_GT(start, head.size());
  ASSERT_GT(end, start);
  EXPECT_EQ(QByteArray::fromBase64(text.mid(start, end - start).replace("\r\n", "")), content);
}

TEST_F(MailTest, ASecondSaveReplacesTheDraftAndOtherMailsHaveTheirOwn) {
  MailItem first = mail(), second = mail();
  first.Save();
  const QString file = first.draftFile();
  first.Subject = u"Changed"_s;
  first.Save();
  second.Save();
  EXPECT_EQ(first.draftFile(), file);
  EXPECT_NE(second.draftFile(), file);
  EXPECT_EQ(headerOf(contentOf(file), "Subject"), "Changed");
  EXPECT_EQ(QDir(drafts.filePath(u"deep/drafts"_s)).entryList(QDir::Files).size(), 2);
}

TEST_F(MailTest, WithoutAFolderForDraftsNothingIsKept) {
  MailItem homeless;
  EXPECT_EQ(failureOf([&] { homeless.Save(); }), calendar::errStoreBroken);
  QFile file(drafts.filePath(u"file"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  MailItem blocked(drafts.filePath(u"file/drafts"_s));
  EXPECT_EQ(failureOf([&] { blocked.Save(); }), calendar::errStoreBroken);
  EXPECT_EQ(blocked.draftFile(), QString());
}

TEST_F(MailTest, DisplayOpensTheMailProgramWithTheWholeMail) {
  MailItem shownMail = mail();
  shownMail.To = u"a@example.com; b@example.com"_s;
  shownMail.Subject = u"50% & more? åäö"_s;
  shownMail.Display();
  ASSERT_EQ(world.process.opened.size(), 1);
  const QString link = world.process.opened[0];
  EXPECT_TRUE(link.startsWith(u"mailto:a@example.com,%20b@example.com?subject="_s)) << qPrintable(link);
  const QUrlQuery query(link.section(u'?', 1));
  EXPECT_EQ(query.queryItemValue(u"subject"_s, QUrl::FullyDecoded), shownMail.Subject);
  EXPECT_EQ(query.queryItemValue(u"body"_s, QUrl::FullyDecoded), shownMail.Body);
}

TEST_F(MailTest, AMailWithAttachmentsIsShownAsItsDraft) {
  MailItem forwarded = mail();
  forwarded.Attachments.emplace_back(QByteArray("content"));
  forwarded.Display();
  EXPECT_EQ(world.process.opened, QStringList{forwarded.draftFile()});
  EXPECT_TRUE(QFile::exists(forwarded.draftFile()));
}

TEST_F(MailTest, AMailProgramThatCannotBeOpenedIsAFailureWithItsReason) {
  world.process.startFailure = u"no mail program is set up"_s;
  try {
    mail().Display();
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_TRUE(failure.description().contains(u"no mail program is set up"_s));
  }
}

TEST_F(MailTest, AnAttachmentIsSavedByteForByteAndReplacesWhatWasThere) {
  const QString path = drafts.filePath(u"HBTemp.txt"_s);
  Attachment(QByteArray("old and longer")).SaveAsFile(path);
  const QByteArray content("a\r\nb\0c\xff", 7);
  Attachment(content).SaveAsFile(path);
  EXPECT_EQ(contentOf(path), content);
}

TEST_F(MailTest, ASavedAttachmentIsItsOwnersAlone) {
  const QString path = drafts.filePath(u"HBTemp.txt"_s);
  Attachment(QByteArray("x")).SaveAsFile(path);
  EXPECT_FALSE(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther));
}

TEST_F(MailTest, AnAttachmentThatCannotBeSavedIsAFailureThatNamesTheFile) {
  try {
    Attachment(QByteArray("x")).SaveAsFile(drafts.filePath(u"missing/HBTemp.txt"_s));
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_TRUE(failure.description().contains(u"HBTemp.txt"_s)) << qPrintable(failure.description());
  }
}
