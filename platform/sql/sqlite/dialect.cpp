#include "platform/sql/sqlite/dialect.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/literals.h"

namespace platform::sql::sqlite {

namespace {

/// Walks over a statement and writes SQLite's form of it.
class Translator {
 public:
  explicit Translator(const QString& sql) : sql_(sql) {}

  QString run() {
    while (at_ < sql_.size()) {
      const QChar c = sql_[at_];
      if (c == u'\'')
        out_ += u'\'' + literal(u'\'').replace(u"'"_qs, u"''"_qs) + u'\'';
      else if (c == u'"')
        out_ += u'\'' + literal(u'"').replace(u"'"_qs, u"''"_qs) + u'\'';
      else if (c == u'[')
        name();
      else if (c == u'#')
        out_ += u'\'' + isoText(dateOfLiteral(literal(u'#'))) + u'\'';
      else if (isWordSign(c))
        word();
      else if (c == u'&')
        join();
      else
        out_ += sql_[at_++];
    }
    return out_;
  }

 private:
  QString literal(QChar quote) {
    QString text;
    const qsizetype start = at_;
    for (++at_; at_ < sql_.size(); ++at_) {
      if (sql_[at_] == quote) {
        if (quote == u'#' || at_ + 1 >= sql_.size() || sql_[at_ + 1] != quote) {
          ++at_;
          return text;
        }
        ++at_;
      }
      text += sql_[at_];
    }
    unreadableStatement(QStringLiteral("Syntax error in string"), sql_.mid(start));
  }

  void name() {
    const qsizetype end = sql_.indexOf(u']', at_);
    if (end < 0) unreadableStatement(QStringLiteral("Invalid bracketing of name"), sql_.mid(at_));
    out_ += QStringView(sql_).mid(at_, end + 1 - at_);
    at_ = end + 1;
  }

  void word() {
    const qsizetype start = at_;
    while (at_ < sql_.size() && isWordSign(sql_[at_])) ++at_;
    const QString word = sql_.mid(start, at_ - start);
    if (word.compare(u"true", Qt::CaseInsensitive) == 0)
      out_ += u"-1"_qs;
    else if (word.compare(u"false", Qt::CaseInsensitive) == 0)
      out_ += u'0';
    else if (word.compare(u"@@identity", Qt::CaseInsensitive) == 0)
      out_ += u"last_insert_rowid()"_qs;
    else
      out_ += word;
  }

  void join() {
    out_ += u"||"_qs;
    ++at_;
  }

  const QString& sql_;
  qsizetype at_ = 0;
  QString out_;
};

}  // namespace

QString fromAccess(const QString& sql) {
  if (!isAccessStatement(sql)) return sql;
  QString statement = Translator(withoutDeleteStar(sql)).run();
  const auto top = takeTop(statement);
  return top ? statement + u" LIMIT "_qs + *top : statement;
}

}  // namespace platform::sql::sqlite
