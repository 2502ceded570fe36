#include "velanor/control.h"

#include <algorithm>
#include <utility>

#include "text/utf8.h"
#include "velanor/form.h"

namespace velanor::screen {

Control::Control(Form& form, const Spec& spec)
    : form_(form),
      name_(spec.name),
      caption_(spec.caption),
      label_(spec.label),
      frame_(spec.frame),
      page_(spec.page >= 0 || !spec.frame ? spec.page : spec.frame->page()) {
  form_.controls_.push_back(this);
}

void Control::touch() {
  ++revision_;
  if (form_.changed) form_.changed();
}

void Control::set_caption(std::string_view caption) {
  if (caption_ == caption) return;
  caption_ = caption;
  touch();
}

void Control::set_enabled(bool on) {
  if (label_) label_->set_enabled(on);
  if (enabled_ == on) return;
  enabled_ = on;
  touch();
}

void Control::set_visible(bool on) {
  if (visible_ == on) return;
  visible_ = on;
  touch();
}

bool Control::usable() const { return enabled_ && visible_ && (!frame_ || frame_->usable()); }

void OptionButton::set_value(bool on) {
  if (value_ == on) return;
  value_ = on;
  touch();
  if (!on) return;
  for (Control* other : form().controls()) {
    auto* option = dynamic_cast<OptionButton*>(other);
    if (option && option != this && option->frame() == frame()) option->set_value(false);
  }
  clicked.raise();
}

void TextControl::set_text(std::string_view text) {
  show_whole(max_length_ > 0 ? text::left(text, max_length_) : text);
}

void TextControl::show_whole(std::string_view text) {
  given_ = text;
  put(text);
}

void TextControl::put(std::string_view text) {
  if (text_ == text) return;
  text_ = text;
  touch();
  text_was_set();
  changed.raise();
}

bool TextControl::shows_more() const {
  return max_length_ > 0 && !edited_ && text::length(text_) > max_length_;
}

void TextControl::edit(std::string_view text) {
  if (text_ != text) edited_ = true;
  put(text);
}

bool TextControl::is_full() const { return max_length_ > 0 && text::length(text_) >= max_length_; }

std::string TextControl::with(std::string_view characters, Span at) const {
  std::string text(text::left(text_, at.first));
  return text.append(characters).append(text::mid(text_, at.first + at.count + 1));
}

void TextControl::type(Key key, Span at) {
  if (key.code == Key::kDelete) return;
  if (at.count > 0 && key.code >= U' ') {
    key.code = admitted(key, at);
  } else if (key_press) {
    const std::string before = text_;
    key_press(key);
    if (text_ != before) at = {text::length(text_), 0};
  }
  if (key.code == Key::kBackspace) {
    if (at.count == 0 && at.first > 0) at = {at.first - 1, 1};
    edit(with({}, at));
  } else if (key.code >= U' ' && (at.count > 0 || !is_full())) {
    std::string character;
    text::append(character, key.code);
    edit(with(character, at));
  }
}

// The filters judge a key against the whole text, where what it replaces must not count.
char32_t TextControl::admitted(Key key, Span at) {
  std::string character;
  text::append(character, key.code);
  const std::string wanted = with(character, at), left = admitted(wanted);
  if (text::length(left) != text::length(wanted)) return 0;
  std::size_t byte = text::left(left, at.first).size();
  return text::next(left, byte);
}

void TextControl::replace(std::string_view value) {
  if (value == given_) return put(value);
  edit(admitted(value));
}

std::string TextControl::admitted(std::string_view value) {
  // The filters judge a key against the text so far, so the value grows in the control itself.
  struct Back {
    std::string& text;
    std::string before;
    ~Back() { text.swap(before); }
  };
  const Back back{text_, std::exchange(text_, {})};
  for (std::size_t at = 0; at < value.size();) {
    Key key{text::next(value, at)};
    if (key.code < U' ' || key.code == Key::kDelete) continue;
    if (key_press) key_press(key);
    if (key.code >= U' ' && !is_full()) text::append(text_, key.code);
  }
  return text_;
}

std::string_view Lines::line(int position) const {
  return position < 0 || position >= count() ? std::string_view{}
                                             : items_[static_cast<std::size_t>(position)];
}

int Lines::find(std::string_view text) const {
  const auto at = std::find(items_.begin(), items_.end(), text);
  return at == items_.end() ? -1 : static_cast<int>(at - items_.begin());
}

void ComboBox::set_index(int index) {
  if (index < -1 || index >= count()) return;
  const bool differs = index != index_;
  index_ = index;
  touch();
  set_text(std::string(line(index)));
  if (differs) clicked.raise();
}

void ComboBox::choose(int index) {
  if (index < 0 || index != index_) return set_index(index);
  clicked.raise();
}

void ComboBox::add(std::string_view item) {
  changing_items().emplace_back(item);
  notes_.clear();
  touch();
}

void ComboBox::clear() {
  changing_items().clear();
  notes_.clear();
  index_ = -1;
  touch();
  set_text({});
}

void ComboBox::refill(std::vector<std::string> items, int index) {
  changing_items() = std::move(items);
  notes_.clear();
  index_ = index >= 0 && index < count() && line(index) == text() ? index : -1;
  touch();
}

void ComboBox::annotate(std::vector<std::string> notes) {
  notes_ = std::move(notes);
  lines_changed();
  touch();
}

void ComboBox::text_was_set() {
  if (line(index_) != text()) index_ = -1;
}

void ListBox::set_index(int index) {
  if (index < -1 || index >= count() || index == index_) return;
  index_ = index;
  touch();
  clicked.raise();
}

void ListBox::insert(int position, std::string_view item) {
  position = std::clamp(position, 0, count());
  auto& items = changing_items();
  items.emplace(items.begin() + position, item);
  if (index_ >= position) ++index_;
  touch();
}

void ListBox::replace(int position, std::string_view item) {
  if (position < 0 || position >= count()) return;
  changing_items()[static_cast<std::size_t>(position)] = item;
  touch();
}

void ListBox::remove(int position) {
  if (position < 0 || position >= count()) return;
  auto& items = changing_items();
  items.erase(items.begin() + position);
  if (index_ == position) index_ = -1;
  if (index_ > position) --index_;
  touch();
}

void ListBox::clear() {
  changing_items().clear();
  index_ = -1;
  touch();
}

void ScrollBar::set_value(int value) {
  value = std::clamp(value, 0, max_);
  if (value == value_) return;
  value_ = value;
  touch();
  changed.raise();
}

void ScrollBar::set_max(int max) {
  max_ = std::max(max, 0);
  touch();
  set_value(value_);
}

void ScrollBar::fit(int lines, int page) {
  set_max(std::max(lines - 1, 0));
  set_visible(lines > page);
  set_value(0);
}

Tabs::Tabs(Form& form, const Spec& spec, std::vector<std::string> captions)
    : Control(form, spec), captions_(std::move(captions)), page_enabled_(captions_.size(), true) {
  form.tabs_ = this;
}

void Tabs::show(int page) {
  if (page < 0 || page >= count() || page == page_) return;
  page_ = page;
  touch();
  switched.raise();
}

bool Tabs::page_enabled(int page) const {
  return page >= 0 && page < count() && page_enabled_[static_cast<std::size_t>(page)];
}

void Tabs::enable_page(int page, bool on) {
  if (page < 0 || page >= count()) return;
  page_enabled_[static_cast<std::size_t>(page)] = on;
  touch();
}

void Tabs::enable_all() {
  for (int page = 0; page < count(); ++page) enable_page(page, true);
}

void Tabs::disable_others() {
  for (int page = 0; page < count(); ++page) enable_page(page, page == page_);
}

}  // namespace velanor::screen
