#pragma once
#include "platform/forms/controls.h"
#include "platform/owc/generation.h"

namespace hourbook {

/// A component that sits on a form: the form gives it a name, a place, a size and a visibility, as it gives
/// them to its own controls.
template <class Component>
class OnForm : public Component {
 public:
  OnForm(const QString& name, platform::owc::Generation generation) : Component(generation), Extender(name) {
    this->setObjectName(name);
  }
  /// What the form adds to the component; a widget follows it.
  platform::forms::Control Extender;
  bool Visible() const { return Extender.Visible(); }
  void setVisible(bool on) { Extender.setVisible(on); }
  /// In twips, within the form; what the layout last gave.
  int Left() const { return Extender.Left; }
  int Top() const { return Extender.Top; }
  int Width() const { return Extender.Width; }
  int Height() const { return Extender.Height; }
};

}  // namespace hourbook
