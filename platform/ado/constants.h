#pragma once
#include <QtGlobal>

namespace platform::ado {
enum CursorLocation { adUseServer = 2, adUseClient = 3 };
enum CursorType { adOpenForwardOnly = 0, adOpenKeyset = 1, adOpenDynamic = 2, adOpenStatic = 3 };
enum LockType { adLockReadOnly = 1, adLockPessimistic = 2, adLockOptimistic = 3, adLockBatchOptimistic = 4 };
enum CommandType { adCmdText = 1 };
enum DataType {
  adSmallInt = 2,
  adInteger = 3,
  adSingle = 4,
  adDouble = 5,
  adCurrency = 6,
  adDate = 7,
  adBSTR = 8,
  adBoolean = 11,
  adBigInt = 20,
  adDBDate = 133,
  adVarWChar = 202,
  adLongVarWChar = 203
};
inline constexpr int adFldUnspecified = -1;
inline constexpr int adStateClosed = 0;
inline constexpr int adStateOpen = 1;

// numbers of the component's own failures
inline constexpr qint32 adErrInvalidArgument = 3001;
inline constexpr qint32 adErrNoCurrentRecord = 3021;
inline constexpr qint32 adErrItemNotFound = 3265;
inline constexpr qint32 adErrObjectClosed = 3704;
inline constexpr qint32 adErrObjectOpen = 3705;
inline constexpr qint32 adErrProviderNotFound = 3706;
inline constexpr qint32 adErrInvalidConnection = 3709;
inline constexpr qint32 adErrFeatureNotAvailable = 3251;
inline constexpr qint32 adErrDataConversion = 3421;
inline constexpr qint32 adErrIllegalOperation = 3219;
inline constexpr qint32 adErrMultipleStep = -2147217887;   // a text longer than its column
inline constexpr qint32 adErrRowNotLocated = -2147217864;  // the row has been changed or deleted by another
inline constexpr qint32 adErrNoKeyColumn = -2147467259;
}  // namespace platform::ado
