#pragma once
#include <QSet>
#include <QString>

namespace platform::calendar::icalendar::index {

/// What the system tells of changes to a folder or a file. Asked for without waiting.
class Watch {
 public:
  Watch() = default;
  ~Watch();
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

  /// Begins anew: what was told before is forgotten. False where changes are not told: on network file systems, and when there are too many
  /// watches.
  bool begin(const QString& path);
  bool isOn() const { return descriptor_ >= 0; }
  void end();

  struct News {
    QSet<QString> names;  // of files in the folder
    bool any = false;     // something happened to the watched file itself
    bool lost = false;    // more happened than could be told, or the watched one is gone
  };
  News take();

 private:
  int descriptor_ = -1;
  int watched_ = -1;  // its number there
};

}  // namespace platform::calendar::icalendar::index
