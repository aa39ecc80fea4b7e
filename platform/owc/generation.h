#pragma once
#include <QtGlobal>

// What one generation of the component calls by other names or numbers than another. The engine knows none of
// it: a member takes the number of its generation and turns it into the engine's own.
namespace platform::owc {

enum class Generation { Office2000 = 9, OfficeXP = 10, Office2003 = 11 };

/// The component's failure number: no such address, a locked cell, a value that a property cannot take.
inline constexpr qint32 sheetFailure = 1004;
/// A member that the generation does not have.
inline constexpr qint32 noSuchMember = 438;

// Generations 10 and 11.
inline constexpr int xlCalculationManual = -4135;
inline constexpr int xlCalculationAutomatic = -4105;
inline constexpr int xlGeneral = 1, xlLeft = -4131, xlCenter = -4108, xlRight = -4152;
inline constexpr int xlDown = -4121, xlToLeft = -4159, xlToRight = -4161, xlUp = -4162;
inline constexpr int xlEdgeLeft = 7, xlEdgeTop = 8, xlEdgeBottom = 9, xlEdgeRight = 10;
inline constexpr int xlContinuous = 1, xlDash = -4115, xlDot = -4118, xlLineStyleNone = -4142;
inline constexpr int xlHairline = 1, xlThin = 2, xlMedium = -4138, xlThick = 4;

// Generation 9.
inline constexpr int ssAlignLeft = 0, ssAlignRight = 1, ssAlignCenter = 2;
inline constexpr int ssMoveDown = 0, ssMoveRight = 2;
inline constexpr int ssEdgeRight = 3, ssEdgeTop = 4;
inline constexpr int ssLineNone = 0, ssLineSolid = 1, ssLineDash = 3;
inline constexpr int ssFreezeTopLeft = 4, ssUnfreeze = 16;

/// `Constants` of the spreadsheet.
struct SheetConstants {
  static constexpr int owcLineWeightThin = 2;
};

/// Failure 438 in the component's words, with the member's name as its source.
[[noreturn]] void throwNoSuchMember(const char* member);
inline void requireMember(bool exists, const char* member) {
  if (!exists) throwNoSuchMember(member);
}

}  // namespace platform::owc
