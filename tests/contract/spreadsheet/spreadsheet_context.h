#pragma once
#include "platform/basic/failure.h"
#include "platform/locale/locale.h"
#include "platform/owc/editing.h"
#include "platform/owc/spreadsheet.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>

namespace contract {

using namespace Qt::StringLiterals;
namespace owc = platform::owc;
using owc::CellRect;
using platform::Failure;
using platform::basic::Value;

/// One sheet of each generation, and what its events told. Where the generations differ, a test says so by
/// `nine`; everything else is the same for all three.
class Sheets : public testing::TestWithParam<owc::Generation> {
 protected:
  Sheets() {
    QObject::connect(&sheet, &owc::Spreadsheet::EndEdit, &context, [this](owc::EndEditEvent& event) {
      told.append(
          u"EndEdit %1 '%2' over '%3'"_s.arg(event.Range.Address(), event.EditData, event.Range.Text()));
      event.Cancel = cancels;
    });
    QObject::connect(&sheet, &owc::Spreadsheet::SelectionChanging, &context,
                     [this](const owc::SelectionChangingEvent& event) {
                       told.append(u"SelectionChanging %1 from %2"_s.arg(event.Range.Address(),
                                                                         sheet.Selection().Address()));
                     });
    QObject::connect(&sheet, &owc::Spreadsheet::SelectionChange, &context,
                     [this] { told.append(u"SelectionChange %1"_s.arg(sheet.Selection().Address())); });
    QObject::connect(&sheet, &owc::Spreadsheet::SheetChange, &context, [this](const owc::Range& target) {
      told.append(u"SheetChange %1 '%2'"_s.arg(target.Address(), target.Text()));
      if (onChange) onChange();
    });
    QObject::connect(&sheet, &owc::Spreadsheet::Calculate, &context, [this] { told.append(u"Calculate"_s); });
  }

  owc::Range at(const QString& address) { return sheet.Range(address); }
  void set(const QString& address, const Value& value) { at(address).setValue(value); }
  void set(const QString& address, const QString& text) { at(address).setValue(Value(text)); }
  QString text(const QString& address) { return at(address).Text(); }
  QString formula(const QString& address, const QString& formula) {
    at(address).setFormula(formula);
    return text(address);
  }
  /// As the user ends an edit, with Enter that goes to the cell below.
  bool type(const QString& address, const QString& text) {
    const CellRect cell = at(address).rect();
    return editing.end(cell, text, CellRect{cell.row + 1, cell.column, 1, 1});
  }
  QStringList toldSince() { return std::exchange(told, {}); }

  static qint32 failureOf(const std::function<void()>& statements) {
    try {
      statements();
    } catch (const Failure& failure) {
      return failure.number();
    }
    return 0;
  }

  const bool nine = GetParam() == owc::Generation::Office2000;
  platform::locale::ScopedLocale locale{u"en_US"_s};
  owc::Spreadsheet sheet{GetParam()};
  owc::Editing editing{sheet};
  QObject context;
  QStringList told;
  bool cancels = false;
  std::function<void()> onChange;
};

}  // namespace contract
