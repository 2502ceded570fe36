// Writing and deleting a stored card that another clerk may have changed since it was opened.
#pragma once

#include <functional>
#include <optional>

#include "card/record/fault.h"
#include "card/record/merge.h"
#include "control/session/procedure.h"
#include "velanor/database.h"
#include "velanor/screen.h"

namespace velanor::commands {

// A card is never written over what somebody else made of it unseen: what the two changed is put together,
// and where both changed the same the user chooses.
class CardWriter {
 public:
  // Keeps the references; their owners outlive this.
  CardWriter(const control::Procedure& procedure, screen::Screen& screen)
      : procedure_(procedure), screen_(screen) {}

  enum class Outcome {
    kDone,  // it is stored as it was entered; where nothing has changed, nothing was written
    kBack,  // the user goes back to the card; nothing was written
  };
  // `stored` is the card as it was opened, and then as it was written. Throws store::DbError; kConflict where
  // the toolkit cannot ask the user.
  Outcome save(store::FileRecord& stored, const card::Draft& entered);
  // One that somebody has changed meanwhile is deleted only if the user says so again. `with_it` deletes what
  // goes with the card, in the same change where the database can make one.
  Outcome remove(const store::FileRecord& stored, const std::function<void()>& with_it);

 private:
  // Nothing where the user goes back.
  std::optional<store::DbRecord> put_together(const card::Draft& before, const card::Draft& theirs,
                                              const card::Draft& mine, const store::DbError& conflict);
  std::optional<card::Fault> fault_of(const store::DbRecord& card, const card::Reading& reading) const;

  const control::Procedure& procedure_;
  screen::Screen& screen_;
};

}  // namespace velanor::commands
