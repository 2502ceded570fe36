// Which line of a list is meant by what was typed of its label.
#pragma once

#include <string_view>

#include "velanor/control.h"

namespace velanor::reference {

enum class Found { kNone, kOne, kSeveral };

struct LabelMatch {
  Found found = Found::kNone;
  int line = -1;  // from 0, when one was found
};

// Whether lines that read the same stand for different things.
enum class Alike { kSame, kDifferent };

inline constexpr std::string_view kSeveralMatch =
    "Plusieurs libellés de la liste correspondent à ce texte, veuillez en choisir un.";

// The line that reads exactly so; else the only one that does but for accents and case (see
// text::folded); else the only one that holds it at any place. An empty text finds none.
LabelMatch match_label(const screen::Lines& lines, std::string_view typed, Alike alike = Alike::kSame);

// Chooses the line that a user's typing means, as if it had been picked from the list. Does nothing
// unless there is just one.
Found take_typed(screen::ComboBox& box, Alike alike = Alike::kSame);

}  // namespace velanor::reference
