#pragma once
#include <QString>

namespace hourbook {

/// What the window services need of a form's window, in the system's own terms. The form's widget implements
/// it.
class FormWindow {
 public:
  virtual ~FormWindow() = default;
  virtual qint32 ExtendedStyle() const = 0;
  virtual void setExtendedStyle(qint32 style) = 0;
  virtual void Activate() = 0;
  virtual bool Visible() const = 0;
  virtual void SetFocus() = 0;
  /// `insertAfter`: -1 on top of all windows, -2 among the normal ones. Flags 3: neither move nor size.
  virtual void SetWindowPos(int insertAfter, quint32 flags) = 0;
};

/// What a form paints on.
class DeviceContext {
 public:
  virtual ~DeviceContext() = default;
  /// Colour of a pixel in blue-green-red order; -1 outside.
  virtual qint32 GetPixel(int x, int y) const = 0;
};

}  // namespace hourbook
