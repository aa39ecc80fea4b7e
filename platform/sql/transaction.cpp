#include "platform/basic/failure.h"
#include "platform/sql/driver.h"

namespace platform::sql {

Transaction::Transaction(Session& session) : session_(session) {
  session_.begin();
}

Transaction::~Transaction() {
  if (committed_) return;
  try {
    session_.rollback();
  } catch (const Failure&) {
    // the engine has rolled back by itself already
  }
}

void Transaction::commit() {
  session_.commit();
  committed_ = true;
}

}  // namespace platform::sql
