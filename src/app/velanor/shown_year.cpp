#include "app/velanor/shown_year.h"

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
  return {text_of(form, "Txt_Asso"), text_of(form, "Cbo_Periode")};
}

}  // namespace velanor::app
