// The amount of a payroll item line.
#pragma once

#include <string>
#include <string_view>

namespace velanor::entry {

// Base (hundredths) times rate (ten-thousandths) as display text with two decimals, rounded
// half up to the cent: 10,00 x 1,2345 is "12,35". "" when either text is no number or the
// product is beyond what 64 bits hold.
std::string amount_of(std::string_view base, std::string_view rate);

}  // namespace velanor::entry
