// The order in which a French reader expects texts, the same on every machine.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velanor::store::select {

// Makes keys whose byte order is the order of the texts: blanks and punctuation, digits, letters;
// then, between texts that are otherwise equal, accents, compared from the end of the text as
// dictionaries do (cote, côte, coté, côté), then lower case before upper case. Ligatures count as
// their letters. Marks of a record order before any character. No key contains a NUL byte, and
// equal texts have equal keys.
class Collator {
 public:
  void append_key(std::string_view text, std::string& key);

 private:
  // The ASCII characters that the text begins with; how many they are.
  std::size_t take_ascii(std::string_view text, std::string& key);
  void take(std::string_view text, std::size_t at, std::size_t size, std::string& key);
  void take_letter(char letter, char accent, bool upper, std::string& key);
  // Weights of the second and third level are kept from the first one that is not the lowest.
  void set_accent(char accent);
  void set_upper(std::size_t index);

  std::size_t count_ = 0;
  std::string accents_;
  std::string cases_;
};

}  // namespace velanor::store::select
