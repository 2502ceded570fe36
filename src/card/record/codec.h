// Between what the screen shows and what a record stores, by the encoding of the attribute.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "card/record/element.h"
#include "velanor/util_saisie.h"

namespace velanor::card {

// Empty is empty both ways. A stored value that its encoding cannot read is shown as it stands; a text that
// it cannot read is stored as "".
class Codec {
 public:
  explicit Codec(entry::UtilSaisie& entry) : entry_(entry) {}

  std::string shown(const store::DbRecord& card, const Field& field, int value = store::kWhole,
                    int subvalue = store::kWhole) const {
    return shown(field.encoding, element(card, field, value, subvalue));
  }
  std::string shown(Encoding encoding, std::string_view stored) const;
  std::string stored(Encoding encoding, std::string_view shown) const;
  // How many decimals are stored, where `stored` would round; nothing where it keeps all.
  static std::optional<int> decimals_exceeded(Encoding encoding, std::string_view shown);

 private:
  entry::UtilSaisie& entry_;
};

}  // namespace velanor::card
