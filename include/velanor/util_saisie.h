// The entry utility component: dates and numbers as they are typed, shown and stored.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "velanor/date.h"

namespace velanor::entry {

// A date as CheckDate confirms it; both empty when the text is no date.
struct CheckedDate {
  // The day as cards store it: a whole number as text, greater for a later day. A database is written and
  // read with one numbering alone; this system's is that of date.h.
  std::string day;
  // An effective date is refused where this has more than 6 characters.
  std::string second;
};

// An interface: a host may bring its own, for instance one that hands on to the default one (see
// make_util_saisie) and adds a rule. All texts are UTF-8; dates show as dd/mm/yyyy, numbers with a comma.
// Called by the component on its thread, within the acts of the user; what it throws ends the act and reaches
// the host. It must outlive the component.
class UtilSaisie {
 public:
  virtual ~UtilSaisie() = default;

  // Of a date field that is left and not empty. The text as it is to stand in the field, completed to
  // dd/mm/yyyy where that can be done. Sets `refused`, to true where it may not stand at all.
  virtual std::string CompleteDate(std::string_view typed, bool& refused) = 0;
  // Asked right behind it with the flag that it left: true puts the caret back into the field, without a
  // word; who refuses says why. Only what was not refused goes on to CheckDate, and is refused with a message
  // where that finds no date.
  virtual bool DateRefused(bool& refused) = 0;
  // Also of texts that the rules compare, with a year of two digits among them.
  virtual CheckedDate CheckDate(std::string_view text) = 0;
  // dd/mm/yyyy of a stored day; "" for a text that is none, which is then shown as it stands.
  virtual std::string InternalToDate(std::string_view day) = 0;
  // The key as it may pass into a number box that holds `text` (0: swallowed): a point becomes
  // a comma, the integer part never outgrows `integer_digits`.
  virtual char32_t FilterNumericKey(std::string_view text, char32_t key, int integer_digits) = 0;
  // Number text for an edit box, whole where it has more digits. An empty text stays empty.
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
