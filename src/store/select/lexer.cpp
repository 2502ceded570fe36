#include "store/select/lexer.h"

#include "store/utf8.h"

namespace velanor::store::select {
namespace {

constexpr std::string_view kBlanks = " \t";
// What ends a word: a blank, a quote, or the start of an operator.
constexpr std::string_view kWordEnds = " \t\"=#<>";

}  // namespace

Token Lexer::next() {
  at_ = std::min(statement_.find_first_not_of(kBlanks, at_), statement_.size());
  const std::size_t at = at_;
  if (at == statement_.size()) return {Token::Kind::kEnd, "", at};
  if (statement_[at] == '"') return quoted();
  for (const std::string_view symbol : {"<>", ">=", "=", "#", "<"}) {
    if (!statement_.substr(at).starts_with(symbol)) continue;
    at_ += symbol.size();
    return {Token::Kind::kOperator, std::string(symbol), at};
  }
  at_ = std::min(statement_.find_first_of(kWordEnds, at), statement_.size());
  if (at_ > at) return {Token::Kind::kWord, std::string(statement_.substr(at, at_ - at)), at};
  ++at_;
  return {Token::Kind::kUnknown, std::string(1, statement_[at]), at};
}

Token Lexer::quoted() {
  Token token{Token::Kind::kQuoted, "", at_};
  for (++at_;;) {
    const std::size_t quote = statement_.find('"', at_);
    if (quote == std::string_view::npos) {
      throw error(statement_.size(), "un guillemet fermant était attendu");
    }
    token.text += statement_.substr(at_, quote - at_);
    at_ = quote + 1;
    if (!statement_.substr(at_).starts_with('"')) break;
    token.text += '"';
    ++at_;
  }
  if (at_ < statement_.size() && kBlanks.find(statement_[at_]) == std::string_view::npos) {
    throw error(at_, "un blanc était attendu");
  }
  return token;
}

DbError Lexer::error(std::size_t at, const std::string& what) const {
  const std::size_t character = utf8::length(statement_.substr(0, at)) + 1;
  return DbError(kBadStatement,
                 "Sélection illisible au caractère " + std::to_string(character) + " : " + what + ".");
}

}  // namespace velanor::store::select
