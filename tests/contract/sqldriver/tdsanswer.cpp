#include "tdsanswer.h"

#include <bit>
#include <cstdint>

namespace contract {

using platform::basic::Currency;
using platform::basic::Value;

namespace tds {

QByteArray number(quint64 value, int bytes) {
  QByteArray out;
  for (int i = 0; i < bytes; ++i) out += static_cast<char>((value >> (8 * i)) & 0xFF);
  return out;
}

QByteArray wide(const QString& text) {
  QByteArray out;
  for (const QChar c : text) out += number(c.unicode(), 2);
  return out;
}

namespace {

// Latin1_General_CI_AS, code page 1252
const QByteArray collation("\x09\x04\xD0\x00\x34", 5);

QByteArray shortText(const QString& text) {
  return number(static_cast<quint64>(text.size()), 1) + wide(text);
}

QByteArray withLength(quint8 token, const QByteArray& body) {
  return number(token, 1) + number(static_cast<quint64>(body.size()), 2) + body;
}

QByteArray environment(int kind, const QByteArray& changed) {
  return withLength(0xE3, number(static_cast<quint64>(kind), 1) + changed);
}

}  // namespace

QByteArray message(quint8 token, int messageNumber, int severity, const QString& text) {
  return withLength(token, number(static_cast<quint64>(messageNumber), 4) + number(1, 1) +
                               number(static_cast<quint64>(severity), 1) +
                               number(static_cast<quint64>(text.size()), 2) + wide(text) +
                               shortText(u"peer"_qs) + shortText({}) + number(1, 4));
}

QByteArray done(quint8 token, int flags, qint64 count) {
  return number(token, 1) + number(static_cast<quint64>(flags), 2) + number(0xC1, 2) +
         number(static_cast<quint64>(count), 8);
}

QByteArray loginAccepted(const QString& database, int packetSize) {
  QByteArray out = environment(1, shortText(database) + shortText(u"master"_qs));
  out += message(tokenInfo, 5701, 0, u"Changed database context to '%1'."_qs.arg(database));
  out += environment(7, number(5, 1) + collation + number(0, 1));
  out += environment(2, shortText(u"us_english"_qs) + shortText({}));
  out += message(tokenInfo, 5703, 0, u"Changed language setting to us_english."_qs);
  out += withLength(0xAD, number(1, 1) + QByteArray("\x74\x00\x00\x04", 4) +
                              shortText(u"Microsoft SQL Server"_qs) + QByteArray("\x0F\x00\x07\xD0", 4));
  out += environment(4, shortText(QString::number(packetSize)) + shortText(u"4096"_qs));
  return out + done(tokenDone, 0, 0);
}

}  // namespace tds

namespace {

using tds::number;
using tds::wide;

QByteArray typeOf(TdsType type) {
  const auto plain = [](int token, int size) {
    return number(static_cast<quint64>(token), 1) + number(static_cast<quint64>(size), 1);
  };
  switch (type) {
    case TdsType::Bit:
      return plain(0x68, 1);
    case TdsType::SmallInt:
      return plain(0x26, 2);
    case TdsType::Int:
      return plain(0x26, 4);
    case TdsType::BigInt:
      return plain(0x26, 8);
    case TdsType::Real:
      return plain(0x6D, 4);
    case TdsType::Float:
      return plain(0x6D, 8);
    case TdsType::Money:
      return plain(0x6E, 8);
    case TdsType::DateTime:
      return plain(0x6F, 8);
    case TdsType::NVarChar:
      return number(0xE7, 1) + number(510, 2) + tds::collation;
    case TdsType::NVarCharMax:
      return number(0xE7, 1) + number(0xFFFF, 2) + tds::collation;
    case TdsType::NText:
      break;
  }
  // with the table that it stands in
  return number(0x63, 1) + number(0x7FFFFFFE, 4) + tds::collation + number(1, 1) + number(1, 2) +
         wide(u"t"_qs);
}

/// As a whole number, whatever it is given as.
qint64 wholeOf(const Value& value) {
  return std::visit(
      [](const auto& held) -> qint64 {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_arithmetic_v<Held>)
          return static_cast<qint64>(held);
        else
          return 0;
      },
      value);
}

QByteArray sized(QByteArray bytes) {
  return number(static_cast<quint64>(bytes.size()), 1) + bytes;
}

QByteArray dateTime(int days, int ticks) {
  return number(static_cast<quint32>(days), 4) + number(static_cast<quint32>(ticks), 4);
}

QByteArray money(const Value& value) {
  const auto* amount = std::get_if<Currency>(&value);
  const auto units = static_cast<quint64>(amount ? amount->tenThousandths() : 0);
  return number(units >> 32, 4) + number(units & 0xFFFFFFFF, 4);
}

QByteArray nullOf(TdsType type) {
  if (type == TdsType::NVarChar) return number(0xFFFF, 2);
  if (type == TdsType::NVarCharMax) return number(~quint64{0}, 8);
  return number(0, 1);
}

QByteArray textOf(TdsType type, const QByteArray& text) {
  const auto size = static_cast<quint64>(text.size());
  if (type == TdsType::NVarChar) return number(size, 2) + text;
  if (type == TdsType::NText)
    return number(16, 1) + QByteArray(16, 'p') + QByteArray(8, 't') + number(size, 4) + text;
  QByteArray out = number(size, 8);
  constexpr qsizetype chunk = 1000;  // so that a long text comes in several
  for (qsizetype at = 0; at < text.size(); at += chunk) {
    const QByteArray part = text.mid(at, chunk);
    out += number(static_cast<quint64>(part.size()), 4) + part;
  }
  return out + number(0, 4);
}

QByteArray valueOf(TdsType type, const Value& value) {
  using namespace platform::basic;
  if (IsNull(value)) return nullOf(type);
  switch (type) {
    case TdsType::Bit:
      return sized(number(wholeOf(value) != 0 ? 1 : 0, 1));
    case TdsType::SmallInt:
      return sized(number(static_cast<quint64>(wholeOf(value)), 2));
    case TdsType::Int:
      return sized(number(static_cast<quint64>(wholeOf(value)), 4));
    case TdsType::BigInt:
      return sized(number(static_cast<quint64>(wholeOf(value)), 8));
    case TdsType::Real:
      return sized(number(std::bit_cast<quint32>(std::get<float>(value)), 4));
    case TdsType::Float:
      return sized(number(std::bit_cast<quint64>(std::get<double>(value)), 8));
    case TdsType::Money:
      return sized(money(value));
    case TdsType::DateTime: {
      const Date date = std::get<Date>(value);
      const auto days = static_cast<int>(QDate(1900, 1, 1).daysTo(date.date()));
      return sized(dateTime(days, date.time().msecsSinceStartOfDay() / 1000 * 300));
    }
    case TdsType::NVarChar:
    case TdsType::NVarCharMax:
    case TdsType::NText:
      break;
  }
  return textOf(type, wide(std::get<QString>(value)));
}

}  // namespace

TdsAnswer& TdsAnswer::columns(const QList<TdsColumn>& columns) {
  QByteArray out = number(0x81, 1) + number(static_cast<quint64>(columns.size()), 2);
  for (const TdsColumn& column : columns)
    out += number(0, 4) + number(0x09, 2) + typeOf(column.type) + tds::shortText(column.name);
  columns_ = columns;
  rows_ = 0;
  pieces_.append({false, 0, 0, out});
  return *this;
}

TdsAnswer& TdsAnswer::row(const QList<Value>& values) {
  QByteArray out = number(0xD1, 1);
  for (qsizetype i = 0; i < columns_.size(); ++i)
    out += valueOf(columns_[i].type, values.value(i, platform::basic::Null{}));
  ++rows_;
  pieces_.append({false, 0, 0, out});
  return *this;
}

TdsAnswer& TdsAnswer::rawDateTime(int days, int ticks) {
  ++rows_;
  pieces_.append({false, 0, 0, number(0xD1, 1) + sized(dateTime(days, ticks))});
  return *this;
}

TdsAnswer& TdsAnswer::done() {
  pieces_.append({true, tds::doneCount, rows_, {}});
  return *this;
}

TdsAnswer& TdsAnswer::counted(int rows) {
  pieces_.append({true, tds::doneCount, rows, {}});
  return *this;
}

TdsAnswer& TdsAnswer::error(int messageNumber, const QString& text, int severity) {
  pieces_.append({false, 0, 0, tds::message(tds::tokenError, messageNumber, severity, text)});
  pieces_.append({true, tds::doneError, 0, {}});
  return *this;
}

TdsAnswer& TdsAnswer::info(int messageNumber, const QString& text) {
  pieces_.append({false, 0, 0, tds::message(tds::tokenInfo, messageNumber, 0, text)});
  return *this;
}

TdsAnswer& TdsAnswer::cut(int bytesBefore) {
  bytesBefore_ = bytesBefore;
  end_ = End::Cut;
  return *this;
}

TdsAnswer& TdsAnswer::tear(int bytes) {
  tornAfter_ = bytes;
  end_ = End::Torn;
  return *this;
}

TdsAnswer& TdsAnswer::silence(bool answersAttention) {
  end_ = answersAttention ? End::Silence : End::DeafSilence;
  return *this;
}

QByteArray TdsAnswer::bytes(bool inProcedure) const {
  const bool isWhole = end_ == End::Whole || end_ == End::Torn;
  qsizetype last = -1;
  for (qsizetype i = 0; i < pieces_.size(); ++i)
    if (pieces_[i].isDone) last = i;
  QByteArray out;
  for (qsizetype i = 0; i < pieces_.size(); ++i) {
    const Piece& piece = pieces_[i];
    if (!piece.isDone) {
      out += piece.bytes;
      continue;
    }
    const bool more = inProcedure || i != last || !isWhole;
    out += tds::done(inProcedure ? tds::tokenDoneInProcedure : tds::tokenDone,
                     piece.flags | (more ? tds::doneMore : 0), piece.count);
  }
  if (!isWhole) return out.chopped(bytesBefore_);
  if (inProcedure) out += number(0x79, 1) + number(0, 4) + tds::done(tds::tokenDoneProcedure, 0, 0);
  if (!inProcedure && last < 0) out += tds::done(tds::tokenDone, 0, 0);
  return out;
}

}  // namespace contract
