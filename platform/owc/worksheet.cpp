#include "platform/owc/worksheet.h"

#include "platform/owc/sheetdata.h"

namespace platform::owc {

Protection::Protection(Spreadsheet& sheet, Generation generation)
    : AllowSizingAllColumns("AllowSizingAllColumns", generation == Generation::Office2000, columns_,
                            [&sheet] { Q_EMIT sheet.layoutChanged(); }),
      AllowSizingAllRows("AllowSizingAllRows", generation == Generation::Office2000, rows_),
      AllowFormattingColumns("AllowFormattingColumns", generation != Generation::Office2000, columns_,
                             [&sheet] { Q_EMIT sheet.layoutChanged(); }),
      AllowFormattingRows("AllowFormattingRows", generation != Generation::Office2000, rows_) {}

void Worksheet::Calculate() {
  sheet_->d_->calculationWaits = false;
  sheet_->calculate({});
  if (sheet_->EnableEvents && !sheet_->isGeneration9()) Q_EMIT sheet_->Calculate();
}

Range Worksheet::UsedRange() {
  return {*sheet_, sheet_->d_->cells.usedRect().value_or(CellRect())};
}

}  // namespace platform::owc
