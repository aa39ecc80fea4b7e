#pragma once
#include "platform/calendar/store.h"

// The edits that an input asks for. Its first lines, up to an empty one, are one edit each, the rest is the
// file:
//
//   folder                          the file stands in a folder (else it is a calendar by itself)
//   3|subject=Other|minutes=45      changes of the third item of what is listed then
//   2|remove                        it goes
//   1|new|subject=Made|start=20240501T1000
//   1|outside                       another program adds an event before the next edit
//
// Whatever cannot be understood means something all the same, so that no mutation is wasted.
namespace fuzz {

struct Edit {
  enum class What { Change, Remove, Make, Outside };
  What what = What::Change;
  int item = 0;
  platform::calendar::Change change;
};

struct Input {
  bool folder = false;
  QList<Edit> edits;
  QByteArray file;
};

Input inputOf(const QByteArray& bytes);

}  // namespace fuzz
