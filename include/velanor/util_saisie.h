// The entry utility component: dates and numbers as they are typed, shown and stored.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "velanor/clock.h"

namespace velanor::entry {

// A date as CheckDate confirms it; both empty when the text is no date.
struct CheckedDate {
  std::string day;     // internal day number, as text
  std::string second;  // what the effective date's length rule looks at
};

// An interface: a host may bring its own. All texts are UTF-8.
class UtilSaisie {
 public:
  virtual ~UtilSaisie() = default;

  // The typed text completed to dd/mm/yyyy; `refused` is set when it may not stand at all.
  virtual std::string CompleteDate(std::string_view typed, bool& refused) = 0;
  // The refusal flag that CompleteDate left, updated.
  virtual bool DateRefused(bool& refused) = 0;
  virtual CheckedDate CheckDate(std::string_view text) = 0;
  // dd/mm/yyyy of a day number; "" for a text that is none.
  virtual std::string InternalToDate(std::string_view day) = 0;
  // The key as it may pass into a number box that holds `text` (0: swallowed): a point becomes
  // a comma, the integer part never outgrows `integer_digits`.
  virtual char32_t FilterNumericKey(std::string_view text, char32_t key, int integer_digits) = 0;
  // Number text for an edit box. An empty text stays empty.
  virtual std::string FormatAmount(std::string_view text, int decimals, int integer_digits) = 0;
  // Number text for a list column: integer_digits + 1 + decimals characters, filled with blanks
  // on the left. An empty text stays empty.
  virtual std::string FormatColumn(std::string_view text, int integer_digits, int decimals) = 0;
  // Column text as edit text: without its leading blanks.
  virtual std::string UnformatNumber(std::string_view text) = 0;
};

// The implementation of this system. A day alone is completed by the clock's month and year,
// day and month by its year; 6 or 8 digits are ddmmyy or ddmmyyyy. What it cannot complete it
// leaves as typed, without refusing. `second` is the day number's text.
std::unique_ptr<UtilSaisie> make_util_saisie(Clock clock = system_clock());

}  // namespace velanor::entry
