#include "qt/binder.h"

#include <QFontMetrics>
#include <QMap>
#include <algorithm>
#include <stdexcept>

#include "qt/action_button.h"
#include "qt/columns_view.h"
#include "qt/combo_view.h"
#include "qt/simple_views.h"
#include "qt/strings.h"

namespace velanor::qt {
namespace {

// The columns of the table that begins with the list; a list alone is one.
screen::TableColumns columns_from(screen::ListBox& first) {
  for (const screen::TableColumns& table : first.form().tables) {
    if (table.front().list == &first) return table;
  }
  return {{&first}};
}

// Further columns and their headings stand in the table that bears the name of the first list, and menus come
// with the pointer.
bool needs_no_widget(const screen::Control& control) {
  if (dynamic_cast<const screen::Menu*>(&control)) return true;
  for (const screen::TableColumns& table : control.form().tables) {
    const screen::ListBox* first = table.front().list;
    if (table.back().list == first) continue;
    for (const screen::TableColumn& column : table) {
      if (&control == column.heading || (&control == column.list && column.list != first)) return true;
    }
  }
  return false;
}

template <typename Widget>
Widget& as(QWidget& widget) {
  if (auto* as_wanted = dynamic_cast<Widget*>(&widget)) return *as_wanted;
  throw std::logic_error("La page fait de " + from_qt(widget.objectName()) + " un " +
                         widget.metaObject()->className() + ".");
}

QTabWidget& with_pages(QTabWidget& widget, int count) {
  if (widget.count() == count) return widget;
  throw std::logic_error(from_qt(widget.objectName()) + " a " + std::to_string(widget.count()) +
                         " pages au lieu de " + std::to_string(count) + ".");
}

// A field is as wide as the characters that its form file asks for.
void size_field(QWidget& widget) {
  static const int kHeight = [] {
    ComboEdit box;
    box.make_editable();
    return box.sizeHint().height();
  }();
  if (qobject_cast<QLineEdit*>(&widget) || qobject_cast<QComboBox*>(&widget))
    widget.setMinimumHeight(kHeight);
  const int characters = widget.property("widthInCharacters").toInt();
  if (characters > 0) {
    const int frame = 14 + (qobject_cast<QComboBox*>(&widget) ? 24 : 0);
    widget.setFixedWidth(QFontMetrics(widget.font()).horizontalAdvance(u'0') * characters + frame);
  } else if (auto* combo = qobject_cast<QComboBox*>(&widget)) {
    combo->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    combo->setMinimumWidth(60);
  }
}

}  // namespace

FormViews::FormViews(Acts& acts, screen::Form& form, QWidget& pages) : form_(&form), pages_(&pages) {
  for (screen::Control* control : form.controls()) {
    if (!needs_no_widget(*control)) bind(acts, *control, widget_for(*control));
  }
  describe();
}

QWidget& FormViews::widget_for(const screen::Control& control) const {
  if (auto* widget = pages_->findChild<QWidget*>(to_qt(control.name()))) return *widget;
  throw std::logic_error("La page de " + form_->name() + " n'a pas de contrôle " + control.name() + ".");
}

void FormViews::bind(Acts& acts, screen::Control& control, QWidget& widget) {
  using namespace screen;
  size_field(widget);
  View* view = nullptr;
  if (auto* combo = dynamic_cast<ComboBox*>(&control))
    view = new ComboView(acts, *combo, as<ComboEdit>(widget), *pages_);
  else if (auto* text = dynamic_cast<TextControl*>(&control))
    view = new TextView(acts, *text, as<TextEdit>(widget), *pages_);
  else if (auto* option = dynamic_cast<OptionButton*>(&control))
    view = new OptionView(acts, *option, as<QRadioButton>(widget), *pages_);
  else if (auto* button = dynamic_cast<CommandButton*>(&control))
    view = new ButtonView(acts, *button, as<ActionButton>(widget), *pages_);
  else if (auto* label = dynamic_cast<Label*>(&control))
    view = new LabelView(acts, *label, as<QLabel>(widget), *pages_);
  else if (auto* frame = dynamic_cast<Frame*>(&control))
    view = new FrameView(acts, *frame, as<QGroupBox>(widget), *pages_);
  else if (auto* bar = dynamic_cast<ScrollBar*>(&control))
    view = new ScrollBarView(acts, *bar, as<QScrollBar>(widget), *pages_);
  else if (auto* tabs = dynamic_cast<Tabs*>(&control))
    view = new TabsView(acts, *tabs, with_pages(as<QTabWidget>(widget), tabs->count()), *pages_);
  else if (auto* list = dynamic_cast<ListBox*>(&control))
    return bind_columns(acts, *list, widget);
  if (!view) throw std::logic_error("Aucun contrôle de fenêtre ne montre " + control.name() + ".");
  views_.push_back(view);
}

void FormViews::bind_columns(Acts& acts, screen::ListBox& first, QWidget& widget) {
  const screen::TableColumns columns = columns_from(first);
  std::vector<QWidget*> entries;
  for (const screen::TableColumn& column : columns) {
    if (column.entry) entries.push_back(&widget_for(*column.entry));
  }
  auto& table = as<ColumnsTable>(widget);
  views_.push_back(new ColumnsView(acts, columns, table, *pages_));
  table.stand_over(entries);
}

// What assistive tools say: the name that the form file gives, the label's caption, the column's heading,
// or what stands before.
void FormViews::describe() {
  QMap<const QWidget*, QString> names;
  for (const View* view : views_) {
    if (const QString given = view->widget().accessibleName(); !given.isEmpty())
      names[&view->widget()] = given;
  }
  for (const QLabel* label : pages_->findChildren<QLabel*>()) {
    if (label->buddy()) names[label->buddy()] = without_mnemonic(label->text()).trimmed();
  }
  for (const screen::TableColumns& table : form_->tables) {
    for (const screen::TableColumn& column : table) {
      if (column.entry && column.heading)
        names[&widget_for(*column.entry)] = to_qt(column.heading->caption());
    }
  }
  QString last;
  bool fresh = false;  // nothing stands yet behind the last label
  for (View* view : views_) {
    const QString caption = to_qt(view->control().caption()).trimmed();
    const bool label = dynamic_cast<LabelView*>(view) != nullptr;
    if (label) {
      last = caption;
    } else if (names.contains(&view->widget())) {
      view->describe(last = names[&view->widget()]);
    } else {
      view->describe(!caption.isEmpty() ? caption : fresh ? last : last + " (libellé)");
    }
    fresh = label;
  }
}

View* FormViews::view_of(const screen::Control& control) const {
  for (View* view : views_) {
    const auto shown = view->controls();
    if (std::find(shown.begin(), shown.end(), &control) != shown.end()) return view;
  }
  return nullptr;
}

void FormViews::refresh() {
  for (View* view : views_) view->refresh();
}

void FormViews::set_mnemonics(bool on) {
  for (View* view : views_) view->set_mnemonic(on);
}

void FormViews::copy_table() const {
  for (const View* view : views_) {
    const auto* table = dynamic_cast<const ColumnsView*>(view);
    if (table && table->widget().isVisible()) table->copy_table();
  }
}

void FormViews::leave_all_but(const View* kept) {
  for (View* view : views_) {
    if (view != kept) view->focus_gone();
  }
}

}  // namespace velanor::qt
