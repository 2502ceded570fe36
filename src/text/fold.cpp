#include "text/fold.h"

#include <utility>

#include "text/latin.h"
#include "text/utf8.h"

namespace velanor::text {
namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool separates(char c) { return c <= ' ' || c == '-' || c == '\'' || c == '.' || c == ','; }

// Puts folded characters together, word by word.
class Folder {
 public:
  explicit Folder(std::size_t size) { out_.reserve(size); }

  void take(char32_t character) {
    if (is_combining(character)) return;
    if (const Letters letters = letters_of(character); letters.first != 0) {
      put(lower(letters.first));
      if (letters.second != 0) put(lower(letters.second));
    } else if (const char like = ascii_like(character)) {
      put_or_separate(like);
    } else if (character < 0x80) {
      put_or_separate(static_cast<char>(character));
    } else {
      begin_word();
      append(out_, character);
    }
  }
  std::string done() { return std::move(out_); }

 private:
  void put_or_separate(char c) {
    if (separates(c)) {
      blank_ = !out_.empty();
    } else {
      put(lower(c));
    }
  }
  void put(char c) {
    begin_word();
    out_ += c;
  }
  // A word that another one follows may be an abbreviation.
  void begin_word() {
    if (!blank_) return;
    blank_ = false;
    const std::string word = out_.substr(word_);
    if (word == "st" || word == "ste") out_.replace(word_, 2, "saint");
    out_ += ' ';
    word_ = out_.size();
  }

  std::string out_;
  std::size_t word_ = 0;
  bool blank_ = false;
};

}  // namespace

std::string folded(std::string_view text) {
  Folder folder(text.size());
  for (std::size_t at = 0; at < text.size();) folder.take(next(text, at));
  return folder.done();
}

}  // namespace velanor::text
