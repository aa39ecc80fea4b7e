#include "settings/cMarking.h"

#include "platform/basic/text.h"
#include "settings/cPersonalSettings.h"
#include "shell/modErrorReport.h"
#include "shell/Present.h"
#include "shell/ShellValues.h"

namespace hourbook {

namespace {

const MetaDataCollection& listsInUse() {
  return present(settingsValues().gPersonalSettings).MetaDataLists;
}

/// Exact, unlike the keys of the list, and whether the value is enabled or not.
bool holdsExactly(const cMetaDictionary& list, const QString& name) {
  if (!list.MetaDic->Exists(name)) return false;
  return list.MetaDic->Item(name)->MetaName == name;
}

}  // namespace

cMarking::cMarking() {
  for (int position = 1; position <= listsInUse().Count(); ++position)
    colMarkings.Add(std::make_shared<cMetaData>());
}

void cMarking::BillingToMarkings(const QString& strBillingInformation) try {
  subLog(QStringLiteral("Splitting the categories string ") + strBillingInformation);
  if (strBillingInformation.isEmpty()) return;
  const QStringList pieces = platform::basic::Split(strBillingInformation, shellValues().gListSeparator);
  for (const QString& untrimmed : pieces) {
    const QString piece = platform::basic::Trim(untrimmed);
    int position = 1;
    for (const auto& list : listsInUse()) {
      if (!piece.isEmpty() && holdsExactly(*list, piece)) colMarkings.Item(position)->MetaName = piece;
      ++position;
    }
  }
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("BillingToMarkings"));
}

QString cMarking::MarkingCategories() const try {
  subLog(QStringLiteral("Building a categories string from the currently selected markings"));
  const QString separator = shellValues().gListSeparator;
  QString text;
  for (const auto& position : colMarkings)
    if (!present(position).MetaName.isEmpty()) text += separator + position->MetaName;
  // the separator is one sign on every system; of several the whole would go
  if (!separator.isEmpty() && text.endsWith(separator)) text.chop(separator.size());
  // kept: a doubled separator vanishes whole
  if (!separator.isEmpty()) text.remove(separator + separator);
  return text;
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("MarkingCategories"));
}

bool cMarking::IsComplete() const {
  for (const auto& position : colMarkings)
    if (position->MetaName.isEmpty()) return false;
  return true;
}

}  // namespace hourbook
