#include "play/property.h"

#include <array>
#include <utility>

namespace velanor::play {
namespace {

using screen::Control;
using MaybeText = std::optional<std::string>;

std::string yes_no(bool on) { return on ? "yes" : "no"; }

// The control as another kind; null where it is not of that kind.
template <typename Kind>
const Kind* as(const Control& control) {
  return dynamic_cast<const Kind*>(&control);
}

MaybeText text(const Control& control) {
  if (const auto* box = as<screen::TextControl>(control)) return box->text();
  if (const auto* list = as<screen::ListBox>(control)) return std::string(list->line(list->index()));
  return {};
}

MaybeText caption(const Control& control) {
  if (const auto* tabs = as<screen::Tabs>(control)) return tabs->page_caption(tabs->current());
  if (as<screen::TextControl>(control) || as<screen::ListBox>(control) || as<screen::ScrollBar>(control))
    return {};
  return control.caption();
}

MaybeText enabled(const Control& control) { return yes_no(control.enabled()); }

MaybeText visible(const Control& control) { return yes_no(control.visible()); }

MaybeText value(const Control& control) {
  if (const auto* option = as<screen::OptionButton>(control)) return yes_no(option->value());
  if (const auto* bar = as<screen::ScrollBar>(control)) return std::to_string(bar->value());
  return {};
}

MaybeText max(const Control& control) {
  if (const auto* bar = as<screen::ScrollBar>(control)) return std::to_string(bar->max());
  return {};
}

MaybeText index(const Control& control) {
  if (const auto* lines = as<screen::Lines>(control)) return std::to_string(lines->index());
  return {};
}

MaybeText count(const Control& control) {
  if (const auto* lines = as<screen::Lines>(control)) return std::to_string(lines->count());
  return {};
}

MaybeText items(const Control& control) {
  const auto* lines = as<screen::Lines>(control);
  if (!lines) return {};
  std::string joined;
  for (int i = 0; i < lines->count(); ++i) joined.append(i == 0 ? "" : "|").append(lines->line(i));
  return joined;
}

MaybeText page(const Control& control) {
  if (const auto* tabs = as<screen::Tabs>(control)) return std::to_string(tabs->current());
  return {};
}

struct PropertyRow {
  Property property;
  std::string_view name;
  MaybeText (*read)(const Control&);
};

// In the order of the enumeration.
constexpr std::array kRows{
    PropertyRow{Property::Text, "text", text},          PropertyRow{Property::Caption, "caption", caption},
    PropertyRow{Property::Enabled, "enabled", enabled}, PropertyRow{Property::Visible, "visible", visible},
    PropertyRow{Property::Value, "value", value},       PropertyRow{Property::Max, "max", max},
    PropertyRow{Property::Index, "index", index},       PropertyRow{Property::Count, "count", count},
    PropertyRow{Property::Items, "items", items},       PropertyRow{Property::Page, "page", page},
};

const PropertyRow& row_of(Property property) { return kRows.at(static_cast<std::size_t>(property)); }

}  // namespace

std::optional<Property> property_named(std::string_view word) {
  for (const PropertyRow& row : kRows)
    if (row.name == word) return row.property;
  return {};
}

std::string_view name_of(Property property) { return row_of(property).name; }

std::optional<std::string> read(const Control& control, Property property) {
  return row_of(property).read(control);
}

}  // namespace velanor::play
