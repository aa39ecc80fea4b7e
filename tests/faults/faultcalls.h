#pragma once
#include <QByteArray>
#include <QByteArrayList>

#include <functional>

// The system calls with which files are read and written, of this whole process: of our own code, of Qt, of
// SQLite. The test program defines them under their own names, so that whoever calls one comes by here first.
namespace faults {

enum class Effect {
  Count,     // every call is carried out
  Kill,      // the process is killed before the call
  KillHalf,  // half of what is to be written is written, then the process is killed
  Fail,      // the call is not carried out and fails with `code` (a close is carried out and fails)
  Call,      // `call` is called before it: what another program does at this very moment
  Stop       // the process is stopped before it, as on a machine that goes to sleep
};

struct Plan {
  Effect effect = Effect::Count;
  int at = -1;  // number of the call, from 0
  int code = 0;
  std::function<void()> call;
  std::function<void()> first = {};  // done ahead of the save
  QByteArray record = {};            // a folder of which disklog.h is to record what happens there
};

/// From here to `disarm` each call of this thread counts and the plan is carried out, once.
void arm(const Plan& plan);
void disarm();
/// The names of the calls since `arm`, in order.
QByteArrayList calls();
/// The call that was struck; empty when none was.
QByteArray struck();

}  // namespace faults
