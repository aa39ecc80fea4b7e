#pragma once
#include "platform/forms/controls.h"

#include <QPointer>
#include <QWidget>

namespace hourbook {

/// Gives each caption of a form a key of its own (Alt and the letter underlined), whatever the language: the
/// phrases carry none. The controls keep their captions as they are.
class FormMnemonics : public QObject {
 public:
  using QObject::QObject;
  /// A button, a check box or a label with a buddy. Call it after the widget was bound to the control; what
  /// comes first has the first choice.
  void add(platform::forms::Control& control, QWidget* widget);

  /// The captions with "&" before the letter chosen: of each the first initial of a word that is still free,
  /// else its first free letter or digit; without any the caption has no key.
  static QStringList assigned(const QStringList& captions);

 private:
  void apply();
  struct Captioned {
    QPointer<platform::forms::Control> control;
    QPointer<QWidget> widget;
  };
  QList<Captioned> captioned_;
};

}  // namespace hourbook
