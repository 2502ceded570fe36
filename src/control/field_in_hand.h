// Which field of the card the user's hand is on.
#pragma once

#include <optional>

#include "amendments/activities.h"
#include "card/commands/validation.h"
#include "card/screen/card_screen.h"
#include "card/screen/card_state.h"
#include "velanor/host.h"

namespace velanor::control {

// That of the control that has the focus; of a list, or of the entry of a line, with its line. Nothing for
// what is no field of the card, and for a line that is new.
std::optional<FieldPlace> field_in_hand(card::CardScreen& ui, const card::CardState& card,
                                        const amendments::ActivityLines& activities,
                                        const commands::Validation& validation);

}  // namespace velanor::control
