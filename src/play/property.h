// What a scenario can read of a control.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "velanor/control.h"

namespace velanor::play {

enum class Property { Text, Caption, Enabled, Visible, Value, Max, Index, Count, Items, Page };

// Nothing for a word that names no property.
std::optional<Property> property_named(std::string_view word);
std::string_view name_of(Property property);

// The property as text: truth values as `yes` and `no`, items joined with a vertical bar. Nothing
// where this kind of control does not have it. The text of a list box is its selected line, the
// caption of the tab control that of the page shown.
std::optional<std::string> read(const screen::Control& control, Property property);

}  // namespace velanor::play
