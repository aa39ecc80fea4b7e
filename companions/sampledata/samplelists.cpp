#include "companions/sampledata/samplelists.h"

namespace sampledata {

using namespace Qt::StringLiterals;
using platform::basic::Currency;

static Currency rate(qint64 whole, qint64 tenThousandths = 0) {
  return Currency::fromTenThousandths(whole * 10000 + tenThousandths);
}

const QList<MetaList>& metaLists() {
  static const QList<MetaList> lists{{u"Customer"_s,
                                      u"Branch"_s,
                                      u"Region"_s,
                                      {{u"Acme AB"_s, u"Industry"_s, u"Nordic"_s, rate(950)},
                                       {u"Blåbär och Söner"_s, u"Retail"_s, u"Nordic"_s, rate(880, 5000)},
                                       {u"Fjord Shipping AS"_s, u"Transport"_s, u"Nordic"_s, rate(1010)},
                                       {u"Internal"_s, u"Own time"_s, u"Own"_s, rate(0)},
                                       {u"Kappa Τρόφιμα"_s, u"Food"_s, u"South"_s, rate(790, 2500)},
                                       {u"Müller Maschinenbau"_s, u"Industry"_s, u"Central"_s, rate(1020)},
                                       {u"Old Mill Paper"_s, u"Industry"_s, u"Nordic"_s, rate(640), false}}},
                                     {u"Project"_s,
                                      u"Kind"_s,
                                      u"Programme"_s,
                                      {{u"ERP roll-out"_s, u"Project"_s, u"Change"_s, rate(0)},
                                       {u"Office move"_s, u"Project"_s, u"Own"_s, rate(0)},
                                       {u"Support contract"_s, u"Running"_s, u"Service"_s, rate(0)},
                                       {u"Training"_s, u"Running"_s, u"Service"_s, rate(0)},
                                       {u"Website"_s, u"Project"_s, u"Change"_s, rate(0)}}},
                                     {u"Task"_s,
                                      u"Kind"_s,
                                      u"Billing"_s,
                                      {{u"Consulting"_s, u"Work"_s, u"Billable"_s, rate(0)},
                                       {u"Development"_s, u"Work"_s, u"Billable"_s, rate(0)},
                                       {u"Documentation"_s, u"Work"_s, u"Billable"_s, rate(0)},
                                       {u"Meeting"_s, u"Talk"_s, u"Billable"_s, rate(0)},
                                       {u"Travel"_s, u"Way"_s, u"Half"_s, rate(0)}}}};
  return lists;
}

QString metaLines() {
  QString lines;
  for (const MetaList& list : metaLists()) {
    lines += list.caption + u':';
    for (const ListValue& value : list.values)
      if (value.enabled) lines += value.name + u';';
    lines += u"\r\n"_s;
  }
  return lines;
}

QString personName() {
  return u"Kim Lind"_s;
}

}  // namespace sampledata
