#include "amendments/activities.h"

#include "card/record/activity_line.h"
#include "card/record/element.h"
#include "entry/decimal.h"

namespace velanor::amendments {

void ActivityLines::bind() {
  ui_.Cmd_AjAct.clicked += [this] { Cmd_AjAct_Click(); };
  ui_.Cmd_OkAct.clicked += [this] { Cmd_OkAct_Click(); };
  ui_.Cmd_AnnulAct.clicked += [this] { Cmd_AnnulAct_Click(); };
  ui_.Lst_Activites.double_clicked += [this] { Lst_Activites_DblClick(); };
  ui_.Cbo_Activites.clicked += [this] { Cbo_Activites_Click(); };
  // Leaving the box empties it of a separator alone, which must not pass for a share taken away.
  ui_.Txt_Pourc.changed += [this] {
    if (!ui_.Txt_Pourc.is_empty()) no_figure_ = !entry::has_digit(ui_.Txt_Pourc.text());
  };
}

void ActivityLines::begin_entry() {
  no_figure_ = false;
  states_.suspend_commands();
  ui_.Lst_Activites.set_enabled(false);
  ui_.Cmd_AjAct.set_enabled(false);
  ui_.Cmd_OkAct.set_enabled(true);
  ui_.Cmd_AnnulAct.set_enabled(true);
  ui_.Txt_Pourc.set_enabled(true);
  ui_.Ong_FichPers.disable_others();
  states_.GriserDonnees();
  states_.GriserDetail();
}

void ActivityLines::end_entry() {
  ui_.Ong_FichPers.enable_all();
  states_.resume_commands();
  card_.AjoutActivite = false;
  changed_line_ = -1;
  ui_.Cbo_Activites.set_index(-1);
  ui_.Cbo_Activites.set_text({});
  ui_.Txt_Pourc.set_text({});
  ui_.Lst_Activites.set_enabled(true);
  ui_.Cmd_AjAct.set_enabled(true);
  ui_.Cmd_OkAct.set_enabled(false);
  ui_.Cmd_AnnulAct.set_enabled(false);
  ui_.Cbo_Activites.set_enabled(false);
  ui_.Txt_Pourc.set_enabled(false);
  states_.DeGriserDonnees();
  states_.DeGriserDetail();
  ui_.set_focus(ui_.Cmd_AjAct);
}

void ActivityLines::Cmd_AjAct_Click() {
  card_.AjoutActivite = true;
  begin_entry();
  ui_.Cbo_Activites.set_enabled(true);
  begun_ = entered();
  ui_.set_focus(ui_.Cbo_Activites);
}

void ActivityLines::Lst_Activites_DblClick() {
  changed_line_ = ui_.Lst_Activites.index();
  if (changed_line_ < 0) return;
  const std::string line(ui_.Lst_Activites.line(changed_line_));
  begin_entry();
  const std::string_view code = element(card_.draft.record(), card::kActivity, changed_line_ + 1);
  // What stands in the line is what the file called it when the line was made; an activity that
  // has left the list shows the line's own text.
  int entry = reference::find_entry(lists_.kept().activities, 1, code) - 1;
  for (int i = 0; entry < 0 && i < ui_.Cbo_Activites.count(); ++i) {
    if (card::is_activity_label(ui_.Cbo_Activites.line(i), line)) entry = i;
  }
  ui_.Cbo_Activites.set_index(entry);
  if (entry < 0) ui_.Cbo_Activites.set_text(card::activity_label(line));
  ui_.Cbo_Activites.set_enabled(false);
  ui_.Txt_Pourc.show_whole(card::activity_share(line));
  begun_ = entered();
  ui_.set_focus(ui_.Txt_Pourc);
}

// A new line's activity shows where it stands already.
void ActivityLines::Cbo_Activites_Click() {
  if (!card_.AjoutActivite || ui_.Cbo_Activites.index() < 0) return;
  const auto& lines = ui_.Lst_Activites.items();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (card::is_activity_label(ui_.Cbo_Activites.text(), lines[i]))
      return ui_.Lst_Activites.set_index(static_cast<int>(i));
  }
}

bool ActivityLines::entry_is_valid() {
  if (ui_.Cbo_Activites.is_empty()) {
    screen_.refuse("Il est obligatoire de spécifier une activité.");
    ui_.set_focus(ui_.Cbo_Activites);
    return false;
  }
  const bool nothing = no_figure_ || (card_.AjoutActivite && ui_.Txt_Pourc.is_empty());
  if (nothing) {
    no_figure_ = false;
    screen_.refuse("Il est obligatoire de spécifier une répartition.");
    ui_.set_focus(ui_.Txt_Pourc);
  }
  return !nothing;
}

void ActivityLines::add_line() {
  const int entry = ui_.Cbo_Activites.index() + 1;
  const std::string share = ui_.Txt_Pourc.text();
  ui_.Lst_Activites.add(card::activity_line(ui_.Cbo_Activites.text(), share));
  card_.draft.add_activity(lists_.kept().activities(entry, 1), share);
}

void ActivityLines::change_line() {
  const std::string share = ui_.Txt_Pourc.text();
  if (share.empty() || share == "0,00") {
    ui_.Lst_Activites.remove(changed_line_);
    card_.draft.remove_activity(changed_line_);
    return;
  }
  ui_.Lst_Activites.replace(changed_line_, card::activity_line(ui_.Cbo_Activites.text(), share));
  card_.draft.change_share(changed_line_, share);
}

void ActivityLines::Cmd_OkAct_Click() {
  if (!entry_is_valid()) return;
  ui_.Lst_Activites.set_enabled(true);
  card_.AjoutActivite ? add_line() : change_line();
  end_entry();
}

void ActivityLines::Cmd_AnnulAct_Click() { end_entry(); }

void ActivityLines::give_up() {
  if (enters()) end_entry();
}

}  // namespace velanor::amendments
