// What a user does, as values: for tables of stories.
#pragma once

#include <functional>
#include <vector>

#include "support/office.h"

namespace velanor::test::user {

using Act = std::function<void(Office&)>;
using Acts = std::vector<Act>;

inline Act type(const char* control, const char* text) {
  return [=](Office& office) {
    EXPECT_EQ(office.hand.replace_text(dynamic_cast<screen::TextControl&>(office.control(control)), ""), "");
    EXPECT_EQ(office.hand.type(dynamic_cast<screen::TextControl&>(office.control(control)), text), "");
  };
}
inline Act focus(const char* control) {
  return [=](Office& office) { EXPECT_EQ(office.hand.focus(office.control(control)), ""); };
}
inline Act click(const char* control) {
  return [=](Office& office) { EXPECT_EQ(office.hand.click(office.control(control)), ""); };
}
inline Act choose(const char* control, int line) {
  return [=](Office& office) {
    auto& box = dynamic_cast<screen::ComboBox&>(office.control(control));
    EXPECT_EQ(office.hand.drop_down(box), "");
    EXPECT_EQ(office.hand.choose(box, line), "");
  };
}
inline Act pick(const char* control, int line) {
  return [=](Office& office) {
    EXPECT_EQ(office.hand.pick(dynamic_cast<screen::ListBox&>(office.control(control)), line), "");
  };
}
inline Act edit(const char* control, int line) {
  return [=](Office& office) {
    EXPECT_EQ(office.hand.double_click(dynamic_cast<screen::ListBox&>(office.control(control)), line), "");
  };
}
inline Act page(int number) {
  return [=](Office& office) { EXPECT_EQ(office.hand.show_page(number), ""); };
}

inline Acts after(Acts way, Acts more) {
  way.insert(way.end(), more.begin(), more.end());
  return way;
}

}  // namespace velanor::test::user
