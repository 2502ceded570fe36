#include "control/other_clerks.h"

#include <algorithm>

#include "control/session/card_id.h"
#include "text/utf8.h"

namespace velanor::control {
namespace {

const auto kCardFile = kFileNames[static_cast<std::size_t>(File::kCards)];

bool in_cards(const store::Change& change) { return change.file.empty() || change.file == kCardFile; }

}  // namespace

bool OtherClerks::touches_list(const store::Change& change) const {
  const std::string end = on_.ui.Txt_Asso.text() + std::string(text::trim(on_.ui.Cbo_Periode.text()));
  return on_.ui.Cbo_Periode.index() >= 0 && !on_.ui.Txt_Asso.is_empty() && in_cards(change) &&
         (change.id.empty() || change.id.ends_with(end));
}

bool OtherClerks::touches_card(const store::Change& change) const {
  return on_.card.open && on_.card.file && in_cards(change) &&
         (change.id.empty() || change.id == on_.card.file->id());
}

// The list once, whatever has come; of the card the last one.
void OtherClerks::follow() {
  if (!news_) return;
  for (store::Change& change : news_->take()) waiting_.push_back(std::move(change));
  const auto touching = [&](auto touches) {
    return std::find_if(waiting_.rbegin(), waiting_.rend(),
                        [&](const store::Change& change) { return (this->*touches)(change); });
  };
  if (touching(&OtherClerks::touches_list) != waiting_.rend()) on_.lists.renew_employees();
  const auto last = touching(&OtherClerks::touches_card);
  if (last != waiting_.rend()) look_at_card(*last);
  waiting_.clear();
}

// Somebody may also have written what stood there before, and anything may have changed means: look.
void OtherClerks::look_at_card(const store::Change& change) {
  const store::FileRecord& opened = *on_.card.file;
  const auto stored = on_.procedure.file(File::kCards).find(opened.id());
  if (stored == told_.value_or(std::optional<store::DbRecord>(opened))) return;
  told_ = stored;
  using Kind = commands::CardEvent::Kind;
  on_.tell({stored ? Kind::kSavedElsewhere : Kind::kDeletedElsewhere,
            opened.id(),
            on_.title(),
            {},
            change.author});
}

}  // namespace velanor::control
