#include "platform/sql/literals.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"

#include <QLocale>
#include <QRegularExpression>

namespace platform::sql {

namespace {

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

}  // namespace

// By hand: each statement of a program that starts passes here, and the first use of an expression costs more
// than all of them.
bool beginsWith(const QString& sql, QLatin1String word) {
  const auto isBlank = [](QChar c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); };
  qsizetype at = 0;
  while (at < sql.size() && isBlank(sql[at])) ++at;
  const QStringView found = QStringView(sql).mid(at);
  if (!found.startsWith(word, Qt::CaseInsensitive)) return false;
  if (found.size() == word.size()) return true;
  const QChar next = found[word.size()];
  return next.unicode() >= 0x80 || !(next.isLetterOrNumber() || next == u'_');
}

bool isAccessStatement(const QString& sql) {
  for (const auto word :
       {QLatin1String("select"), QLatin1String("insert"), QLatin1String("update"), QLatin1String("delete")})
    if (beginsWith(sql, word)) return true;
  return false;
}

bool isSelectStatement(const QString& sql) {
  static const QRegularExpression into(QStringLiteral("\\binto\\b"),
                                       QRegularExpression::CaseInsensitiveOption);
  return beginsWith(sql, QLatin1String("select")) && !into.match(sql).hasMatch();
}

std::optional<QString> takeTop(QString& sql) {
  static const QRegularExpression top(
      QStringLiteral("^\\s*(select(?:\\s+distinct)?)\\s+top\\s+(\\d+)(\\s+percent)?(?=\\W)"),
      QRegularExpression::CaseInsensitiveOption);
  const QRegularExpressionMatch match = top.match(sql);
  if (!match.hasMatch()) return std::nullopt;
  if (match.hasCaptured(3)) unreadableStatement(QStringLiteral("TOP n PERCENT cannot be carried out"), sql);
  sql.replace(0, match.capturedLength(0), match.captured(1));
  while (!sql.isEmpty() && (sql.back().isSpace() || sql.back() == u';')) sql.chop(1);
  return match.captured(2);
}

QString withoutDeleteStar(const QString& sql) {
  if (!beginsWith(sql, QLatin1String("delete"))) return sql;
  static const QRegularExpression star(QStringLiteral("^\\s*delete\\s*\\*\\s*from\\b"),
                                       QRegularExpression::CaseInsensitiveOption);
  return QString(sql).replace(star, QStringLiteral("delete from"));
}

bool isWordSign(QChar c) {
  return c.isLetterOrNumber() || c == u'_' || c == u'@' || c == u'$';
}

void unreadableStatement(const QString& what, const QString& where) {
  throw Failure(errors::syntax, QStringLiteral("%1 in query expression '%2'.").arg(what, where));
}

basic::Date dateOfLiteral(const QString& inner) {
  static const QRegularExpression divider(QStringLiteral("[ T](?=\\d)"));
  const QString text = inner.simplified();
  const qsizetype end = text.indexOf(divider);
  const QDate day = readDay(end < 0 ? text : text.left(end));
  const QTime time = readTime(end < 0 ? QString() : text.mid(end + 1));
  if (day.isValid() && time.isValid()) return basic::Date::of(day, time);
  unreadableStatement(QStringLiteral("Syntax error in date"), u'#' + inner + u'#');
}

QString isoText(const basic::Date& date) {
  return date.date().toString(QStringLiteral("yyyy-MM-dd")) +
         date.time().toString(QStringLiteral("'T'HH:mm:ss"));
}

std::optional<basic::Date> dateOfIsoText(const QString& text) {
  static const QRegularExpression form(
      QStringLiteral("^(\\d{4}-\\d\\d-\\d\\d)(?:[T ](\\d\\d:\\d\\d(?::\\d\\d(?:[.,]\\d+)?)?)"
                     "(?:Z|[+-]\\d\\d(?::?\\d\\d)?)?)?$"));
  const QRegularExpressionMatch match = form.match(text);
  const QDate day = QDate::fromString(match.captured(1), Qt::ISODate);
  const QTime time = match.hasCaptured(2) ? QTime::fromString(match.captured(2), Qt::ISODate) : QTime(0, 0);
  if (!match.hasMatch() || !day.isValid() || !time.isValid()) return std::nullopt;
  return basic::Date::of(day, time);
}

QString wholeText(const QString& text) {
  if (text.isNull()) return u""_qs;
  const auto kept = [&text](qsizetype at) {
    const QChar c = text[at];
    if (c.isHighSurrogate()) return at + 1 < text.size() && text[at + 1].isLowSurrogate();
    if (c.isLowSurrogate()) return at > 0 && text[at - 1].isHighSurrogate();
    return !c.isNull();
  };
  QString whole = text;
  for (qsizetype at = 0; at < text.size(); ++at)
    if (!kept(at)) whole[at] = QChar(QChar::ReplacementCharacter);
  return whole;
}

}  // namespace platform::sql
