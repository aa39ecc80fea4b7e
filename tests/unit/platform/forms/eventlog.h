#pragma once
#include <QObject>
#include <QStringList>

namespace tests {

/// Writes down the events of controls in the order in which they come, with what the handler then reads.
class EventLog : public QObject {
 public:
  template <class Control, class Signal, class Reading>
  void watch(Control& control, Signal signal, const QString& event, Reading reading) {
    connect(&control, signal, this,
            [this, event, reading] { entries.append(event + u' ' + QString(reading())); });
  }
  template <class Control, class Signal>
  void watch(Control& control, Signal signal, const QString& event) {
    connect(&control, signal, this, [this, event] { entries.append(event); });
  }
  QStringList entries;
};

}  // namespace tests
