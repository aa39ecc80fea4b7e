#include "platform/owc/formulas.h"

#include "platform/basic/convert.h"
#include "platform/basic/failure.h"
#include "platform/owc/ixionengine.h"

namespace platform::owc {

namespace {

using namespace Qt::StringLiterals;
using Place = CellStore::Place;

/// Calculates a set of formulas, each after those that it reads.
class Run {
 public:
  Run(CellStore& cells, const QSet<Place>& places) : cells_(cells), open_(places) {}

  QList<CellRect> results() {
    for (const auto& [place, formula] : cells_.formulas()) visit(place);
    return changed_;
  }

 private:
  /// The places on the way from the first formula to this one stand on the path; a place that comes again
  /// closes a circle, and all from there on are part of it.
  void visit(const Place& place) {
    if (const qsizetype at = path_.indexOf(place); at >= 0) {
      for (qsizetype i = at; i < path_.size(); ++i) circular_.insert(path_[i]);
      return;
    }
    if (!open_.contains(place)) return;
    path_.append(place);
    const CellFormula& formula = cells_.formulas().at(place);
    for (const CellRect& read : formula.read.references)
      for (const Place& other : formulasIn(read)) visit(other);
    path_.removeLast();
    open_.remove(place);
    const FormulaResult result =
        circular_.contains(place) ? FormulaResult{errorReference, true} : resultOf(formula.read);
    if (cells_.setResult(place.first, place.second, result.value, result.failed))
      changed_.append({place.first, place.second, 1, 1});
  }

  QList<Place> formulasIn(const CellRect& rect) const {
    QList<Place> found;
    const auto& all = cells_.formulas();
    for (auto at = all.lower_bound({rect.row, 0}); at != all.end() && at->first.first <= rect.lastRow(); ++at)
      if (rect.contains(at->first.first, at->first.second)) found.append(at->first);
    return found;
  }

  FormulaResult resultOf(const FormulaText& read) const {
    if (!read.error.isEmpty()) return {read.error, true};
    QList<FormulaInput> inputs;
    QSet<Place> taken;
    for (const CellRect& rect : read.references) {
      QString failure;
      const bool onlyNumbers = rect.rows * rect.columns > 1 && !read.countsTexts();
      cells_.forEachFilled(rect, [&](int row, int column, const basic::Value& value) {
        if (failedAt(row, column) && !read.countsTexts() && failure.isEmpty()) failure = basic::CStr(value);
        const std::optional<double> number = numberOf(value, cells_.format(row, column));
        if ((!number && onlyNumbers) || taken.contains({row, column})) return;
        taken.insert({row, column});
        inputs.append({row, column, number, number ? QString() : textOf(value)});
      });
      if (!failure.isEmpty()) return {failure, true};
    }
    return calculated(read, inputs);
  }

  static QString textOf(const basic::Value& value) {
    const auto* text = std::get_if<QString>(&value);
    return text ? *text : basic::CStr(value);
  }

  bool failedAt(int row, int column) const {
    const auto found = cells_.formulas().find({row, column});
    return found != cells_.formulas().end() && found->second.failed;
  }

  CellStore& cells_;
  QSet<Place> open_, circular_;
  QList<Place> path_;
  QList<CellRect> changed_;
};

std::optional<double> numberInText(const QString& text) {
  constexpr qsizetype longest = 40;
  const QString trimmed = text.trimmed();
  if (trimmed.isEmpty() || trimmed.size() > longest) return {};
  for (const QChar c : trimmed)
    if (!c.isDigit() && !u"+-.,eE"_s.contains(c)) return {};
  try {
    return basic::decimalNumber(trimmed);
  } catch (const Failure&) {
    return {};
  }
}

}  // namespace

std::optional<double> numberOf(const basic::Value& value, const CellFormat& format) {
  if (basic::IsEmpty(value) || basic::IsNull(value) || std::holds_alternative<bool>(value)) return {};
  if (const auto* date = std::get_if<basic::Date>(&value)) return date->serial();
  const auto* text = std::get_if<QString>(&value);
  if (!text) return basic::CDbl(value);
  if (format.numberFormat == QLatin1String("Text")) return {};
  return numberInText(*text);
}

QList<CellRect> FormulaBook::calculate(const std::optional<CellRect>& changed) {
  if (cells_->formulas().empty()) return {};
  QSet<Place> places;
  if (changed)
    places = reachedFrom(*changed);
  else
    for (const auto& [place, formula] : cells_->formulas()) places.insert(place);
  return Run(*cells_, places).results();
}

void FormulaBook::calculateOnly(const CellRect& rect) {
  QSet<Place> places;
  for (const auto& [place, formula] : cells_->formulas())
    if (rect.contains(place.first, place.second)) places.insert(place);
  Run(*cells_, places).results();
}

QSet<Place> FormulaBook::reachedFrom(const CellRect& changed) const {
  QSet<Place> reached;
  QList<CellRect> sources{changed};
  for (const auto& [place, formula] : cells_->formulas())
    if (changed.contains(place.first, place.second)) reached.insert(place);
  while (!sources.isEmpty()) {
    const CellRect source = sources.takeLast();
    for (const auto& [place, formula] : cells_->formulas()) {
      if (reached.contains(place)) continue;
      for (const CellRect& read : formula.read.references) {
        if (!read.intersects(source)) continue;
        reached.insert(place);
        sources.append({place.first, place.second, 1, 1});
        break;
      }
    }
  }
  return reached;
}

}  // namespace platform::owc
