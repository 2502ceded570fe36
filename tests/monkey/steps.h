// Takes everything back that was confirmed on the open card, and does it again.
#pragma once

#include <string>

#include "support/office.h"

namespace velanor::test {

// The breach, or nothing: on the way forth the screen reads as it did on the way back, and what is taken back
// as a whole is no change. Leaves the card as it was; `steps` grows by those it went.
std::string walk_steps(Office& office, long& steps);

}  // namespace velanor::test
