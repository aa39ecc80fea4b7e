#pragma once
#include "platform/basic/value.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace contract {

/// Column types as a server tells them.
enum class TdsType { Bit, SmallInt, Int, BigInt, Real, Float, Money, DateTime, NVarChar, NVarCharMax, NText };

struct TdsColumn {
  QString name;
  TdsType type = TdsType::NVarChar;
};

/// What the scripted server says to one statement, piece by piece, as it stands on the wire (TDS 7.4).
class TdsAnswer {
 public:
  TdsAnswer& columns(const QList<TdsColumn>& columns);
  TdsAnswer& row(const QList<platform::basic::Value>& values);  // Null for NULL; money as Currency
  TdsAnswer& rawDateTime(int days, int ticks);  // a row of one date: since 1900, and 1/300 s since midnight
  TdsAnswer& done();                            // of a statement, behind its rows
  TdsAnswer& counted(int rows);                 // of a statement that changes rows
  TdsAnswer& error(int number, const QString& text, int severity = 16);
  TdsAnswer& info(int number, const QString& text);

  /// The connection is closed here ...
  TdsAnswer& cut(int bytesBefore = 0);  // ... or so many bytes before, inside of the last piece
  /// The whole of it is on its way, and the connection breaks when so many bytes have come, headers counted.
  TdsAnswer& tear(int bytes);
  int tornAfter() const { return tornAfter_; }  // -1: not at all
  /// Nothing more is said; an attention is answered, or not.
  TdsAnswer& silence(bool answersAttention);

  enum class End { Whole, Cut, Torn, Silence, DeafSilence };
  End end() const { return end_; }
  /// For a statement of its own, or one within a procedure.
  QByteArray bytes(bool inProcedure) const;

 private:
  struct Piece {
    bool isDone = false;
    int flags = 0;
    qint64 count = 0;
    QByteArray bytes;
  };
  QList<Piece> pieces_;
  QList<TdsColumn> columns_;
  qint64 rows_ = 0;
  int bytesBefore_ = 0;
  int tornAfter_ = -1;
  End end_ = End::Whole;
};

// the pieces that a login is answered with
namespace tds {
QByteArray number(quint64 value, int bytes);  // little-endian
QByteArray wide(const QString& text);         // UTF-16
QByteArray loginAccepted(const QString& database, int packetSize);
QByteArray message(quint8 token, int number, int severity, const QString& text);
QByteArray done(quint8 token, int flags, qint64 count);
inline constexpr quint8 tokenError = 0xAA, tokenInfo = 0xAB;
inline constexpr quint8 tokenDone = 0xFD, tokenDoneProcedure = 0xFE, tokenDoneInProcedure = 0xFF;
inline constexpr int doneMore = 1, doneError = 2, doneCount = 0x10, doneAttention = 0x20;
}  // namespace tds

}  // namespace contract
