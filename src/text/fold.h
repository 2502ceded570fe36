// Texts as somebody who looks for something compares them.
#pragma once

#include <string>
#include <string_view>

namespace velanor::text {

// Accents, case and ligatures aside ("œ" reads "oe"); what stands between words is one blank; "st"
// and "ste" before another word are the words that they abbreviate. "Saint-Étienne", "SAINT ETIENNE"
// and "st etienne" fold to the same.
std::string folded(std::string_view text);

// Whether a text holds what was typed of it, at any place. `typed` is folded already.
inline bool holds_folded(std::string_view text, std::string_view typed) {
  return folded(text).find(typed) != std::string::npos;
}

}  // namespace velanor::text
