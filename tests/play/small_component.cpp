#include "play/small_component.h"

#include "text/utf8.h"

namespace velanor::play {

SmallComponent::SmallComponent(store::Database& database, MessageBoxes& boxes) : toolkit_(boxes) {
  form_.lines.add("un");
  form_.lines.add("deux");
  form_.bar.set_max(5);
  form_.grey.set_enabled(false);
  bind(database);
}

void SmallComponent::bind(store::Database& database) {
  form_.code.key_press = [](screen::Key& key) {
    if (!text::is_digit(key.code) && key.code != screen::Key::kBackspace) key.swallow();
  };
  form_.date.lost_focus += [this] {
    if (form_.date.text() == "non") form_.set_focus(form_.date);
  };
  form_.list.drop_down += [this] { form_.list.refill({"alpha", "beta"}); };
  form_.lines.double_clicked += [this] { form_.date.set_text(form_.lines.line(form_.lines.index())); };
  form_.ask.clicked += [this] { form_.date.set_text(screen_.confirm("On continue ?") ? "suite" : "fin"); };
  form_.choose.clicked += [this] {
    const auto answer =
        screen_.say("Deux lignes.\r\nOn garde ?", screen::Icon::Information, screen::Buttons::OkCancel);
    form_.date.set_text(answer == screen::Answer::Ok ? "suite" : "fin");
  };
  form_.warn.clicked += [this] { screen_.refuse("Attention."); };
  form_.search.clicked +=
      [&database] { database.Select(store::DbQuery("SSELECT SECTEUR PAR 1", "SECTEUR", "0").encoded()); };
  form_.fail.clicked += [] { throw store::DbError(store::kStoreFailure, "Le disque est plein."); };
  form_.detail.clicked += [this] { screen_.open(modal_, [this] { form_.date.set_text("fermé"); }); };
  modal_.ok.clicked += [this] { screen_.close(modal_); };
  form_.leave.clicked += [this] { screen_.finish(); };
  form_.right_pressed += [this] { form_.help.set_caption("ouvert"); };
  form_.help.clicked += [this] { form_.date.set_text("aide"); };
}

}  // namespace velanor::play
