#pragma once
#include <QtGlobal>

// Numbers of the database engine that the embedded one stands in for. A driver gives its failures these
// numbers.
namespace platform::sql::errors {
inline constexpr qint32 tableExists = 3010;
inline constexpr qint32 objectExists = 3012;
inline constexpr qint32 duplicateKey = 3022;
inline constexpr qint32 fileNotFound = 3024;
inline constexpr qint32 diskFull = 3026;
inline constexpr qint32 readOnly = 3027;
inline constexpr qint32 diskError = 3043;
inline constexpr qint32 invalidPath = 3044;
inline constexpr qint32 locked = 3045;
inline constexpr qint32 damaged = 3049;
inline constexpr qint32 noPermission = 3051;
inline constexpr qint32 syntax = 3075;
inline constexpr qint32 tableNotFound = 3078;
inline constexpr qint32 invalidName = 3125;
inline constexpr qint32 fieldTooSmall = 3163;
inline constexpr qint32 duplicateField = 3191;
/// Another file has taken the place of the one that was opened.
inline constexpr qint32 replacedByAnother = 3197;
inline constexpr qint32 relatedRecords = 3200;
inline constexpr qint32 relatedRecordRequired = 3201;
inline constexpr qint32 databaseExists = 3204;
inline constexpr qint32 noFieldDefined = 3264;
inline constexpr qint32 itemNotFound = 3265;
inline constexpr qint32 primaryKeyExists = 3283;
inline constexpr qint32 valueRequired = 3314;
inline constexpr qint32 zeroLength = 3315;
inline constexpr qint32 unrecognizedFormat = 3343;
inline constexpr qint32 objectInvalid = 3420;
inline constexpr qint32 unreadableValue = 3421;
inline constexpr qint32 noUniqueIndex = 3609;
/// A select of a column that the table does not have.
inline constexpr qint32 noSuchColumn = -2147217904;
/// A statement that the engine cannot carry out; the description is the engine's own.
inline constexpr qint32 statementFailed = -2147217900;
/// A connection string that does not have the form of one.
inline constexpr qint32 badConnectionString = -2147217805;
inline constexpr qint32 providerNotFound = 3706;
/// A server that cannot be reached, does not know the database, or is lost in between.
inline constexpr qint32 connectionFailed = -2147467259;
/// A statement that the server did not answer in time.
inline constexpr qint32 timeout = -2147217871;
/// A server that refuses the user or the password.
inline constexpr qint32 loginFailed = -2147217843;
}  // namespace platform::sql::errors
