// Texts that nobody expects, for every place that takes one.
#pragma once

#include <random>
#include <string>
#include <vector>

namespace velanor::test {

// Forty of them; the last one is a megabyte long.
inline std::vector<std::string> hostile_texts() {
  using namespace std::string_literals;
  return {
      "\"",
      "\"\"",
      "x\" OR AVEC 0 # \"",
      "'; DROP TABLE records; --",
      "[",
      "]",
      "[x]",
      "[[",
      "x]]",
      "SSELECT F AVEC 1 = \"x\" PAR 1",
      "AVEC",
      "PAR-DECR",
      "%",
      "_",
      "100%_\\",
      "\\",
      "$(reboot)`id`",
      "a\xFE\x62\xFD\x63\xFC\x64\xFF",
      "a\0b"s,
      "\xC3",
      "\x80\xBF",
      "\xC0\xAF",
      "\xED\xA0\x80",
      "\xF5\x80\x80\x80",
      "abc\xE2\x80\xAE\x64\x65\x66",
      "\xE2\x80\x8F\xD7\x90",
      "e\xCC\x81te\xCC\x81",
      "\xF0\x9F\x91\xB5\xF0\x9F\x8F\xBD",
      "a\xE2\x80\x8B\x62",
      "\xC2\xA0",
      "\xEF\xBB\xBFx",
      "two\nlines",
      "a\tb\rc",
      "\x1B[2J",
      "=1+1",
      ",",
      "-",
      "1e400",
      "99999999999999999999999",
      std::string(1'000'000, 'x'),
  };
}

// Pieces of several, put together.
inline std::string hostile_mix(std::mt19937& random) {
  static const std::vector<std::string> texts = [] {
    std::vector<std::string> all = hostile_texts();
    all.back() = "Martin";
    return all;
  }();
  std::string mix;
  for (auto pieces = 1 + random() % 4; pieces > 0; --pieces) {
    const std::string& text = texts[random() % texts.size()];
    const auto at = random() % text.size();
    mix += text.substr(at, 1 + random() % (text.size() - at));
  }
  return mix;
}

}  // namespace velanor::test
