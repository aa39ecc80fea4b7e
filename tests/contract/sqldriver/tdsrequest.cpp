#include "tdsrequest.h"

#include <QDate>
#include <QTime>

#include <bit>

namespace contract {

namespace {

/// Walks over what stands on the wire, numbers little-endian.
class Bytes {
 public:
  explicit Bytes(const QByteArray& bytes) : bytes_(bytes) {}
  bool atEnd() const { return at_ >= bytes_.size(); }
  quint64 number(int size) {
    quint64 value = 0;
    for (int i = 0; i < size; ++i) value |= quint64{byteAt(at_ + i)} << (8 * i);
    at_ += size;
    return value;
  }
  QByteArray take(qsizetype size) {
    const QByteArray taken = bytes_.mid(at_, size);
    at_ += size;
    return taken;
  }
  void skip(qsizetype size) { at_ += size; }

 private:
  quint8 byteAt(qsizetype at) const { return at < bytes_.size() ? static_cast<quint8>(bytes_[at]) : 0; }
  const QByteArray& bytes_;
  qsizetype at_ = 0;
};

QString textOf(const QByteArray& bytes) {
  QString text;
  for (qsizetype i = 0; i + 1 < bytes.size(); i += 2)
    text +=
        QChar(static_cast<char16_t>(static_cast<quint8>(bytes[i]) | static_cast<quint8>(bytes[i + 1]) << 8));
  return text;
}

/// Behind the headers that a request begins with.
QByteArray withoutHeaders(const QByteArray& body) {
  return body.mid(static_cast<qsizetype>(Bytes(body).number(4)));
}

QString timeOf(quint64 units, int scale) {
  for (; scale < 3; ++scale) units *= 10;
  for (; scale > 3; --scale) units /= 10;
  return QTime::fromMSecsSinceStartOfDay(static_cast<int>(units)).toString(u"HH:mm:ss.zzz"_qs);
}

QString decimalOf(const QByteArray& bytes, int scale) {
  Bytes reader(bytes);
  const bool positive = reader.number(1) != 0;
  QString digits = QString::number(reader.number(8));
  while (digits.size() <= scale) digits.prepend(u'0');
  return (positive ? u""_qs : u"-"_qs) + digits.left(digits.size() - scale) + u'.' + digits.right(scale);
}

/// Of numbers, which say their size before them.
TdsParameter numberParameter(int token, Bytes& bytes) {
  const int declared = static_cast<int>(bytes.number(1));
  const int size = static_cast<int>(bytes.number(1));
  const quint64 raw = bytes.number(size);
  const auto value = [&](const QString& text) { return size == 0 ? u"NULL"_qs : text; };
  switch (token) {
    case 0x68:
      return {u"bit"_qs, value(QString::number(raw))};
    case 0x6D:
      if (declared == 4)
        return {u"real"_qs, value(QString::number(std::bit_cast<float>(static_cast<quint32>(raw))))};
      return {u"float"_qs, value(QString::number(std::bit_cast<double>(raw), 'g', 17))};
    case 0x6F:
      return {u"datetime"_qs,
              value(QDate(1900, 1, 1).addDays(static_cast<qint32>(raw & 0xFFFFFFFF)).toString(Qt::ISODate) +
                    u' ' +
                    QTime::fromMSecsSinceStartOfDay(static_cast<int>((raw >> 32) * 1000 / 300))
                        .toString(u"HH:mm:ss.zzz"_qs))};
    default:
      break;
  }
  const int shift = 64 - 8 * size;
  const qint64 whole = size == 0 ? 0 : static_cast<qint64>(raw << shift) >> shift;
  const QString name = declared == 1   ? u"tinyint"_qs
                       : declared == 2 ? u"smallint"_qs
                       : declared == 4 ? u"int"_qs
                                       : u"bigint"_qs;
  return {name, value(QString::number(whole))};
}

QByteArray chunks(Bytes& bytes, bool* isNull) {
  *isNull = bytes.number(8) == ~quint64{0};
  QByteArray all;
  if (*isNull) return all;
  while (const auto size = static_cast<qsizetype>(bytes.number(4))) all += bytes.take(size);
  return all;
}

TdsParameter textParameter(Bytes& bytes) {
  const auto declared = static_cast<int>(bytes.number(2));
  bytes.skip(5);  // the collation
  bool isNull = false;
  QByteArray held;
  if (declared == 0xFFFF) {
    held = chunks(bytes, &isNull);
  } else {
    const auto size = static_cast<int>(bytes.number(2));
    isNull = size == 0xFFFF;
    if (!isNull) held = bytes.take(size);
  }
  return {declared == 0xFFFF ? u"nvarchar(max)"_qs : u"nvarchar(%1)"_qs.arg(declared / 2),
          isNull ? u"NULL"_qs : textOf(held)};
}

TdsParameter longTextParameter(Bytes& bytes) {
  bytes.skip(4 + 5);
  const auto size = static_cast<qint32>(bytes.number(4));
  return {u"ntext"_qs, size < 0 ? u"NULL"_qs : textOf(bytes.take(size))};
}

TdsParameter decimalParameter(Bytes& bytes) {
  bytes.skip(1);
  const int precision = static_cast<int>(bytes.number(1)), scale = static_cast<int>(bytes.number(1));
  const auto size = static_cast<int>(bytes.number(1));
  return {u"decimal(%1,%2)"_qs.arg(precision).arg(scale),
          size == 0 ? u"NULL"_qs : decimalOf(bytes.take(size), scale)};
}

TdsParameter momentParameter(Bytes& bytes) {
  const int scale = static_cast<int>(bytes.number(1));
  const auto size = static_cast<int>(bytes.number(1));
  if (size == 0) return {u"datetime2(%1)"_qs.arg(scale), u"NULL"_qs};
  const QString time = timeOf(bytes.number(size - 3), scale);
  return {u"datetime2(%1)"_qs.arg(scale),
          QDate(1, 1, 1).addDays(static_cast<qint64>(bytes.number(3))).toString(Qt::ISODate) + u' ' + time};
}

TdsParameter parameterOf(Bytes& bytes) {
  bytes.skip(static_cast<qsizetype>(bytes.number(1)) * 2);  // its name
  bytes.skip(1);
  const int token = static_cast<int>(bytes.number(1));
  switch (token) {
    case 0x26:
    case 0x68:
    case 0x6D:
    case 0x6F:
      return numberParameter(token, bytes);
    case 0xE7:
      return textParameter(bytes);
    case 0x63:
      return longTextParameter(bytes);
    case 0x6A:
    case 0x6C:
      return decimalParameter(bytes);
    case 0x2A:
      return momentParameter(bytes);
    default:
      break;
  }
  bytes.skip(1 << 20);  // nothing behind it can be read
  return {u"type %1"_qs.arg(token, 0, 16), u"?"_qs};
}

}  // namespace

TdsLogin TdsLogin::read(const QByteArray& body) {
  TdsLogin login;
  Bytes bytes(body);
  bytes.skip(4);
  login.version = static_cast<quint32>(bytes.number(4));
  bytes.skip(16 + 1);
  const auto flags = bytes.number(1);
  login.odbc = (flags & 0x02) != 0;
  login.trusted = (flags & 0x80) != 0;
  bytes.skip(2 + 8);
  const auto piece = [&](bool hidden = false) {
    const auto offset = static_cast<qsizetype>(bytes.number(2));
    const auto length = static_cast<qsizetype>(bytes.number(2));
    QByteArray raw = body.mid(offset, length * 2);
    if (hidden)
      for (char& c : raw) {
        const auto plain = static_cast<quint8>(c) ^ 0xA5;
        c = static_cast<char>(((plain << 4) & 0xF0) | (plain >> 4));
      }
    return textOf(raw);
  };
  login.host = piece();
  login.user = piece();
  login.password = piece(true);
  login.application = piece();
  login.server = piece();
  bytes.skip(4);
  piece();  // the library's name
  login.language = piece();
  login.database = piece();
  bytes.skip(6);  // the machine
  const auto ticketAt = static_cast<qsizetype>(bytes.number(2));
  login.ticket = body.mid(ticketAt, static_cast<qsizetype>(bytes.number(2)));
  login.attachedFile = piece();
  return login;
}

TdsRequest TdsRequest::ofBatch(const QByteArray& body) {
  TdsRequest request;
  request.statement = textOf(withoutHeaders(body));
  return request;
}

TdsRequest TdsRequest::ofCall(const QByteArray& body) {
  TdsRequest request;
  request.isCall = true;
  const QByteArray plain = withoutHeaders(body);
  Bytes bytes(plain);
  const auto length = static_cast<qsizetype>(bytes.number(2));
  if (length == 0xFFFF)
    request.procedure = static_cast<int>(bytes.number(2));
  else
    request.statement = textOf(bytes.take(length * 2));
  bytes.skip(2);
  while (!bytes.atEnd()) request.parameters.append(parameterOf(bytes));
  constexpr int executeSql = 10;
  if (request.procedure == executeSql && !request.parameters.isEmpty()) {
    request.statement = request.parameters.takeFirst().value;
    if (!request.parameters.isEmpty()) request.declarations = request.parameters.takeFirst().value;
  }
  return request;
}

}  // namespace contract
