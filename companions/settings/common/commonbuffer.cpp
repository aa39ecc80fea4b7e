#include "companions/settings/common/commonbuffer.h"

#include "companions/settings/common/commontexts.h"
#include "companions/settings/common/rates.h"
#include "platform/basic/text.h"
#include "settings/modNameCheck.h"
#include "shell/ShellValues.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::basic::foldedKey;
namespace texts = commontexts;

namespace {

constexpr qint32 targetAsp = 1;
constexpr qint32 targetServer = 3;
constexpr qint32 costOfFirstList = 2;  // and so on for the others

bool sameValue(const CommonValue& a, const CommonValue& b) {
  return a.name == b.name && a.category == b.category && a.superCategory == b.superCategory &&
         a.rate == b.rate && a.enabled == b.enabled;
}

/// The order of values is their order by name, which the reading settles; adding a removed value again is no
/// change.
bool sameValues(const QList<CommonValue>& a, const QList<CommonValue>& b) {
  if (a.size() != b.size()) return false;
  if (std::equal(a.begin(), a.end(), b.begin(), sameValue)) return true;
  QHash<QString, const CommonValue*> byName;
  for (const CommonValue& value : a) byName.insert(value.name, &value);
  return std::all_of(b.begin(), b.end(), [&](const CommonValue& value) {
    const CommonValue* other = byName.value(value.name);
    return other && sameValue(*other, value);
  });
}

bool sameList(const CommonList& a, const CommonList& b) {
  return a.caption == b.caption && a.categoryCaption == b.categoryCaption &&
         a.superCategoryCaption == b.superCategoryCaption && sameValues(a.values, b.values);
}

bool holdsUnprinted(const QString& text) {
  return std::any_of(text.begin(), text.end(), [](QChar c) {
    return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
  });
}

QSet<QString> exactNames(const CommonList& list) {
  QSet<QString> names;
  for (const CommonValue& value : list.values) names.insert(value.name);
  return names;
}

/// Problems of one list's values. Thousands of them are looked at after each change, so equal names are found
/// by their keys.
void addValueProblems(const CommonBuffer& buffer, int list, QList<CommonProblem>& problems) {
  const QList<CommonValue>& values = buffer.edited.lists[list].values;
  const QSet<QString> storedNames = exactNames(buffer.stored.lists[list]);
  QSet<QString> keys;
  const auto add = [&](int row, const QString& text) {
    if (text.isEmpty()) return;
    const QString shown = row < 0 ? text : texts::nameOfValue.arg(values[row].name, text);
    problems.append({CommonField::Values, list, row, shown});
  };
  if (list == 0 && values.isEmpty()) add(-1, texts::firstListEmpty);
  for (int row = 0; row < values.size(); ++row) {
    const CommonValue& value = values[row];
    const QString key = foldedKey(value.name);
    if (keys.contains(key)) add(row, texts::nameTwice);
    keys.insert(key);
    if (!storedNames.contains(value.name)) add(row, fncNameProblem(value.name));
    add(row, columnProblem(value.category));
    add(row, columnProblem(value.superCategory));
  }
}

void addListProblems(const CommonBuffer& buffer, int list, QList<CommonProblem>& problems) {
  const auto add = [&](CommonField field, const QString& text) {
    if (!text.isEmpty()) problems.append({field, list, -1, text});
  };
  add(CommonField::Caption, buffer.captionProblem(list));
  add(CommonField::CategoryCaption, columnProblem(buffer.edited.lists[list].categoryCaption));
  add(CommonField::SuperCategoryCaption, columnProblem(buffer.edited.lists[list].superCategoryCaption));
  addValueProblems(buffer, list, problems);
}

QString defaultCaption(int list) {
  return list == 0 ? phrases().LNGCUSTOMER : phrases().LNGTASK;
}

QString costProblem(const CommonContent& content) {
  if (content.costCarrier == 0) return texts::costNotChosen;
  const int list = content.costCarrier - costOfFirstList;
  if (list >= 0 && list < 3 && content.lists[list].caption.isEmpty())
    return texts::costOfUnusedList.arg(list + 1);
  return {};
}

void addBillingProblems(const CommonBuffer& buffer, QList<CommonProblem>& problems) {
  const BillingRow& billing = buffer.edited.billing;
  if (billing == buffer.stored.billing) return;
  const auto add = [&](CommonField field, const QString& text) {
    if (!text.isEmpty()) problems.append({field, -1, -1, text});
  };
  add(CommonField::BillingLocation, columnProblem(billing.location, billingLocationSize));
  // The portal's address is taken apart at this word; without it there is nothing to ask.
  const bool portal = billing.serverName.isEmpty() || billing.serverName == u"0"_s;
  if (portal && !billing.location.isEmpty() && !billing.location.contains(u"sitecode="_s))
    add(CommonField::BillingLocation, texts::portalNoSite);
  add(CommonField::BillingUser, columnProblem(billing.userId, billingTextSize));
  add(CommonField::BillingPassword, columnProblem(billing.password, billingTextSize));
}

}  // namespace

QString columnProblem(const QString& text, qsizetype size) {
  if (text.size() > size) return texts::tooLong.arg(size);
  return holdsUnprinted(text) ? texts::unprinted : QString();
}

QStringList differences(const CommonContent& a, const CommonContent& b) {
  QStringList parts;
  if (a.costCarrier != b.costCarrier || a.reportTo != b.reportTo || a.reportToValue != b.reportToValue)
    parts.append(texts::partCost);
  for (int list = 0; list < 3; ++list)
    if (!sameList(a.lists[list], b.lists[list])) parts.append(texts::partList.arg(list + 1));
  if (a.departmentAsked != b.departmentAsked) parts.append(texts::partOther);
  if (!(a.billing == b.billing)) parts.append(texts::partBilling);
  return parts;
}

QList<CommonProblem> CommonBuffer::problems() const {
  QList<CommonProblem> found;
  const auto add = [&](CommonField field, const QString& text) {
    if (!text.isEmpty()) found.append({field, -1, -1, text});
  };
  add(CommonField::CostCarrier, costProblem(edited));
  if (edited.reportTo == 0) add(CommonField::ReportTo, texts::targetNotChosen);
  add(CommonField::ReportToValue, targetValueProblem());
  for (int list = 0; list < 3; ++list) addListProblems(*this, list, found);
  if (billingPossible) addBillingProblems(*this, found);
  return found;
}

QString CommonBuffer::targetValueProblem() const {
  const QString& value = edited.reportToValue;
  if (value.trimmed().isEmpty()) return texts::valueEmpty;
  if (const QString problem = columnProblem(value); !problem.isEmpty()) return problem;
  if (value == stored.reportToValue && edited.reportTo == stored.reportTo) return {};
  if (edited.reportTo == targetAsp && !value.startsWith(u"http://"_s, Qt::CaseInsensitive) &&
      !value.startsWith(u"https://"_s, Qt::CaseInsensitive))
    return texts::valueNoAddress;
  if (edited.reportTo == targetServer && !value.startsWith(u"Provider="_s)) return texts::valueNoConnection;
  return {};
}

QString CommonBuffer::captionProblem(int list) const {
  const QString& caption = edited.lists[list].caption;
  // A reader gives the first two their first names back when it finds none.
  if (caption.isEmpty()) return list < 2 ? texts::captionNeeded.arg(defaultCaption(list)) : QString();
  for (int earlier = 0; earlier < list; ++earlier)
    if (foldedKey(edited.lists[earlier].caption) == foldedKey(caption))
      return texts::captionTwice.arg(earlier + 1);
  return caption == stored.lists[list].caption ? QString() : fncNameProblem(caption);
}

QString CommonBuffer::billingHint() const {
  const BillingRow& row = edited.billing;
  if (!row.present && row == stored.billing && row == BillingRow()) return {};
  if (row.serverName.isEmpty() || row.serverName == u"0"_s)
    return row.location.isEmpty() || row.userId.isEmpty() || row.password.isEmpty() ? texts::portalIncomplete
                                                                                    : QString();
  return row.serverName == u"1"_s && row.location.isEmpty() ? texts::fileMissing : QString();
}

QList<RemovedValue> CommonBuffer::removedValues() const {
  QList<RemovedValue> removed;
  for (int list = 0; list < 3; ++list) {
    QSet<QString> keys;
    QHash<QString, QString> renamed;
    for (const CommonValue& value : edited.lists[list].values) {
      keys.insert(foldedKey(value.name));
      if (!value.was.isEmpty()) renamed.insert(value.was, value.name);
    }
    for (const CommonValue& value : stored.lists[list].values)
      if (!keys.contains(foldedKey(value.name)))
        removed.append({list, value.name, renamed.value(value.name)});
  }
  return removed;
}

QString CommonBuffer::nameProblem(int list, int row, const QString& name) const {
  const QList<CommonValue>& values = edited.lists[list].values;
  if (row >= 0 && values[row].name == name) return {};
  if (const QString problem = fncNameProblem(name); !problem.isEmpty()) return problem;
  const QString key = foldedKey(name);
  for (int other = 0; other < values.size(); ++other)
    if (other != row && foldedKey(values[other].name) == key) return texts::nameTwice;
  return {};
}

QString CommonBuffer::addValue(int list, const QString& name) {
  const QString clean = name.trimmed();
  const QString problem = nameProblem(list, -1, clean);
  if (problem.isEmpty()) {
    CommonValue value;
    value.name = clean;
    // A value that was removed and is typed again is the stored one.
    for (const CommonValue& before : stored.lists[list].values)
      if (before.name == clean) value = before;
    edited.lists[list].values.append(value);
  }
  return problem;
}

QString CommonBuffer::renameValue(int list, int row, const QString& name) {
  const QString clean = name.trimmed();
  const QString problem = nameProblem(list, row, clean);
  if (problem.isEmpty()) edited.lists[list].values[row].name = clean;
  return problem;
}

QString CommonBuffer::setRate(int list, int row, const QString& text) {
  const ReadRate read = readRate(text);
  if (read.problem.isEmpty()) edited.lists[list].values[row].rate = read.rate;
  return read.problem;
}

QString CommonBuffer::setCategory(int list, int row, const QString& text) {
  const QString problem = columnProblem(text);
  if (problem.isEmpty()) edited.lists[list].values[row].category = text;
  return problem;
}

QString CommonBuffer::setSuperCategory(int list, int row, const QString& text) {
  const QString problem = columnProblem(text);
  if (problem.isEmpty()) edited.lists[list].values[row].superCategory = text;
  return problem;
}

void CommonBuffer::removeValues(int list, QList<int> rows) {
  const QSet<int> gone(rows.begin(), rows.end());
  QList<CommonValue>& values = edited.lists[list].values;
  QList<CommonValue> kept;
  for (int row = 0; row < values.size(); ++row)
    if (!gone.contains(row)) kept.append(values[row]);
  values = kept;
}

}  // namespace hourbook
