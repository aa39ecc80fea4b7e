#include "platform/locale/patterns.h"

#include <algorithm>

namespace platform::locale {

namespace {

bool isPart(QChar c) {
  return c == u'd' || c == u'M' || c == u'y';
}

void appendLiteral(QList<PatternPiece>& pieces, QChar c) {
  if (pieces.isEmpty() || !pieces.last().letter.isNull()) pieces.append(PatternPiece{});
  pieces.last().literal += c;
}

QString quoted(QString literal) {
  static const auto isPlain = [](QChar c) { return !c.isLetter() && c != u'\''; };
  if (std::all_of(literal.cbegin(), literal.cend(), isPlain)) return literal;
  return u'\'' + literal.replace(u'\'', QStringLiteral("''")) + u'\'';
}

}  // namespace

QList<PatternPiece> cutPattern(const QString& pattern) {
  QList<PatternPiece> pieces;
  bool quoted = false;
  for (qsizetype i = 0; i < pattern.size(); ++i) {
    const QChar c = pattern[i];
    if (c == u'\'') {
      const bool doubled = i + 1 < pattern.size() && pattern[i + 1] == u'\'';
      if (doubled) {
        appendLiteral(pieces, c);
        ++i;
      } else {
        quoted = !quoted;
      }
    } else if (quoted || !isPart(c)) {
      appendLiteral(pieces, c);
    } else if (!pieces.isEmpty() && pieces.last().letter == c) {
      ++pieces.last().length;
    } else {
      pieces.append(PatternPiece{c, 1, {}});
    }
  }
  return pieces;
}

QString orderOfParts(const QString& pattern) {
  QString order;
  for (const PatternPiece& piece : cutPattern(pattern)) {
    const bool weekday = piece.letter == u'd' && piece.length > 2;
    if (!piece.letter.isNull() && !weekday && !order.contains(piece.letter)) order += piece.letter;
  }
  return order;
}

QString fromQtPattern(QString pattern) {
  pattern.remove(QChar(0x200e)).remove(QChar(0x200f));
  QString widened;
  for (const PatternPiece& piece : cutPattern(pattern)) {
    if (piece.letter == u'y')
      widened += QStringLiteral("yyyy");
    else if (!piece.letter.isNull())
      widened += QString(piece.length, piece.letter);
    else
      widened += quoted(piece.literal);
  }
  return widened;
}

}  // namespace platform::locale
