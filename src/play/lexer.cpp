#include "play/lexer.h"

#include "text/utf8.h"
#include "velanor/record.h"

namespace velanor::play {
namespace {

bool is_blank(char c) { return c == ' ' || c == '\t'; }

class WordReader {
 public:
  explicit WordReader(std::string_view line) : line_(line) {}

  std::vector<Word> words() {
    std::vector<Word> words;
    for (skip_blanks(); !at_end(); skip_blanks()) {
      if (words.empty() && line_[at_] == '#') return {};
      words.push_back(line_[at_] == '"' ? quoted() : bare());
    }
    return words;
  }

 private:
  bool at_end() const { return at_ >= line_.size(); }
  void skip_blanks() {
    while (!at_end() && is_blank(line_[at_])) ++at_;
  }

  Word bare() {
    const auto begin = at_;
    while (!at_end() && !is_blank(line_[at_])) ++at_;
    return {std::string(line_.substr(begin, at_ - begin)), false};
  }

  Word quoted() {
    const auto begin = at_++;
    Word word{{}, true};
    while (!at_end() && line_[at_] != '"') {
      const bool escape =
          line_[at_] == '\\' && at_ + 1 < line_.size() && (line_[at_ + 1] == '"' || line_[at_ + 1] == '\\');
      if (escape) ++at_;
      word.text += line_[at_++];
    }
    if (at_end()) fail("the double quote has no end", begin);
    ++at_;
    if (!at_end() && !is_blank(line_[at_])) fail("expected a blank after the closing double quote", at_);
    return word;
  }

  [[noreturn]] void fail(const std::string& what, std::size_t where) const {
    const int character = text::length(line_.substr(0, where)) + 1;
    throw SyntaxError("character " + std::to_string(character) + ": " + what);
  }

  std::string_view line_;
  std::size_t at_ = 0;
};

}  // namespace

std::vector<Word> words_of(std::string_view line) {
  if (store::clean_text(line) != line) throw SyntaxError("the line holds bytes that are not a text in UTF-8");
  return WordReader(line).words();
}

}  // namespace velanor::play
