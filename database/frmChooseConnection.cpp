#include "database/frmChooseConnection.h"

#include "database/DatabaseValues.h"
#include "shell/clsAlwaysOnTop.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

namespace hourbook {

using namespace Qt::StringLiterals;

namespace {

/// Long enough for the desktop to have put the window on the screen.
inline constexpr int setFocusAfterMs = 200;

}  // namespace

frmChooseConnection::frmChooseConnection() : Control(u"frmChooseConnection"_s) {
  connect(&cmdOK, &platform::forms::CommandButton::Click, this, [this] { cmdOK_Click(); });
  connect(&timSetFocus, &platform::forms::Timer::Tick, this, [this] { timSetFocus_Timer(); });
}

void frmChooseConnection::Load(FormWindow* window) {
  window_ = window;
  subSetCaptions();
  optNewAccessDatabase.setValue(true);
  chkExampleData.setVisible(!blnHideExampleDataOption);
  if (!window_) return;
  clsAlwaysOnTop().MakeTopMost(*window_);
  timSetFocus.setInterval(setFocusAfterMs);
  timSetFocus.setTimerEnabled(true);
}

void frmChooseConnection::subSetCaptions() {
  const Phrases& p = phrases();
  setCaption(p.LNGCHOOSECONNECTION);
  lblChooseDB.setCaption(p.LNGSELECTDATABASECONNECTION);
  optNewAccessDatabase.setCaption(p.LNGCREATENEWACCESSDATABASE);
  optCreateSQLDataBase.setCaption(p.LNGCREATESQLDATABASE);
  optSelectExistingSQLDB.setCaption(
      QString(p.LNGSELECTEXISTINGSQLDB).replace(creationScriptName, strSQLScriptFileName));
  chkExampleData.setCaption(p.LNGLOADEXAMPLEDATA);
  cmdOK.setCaption(p.LNGOK);
}

void frmChooseConnection::cmdOK_Click() {
  Hide();
  intConnectionOption = existingSQLDatabase;
  if (optNewAccessDatabase.Value()) intConnectionOption = newAccessDatabase;
  if (optCreateSQLDataBase.Value()) intConnectionOption = newSQLDatabase;
  if (chkExampleData.Value() == 1) blnLoadExampleData = true;
}

void frmChooseConnection::timSetFocus_Timer() {
  timSetFocus.setTimerEnabled(false);
  tolerate([this] { window_->Activate(); });
}

}  // namespace hourbook
