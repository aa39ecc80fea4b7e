#pragma once
#include "shell/FormWindow.h"

#include <QString>

namespace hourbook {

/// The system's list separator, ";" or ",".
QString fncGetListSeparator();
/// Opens a URL with the default browser, or with the desktop's own means where none is known.
void subOpenInBrowser(const QString& url);
/// The default browser's program, or an empty text.
QString fncGetDefaultBrowser();
/// The program's path out of a registered command such as "\"C:\Program Files\b.exe\" -url %1".
QString fncProgramOfCommand(const QString& command);
/// Gives the window an entry of its own in the task bar, and the focus.
void subEnsureVisibleTaskBar(FormWindow& form);

}  // namespace hourbook
