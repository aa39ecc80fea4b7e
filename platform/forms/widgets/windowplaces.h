#pragma once
#include <QObject>
#include <QRect>
#include <QString>
#include <QTimer>

class QJsonObject;
class QWidget;

namespace platform::forms {

/// Keeps where the user has put a window and its splitters, from one run to the next, in a small file. A
/// splitter takes part by its object name. A file that cannot be read, or is none of ours, counts for
/// nothing, and one that cannot be written is done without: the window is the same, only not where it was.
class WindowPlaces : public QObject {
  Q_OBJECT
 public:
  /// Without a file nothing is kept. The window owns the object.
  WindowPlaces(QWidget* window, const QString& file);
  /// Once the window is laid out and before it is shown. A place beyond the screens there are now is brought
  /// back into them.
  void restore();
  /// Written by itself too, a moment after the last change.
  void save();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void restoreWindow(const QJsonObject& kept);
  void restoreSplitters(const QJsonObject& kept);
  QWidget* window_;
  QString file_;
  QTimer later_;
  bool restored_ = false;  // what happens before is not the user's doing
  QRect normal_;           // where the window stands while it is not maximised
};

}  // namespace platform::forms
