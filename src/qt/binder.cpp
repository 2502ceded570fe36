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

// Lists that stand side by side as the columns of one table, each with the label over it and the widget
// of its entry below. Figures stand at the right.
struct Column {
  const char* list;
  const char* label;
  const char* entry;
  bool figures;
};

const std::vector<std::vector<Column>>& tables() {
  static const std::vector<std::vector<Column>> kTables{
      {{"Lst_DatEffet", "Etq_DatEffet", "Txt_DatEffet", false},
       {"Lst_DatDepGrille", "Etq_DatDepGrille", "Txt_DatDepGrille", false},
       {"Lst_Qualif", "Etq_Qualif", "Cbo_Qualif", false},
       {"Lst_Grille", "Etq_Grille", "Cbo_Grille", false},
       {"Lst_Categorie", "Etq_Categorie", "Txt_Categorie", false},
       {"Lst_NouvMes", "Etq_NouvMes", "Cbo_NouvMes", false},
       {"Lst_TxHor", "Etq_TxHor", "Txt_TxHor", true},
       {"Lst_DureMens", "Etq_DureMens", "Txt_DureMens", true}},
      {{"Lst_Code", "Etq_Code", "Txt_Code", false},
       {"Lst_LibRub", "Etq_LibRub", "Cbo_LibRub", false},
       {"Lst_Base", "Etq_Base", "Txt_Base", true},
       {"Lst_Taux", "Etq_Taux", "Txt_Taux", true},
       {"Lst_Montant", "Etq_Montant", "Txt_Montant", true}}};
  return kTables;
}

std::vector<Column> columns_from(const std::string& first) {
  for (const auto& table : tables()) {
    if (first == table.front().list) return table;
  }
  return {};
}

// Further columns and their headings stand in the table that bears the name of the first, and menus come
// with the pointer.
bool needs_no_widget(const screen::Control& control) {
  if (dynamic_cast<const screen::Menu*>(&control)) return true;
  for (const auto& table : tables()) {
    for (const Column& column : table) {
      if (control.name() == column.label) return true;
      if (control.name() == column.list && control.name() != table.front().list) return true;
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
    if (auto* widget = pages.findChild<QWidget*>(to_qt(control->name()))) {
      bind(acts, *control, *widget);
    } else if (!needs_no_widget(*control)) {
      throw std::logic_error("La page de " + form.name() + " n'a pas de contrôle " + control->name() + ".");
    }
  }
  describe();
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
    view = new TabsView(acts, *tabs, as<QTabWidget>(widget), *pages_);
  else if (auto* list = dynamic_cast<ListBox*>(&control))
    return bind_columns(acts, *list, widget);
  if (!view) throw std::logic_error("Aucun contrôle de fenêtre ne montre " + control.name() + ".");
  views_.push_back(view);
}

void FormViews::bind_columns(Acts& acts, screen::ListBox& first, QWidget& widget) {
  std::vector<screen::ListBox*> lists;
  std::vector<const screen::Control*> labels;
  std::vector<const screen::Control*> entry_controls;
  std::vector<bool> figures;
  std::vector<QWidget*> entries;
  for (const Column& column : columns_from(first.name())) {
    lists.push_back(static_cast<screen::ListBox*>(form_->find(column.list)));
    labels.push_back(form_->find(column.label));
    entry_controls.push_back(form_->find(column.entry));
    entries.push_back(pages_->findChild<QWidget*>(column.entry));
    figures.push_back(column.figures);
  }
  if (lists.empty()) lists.push_back(&first);
  auto& table = as<ColumnsTable>(widget);
  auto* view = new ColumnsView(acts, lists, table, *pages_);
  view->lines().set_headings(labels, entry_controls);
  view->lines().set_figures(figures);
  table.stand_over(entries);
  views_.push_back(view);
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
  for (const auto& table : tables()) {
    for (const Column& column : table) {
      const auto* entry = pages_->findChild<QWidget*>(column.entry);
      const screen::Control* label = form_->find(column.label);
      if (entry && label) names[entry] = to_qt(label->caption());
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
