#pragma once
#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>

namespace platform::process {

/// Thrown instead of ending the process while a test catches ends. Not a std::exception on purpose: nothing
/// but the test (or the edge of an event handler, see guardEvent) may catch it.
struct EndSignal {};

/// The program's process and the starting of others.
class Process {
 public:
  virtual ~Process() = default;
  /// Ends the process at once: no form is unloaded, nothing is saved.
  [[noreturn]] virtual void end() = 0;
  /// Starts a program, not awaited. False with a reason in `error` when it cannot be started.
  virtual bool start(const QString& program, const QStringList& arguments, QString* error) = 0;
  /// Opens a URL, a mailto: link or a file with the desktop's own means.
  virtual bool open(const QString& urlOrPath, QString* error) = 0;
  /// "%USERNAME%" and the like replaced by their values; an unknown name stays as it stands.
  virtual QString expandEnvironment(const QString& text) = 0;
  /// The folder that the program's own files stand in, without a trailing separator.
  virtual QString programFolder() const = 0;

  static Process& current();
};

/// The real one (std, QProcess, QDesktopServices).
Process& systemProcess();

class ScopedProcess {
 public:
  explicit ScopedProcess(Process& process);
  ~ScopedProcess();
  ScopedProcess(const ScopedProcess&) = delete;
  ScopedProcess& operator=(const ScopedProcess&) = delete;

 private:
  Process* previous_;
};

/// Catches ends, records what was started and opened, and lets a test set the program's folder.
class CatchingProcess : public Process {
 public:
  [[noreturn]] void end() override;
  bool start(const QString& program, const QStringList& arguments, QString* error) override;
  bool open(const QString& urlOrPath, QString* error) override;
  QString expandEnvironment(const QString& text) override;
  QString programFolder() const override { return folder; }

  int ends = 0;
  QList<QStringList> started;  // program, then its arguments
  QStringList opened;
  QString startFailure;  // not empty: every start and open fails with this text
  QString folder;
  QHash<QString, QString> environment;
};

/// Runs an event handler's work. An EndSignal must not travel through the tool kit's own frames, so it stops
/// here; CatchingProcess has counted it.
void guardEvent(const std::function<void()>& work);

}  // namespace platform::process
