// The letters that French and its neighbours make of the plain ones: accents and ligatures.
#pragma once

namespace velanor::text {

// The plain letters behind a character: one, two for a ligature, none (0) for what is no accented
// letter. `accent` grows with its weight in a dictionary, from 1; a ligature outweighs them all.
struct Letters {
  char first = 0;
  char second = 0;
  int accent = 0;
};
Letters letters_of(char32_t character);

// Accents that stand behind their letter as characters of their own, and their weight.
bool is_combining(char32_t character);
int combining_accent(char32_t character);

// The ASCII character that this one reads like (blanks, hyphens, apostrophes); 0: none.
char ascii_like(char32_t character);

}  // namespace velanor::text
