// Between what the screen shows and what a record stores, by the encoding of the attribute.
#pragma once

#include <string>
#include <string_view>

#include "card/record/record_layout.h"
#include "entry/decimal.h"
#include "velanor/util_saisie.h"

namespace velanor::card {

// Empty is empty both ways. A stored value that its encoding cannot read is shown as it stands.
class Codec {
 public:
  explicit Codec(entry::UtilSaisie& entry) : entry_(entry) {}

  template <Encoding E>
  std::string shown(Attribute<E>, std::string_view stored) const {
    if constexpr (E == Encoding::kDate) {
      std::string text = entry_.InternalToDate(stored);
      return text.empty() ? std::string(stored) : text;
    } else if constexpr (decimals(E) > 0) {
      return entry::stored_to_text(stored, decimals(E), decimals(E));
    } else {
      return std::string(stored);
    }
  }

  template <Encoding E>
  std::string stored(Attribute<E>, std::string_view shown) const {
    if constexpr (E == Encoding::kDate) {
      return shown.empty() ? std::string() : entry_.CheckDate(shown).day;
    } else if constexpr (decimals(E) > 0) {
      return entry::text_to_stored(shown, decimals(E));
    } else {
      return std::string(shown);
    }
  }

 private:
  entry::UtilSaisie& entry_;
};

}  // namespace velanor::card
