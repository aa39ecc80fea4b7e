#pragma once
#include <QString>

namespace platform::scripting {

/// `Wscript.Shell`.
class WshShell {
 public:
  virtual ~WshShell() = default;
  virtual QString ExpandEnvironmentStrings(const QString& text);
  /// Runs a command line (first word the program, in double quotes when it holds blanks), a URL or a mailto:
  /// link. Failure -2147024894 with a description when it cannot be started.
  virtual void Run(const QString& command, int windowStyle = 1);
};

}  // namespace platform::scripting
