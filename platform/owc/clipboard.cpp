#include "platform/owc/clipboard.h"

namespace platform::owc {

namespace {

QString asTableCell(const QString& text) {
  const bool plain =
      !text.contains(u'\t') && !text.contains(u'\n') && !text.contains(u'\r') && !text.startsWith(u'"');
  if (plain) return text;
  return u'"' + QString(text).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

/// A cell in quotes from its opening quote on; what follows its closing quote belongs to it as it stands. A
/// quote that is never closed is a sign like others: nullopt.
std::optional<QString> quotedCell(const QString& text, qsizetype& at) {
  QString cell;
  for (qsizetype i = at + 1; i < text.size(); ++i) {
    if (text[i] != u'"') {
      cell += text[i];
    } else if (i + 1 < text.size() && text[i + 1] == u'"') {
      cell += text[++i];
    } else {
      at = i + 1;
      return cell;
    }
  }
  return {};
}

}  // namespace

QString textOfTable(const QList<QStringList>& rows) {
  QStringList lines;
  for (const QStringList& row : rows) {
    QStringList cells;
    for (const QString& cell : row) cells.append(asTableCell(cell));
    lines.append(cells.join(u'\t'));
  }
  return lines.join(u'\n');
}

QList<QStringList> tableOfText(const QString& text) {
  QList<QStringList> rows{{QString()}};
  bool cellBegins = true;
  for (qsizetype at = 0; at < text.size();) {
    const QChar c = text[at];
    if (c == u'"' && cellBegins) {
      cellBegins = false;
      if (const std::optional<QString> cell = quotedCell(text, at)) {
        rows.last().last() = *cell;
        continue;
      }
    }
    ++at;
    cellBegins = c == u'\t' || c == u'\n' || c == u'\r';
    if (c == u'\t') {
      rows.last().append(QString());
    } else if (cellBegins) {
      if (c == u'\r' && at < text.size() && text[at] == u'\n') ++at;
      if (at < text.size()) rows.append({QString()});
    } else {
      rows.last().last() += c;
    }
  }
  return rows;
}

}  // namespace platform::owc
