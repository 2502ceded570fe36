// Text as older spreadsheets write it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velanor::exchange {

// Whether bytes make sense as French in Windows-1252. Damaged UTF-8 does not, nor do the other encodings,
// whose accents would be letters of no name here.
class Windows1252Judge {
 public:
  // Piece by piece, none of which ends within a character of UTF-8. False: it is settled, they do not.
  bool look_at(std::string_view piece);
  bool makes_sense() const;

 private:
  bool foreign_ = false;
  std::size_t valid_ = 0, invalid_ = 0;
};

// Appends in UTF-8 what makes sense.
void append_windows_1252(std::string& text, std::string_view bytes);

}  // namespace velanor::exchange
