#include "platform/basic/clock.h"
#include "platform/basic/failure.h"
#include "platform/files/atomicfile.h"
#include "platform/outlook/items.h"
#include "platform/outlook/mime.h"
#include "platform/process/process.h"

#include <QDir>
#include <QUrl>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace platform::outlook {

namespace {

void write(const QString& path, const QByteArray& bytes, const QString& source,
           files::FileMode mode = files::FileMode::Usual) {
  const files::WriteResult result = files::replaceFile(path, bytes, std::nullopt, mode);
  if (result.outcome != files::Outcome::Written)
    throw Failure(calendar::errStoreBroken, result.error, source);
}

QString newDraftName() {
  const QString moment = basic::Clock::current().now().toString(u"yyyyMMdd-HHmmss");
  return u"draft-%1-%2.eml"_s.arg(moment, QUuid::createUuid().toString(QUuid::Id128).left(8));
}

QString encoded(const QString& text, const QByteArray& plain = {}) {
  return QString::fromLatin1(QUrl::toPercentEncoding(text, plain));
}

QString mailLink(const MailItem& mail) {
  QString to = mail.To;
  QString body = mail.Body;
  body.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n').replace(u"\n"_s, u"\r\n"_s);
  return u"mailto:"_s + encoded(to.replace(u';', u','), "@,") + u"?subject="_s + encoded(mail.Subject) +
         u"&body="_s + encoded(body);
}

}  // namespace

void Attachment::SaveAsFile(const QString& path) const {
  write(path, content_, u"Attachment"_s, files::FileMode::OwnerOnly);
}

void MailItem::Save() {
  if (draftFolder_.isEmpty())
    throw Failure(calendar::errStoreBroken, u"There is no folder in which the mail could be kept."_s,
                  u"MailItem"_s);
  if (!QDir().mkpath(draftFolder_))
    throw Failure(calendar::errStoreBroken, u"The folder for drafts cannot be made: %1"_s.arg(draftFolder_),
                  u"MailItem"_s);
  const QString file = draftFile_.isEmpty() ? QDir(draftFolder_).filePath(newDraftName()) : draftFile_;
  write(file, messageOf(*this), u"MailItem"_s);
  draftFile_ = file;
}

void MailItem::Display() {
  if (!Attachments.empty()) Save();
  const QString target = Attachments.empty() ? mailLink(*this) : draftFile_;
  QString error;
  if (!process::Process::current().open(target, &error))
    throw Failure(calendar::errStoreBroken, u"The mail cannot be shown: %1"_s.arg(error), u"MailItem"_s);
}

}  // namespace platform::outlook
