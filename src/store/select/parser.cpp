#include "store/select/parser.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "store/select/lexer.h"
#include "text/number.h"

namespace velanor::store::select {
namespace {

constexpr const char* kOperators = "un opérateur (=, #, <>, >=, <) était attendu";
constexpr const char* kDesignators = "un attribut (numéro, @ID ou nom du dictionnaire) était attendu";

bool is_keyword(std::string_view word) {
  constexpr std::array<std::string_view, 6> kKeywords = {"SSELECT", "AVEC", "AND", "OR", "PAR", "PAR-DECR"};
  return std::find(kKeywords.begin(), kKeywords.end(), word) != kKeywords.end();
}

// No attribute number needs more than nine digits; a longer one is not read.
std::optional<int> attribute_number(std::string_view word) {
  if (!text::is_digits(word) || word.size() > 9) return std::nullopt;
  return std::stoi(std::string(word));
}

std::size_t leading(std::string_view text, char bracket) {
  return std::min(text.find_first_not_of(bracket), text.size());
}
std::size_t trailing(std::string_view text, char bracket) {
  const std::size_t other = text.find_last_not_of(bracket);
  return other == std::string_view::npos ? text.size() : text.size() - 1 - other;
}

// Of each run of brackets two stand for one; of an odd one the last remains if `keep_odd`.
std::string without_doubles(std::string_view text, std::string_view brackets, bool keep_odd) {
  std::string plain;
  while (!text.empty()) {
    const char c = text.front();
    const std::size_t run = brackets.find(c) == std::string_view::npos ? 0 : leading(text, c);
    plain.append(run == 0 ? 1 : run / 2 + (keep_odd ? run % 2 : 0), c);
    text.remove_prefix(std::max<std::size_t>(run, 1));
  }
  return plain;
}

// A bracket at an end of the text that is not one of a pair is a sign.
Test equality_test(std::string_view text, Token::Kind kind) {
  if (kind != Token::Kind::kQuoted) return {.kind = Test::Kind::kIs, .text = std::string(text)};
  const bool ends = leading(text, '[') % 2 == 1;
  if (ends) text.remove_prefix(1);
  const bool begins = trailing(text, ']') % 2 == 1;
  if (begins) text.remove_suffix(1);
  const auto found = ends && begins ? Test::Kind::kContains
                     : ends         ? Test::Kind::kEndsWith
                     : begins       ? Test::Kind::kBeginsWith
                                    : Test::Kind::kIs;
  return {.kind = found, .text = without_doubles(text, "[]", true)};
}

// In a bound "[" only says where the code starts behind the prefix of an id.
Test bound_test(Test::Kind kind, const Token& value) {
  std::string text = value.kind == Token::Kind::kQuoted ? without_doubles(value.text, "]", true) : value.text;
  return {.kind = kind, .text = without_doubles(text, "[", false)};
}

Test make_test(std::string_view op, const Token& value) {
  if (op == ">=") return bound_test(Test::Kind::kAtLeast, value);
  if (op == "<") return bound_test(Test::Kind::kBelow, value);
  Test test = equality_test(value.text, value.kind);
  test.negated = op != "=";
  return test;
}

class Parser {
 public:
  Parser(std::string_view statement, std::string_view file, const Dictionary& dictionary)
      : lexer_(statement), file_(file), dictionary_(dictionary) {
    take();
  }

  Statement parse() {
    file();
    const char* expected = "AVEC, un numéro d'attribut, PAR, PAR-DECR ou la fin était attendu";
    if (token_.is_word("AVEC")) {
      criteria();
      expected = "AND, OR, un numéro d'attribut, PAR, PAR-DECR ou la fin était attendu";
    }
    if (token_.kind == Token::Kind::kWord && text::is_digits(token_.text)) {
      take();
      expected = "PAR, PAR-DECR ou la fin était attendu";
    }
    while (token_.is_word("PAR") || token_.is_word("PAR-DECR")) {
      sort_key();
      expected = "PAR, PAR-DECR ou la fin était attendu";
    }
    if (token_.kind != Token::Kind::kEnd) throw error(expected);
    return std::move(statement_);
  }

 private:
  Token take() {
    Token taken = std::move(token_);
    token_ = lexer_.next();
    return taken;
  }
  DbError error(const std::string& what) const { return lexer_.error(token_.at, what); }

  void file() {
    if (!token_.is_word("SSELECT")) throw error("SSELECT était attendu");
    take();
    if (token_.kind != Token::Kind::kWord || is_keyword(token_.text)) {
      throw error("un nom de fichier était attendu");
    }
    if (token_.text != file_) throw error("le fichier de la demande, « " + file_ + " », était attendu");
    statement_.file = take().text;
  }

  void criteria() {
    statement_.criteria.emplace_back();
    criterion();
    while (token_.is_word("AND") || token_.is_word("OR")) {
      const bool alternative = take().text == "OR";
      if (token_.is_word("AVEC")) {
        if (alternative) statement_.criteria.emplace_back();
        criterion();
      } else {
        auto& tests = statement_.criteria.back().back().tests;
        if (alternative) tests.emplace_back();
        tests.back().push_back(test("AVEC ou un opérateur (=, #, <>, >=, <) était attendu"));
      }
    }
  }

  void criterion() {
    take();
    Criterion result{designator(), {}};
    result.tests.push_back({test(kOperators)});
    statement_.criteria.back().push_back(std::move(result));
  }

  Test test(const char* expected) {
    if (token_.kind != Token::Kind::kOperator) throw error(expected);
    const std::string op = take().text;
    // A keyword is no value: a value was forgotten before it.
    const bool is_value = token_.kind == Token::Kind::kQuoted ||
                          (token_.kind == Token::Kind::kWord && !is_keyword(token_.text));
    if (!is_value) throw error("une valeur était attendue");
    return make_test(op, take());
  }

  void sort_key() {
    const auto direction = take().text == "PAR" ? Direction::kAscending : Direction::kDescending;
    statement_.sort_keys.push_back({designator(), direction});
  }

  Designator designator() {
    if (token_.kind != Token::Kind::kWord || is_keyword(token_.text)) throw error(kDesignators);
    const auto number = attribute_number(token_.text);
    if (!number && text::is_digits(token_.text)) throw error(kDesignators);
    Designator result{.attribute = number.value_or(0)};
    if (!number && token_.text != "@ID") result = named();
    take();
    return result;
  }

  Designator named() const {
    if (const Designator* found = dictionary_.find(file_, token_.text)) return *found;
    throw error("« " + token_.text + " » n'est pas au dictionnaire du fichier " + file_);
  }

  Lexer lexer_;
  std::string file_;
  const Dictionary& dictionary_;
  Token token_;
  Statement statement_;
};

}  // namespace

Statement parse_statement(std::string_view statement, std::string_view file, const Dictionary& dictionary) {
  return Parser(statement, file, dictionary).parse();
}

std::vector<int> parse_attribute_list(std::string_view list) {
  std::vector<int> numbers;
  for (std::size_t at = 0;;) {
    const std::size_t blank = std::min(list.find(' ', at), list.size());
    const auto number = attribute_number(list.substr(at, blank - at));
    if (!number) {
      throw DbError(kBadStatement, "Liste d'attributs illisible au caractère " + std::to_string(at + 1) +
                                       " : un numéro d'attribut était attendu.");
    }
    numbers.push_back(*number);
    if (blank == list.size()) return numbers;
    at = blank + 1;
  }
}

}  // namespace velanor::store::select
