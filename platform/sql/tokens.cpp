#include "platform/sql/tokens.h"

#include "platform/sql/literals.h"

#include <optional>

namespace platform::sql {

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

/// Where a comment ends that begins here; nothing when none does.
std::optional<qsizetype> endOfComment(const QString& sql, qsizetype at) {
  const QStringView rest = QStringView(sql).mid(at);
  if (rest.startsWith(u"--")) {
    const qsizetype end = sql.indexOf(u'\n', at);
    return end < 0 ? sql.size() : end;
  }
  if (!rest.startsWith(u"/*")) return std::nullopt;
  const qsizetype end = sql.indexOf(u"*/"_qs, at + 2);
  if (end < 0) unreadableStatement(QStringLiteral("Syntax error in comment"), sql.mid(at));
  return end + 2;
}

bool beginsDate(const QString& sql, qsizetype at, NumberSign sign) {
  return sign == NumberSign::Date || (at + 1 < sql.size() && sql[at + 1].isDigit());
}

}  // namespace

QList<Token> tokensOf(const QString& sql, NumberSign sign) {
  using Kind = Token::Kind;
  QList<Token> tokens;
  for (qsizetype at = 0; at < sql.size();) {
    const QChar c = sql[at];
    if (const auto end = endOfComment(sql, at)) {
      tokens.append({Kind::Blank, sql.mid(at, *end - at)});
      at = *end;
    } else if (c.isSpace())
      tokens.append({Kind::Blank, run(sql, at, [](QChar sign) { return sign.isSpace(); })});
    else if (c == u'\'' || c == u'"')
      tokens.append({Kind::Text, closedBy(c, true, sql, at)});
    else if (c == u'[')
      tokens.append({Kind::Name, closedBy(u']', false, sql, at)});
    else if (c == u'#' && beginsDate(sql, at, sign))
      tokens.append({Kind::Date, closedBy(u'#', false, sql, at)});
    else if (c == u'#')
      tokens.append({Kind::Word, run(sql, at, [](QChar each) { return isWordSign(each) || each == u'#'; })});
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

qsizetype Tokens::next(qsizetype at) const {
  do ++at;
  while (at < tokens_.size() && tokens_[at].kind == Kind::Blank);
  return at;
}

qsizetype Tokens::previous(qsizetype at) const {
  do --at;
  while (at >= 0 && tokens_[at].kind == Kind::Blank);
  return at;
}

bool Tokens::is(qsizetype at, Kind kind) const {
  return at >= 0 && at < tokens_.size() && tokens_[at].kind == kind;
}

bool Tokens::isWord(qsizetype at, QStringView word) const {
  return is(at, Kind::Word) && tokens_[at].text.compare(word, Qt::CaseInsensitive) == 0;
}

bool Tokens::isMark(qsizetype at, QChar mark) const {
  return is(at, Kind::Mark) && tokens_[at].text == mark;
}

}  // namespace platform::sql
