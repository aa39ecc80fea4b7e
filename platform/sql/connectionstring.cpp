#include "platform/basic/failure.h"
#include "platform/sql/driver.h"
#include "platform/sql/errors.h"

namespace platform::sql {

namespace {

/// Says where and not what: it may be a password.
[[noreturn]] void malformed(const QString& why, qsizetype at) {
  throw Failure(
      errors::badConnectionString,
      QStringLiteral("Format of the initialization string is not that of an OLE DB connection string: %1 "
                     "(character %2). It may have been cut off.")
          .arg(why)
          .arg(at + 1));
}

/// Walks over the text, one "key=value" at a time.
class Reader {
 public:
  explicit Reader(const QString& text) : text_(text) {
    if (text_.startsWith(QChar(QChar::ByteOrderMark))) ++at_;  // of a text file
  }

  bool atEnd() {
    while (at_ < text_.size() && (text_[at_] == u';' || text_[at_].isSpace())) ++at_;
    return at_ >= text_.size();
  }

  // up to a single "="; a doubled one is a literal "=" of the key
  QString key() {
    QString key;
    const qsizetype start = at_;
    for (; at_ < text_.size(); ++at_) {
      const QChar c = text_[at_];
      if (c == u';') break;
      if (c == u'=') {
        if (at_ + 1 >= text_.size() || text_[at_ + 1] != u'=') break;
        ++at_;
      }
      key += c;
    }
    key = key.trimmed();
    if (at_ >= text_.size() || text_[at_] == u';' || key.isEmpty())
      malformed(QStringLiteral("a part of it is no \"key=value\""), start);
    ++at_;
    return key;
  }

  QString value() {
    while (at_ < text_.size() && text_[at_].isSpace()) ++at_;
    if (at_ < text_.size() && (text_[at_] == u'"' || text_[at_] == u'\'')) return quoted(text_[at_]);
    qsizetype end = text_.indexOf(u';', at_);
    if (end < 0) end = text_.size();
    const QString plain = text_.mid(at_, end - at_).trimmed();
    at_ = end;
    return plain;
  }

 private:
  QString quoted(QChar quote) {
    QString value;
    const qsizetype start = at_;
    for (++at_;; ++at_) {
      if (at_ >= text_.size()) malformed(QStringLiteral("a quoted value is not closed"), start);
      if (text_[at_] == quote) {
        if (at_ + 1 >= text_.size() || text_[at_ + 1] != quote) break;
        ++at_;
      }
      value += text_[at_];
    }
    ++at_;
    while (at_ < text_.size() && text_[at_].isSpace()) ++at_;
    if (at_ < text_.size() && text_[at_] != u';')
      malformed(QStringLiteral("something stands behind a quoted value"), at_);
    return value;
  }

  const QString& text_;
  qsizetype at_ = 0;
};

/// Not where a ";" is missing behind it, as what stands there then may be a password.
QString describeProvider(const QString& provider) {
  if (provider.isEmpty()) return QStringLiteral(" The connection string names none.");
  return provider.contains(u'=') ? QString() : QStringLiteral(" (%1)").arg(provider);
}

}  // namespace

ConnectionString::ConnectionString(const QString& text) {
  Reader reader(text);
  while (!reader.atEnd()) {
    const QString key = reader.key().toLower();
    const QString value = reader.value();
    if (key == u"provider" && values_.contains(key)) continue;
    values_.insert(key, value);
  }
}

Driver& Drivers::find(const QString& provider) const {
  const auto found = drivers_.constFind(provider.toLower());
  if (found == drivers_.cend() || !*found)
    throw Failure(errors::providerNotFound,
                  QStringLiteral("Provider cannot be found. It may not be properly installed.") +
                      describeProvider(provider),
                  provider);
  return **found;
}

}  // namespace platform::sql
