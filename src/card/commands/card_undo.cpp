#include "card/commands/card_undo.h"

#include <utility>

namespace velanor::commands {
namespace {

const std::string kNothing;

}  // namespace

void CardUndo::begin() {
  end();
  moments_.push_back(now());
}

void CardUndo::end() {
  moments_.clear();
  at_ = 0;
}

void CardUndo::note() {
  if (stand()) return;
  Moment moment = now();
  moment.name = name_of(moment.card);
  if (moment.name.empty()) return;  // half a label, which goes when it is left
  moments_.erase(moments_.begin() + static_cast<std::ptrdiff_t>(++at_), moments_.end());
  moments_.push_back(std::move(moment));
}

const std::string& CardUndo::undo_name() const { return at_ > 0 ? moments_[at_].name : kNothing; }

const std::string& CardUndo::redo_name() const {
  return at_ + 1 < moments_.size() ? moments_[at_ + 1].name : kNothing;
}

std::string CardUndo::pending_name() const {
  if (stand()) return {};
  return name_of(record_.entered());
}

// What no encoding reads is a step as well: it is not lost on the way back and forth.
std::string CardUndo::name_of(const card::Draft& card) const {
  std::string name = act_between(moments_[at_].card, card).name;
  return name.empty() ? record_.difference_from(moments_[at_].shown) : name;
}

bool CardUndo::undo() { return at_ > 0 && go_to(at_ - 1); }
bool CardUndo::redo() { return at_ + 1 < moments_.size() && go_to(at_ + 1); }

bool CardUndo::go_to(std::size_t at) {
  const card::CardAct act = act_between(moments_[at_].card, moments_[at].card);
  record_.show(moments_[at].shown);
  at_ = at;
  lead_to_(act);
  return true;
}

}  // namespace velanor::commands
