// The screen of the card: the controls of inventory.def as members.
#pragma once

#include <array>
#include <vector>

#include "card/record/amendment_columns.h"
#include "velanor/form.h"

namespace velanor::card {

// Controls that are switched together.
enum class Group {
  kMenu,
  kChoice,   // employee to open
  kNameBox,  // name of the open employee
  kDisplay,  // written by the program alone
  kEstablishmentBoxes,
  kContractKey,  // agreement and start date: locked once the card is stored
  kEmployee,
  kEndReasonBox,
  kActivityLine,
  kActivityEntry,
  kAmendmentFrame,
  kAmendmentList,
  kAmendmentEntry,
  kAmendmentButton,
  kMutual,
  kAlone,  // each by itself, or with its field
};

// Pages of Ong_FichPers.
inline constexpr int kIdentityPage = 0;
inline constexpr int kAmendmentPage = 1;
inline constexpr int kMutualPage = 2;

// The tab control with the captions of its three pages.
class PageTabs : public screen::Tabs {
 public:
  PageTabs(screen::Form& form, const screen::Spec& spec);
};

class CardScreen : public screen::Form {
 public:
  CardScreen();

  // The controls of a group, in tab order.
  const std::vector<screen::Control*>& group(Group group) const;

  // The parallel columns of the amendments and the entry controls below them, in the order of
  // kAmendmentColumns.
  std::array<screen::ListBox*, kAmendmentColumns.size()> amendment_lists();
  std::array<screen::TextControl*, kAmendmentColumns.size()> amendment_entries();

 private:
  screen::TableColumns amendment_table();

  // Declared before the controls, which add themselves.
  std::array<std::vector<screen::Control*>, static_cast<std::size_t>(Group::kAlone) + 1> groups_;

 public:
  using Label = screen::Label;
  using Frame = screen::Frame;
  using TextBox = screen::TextBox;
  using ComboBox = screen::ComboBox;
  using ListBox = screen::ListBox;
  using OptionButton = screen::OptionButton;
  using CommandButton = screen::CommandButton;
  using ScrollBar = screen::ScrollBar;
  using Menu = screen::Menu;

#define NONE nullptr
#define HEADER .page = -1
#define PAGE(number) .page = number
#define IN(frame_name) .frame = &frame_name
#define CONTROL(kind, control, text, label_of, place, length, group_of) \
  kind control{*this, {.name = #control, .caption = text, .label = label_of, place, .max_length = length}};
#include "card/screen/inventory.def"
#undef CONTROL
#undef IN
#undef PAGE
#undef HEADER
#undef NONE
};

}  // namespace velanor::card
