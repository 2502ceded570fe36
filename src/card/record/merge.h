// What two clerks made of one card, as one card again.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "card/record/draft.h"

namespace velanor::card {

// A card taken apart into what can be changed by itself: single fields, and lines by what they are known by:
// amendments by their effective date, the items of each and the activities by their codes.
struct Parts {
  struct Line {
    std::string key;                    // of several alike the second has "#2" behind it, and so on
    std::map<int, std::string> values;  // by attribute, as stored; none that is empty
    std::vector<Line> items;            // of an amendment
    friend bool operator==(const Line&, const Line&) = default;
  };
  using Lines = std::vector<Line>;

  explicit Parts(const store::DbRecord& card);
  Parts() = default;
  // Written over a record: what is no part of these (results, attributes beyond the layout) stays.
  void write_to(store::DbRecord& card) const;

  std::map<int, std::string> fields;
  Lines amendments, activities;
};

// What both have changed, each in his own way; texts are as the screen shows them.
struct Clash {
  std::string name;  // "Taux horaire de l'avenant du 01/03/2026"
  std::string before, theirs, mine;
};

enum class Side { kTheirs, kMine };

// Compares the card that both started from with what each made of it. Changes that do not touch are all
// taken; where both changed the same, somebody has to choose. Which of the two is "mine" makes no difference
// to what is taken. Throws store::DbError only where a label is asked for.
class Merge {
 public:
  // kEveryChange asks for what one of them alone has changed as well.
  enum class Asks { kClashes, kEveryChange };
  // Copies what it needs.
  Merge(const Draft& before, const Draft& theirs, const Draft& mine, Asks asks = Asks::kClashes);

  // What somebody has to choose.
  const std::vector<Clash>& clashes() const { return clashes_; }
  // The card with every change that did not clash, and where it did that of the side chosen; `choices` in the
  // order of the clashes. Results of the calculation are those that were computed from what the card holds,
  // empty where there are none.
  store::DbRecord merged(const std::vector<Side>& choices) const;

 private:
  Draft before_, theirs_, mine_;
  Asks asks_;
  std::vector<Clash> clashes_;
};

}  // namespace velanor::card
