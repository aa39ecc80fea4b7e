#include "platform/sql/sqlite/dialect.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/sqlite/values.h"

#include <QLocale>
#include <QRegularExpression>

namespace platform::sql::sqlite {

namespace {

constexpr int longestName = 64;

bool isWordSign(QChar c) {
  return c.isLetterOrNumber() || c == u'_' || c == u'@' || c == u'$';
}

[[noreturn]] void unreadable(const QString& what, const QString& where) {
  throw Failure(errors::syntax, QStringLiteral("%1 in query expression '%2'.").arg(what, where));
}

/// Day and time are read apart: together they would be a moment of the machine's zone, and that one leaves
/// out an hour each spring.
QDate readDay(const QString& text) {
  for (const QString& pattern : {QStringLiteral("M/d/yyyy"), QStringLiteral("yyyy-M-d")}) {
    const QDate day = QLocale::c().toDate(text, pattern);
    if (day.isValid()) return day;
  }
  return {};
}

QTime readTime(const QString& text) {
  if (text.isEmpty()) return {0, 0};
  for (const QString& pattern : {QStringLiteral("H:m"), QStringLiteral("H:m:s"), QStringLiteral("h:m:s AP"),
                                 QStringLiteral("h:m AP")}) {
    const QTime time = QLocale::c().toTime(text, pattern);
    if (time.isValid()) return time;
  }
  return {};
}

QString dateLiteral(const QString& inner) {
  static const QRegularExpression divider(QStringLiteral("[ T](?=\\d)"));
  const QString text = inner.simplified();
  const qsizetype end = text.indexOf(divider);
  const QDate day = readDay(end < 0 ? text : text.left(end));
  const QTime time = readTime(end < 0 ? QString() : text.mid(end + 1));
  if (day.isValid() && time.isValid()) return u'\'' + storedDate(basic::Date::of(day, time)) + u'\'';
  unreadable(QStringLiteral("Syntax error in date"), u'#' + inner + u'#');
}

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
        out_ += dateLiteral(literal(u'#'));
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
    unreadable(QStringLiteral("Syntax error in string"), sql_.mid(start));
  }

  void name() {
    const qsizetype end = sql_.indexOf(u']', at_);
    if (end < 0) unreadable(QStringLiteral("Invalid bracketing of name"), sql_.mid(at_));
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

QString withLimit(QString sql) {
  static const QRegularExpression top(
      QStringLiteral("^\\s*(select(?:\\s+distinct)?)\\s+top\\s+(\\d+)(\\s+percent)?(?=\\W)"),
      QRegularExpression::CaseInsensitiveOption);
  const QRegularExpressionMatch match = top.match(sql);
  if (!match.hasMatch()) return sql;
  if (match.hasCaptured(3)) unreadable(QStringLiteral("TOP n PERCENT cannot be carried out"), sql);
  sql.replace(0, match.capturedLength(0), match.captured(1));
  while (!sql.isEmpty() && (sql.back().isSpace() || sql.back() == u';')) sql.chop(1);
  return sql + u" LIMIT "_qs + match.captured(2);
}

}  // namespace

QString fromAccess(const QString& sql) {
  static const QRegularExpression ours(QStringLiteral("^\\s*(select|insert|update|delete)\\b"),
                                       QRegularExpression::CaseInsensitiveOption);
  if (!ours.match(sql).hasMatch()) return sql;
  static const QRegularExpression star(QStringLiteral("^\\s*delete\\s*\\*\\s*from\\b"),
                                       QRegularExpression::CaseInsensitiveOption);
  QString statement = sql;
  statement.replace(star, QStringLiteral("delete from"));
  return withLimit(Translator(statement).run());
}

QString bracketed(const QString& name) {
  bool valid = !name.isEmpty() && name.size() <= longestName;
  for (const QChar c : name)
    if (c == u'[' || c == u']' || c == u'.' || c == u'!' || c == u'`' || c == u'"' || c.unicode() < 32)
      valid = false;
  if (!valid)
    throw Failure(
        errors::invalidName,
        QStringLiteral("'%1' is not a valid name. Make sure that it does not include invalid characters or "
                       "punctuation and that it is not too long.")
            .arg(name));
  return u'[' + name + u']';
}

}  // namespace platform::sql::sqlite
