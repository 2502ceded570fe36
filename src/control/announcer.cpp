#include "control/announcer.h"

#include <algorithm>
#include <utility>

#include "screen/scope.h"

namespace velanor::control {

void Announcer::ignore(CardListener& listener) { std::erase(listeners_, &listener); }

void Announcer::stop() {
  standing_ = nullptr;
  listeners_.clear();
  events_.clear();
}

bool Announcer::has_news() { return standing_ && (!events_.empty() || acted_ || standing_() != told_); }

// What a listener does is an act, too; its news wait until the others have heard what there was before.
void Announcer::act_over() {
  acted_ = true;
  if (telling_) return;
  const auto alive = shared_from_this();
  {
    const screen::Scope telling(telling_);
    while (has_news()) tell_next();
  }
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

void Announcer::tell_standing() {
  Standing now = standing_();
  if (now == told_) {
    acted_ = false;
    return tell([](CardListener& listener) { listener.act_over(); });
  }
  told_ = std::move(now);
  tell([](CardListener& listener) { listener.state_changed(); });
}

void Announcer::tell_next() {
  if (events_.empty()) return tell_standing();
  const commands::CardEvent event = std::move(events_.front());
  events_.pop_front();
  const Card card{event.id, event.title};
  tell([&](CardListener& listener) {
    using Kind = commands::CardEvent::Kind;
    switch (event.kind) {
      case Kind::kOpened:
        return listener.card_opened(card);
      case Kind::kSaved:
        return listener.card_saved(card);
      case Kind::kDeleted:
        return listener.card_deleted(card);
      case Kind::kCopied:
        return listener.card_copied(card, event.copy);
      case Kind::kClosed:
        return listener.card_closed(card);
      case Kind::kSavedElsewhere:
        return listener.card_saved_elsewhere(card, event.author);
      case Kind::kDeletedElsewhere:
        return listener.card_deleted_elsewhere(card, event.author);
    }
  });
}

void Announcer::tell(const std::function<void(CardListener&)>& news) {
  const auto listeners = listeners_;
  for (CardListener* listener : listeners) {
    // One of those before may have had it ignored.
    if (std::find(listeners_.begin(), listeners_.end(), listener) == listeners_.end()) continue;
    try {
      news(*listener);
    } catch (...) {
      if (!failure_) failure_ = std::current_exception();
    }
  }
}

}  // namespace velanor::control
