#include "companions/settings/common/rates.h"

#include "companions/settings/common/commontexts.h"
#include "platform/locale/locale.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::basic::Currency;

namespace {

constexpr int decimals = 4;
constexpr int groupSize = 3;

bool isDigits(const QString& text) {
  for (const QChar c : text)
    if (c < u'0' || c > u'9') return false;
  return true;
}

/// The digits of a whole number without the signs between thousands; null when these stand elsewhere.
QString wholeDigits(const QString& text) {
  const QString sign = platform::locale::current().groupSign();
  if (sign.isEmpty()) return text;
  QString plain = text;
  // A typed blank is as good as the unbroken one that the system writes.
  if (sign.front().isSpace())
    for (QChar& c : plain)
      if (c.isSpace()) c = sign.front();
  if (!plain.contains(sign)) return plain;
  const QStringList groups = plain.split(sign);
  for (qsizetype i = 0; i < groups.size(); ++i) {
    const bool whole = groups[i].size() == groupSize;
    const bool first = i == 0 && !groups[i].isEmpty() && groups[i].size() <= groupSize;
    if (!whole && !first) return {};
  }
  return groups.join(QString());
}

ReadRate refused(const QString& reason) {
  return {{}, reason};
}

QString exampleRate() {
  return rateText(Currency::fromTenThousandths(4505000));
}

}  // namespace

QString rateText(const Currency& rate) {
  QString text = rate.toPlainText();
  const qsizetype dot = text.indexOf(u'.');
  if (dot >= 0 && text.size() - dot == 2) text += u'0';
  return text.replace(u"."_s, platform::locale::current().decimalSign());
}

ReadRate readRate(const QString& text) {
  QString rest = text.trimmed();
  if (rest.isEmpty()) return {};
  const bool negative = rest.startsWith(u'-') || rest.startsWith(QChar(0x2212));
  if (negative) rest = rest.mid(1);
  const QStringList parts = rest.split(platform::locale::current().decimalSign());
  const QString whole = wholeDigits(parts.first());
  const QString fraction = parts.value(1);
  if (parts.size() > 2 || (whole + fraction).isEmpty() || !isDigits(whole) || !isDigits(fraction) ||
      (whole.isEmpty() && !parts.first().isEmpty()))
    return refused(commontexts::rateNoNumber.arg(exampleRate()));
  if (fraction.size() > decimals) return refused(commontexts::rateDecimals);
  bool fits = true;
  const qint64 units = (whole + fraction.leftJustified(decimals, u'0')).toLongLong(&fits);
  if (!fits) return refused(commontexts::rateTooLarge);
  return {Currency::fromTenThousandths(negative ? -units : units), {}};
}

}  // namespace hourbook
