#pragma once
#include "companions/settings/common/problemlabel.h"
#include "companions/settings/page.h"
#include "companions/settings/session.h"

#include <QHash>

class QFormLayout;
class QLabel;

namespace hourbook {

/// A page of the personal part: it writes into the session's buffer as the user types. All of them are saved
/// together by the window, so that a failure takes all of them back.
class PersonalPage : public SettingsPage {
  Q_OBJECT

 public:
  explicit PersonalPage(SettingsSession& session) : session_(session) {}

  bool isChanged() const override { return session_.buffer != session_.read.buffer; }
  /// Shows what is wrong at each field; the first of them gets the focus.
  QString problem() override;
  void apply() override {}
  /// The fields from the buffer, with what is to be known about what was read.
  virtual void reload() = 0;

 protected:
  /// Of this page, in the order of its fields. Looks at the disk.
  virtual QList<FieldText> problems() = 0;
  /// Before a problem gets the focus: of a calendar or list, this one is shown.
  virtual void bringUp(const FieldText&) {}

  /// A field under its label, with a line for problems and notes below.
  void addField(QFormLayout* form, const QString& label, QWidget* field, const QString& objectName, Field id);
  void addField(QFormLayout* form, const QString& label, QWidget* field, QLayout* row,
                const QString& objectName, Field id);
  /// The line for a field whose control has no row of its own.
  ProblemLabel* messageLine(QWidget* control, Field id);
  void tell(Field id, const QString& problem) { lines_.value(id)->show(problem); }
  void note(Field id, const QString& text) { lines_.value(id)->show(text, ProblemLabel::Kind::Note); }
  void showNotes();
  /// The buffer was written into by a field.
  void edited();
  /// Gives each caption a letter; once all controls are there.
  void giveLetters();

  SettingsSession& session_;
  bool loading_ = false;

 private:
  QHash<Field, ProblemLabel*> lines_;
};

/// Names a control for users of a screen reader and for tests.
template <class Widget>
Widget* named(Widget* widget, const QString& accessibleName, const QString& objectName) {
  nameControl(widget, accessibleName, objectName);
  return widget;
}

}  // namespace hourbook
