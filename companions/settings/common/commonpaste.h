#pragma once
#include "companions/settings/common/commonbuffer.h"

namespace hourbook {

struct Pasted {
  int added = 0;
  QString problem;  // why nothing was added; empty: everything was
};

/// Adds the lines of a spreadsheet's clipboard text to a list: name, category, super category, rate and
/// enabled between tabs, the later ones optional. Empty lines are passed over. One line that cannot be taken,
/// and none is.
Pasted pasteValues(CommonBuffer& buffer, int list, const QString& text);

/// The lines of a spreadsheet's text, each as its cells. A cell that a spreadsheet put between quotes,
/// because it holds a line break or a tab, is taken as one.
QList<QStringList> spreadsheetLines(const QString& text);

}  // namespace hourbook
