// A small component to play scenarios on: one form with a control of each kind, and a modal form.
#pragma once

#include <memory>
#include <string>

#include "play/player.h"
#include "velanor/database.h"

namespace velanor::play {

struct SmallForm : screen::Form {
  SmallForm() : Form("ControleVelanor", "") {}

  screen::Tabs pages{*this, {.name = "Ong_Pages"}, {"Un", "Deux"}};
  screen::Frame frame{*this, {.name = "Cdr_Type", .caption = "Type"}};
  screen::TextBox code{*this, {.name = "Txt_Code", .max_length = 3}};
  screen::TextBox date{*this, {.name = "Txt_Date"}};
  screen::ComboBox list{*this, {.name = "Cbo_Liste"}};
  screen::ListBox lines{*this, {.name = "Lst_Lignes"}};
  screen::OptionButton fixed{*this, {.name = "Opt_CDD", .frame = &frame}};
  screen::OptionButton open_ended{*this, {.name = "Opt_CDI", .frame = &frame}};
  screen::ScrollBar bar{*this, {.name = "Bdv_Detail"}};
  screen::CommandButton ask{*this, {.name = "Cmd_Demande", .caption = "Demande"}};
  screen::CommandButton choose{*this, {.name = "Cmd_Choix"}};
  screen::CommandButton warn{*this, {.name = "Cmd_Avis"}};
  screen::CommandButton search{*this, {.name = "Cmd_Cherche"}};
  screen::CommandButton fail{*this, {.name = "Cmd_Panne"}};
  screen::CommandButton detail{*this, {.name = "Cmd_Detail"}};
  screen::CommandButton leave{*this, {.name = "Cmd_Sortir"}};
  screen::CommandButton grey{*this, {.name = "Cmd_Gris"}};
  screen::TextBox second_page{*this, {.name = "Txt_Deux", .page = 1}};
  screen::Menu help{*this, {.name = "Mnu_Sommaire", .caption = "Aide"}};
};

struct SmallModal : screen::Form {
  SmallModal() : Form("Frm_Detail", "") {}

  screen::TextBox code{*this, {.name = "Txt_Code"}};
  screen::CommandButton ok{*this, {.name = "Cmd_OK"}};
};

// Its handlers do plain things under names that say what: `Txt_Code` takes digits only, `Txt_Date`
// keeps the focus while it reads "non", `Cbo_Liste` is filled when it is opened, `Cmd_Demande` asks
// and writes the answer into `Txt_Date`.
class SmallComponent : public Stage {
 public:
  SmallComponent(store::Database& database, MessageBoxes& boxes);

  screen::Screen& screen() override { return screen_; }
  Actor& actor() override { return actor_; }

 private:
  void bind(store::Database& database);

  ScriptedToolkit toolkit_;
  SmallForm form_;
  SmallModal modal_;
  screen::Screen screen_{form_, toolkit_};
  HandActor actor_{screen_};
};

}  // namespace velanor::play
