// An entry utility of the host's own: the component's, with one rule more.
#pragma once

#include <velanor/date.h>
#include <velanor/util_saisie.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

// Refuses dates that lie more than a hundred years from today, and says so: the component leaves that to who
// refuses. Dates that are none it leaves to the component.
class NearDates : public velanor::entry::UtilSaisie {
 public:
  explicit NearDates(const velanor::entry::Clock& clock)
      : clock_(clock), usual_(velanor::entry::make_util_saisie(clock)) {}

  // Hears why a date was refused.
  std::function<void(const std::string&)> refused_because;

  std::string CompleteDate(std::string_view typed, bool& refused) override {
    std::string text = usual_->CompleteDate(typed, refused);
    if (refused || !is_far(text)) return text;
    refused = true;
    if (refused_because)
      refused_because("La date " + text + " est à plus de cent ans d'ici : vérifiez l'année.");
    return text;
  }
  bool DateRefused(bool& refused) override { return usual_->DateRefused(refused); }
  velanor::entry::CheckedDate CheckDate(std::string_view text) override { return usual_->CheckDate(text); }
  std::string InternalToDate(std::string_view day) override { return usual_->InternalToDate(day); }
  char32_t FilterNumericKey(std::string_view text, char32_t key, int integer_digits) override {
    return usual_->FilterNumericKey(text, key, integer_digits);
  }
  std::string FormatAmount(std::string_view text, int decimals, int integer_digits) override {
    return usual_->FormatAmount(text, decimals, integer_digits);
  }
  std::string FormatColumn(std::string_view text, int integer_digits, int decimals) override {
    return usual_->FormatColumn(text, integer_digits, decimals);
  }
  std::string UnformatNumber(std::string_view text) override { return usual_->UnformatNumber(text); }

 private:
  bool is_far(std::string_view text) const {
    constexpr int kCentury = 36525;
    const auto date = velanor::entry::parse_date(text);
    const auto today = velanor::entry::day_number(clock_());
    return date && today && std::abs(*velanor::entry::day_number(*date) - *today) > kCentury;
  }

  velanor::entry::Clock clock_;
  std::unique_ptr<velanor::entry::UtilSaisie> usual_;
};
