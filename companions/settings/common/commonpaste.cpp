#include "companions/settings/common/commonpaste.h"

#include "companions/settings/common/commontexts.h"
#include "companions/settings/common/rates.h"
#include "platform/basic/text.h"
#include "settings/modNameCheck.h"

#include <QSet>

#include <optional>

namespace hourbook {

using namespace Qt::StringLiterals;

namespace {

enum Column { nameColumn, categoryColumn, superCategoryColumn, rateColumn, enabledColumn, columnCount };
constexpr qsizetype mostShown = 5;

std::optional<bool> readEnabled(const QString& text) {
  static const QStringList on{u"yes"_s, u"true"_s, u"1"_s, u"-1"_s, u"x"_s};
  static const QStringList off{u"no"_s, u"false"_s, u"0"_s};
  const QString word = text.trimmed().toLower();
  if (word.isEmpty() || on.contains(word) || word == commontexts::yes.toLower()) return true;
  if (off.contains(word) || word == commontexts::no.toLower()) return false;
  return std::nullopt;
}

struct ReadLine {
  CommonValue value;
  QString problem;
};

ReadLine readLine(const QStringList& cells) {
  const auto refused = [](const QString& reason) { return ReadLine{{}, reason}; };
  if (cells.size() > columnCount && !cells.mid(columnCount).join(QString()).trimmed().isEmpty())
    return refused(commontexts::pasteColumns);
  CommonValue value;
  value.name = cells.value(nameColumn).trimmed();
  value.category = cells.value(categoryColumn).trimmed();
  value.superCategory = cells.value(superCategoryColumn).trimmed();
  if (const QString problem = fncNameProblem(value.name); !problem.isEmpty()) return refused(problem);
  for (const QString& text : {value.category, value.superCategory})
    if (const QString problem = columnProblem(text); !problem.isEmpty()) return refused(problem);
  const ReadRate rate = readRate(cells.value(rateColumn));
  if (!rate.problem.isEmpty()) return refused(rate.problem);
  value.rate = rate.rate;
  const auto enabled = readEnabled(cells.value(enabledColumn));
  if (!enabled) return refused(commontexts::enabledUnknown);
  value.enabled = *enabled;
  return {value, {}};
}

QString summary(const QStringList& problems) {
  QStringList shown = problems.first(qMin(problems.size(), mostShown));
  if (problems.size() > mostShown) shown.append(commontexts::pasteMore.arg(problems.size() - mostShown));
  return commontexts::pasteRefused.arg(shown.join(u' '));
}

}  // namespace

QList<QStringList> spreadsheetLines(const QString& text) {
  QList<QStringList> lines;
  QStringList cells;
  QString cell;
  bool quoted = false;
  const auto endCell = [&] {
    cells.append(cell);
    cell.clear();
  };
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar c = text[i];
    if (quoted) {
      const bool doubled = c == u'"' && i + 1 < text.size() && text[i + 1] == u'"';
      if (c == u'"' && !doubled) quoted = false;
      if (c != u'"' || doubled) cell += c;
      if (doubled) ++i;
    } else if (c == u'"' && cell.isEmpty()) {
      quoted = true;
    } else if (c == u'\t') {
      endCell();
    } else if (c == u'\n' || c == u'\r') {
      if (c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
      endCell();
      lines.append(cells);
      cells.clear();
    } else {
      cell += c;
    }
  }
  endCell();
  if (cells != QStringList{QString()}) lines.append(cells);
  return lines;
}

Pasted pasteValues(CommonBuffer& buffer, int list, const QString& text) {
  using platform::basic::foldedKey;
  QList<CommonValue>& values = buffer.edited.lists[list].values;
  QSet<QString> names;
  for (const CommonValue& value : values) names.insert(foldedKey(value.name));
  QList<CommonValue> added;
  QStringList problems;
  int number = 0;
  for (const QStringList& cells : spreadsheetLines(text)) {
    ++number;
    if (cells.join(QString()).trimmed().isEmpty()) continue;
    ReadLine line = readLine(cells);
    const QString key = foldedKey(line.value.name);
    if (line.problem.isEmpty() && names.contains(key))
      line.problem = commontexts::nameOfValue.arg(line.value.name, commontexts::nameTwice);
    if (!line.problem.isEmpty()) problems.append(commontexts::pasteLine.arg(number).arg(line.problem));
    names.insert(key);
    added.append(line.value);
  }
  if (added.isEmpty()) return {0, commontexts::pasteNothing};
  if (!problems.isEmpty()) return {0, summary(problems)};
  values.append(added);
  return {static_cast<int>(added.size()), {}};
}

}  // namespace hourbook
