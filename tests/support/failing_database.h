// A database whose n-th call fails, or whose writes do, to show that a failure reaches the host and loses
// nothing.
#pragma once

#include "velanor/wrapped_database.h"

namespace velanor::store {

inline constexpr const char* kPlannedFailure = "Le disque est plein. Libérez de la place, puis recommencez.";

// Counts the calls of OpenFile, Select and, on the files opened through it, find (also as Read),
// write (also as DBWrite) and DeleteRecord. The planned call throws DbError kStoreFailure before
// it does anything; those around it go to the inner database, which must outlive this.
class FailingDatabase : public WrappedDatabase {
 public:
  using WrappedDatabase::WrappedDatabase;

  // Lets the n-th call from now on fail (1 is the next one); 0 lets none.
  void fail_at(int n) { failing_call_ = n == 0 ? 0 : calls_ + n; }
  // Lets every write fail, or none.
  void fail_writes(bool on) { writes_fail_ = on; }
  int calls() const { return calls_; }
  // Calls that have failed so far, also those whose error nobody let through.
  int failures() const { return failures_; }

 protected:
  void before(const DatabaseCall& call) override {
    const bool fails = writes_fail_ && call.kind == DatabaseCall::Kind::kWrite;
    if (++calls_ != failing_call_ && !fails) return;
    ++failures_;
    throw DbError(kStoreFailure, kPlannedFailure);
  }

 private:
  int calls_ = 0;
  int failing_call_ = 0;
  int failures_ = 0;
  bool writes_fail_ = false;
};

}  // namespace velanor::store
