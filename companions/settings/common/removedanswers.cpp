#include "companions/settings/common/removedanswers.h"

#include "companions/settings/guarded.h"
#include "platform/basic/text.h"
#include "settings/frmResolveRemovedItem.h"
#include "settings/SettingsValues.h"
#include "shell/ShellValues.h"

namespace hourbook {

using platform::basic::foldedKey;

RemovedAnswer askAboutRemoved(const RemovedValue& removed, const QStringList& candidates) {
  RemovedAnswer answer;
  guarded([&] {
    frmResolveRemovedItem form;
    form.lblValueToBeResolved.setCaption(removed.name);
    form.lblConflict.setCaption(phrases().LNGCONFLICTVALUE);
    form.subFillDropDown(candidates);
    if (!removed.renamedTo.isEmpty()) form.cmbMoveChoice.setText(removed.renamedTo);
    form.Show();
    answer = {form.intReturnValue, form.cmbMoveChoice.Text()};
  });
  return answer;
}

ScopedAnswers::ScopedAnswers(const QList<RemovedValue>& removed, const QList<RemovedAnswer>& answers)
    : previous_(settingsValues().showResolveRemovedItem) {
  for (qsizetype i = 0; i < removed.size() && i < answers.size(); ++i)
    byName_[foldedKey(removed[i].name)].append(answers[i]);
  settingsValues().showResolveRemovedItem = [this](frmResolveRemovedItem& form) { answer(form); };
}

ScopedAnswers::~ScopedAnswers() {
  settingsValues().showResolveRemovedItem = previous_;
}

void ScopedAnswers::answer(frmResolveRemovedItem& form) {
  QList<RemovedAnswer>& answers = byName_[foldedKey(form.lblValueToBeResolved.Caption())];
  if (answers.isEmpty()) return;
  // Rows that bear the same name twice in one list share the last answer.
  const RemovedAnswer answer = answers.size() > 1 ? answers.takeFirst() : answers.first();
  form.intReturnValue = answer.outcome;
  if (answer.outcome == frmResolveRemovedItem::moveReports) form.cmbMoveChoice.setText(answer.moveTo);
  form.Hide();
}

}  // namespace hourbook
