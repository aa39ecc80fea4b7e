#include "platform/owc/ixionengine.h"

#include <cmath>
#include <ixion/address.hpp>
#include <ixion/cell.hpp>
#include <ixion/exceptions.hpp>
#include <ixion/formula.hpp>
#include <ixion/formula_name_resolver.hpp>
#include <ixion/formula_result.hpp>
#include <ixion/formula_tokens.hpp>
#include <ixion/model_context.hpp>

namespace platform::owc {

namespace {

/// A model for one formula: the cells that it reads as plain values, its literals in the row below the sheet,
/// and the formula beside these.
class Model {
 public:
  Model() : context_({maxRows + 1, maxColumns + 1}) { context_.append_sheet("sheet"); }

  void put(const FormulaInput& input) {
    const ixion::abs_address_t place(0, input.row - 1, input.column - 1);
    if (input.number)
      context_.set_numeric_cell(place, *input.number);
    else
      context_.set_string_cell(place, input.text.toStdString());
  }

  void putLiterals(const QList<QByteArray>& literals) {
    for (int i = 0; i < literals.size(); ++i)
      context_.set_string_cell({0, maxRows, i},
                               std::string_view(literals[i].constData(), literals[i].size()));
  }

  ixion::formula_result result(const QByteArray& expression) {
    const ixion::abs_address_t place(0, maxRows, maxColumns);
    const auto names = ixion::formula_name_resolver::get(ixion::formula_name_resolver_t::excel_a1, &context_);
    auto tokens = ixion::formula_tokens_store::create();
    tokens->get() = ixion::parse_formula_string(context_, place, *names,
                                                std::string_view(expression.constData(), expression.size()));
    ixion::formula_cell* cell = context_.set_formula_cell(place, tokens);
    cell->interpret(context_, place);
    return cell->get_result_cache(ixion::formula_result_wait_policy_t::throw_exception);
  }

 private:
  ixion::model_context context_;
};

/// The expression with its spread ranges written out as the numbers' cells.
QByteArray writtenOut(const FormulaText& formula, const QList<FormulaInput>& inputs) {
  QByteArray expression = formula.expression;
  for (auto range = formula.spread.crbegin(); range != formula.spread.crend(); ++range) {
    QByteArrayList cells;
    for (const FormulaInput& input : inputs)
      if (input.number && range->rect.contains(input.row, input.column))
        cells.append(cellsInFormula({input.row, input.column, 1, 1}));
    expression.insert(range->at, cells.isEmpty() ? range->none : cells.join(','));
  }
  return expression;
}

QString errorText(ixion::formula_error_t error) {
  switch (error) {
    case ixion::formula_error_t::division_by_zero:
      return errorDivision;
    case ixion::formula_error_t::name_not_found:
    case ixion::formula_error_t::no_error:  // tokens that are no expression
      return errorName;
    case ixion::formula_error_t::ref_result_not_available:
      return errorReference;
    default:
      return errorValue;
  }
}

FormulaResult asValue(const ixion::formula_result& result) {
  using Type = ixion::formula_result::result_type;
  switch (result.get_type()) {
    case Type::value:
      if (!std::isfinite(result.get_value())) return {errorValue, true};
      return {result.get_value(), false};
    case Type::string:
      return {QString::fromStdString(result.get_string()), false};
    case Type::error:
      return {errorText(result.get_error()), true};
    default:
      return {errorValue, true};  // a table of values does not fit one cell
  }
}

}  // namespace

FormulaResult calculated(const FormulaText& formula, const QList<FormulaInput>& inputs) {
  try {
    Model model;
    for (const FormulaInput& input : inputs) model.put(input);
    model.putLiterals(formula.literals);
    return asValue(model.result(writtenOut(formula, inputs)));
  } catch (const ixion::not_implemented_error&) {
    return {errorName, true};
  } catch (const std::exception&) {
    return {errorValue, true};
  }
}

}  // namespace platform::owc
