// Cuts a selection statement into words, quoted texts and operators.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "velanor/database.h"

namespace velanor::store::select {

struct Token {
  enum class Kind { kWord, kQuoted, kOperator, kUnknown, kEnd };
  Kind kind = Kind::kEnd;
  // A quoted text without its quotes, its doubled quotes read as one.
  std::string text;
  // Byte position in the statement.
  std::size_t at = 0;

  bool is_word(std::string_view word) const { return kind == Kind::kWord && text == word; }
};

// The statement must outlive it.
class Lexer {
 public:
  explicit Lexer(std::string_view statement) : statement_(statement) {}

  // The next token; the end again and again behind the last one. Throws where a quote is not
  // closed.
  Token next();

  // The error for what stands at a byte position: "… au caractère N : EXPECTED."
  DbError error(std::size_t at, const std::string& what) const;

 private:
  Token quoted();

  std::string_view statement_;
  std::size_t at_ = 0;
};

}  // namespace velanor::store::select
