#pragma once
#include "platform/basic/collection.h"
#include "shell/SharedValues.h"

#include <QString>

#include <functional>
#include <memory>

namespace platform::outlook {
class Application;
}
namespace platform::scripting {
class FileSystemObject;
}

namespace hourbook {

/// The program's title, as every message box and mail carries it.
inline const QString gTitle = QStringLiteral("Hourbook for Outlook Reporting");

/// One text for each key of the phrase table, named by the key. Empty texts until `LoadLanguages` has run.
struct Phrases {
#define HOURBOOK_PHRASE(key) QString key;
#include "shell/Phrases.inc"
#undef HOURBOOK_PHRASE
};

/// One line of the phrase table, in the language that was read.
struct cPhrase {
  QString LangConstant;  // the key
  QString LangPhrase;
};

/// What the failure report needs of the folder above this one. Filled at start-up.
struct OutlookHooks {
  /// `gOutlookApp` as it stands; null when there is no connection.
  std::function<std::shared_ptr<platform::outlook::Application>()> gOutlookApp;
  /// `fncConnectOutlook`; the argument is a folder type (9 calendar, 6 inbox).
  std::function<void(qint32)> fncConnectOutlook;
};

struct ShellValues : Phrases {
  /// The newest text given to `subLog`, and the source line that gave it.
  QString gLastLogText;
  qint16 lastLogLine = 0;
  /// True: `subLog` writes to the log file too. Nothing in the program turns it on.
  bool gLogToFile = false;
  /// The error text that the dialog shows and the mail carries. Filled by `subHandleError`.
  QString gErrorBody;
  /// True once an error dialog was started; a second error then shows nothing.
  bool gInErrorReport = false;
  /// How the failure report reaches Outlook. Filled by `Main`; empty functions mean that there is none.
  OutlookHooks outlook;

  /// The system's list separator, which joins the values of a marking. Filled by `Main`.
  QString gListSeparator;

  /// The phrases of the chosen language by key. Filled by `subReadPhrases`.
  platform::basic::Collection<cPhrase> gPhrases;
  /// Where the phrase table is read from.
  QString phraseResource = QStringLiteral(":/CUSTOM/LANGUAGE");

  /// The one file-system object; made by `subSetupFS`, which is called before each use.
  std::shared_ptr<platform::scripting::FileSystemObject> gFileSystem;
  /// The repair of a missing component is tried once a run.
  bool fileSystemRepairTried = false;
  bool dictionaryRepairTried = false;
  /// The temporary folder; found once, by the first `fncSaveTextFile` that needs it.
  QString temporaryFolder;
  bool temporaryFolderFound = false;
  /// The default browser's program; found once, by `fncGetDefaultBrowser`.
  QString defaultBrowser;
  /// The user's documents folder; empty: the one that the desktop names. An installation that keeps its files
  /// elsewhere sets it before `Main`.
  QString documentsFolder;
};

inline ShellValues& shellValues() {
  return Shared<ShellValues>::current();
}
inline Phrases& phrases() {
  return shellValues();
}

}  // namespace hourbook
