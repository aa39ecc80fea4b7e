#include "platform/sql/postgresql/tokens.h"

#include "platform/sql/literals.h"

namespace platform::sql::postgresql {

namespace {

/// What stands between two signs, of which the closing one may be doubled to stand for itself.
QString closedBy(QChar sign, bool doubles, const QString& sql, qsizetype& at) {
  QString text;
  const qsizetype start = at;
  for (++at; at < sql.size(); ++at) {
    if (sql[at] == sign) {
      if (!doubles || at + 1 >= sql.size() || sql[at + 1] != sign) {
        ++at;
        return text;
      }
      ++at;
    }
    text += sql[at];
  }
  unreadableStatement(
      sign == u']' ? QStringLiteral("Invalid bracketing of name") : QStringLiteral("Syntax error in string"),
      sql.mid(start));
}

template <class Sign>
QString run(const QString& sql, qsizetype& at, Sign belongs) {
  const qsizetype start = at;
  while (at < sql.size() && belongs(sql[at])) ++at;
  return sql.mid(start, at - start);
}

}  // namespace

QList<Token> tokensOf(const QString& sql) {
  using Kind = Token::Kind;
  QList<Token> tokens;
  for (qsizetype at = 0; at < sql.size();) {
    const QChar c = sql[at];
    if (c.isSpace())
      tokens.append({Kind::Blank, run(sql, at, [](QChar sign) { return sign.isSpace(); })});
    else if (c == u'\'' || c == u'"')
      tokens.append({Kind::Text, closedBy(c, true, sql, at)});
    else if (c == u'[')
      tokens.append({Kind::Name, closedBy(u']', false, sql, at)});
    else if (c == u'#')
      tokens.append({Kind::Date, closedBy(u'#', false, sql, at)});
    else if (c.isDigit())
      tokens.append(
          {Kind::Number, run(sql, at, [](QChar sign) { return isWordSign(sign) || sign == u'.'; })});
    else if (isWordSign(c))
      tokens.append({Kind::Word, run(sql, at, isWordSign)});
    else
      tokens.append({c == u'?' ? Kind::Parameter : Kind::Mark, sql.mid(at++, 1)});
  }
  return tokens;
}

}  // namespace platform::sql::postgresql
