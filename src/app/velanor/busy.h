// Whether the component waits for something, while the menus and docks around it are alive.
#pragma once

#include "velanor/controle_velanor_widget.h"
#include "velanor/screen.h"

namespace velanor::app {

// What is told to whoever asks for something meanwhile; it is wiped when it no longer holds.
inline const QString kFinishFirst = QStringLiteral("Terminez d'abord ce qui est ouvert sur la fiche.");

// A message, a form, or an act of the rules.
inline bool is_busy(qt::ControleVelanorWidget& component) {
  return component.open_message() || component.open_sheet() || component.screen().acting();
}

// A line is being entered that would be lost with its card, though the question names the card alone.
inline const QString kEndLineFirst =
    QStringLiteral("Confirmez ou abandonnez d'abord la ligne en cours de saisie.");
inline bool would_lose_line(qt::ControleVelanorWidget& component) {
  const screen::Form& card = component.screen().base();
  for (const char* confirm : {"Cmd_OkDetail", "Cmd_OkAct"}) {
    if (const auto* button = card.find(confirm); button && button->enabled()) return component.modified();
  }
  return false;
}

// A message waits, perhaps within a change of the base: who would read it on his own account looks again
// later, after so many milliseconds.
inline constexpr int kPatience = 100;
inline bool waits(const qt::ControleVelanorWidget& component) { return component.open_message() != nullptr; }

}  // namespace velanor::app
