#pragma once
#include "platform/forms/controls.h"

#include <QPointer>
#include <QWidget>

namespace platform::forms {

/// Gives each caption of a form a key of its own (Alt and the letter underlined), whatever the language: the
/// phrases carry none. The controls keep their captions as they are.
class Mnemonics : public QObject {
 public:
  using QObject::QObject;
  /// A button, a check box or a label with a buddy. Call it after the widget was bound to the control; what
  /// comes first has the first choice, as long as it can be seen: what is hidden takes no letter away.
  void add(Control& control, QWidget* widget);
  /// A control that shows and hides captioned ones with itself. Call it after its widget follows it.
  void watch(Control& container);
  /// Gives the letters out anew; for captions that have gone.
  void apply();

  /// The captions with "&" before the letter chosen: of each the first initial of a word that is still free,
  /// else its first free letter or digit. Where all of them are taken, one that has others gives its own away;
  /// a caption has no key only where there is none for it in any way.
  static QStringList assigned(const QStringList& captions);

 private:
  struct Captioned {
    QPointer<Control> control;
    QPointer<QWidget> widget;
  };
  QList<Captioned> captioned_;
};

}  // namespace platform::forms
