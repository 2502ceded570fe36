#include "app/velanor/shown_year.h"

#include <QComboBox>
#include <QLineEdit>

#include "text/utf8.h"

namespace velanor::app {
namespace {

std::string text_of(screen::Form& form, const char* name) {
  const auto* control = dynamic_cast<const screen::TextControl*>(form.find(name));
  return control ? std::string(text::trim(control->text())) : std::string();
}

}  // namespace

ShownYear shown_year(qt::ControleVelanorWidget& component) {
  screen::Form& form = component.screen().base();
  const auto* years = dynamic_cast<const screen::ComboBox*>(form.find("Cbo_Periode"));
  const bool is_one = years && years->index() >= 0;
  return {text_of(form, "Txt_Asso"), is_one ? text_of(form, "Cbo_Periode") : std::string()};
}

// Entity and year have no signal of their own; their fields have.
void follow_year(qt::ControleVelanorWidget& component, QObject& listener, const std::function<void()>& then) {
  using Component = qt::ControleVelanorWidget;
  if (auto* entity = component.findChild<QLineEdit*>("Txt_Asso"))
    QObject::connect(entity, &QLineEdit::textChanged, &listener, then);
  if (auto* year = component.findChild<QComboBox*>("Cbo_Periode"))
    QObject::connect(year, &QComboBox::currentIndexChanged, &listener, then);
  QObject::connect(&component, &Component::state_changed, &listener, then);
}

}  // namespace velanor::app
