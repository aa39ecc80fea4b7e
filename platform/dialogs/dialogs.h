#pragma once
#include <QString>

namespace platform::dialogs {

// The language's own constants.
inline constexpr int vbOKOnly = 0;
inline constexpr int vbYesNo = 4;
inline constexpr int vbCritical = 16;
inline constexpr int vbQuestion = 32;
inline constexpr int vbExclamation = 48;
inline constexpr int vbInformation = 64;
inline constexpr int vbOK = 1;
inline constexpr int vbCancel = 2;
inline constexpr int vbYes = 6;
inline constexpr int vbNo = 7;

// Office Assistant: button sets and icons of DoAlert.
inline constexpr int msoAlertButtonOK = 0;
inline constexpr int msoAlertButtonYesNo = 4;
inline constexpr int msoAlertIconQuestion = 2;
inline constexpr int msoAlertIconInfo = 4;

/// Every question and message of the program goes through here. Modal: a call returns when the user has
/// answered. Closing a box by its frame answers No to a yes/no question and OK to a message.
class Dialogs {
 public:
  virtual ~Dialogs() = default;
  /// `options` is the sum of a button set and an icon. Returns vbOK, vbYes or vbNo.
  virtual int MsgBox(const QString& text, int options, const QString& title) = 0;
  /// The typed text; Cancel gives an empty text.
  virtual QString InputBox(const QString& prompt, const QString& title, const QString& defaultText = {}) = 0;
  /// The Office Assistant's balloon. Returns vbYes or vbNo for the yes/no set, else vbOK.
  virtual int DoAlert(const QString& title, const QString& text, int buttons, int icon) = 0;

  static Dialogs& current();  // Failure 91 before any are put in force
};

class ScopedDialogs {
 public:
  explicit ScopedDialogs(Dialogs& dialogs);
  ~ScopedDialogs();
  ScopedDialogs(const ScopedDialogs&) = delete;
  ScopedDialogs& operator=(const ScopedDialogs&) = delete;

 private:
  Dialogs* previous_;
};

}  // namespace platform::dialogs
