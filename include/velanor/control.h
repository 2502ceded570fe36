// The controls of a screen as plain values with events, without a windowing toolkit. A toolkit shows them and
// passes on what the user does (see hand.h); the rules read and write them. A host finds those of the
// component by their names (see Form::find), reads them, and may write into them and hear their events, on
// the component's thread.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velanor::screen {

class Form;
class Frame;
class Label;

// Handlers run in the order in which they were bound, and live as long as the control: what they refer to
// must outlive it. One that throws keeps those behind it from running, and ends the act. None may bind
// another to the event that it is called by, or destroy the control.
class Event {
 public:
  void operator+=(std::function<void()> handler) { handlers_.push_back(std::move(handler)); }
  void raise() const {
    for (const auto& handler : handlers_) handler();
  }

 private:
  std::vector<std::function<void()>> handlers_;
};

// A key on its way into a control. A handler may change it, or swallow it.
struct Key {
  static constexpr char32_t kBackspace = 8;
  static constexpr char32_t kTab = 9;
  static constexpr char32_t kEnter = 13;
  static constexpr char32_t kEscape = 27;
  static constexpr char32_t kDelete = 127;

  char32_t code = 0;
  void swallow() { code = 0; }
  bool swallowed() const { return code == 0; }
};

// What is fixed about a control when its form is made. Texts are copied; label and frame are of the same
// form.
struct Spec {
  std::string_view name;
  std::string_view caption = {};
  Label* label = nullptr;  // enabled and disabled together with this control
  Frame* frame = nullptr;  // a disabled frame takes no input for what stands in it
  int page = -1;           // page of the form's tab control; -1: always in sight
  int max_length = 0;      // characters; 0: no bound
};

// A control is a member of one form, where it registers under its name, and goes with it. `enabled` and
// `visible` are its own properties; `usable` is what a hand finds.
class Control {
 public:
  Control(Form& form, const Spec& spec);
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  const std::string& name() const { return name_; }
  Form& form() const { return form_; }
  int page() const { return page_; }
  // Null where it has none.
  Frame* frame() const { return frame_; }
  Label* label() const { return label_; }

  const std::string& caption() const { return caption_; }
  void set_caption(std::string_view caption);
  bool enabled() const { return enabled_; }
  bool visible() const { return visible_; }
  // The label follows the control, and any control made to follow it.
  void set_enabled(bool on);
  void set_visible(bool on);
  // Enabled and visible, and so is every frame around it.
  bool usable() const;

  // Whether the user can put the focus on it (a label, a frame and a menu take none).
  virtual bool takes_focus() const { return true; }

  // Grows at every change of what a view shows; a view compares it with what it last showed.
  std::uint64_t revision() const { return revision_; }

  Event lost_focus;
  Event got_focus;

 protected:
  void touch();

 private:
  Form& form_;
  std::string name_;
  std::string caption_;
  Label* label_;
  Frame* frame_;
  int page_;
  bool enabled_ = true;
  bool visible_ = true;
  std::uint64_t revision_ = 1;
};

class Label : public Control {
 public:
  using Control::Control;
  bool takes_focus() const override { return false; }
};

class Frame : public Control {
 public:
  using Control::Control;
  bool takes_focus() const override { return false; }
};

class CommandButton : public Control {
 public:
  using Control::Control;
  Event clicked;
};

// One of the option buttons of a frame: setting one clears the others.
class OptionButton : public Control {
 public:
  using Control::Control;
  bool value() const { return value_; }
  // Raises `clicked` when it becomes set.
  void set_value(bool on);
  Event clicked;

 private:
  bool value_ = false;
};

// Where a key falls in a text, in characters: on those that are selected, or else on the caret.
struct Span {
  int first = 0;  // so many stand before it
  int count = 0;
};

// What text boxes and combo boxes share: a text that the program sets and the user edits.
class TextControl : public Control {
 public:
  TextControl(Form& form, const Spec& spec) : Control(form, spec), max_length_(spec.max_length) {}

  const std::string& text() const { return text_; }
  bool is_empty() const { return text_.empty(); }
  int max_length() const { return max_length_; }
  // Cut to the maximum length. A text that differs raises `changed`; the same raises nothing.
  void set_text(std::string_view text);
  // What is stored, whole even where it is longer than what may be typed.
  void show_whole(std::string_view text);
  // Longer than what may be typed, as it was shown: not the user's, and not to be judged as such.
  bool shows_more() const;

  // The text can be typed into.
  virtual bool editable() const { return true; }
  // The user's ways in. A key: what the key filter leaves of it takes the place of what is selected.
  // It makes no text longer than the maximum length.
  void type(Key key, Span at);
  // A whole value that came past the key filter (pasted, dropped, taken back, set by an assistive
  // tool): what the filter would have let through of it, key by key. What the program showed last
  // may stand again, whatever its keys.
  void replace(std::string_view value);
  // Whether the user edited the text since the control got the focus.
  bool edited() const { return edited_; }
  void clear_edited() { edited_ = false; }

  // Sees each key that the user types (characters, Backspace, Enter) before it has an effect.
  // Tab, Escape and Delete move or edit and are not keys in this sense.
  std::function<void(Key&)> key_press;
  Event changed;

 protected:
  // Runs before `changed`.
  virtual void text_was_set() {}

 private:
  void put(std::string_view text);
  void edit(std::string_view text);
  bool is_full() const;
  std::string admitted(std::string_view value);
  char32_t admitted(Key key, Span at);
  std::string with(std::string_view characters, Span at) const;

  std::string text_;
  std::string given_;  // by the program
  int max_length_;
  bool edited_ = false;
};

class TextBox : public TextControl {
 public:
  using TextControl::TextControl;
};

// The lines of a combo box or list box, with at most one selected (-1: none).
class Lines {
 public:
  const std::vector<std::string>& items() const { return items_; }
  int count() const { return static_cast<int>(items_.size()); }
  int index() const { return index_; }
  // Line `position` from 0; "" where there is none.
  std::string_view line(int position) const;
  // First line equal to the text, or -1.
  int find(std::string_view text) const;
  // Grows at every change of the lines or of what stands beside them.
  std::uint64_t lines_revision() const { return lines_revision_; }

 protected:
  void lines_changed() { ++lines_revision_; }
  std::vector<std::string>& changing_items() {
    lines_changed();
    return items_;
  }
  int index_ = -1;

 private:
  std::vector<std::string> items_;
  std::uint64_t lines_revision_ = 0;
};

// An editable text with a list to choose from. Setting the text leaves no line selected, unless
// the selected one reads the same.
class ComboBox : public TextControl, public Lines {
 public:
  using TextControl::TextControl;

  // Selects a line (-1: none) and takes over its text: raises `changed` when the text differs,
  // then `clicked` when the index does.
  void set_index(int index);
  // The user's choice of a line: raises `clicked` even for the line that is shown already.
  void choose(int index);
  void add(std::string_view item);
  // Empties list and text.
  void clear();
  // New lines; the text stays. Line `index` is the selected one if it reads the same as the text.
  // Raises nothing.
  void refill(std::vector<std::string> items, int index = -1);
  // What a window shows beside each line, to tell alike ones apart; not part of the line's text.
  // Holds until the lines change.
  void annotate(std::vector<std::string> notes);
  const std::vector<std::string>& notes() const { return notes_; }

  // A list alone: its text cannot be typed.
  bool editable() const override { return editable_; }
  void make_list_only() { editable_ = false; }

  Event clicked;
  Event drop_down;

 protected:
  void text_was_set() override;

 private:
  std::vector<std::string> notes_;
  bool editable_ = true;
};

class ListBox : public Control, public Lines {
 public:
  using Control::Control;

  // Raises `clicked` when the index differs. Changing, adding or removing lines raises nothing;
  // the selection stays with its line and is lost with it.
  void set_index(int index);
  void add(std::string_view item) { insert(count(), item); }
  void insert(int position, std::string_view item);
  void replace(int position, std::string_view item);
  void remove(int position);
  void clear();

  Event clicked;
  Event double_clicked;
};

// A vertical scroll bar from 0 to its maximum.
class ScrollBar : public Control {
 public:
  using Control::Control;
  int value() const { return value_; }
  int max() const { return max_; }
  // Kept within 0 and the maximum; a value that differs raises `changed`.
  void set_value(int value);
  void set_max(int max);
  // For a list of so many lines: maximum one less, visible when they are more than a page, at the top.
  void fit(int lines, int page);
  bool takes_focus() const override { return false; }
  Event changed;

 private:
  int value_ = 0;
  int max_ = 0;
};

// An entry of a menu, or a menu (whose entries name it as their parent).
class Menu : public Control {
 public:
  using Control::Control;
  const Menu* parent() const { return parent_; }
  void set_parent(const Menu& menu) { parent_ = &menu; }
  bool takes_focus() const override { return false; }
  Event clicked;

 private:
  const Menu* parent_ = nullptr;
};

// The pages of a form. Showing another page raises `switched`.
class Tabs : public Control {
 public:
  Tabs(Form& form, const Spec& spec, std::vector<std::string> captions);
  int current() const { return page_; }
  int count() const { return static_cast<int>(captions_.size()); }
  const std::string& page_caption(int page) const { return captions_.at(static_cast<std::size_t>(page)); }
  // Pages that are not there are passed over.
  void show(int page);
  bool page_enabled(int page) const;
  void enable_page(int page, bool on);
  void enable_all();
  // Every page but the current one.
  void disable_others();

  Event switched;

 private:
  std::vector<std::string> captions_;
  std::vector<bool> page_enabled_;
  int page_ = 0;
};

}  // namespace velanor::screen
