#pragma once
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

namespace hourbook {

/// Tries a connection without holding up the window. A server or a network folder may never answer, so the
/// work is done beside, and left to itself when its time is over.
class ConnectionTest : public QObject {
  Q_OBJECT

 public:
  struct Answer {
    bool succeeded = false;
    QString text;
  };
  using Work = std::function<Answer()>;

  explicit ConnectionTest(QObject* parent = nullptr);
  ~ConnectionTest() override;

  /// Calls `work` on a thread of its own; it must not touch what others use. A test under way is given up.
  void start(Work work);
  bool isRunning() const { return timer_.isActive(); }

  /// How long an answer is waited for.
  int patienceMs = 10000;

 Q_SIGNALS:
  void finished(bool succeeded, const QString& text);

 private:
  struct Run;
  void end(const Answer& answer);

  std::shared_ptr<Run> run_;
  QTimer timer_;
};

/// Opens the connection and counts the reports. To be called in the program's thread, for the work to be done
/// elsewhere.
ConnectionTest::Work connectionWork(const QString& connectionText, const QString& databaseFolder);
/// Whether the folder would take a new database.
ConnectionTest::Work newDatabaseWork(const QString& databaseFolder);

/// Whether a connection text of this provider finds a driver.
bool hasDriver(const QString& provider);

}  // namespace hourbook
