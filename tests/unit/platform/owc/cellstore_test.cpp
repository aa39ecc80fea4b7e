#include "platform/owc/cellstore.h"

using namespace platform::owc;
using platform::basic::IsEmpty;
using platform::basic::Value;
using namespace Qt::StringLiterals;

TEST(CellStore, OnlyFilledCellsTakeRoom) {
  CellStore store;
  store.setValue({2, 1, 198, 8}, Value(u"x"_s));
  EXPECT_EQ(store.filled(), 198 * 8);
  store.setValue({2, 1, 198, 7}, {});
  EXPECT_EQ(store.filled(), 198);
  store.setValue({1, 1, maxRows, maxColumns}, {});
  EXPECT_EQ(store.filled(), 0);
}

TEST(CellStore, AnEmptyCellYieldsEmptyAndThePlainFormat) {
  const CellStore store;
  EXPECT_TRUE(IsEmpty(store.value(65536, 256)));
  EXPECT_EQ(store.format(65536, 256), CellFormat());
}

TEST(CellStore, AFormatReachesExactlyItsRange) {
  CellStore store;
  store.changeFormat({2, 2, 3, 2}, [](CellFormat& format) { format.bold = true; });
  for (int row = 1; row <= 6; ++row)
    for (int column = 1; column <= 4; ++column)
      EXPECT_EQ(store.format(row, column).bold, row >= 2 && row <= 4 && (column == 2 || column == 3))
          << row << ", " << column;
}

TEST(CellStore, OverlappingFormatsAddUp) {
  CellStore store;
  store.changeFormat({1, 1, maxRows, 1}, [](CellFormat& format) { format.bold = true; });
  store.changeFormat({5, 1, 1, maxColumns}, [](CellFormat& format) { format.color = 7; });
  EXPECT_TRUE(store.format(5, 1).bold);
  EXPECT_EQ(store.format(5, 1).color, 7);
  EXPECT_TRUE(store.format(4, 1).bold);
  EXPECT_EQ(store.format(4, 1).color, -1);
  EXPECT_EQ(store.format(5, 2).color, 7);
  EXPECT_FALSE(store.format(5, 2).bold);
  EXPECT_TRUE(store.format(65536, 1).bold);
}

TEST(CellStore, AFormatThatIsTakenBackLeavesTheOthersAlone) {
  CellStore store;
  const auto paint = [&](const CellRect& rect, qint32 color) {
    store.changeFormat(rect, [&](CellFormat& format) { format.color = color; });
  };
  paint({2, 1, 199, 1}, 1);
  for (int row = 2; row <= 200; ++row) {
    paint({row, 1, 1, 1}, 2);
    EXPECT_EQ(store.format(row, 1).color, 2);
    paint({row, 1, 1, 1}, 1);
  }
  EXPECT_EQ(store.format(1, 1).color, -1);
  EXPECT_EQ(store.format(2, 1).color, 1);
  EXPECT_EQ(store.format(200, 1).color, 1);
  EXPECT_EQ(store.format(201, 1).color, -1);
}

TEST(CellStore, TheFirstLockedCellIsFoundInReadingOrder) {
  CellStore store;
  const auto lock = [&](const CellRect& rect, bool on) {
    store.changeFormat(rect, [&](CellFormat& format) { format.locked = on; });
  };
  EXPECT_EQ(store.firstLocked({3, 3, 2, 2}), (CellRect{3, 3, 1, 1})) << "a fresh cell is locked";
  lock({1, 1, 10, 10}, false);
  EXPECT_EQ(store.firstLocked({1, 1, 10, 10}), std::nullopt);
  lock({7, 1, 1, 1}, true);
  lock({5, 9, 1, 1}, true);
  EXPECT_EQ(store.firstLocked({1, 1, 10, 10}), (CellRect{5, 9, 1, 1}));
  EXPECT_EQ(store.firstLocked({6, 1, 5, 10}), (CellRect{7, 1, 1, 1}));
  EXPECT_EQ(store.firstLocked({8, 1, 3, 10}), std::nullopt);
  EXPECT_EQ(store.firstLocked({8, 1, 3, 11}), (CellRect{8, 11, 1, 1}));
}
