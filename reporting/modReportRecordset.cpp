#include "reporting/modReportRecordset.h"

#include "platform/basic/convert.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::ado::Recordset;
using platform::basic::IsNull;
using platform::basic::Value;
namespace ado = platform::ado;

std::shared_ptr<Recordset> fncReportRecordset() {
  auto rs = std::make_shared<Recordset>();
  ado::Fields fields = rs->Fields();
  fields.Append(u"intRowCounter"_s, ado::adBigInt);
  fields.Append(u"dteStartDate"_s, ado::adDBDate);
  fields.Append(u"strSubject"_s, ado::adVarWChar, longestReportText);
  fields.Append(u"intHours"_s, ado::adSingle);
  for (int n = 1; n <= metaCount; ++n)
    fields.Append(u"strMeta%1"_s.arg(n), ado::adVarWChar, longestReportText);
  fields.Append(u"curPersonalRate"_s, ado::adCurrency);
  fields.Append(u"intResult"_s, ado::adBigInt);
  fields.Append(u"strPerson"_s, ado::adVarWChar, longestReportText);
  fields.Append(u"strBody"_s, ado::adBSTR);
  rs->Open();
  return rs;
}

ReportLine fncReportLine(Recordset& rs) {
  ReportLine line;
  const Value start = rs[u"dteStartDate"_s].Value(), hours = rs[u"intHours"_s].Value();
  line.day = platform::basic::CDate(start).date();
  line.subject = platform::basic::CStr(rs[u"strSubject"_s].Value());
  if (!IsNull(hours)) line.hours = platform::basic::CSng(hours);
  for (int n = 1; n <= metaCount; ++n) {
    const Value name = rs[u"strMeta%1"_s.arg(n)].Value();
    if (!IsNull(name)) line.names[size_t(n - 1)] = platform::basic::CStr(name);
  }
  return line;
}

}  // namespace hourbook
