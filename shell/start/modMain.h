#pragma once
#include <QMap>

#include <functional>
#include <memory>

namespace hourbook {

class GridView;
class ReportForm;

/// What `Main` chooses from and starts with; the program gives its windows, a test its own.
struct StartParts {
  /// Makes the report form of each generation of the spreadsheet component, not loaded yet. A generation that
  /// is not here ends the start with a message.
  QMap<qint16, std::function<std::shared_ptr<ReportForm>()>> reportForms;
  /// Makes the week grid; empty: there is none, and the program starts in the list.
  std::function<std::shared_ptr<GridView>()> newGridView;
};

/// The program's entry point. When it returns without having shown the report form, the program is to end;
/// else it lives in the events of the form. The shared values must be in force (see ProgramValues).
void Main(const StartParts& parts);

/// Generation of the spreadsheet and chart component: 9, 10 or 11. Without any the user is offered its
/// download page and the process ends.
qint16 fncGetOWCVersion();

}  // namespace hourbook
