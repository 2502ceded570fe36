#include "card/record/codec.h"

namespace velanor::card {

std::string Codec::shown(Encoding encoding, std::string_view stored) const {
  if (encoding == Encoding::kDate) {
    const std::string text = entry_.InternalToDate(stored);
    return text.empty() ? std::string(stored) : text;
  }
  const int scale = decimals(encoding);
  return scale > 0 ? entry::stored_to_text(stored, scale, scale) : std::string(stored);
}

std::string Codec::stored(Encoding encoding, std::string_view shown) const {
  if (encoding == Encoding::kDate) return shown.empty() ? std::string() : entry_.CheckDate(shown).day;
  const int scale = decimals(encoding);
  return scale > 0 ? entry::text_to_stored(shown, scale) : std::string(shown);
}

std::optional<int> Codec::decimals_exceeded(Encoding encoding, std::string_view shown) {
  const int scale = decimals(encoding);
  if (scale == 0 || !entry::has_more_decimals(shown, scale)) return {};
  return scale;
}

}  // namespace velanor::card
