#include "card/commands/card_writer.h"

#include <string>
#include <utility>
#include <vector>

#include "card/record/rules.h"
#include "control/session/years.h"
#include "entry/decimal.h"

namespace velanor::commands {
namespace {

const std::string kMeanwhile = "Cette fiche a été modifiée entre-temps sur un autre poste";

std::vector<screen::Comparison::Line> lines_of(const card::Merge& merge) {
  std::vector<screen::Comparison::Line> lines;
  for (const card::Clash& clash : merge.clashes())
    lines.push_back({clash.name, clash.before, clash.theirs, clash.mine});
  return lines;
}

std::vector<card::Side> sides_of(const std::vector<screen::Answer>& answers) {
  std::vector<card::Side> sides;
  sides.reserve(answers.size());
  for (const screen::Answer answer : answers)
    sides.push_back(answer == screen::Answer::Mine ? card::Side::kMine : card::Side::kTheirs);
  return sides;
}

void in_one_change(store::Database& database, const std::function<void()>& writes) {
  try {
    database.in_one_change(writes);
  } catch (const store::DbError& error) {
    if (error.number() != store::kNotOffered) throw;
    writes();
  }
}

}  // namespace

CardWriter::Outcome CardWriter::save(store::FileRecord& stored, const card::Draft& entered) {
  if (entered.record() == stored) return Outcome::kDone;
  store::DbFile& cards = procedure_.file(control::File::kCards);
  const card::Draft before(entered.reading(), stored);
  store::DbRecord wanted = entered.record();
  store::Expected expected = store::Expected::record(stored);
  std::string told;
  // Whoever saves meanwhile is met again.
  while (true) {
    try {
      cards.write(stored.id(), wanted, expected);
      break;
    } catch (const store::DbError& conflict) {
      if (conflict.number() != store::kConflict) throw;
      if (const auto theirs = cards.find(stored.id())) {
        auto together = put_together(before, card::Draft(entered.reading(), *theirs), entered, conflict);
        if (!together) return Outcome::kBack;
        wanted = std::move(*together);
        expected = store::Expected::record(*theirs);
        told = kMeanwhile + (wanted == *theirs ? " : elle reste telle qu'elle y a été enregistrée."
                                               : " : ses modifications et les vôtres sont réunies.");
      } else {
        if (!screen_.confirm_loss("Cette fiche a été supprimée entre-temps sur un autre poste.\r\n"
                                  "Voulez-vous la rétablir telle que vous l'avez saisie ?"))
          return Outcome::kBack;
        wanted = entered.record();
        expected = store::Expected::absent();
        told.clear();
      }
    }
  }
  stored.assign(wanted);
  if (!told.empty()) screen_.inform(told);
  return Outcome::kDone;
}

// What the two changed may keep to the rules one by one and break them together; then every change is to be
// chosen, until the card could be saved by hand as well. All of one side always can.
std::optional<store::DbRecord> CardWriter::put_together(const card::Draft& before, const card::Draft& theirs,
                                                        const card::Draft& mine,
                                                        const store::DbError& conflict) {
  using card::Merge;
  Merge merge(before, theirs, mine);
  std::vector<card::Side> sides;
  std::string text =
      kMeanwhile + ".\r\nPour ce que vous avez modifié tous les deux, choisissez ce qui est gardé.";
  for (bool asked = false;; asked = true) {
    if (asked || !merge.clashes().empty()) {
      const auto answers = screen_.compare(text, lines_of(merge));
      if (!answers) throw conflict;
      if (answers->empty()) return std::nullopt;
      sides = sides_of(*answers);
    }
    store::DbRecord together = merge.merged(sides);
    const auto fault = fault_of(together, mine.reading());
    if (!fault) return together;
    text = kMeanwhile + ", et les deux modifications ne vont pas ensemble :\r\n" + fault->sentence() +
           "\r\nChoisissez ce qui est gardé.";
    merge = Merge(before, theirs, mine, Merge::Asks::kEveryChange);
  }
}

std::optional<card::Fault> CardWriter::fault_of(const store::DbRecord& card,
                                                const card::Reading& reading) const {
  const auto reference = entry::parse_decimal(control::reference_date(procedure_), 0).value_or(0);
  const auto faults = card::faults_of(card, reading.codec, reference);
  return faults.empty() ? std::nullopt : std::optional(faults.front());
}

CardWriter::Outcome CardWriter::remove(const store::FileRecord& stored,
                                       const std::function<void()>& with_it) {
  store::DbFile& cards = procedure_.file(control::File::kCards);
  store::Expected expected = store::Expected::record(stored);
  while (true) {
    try {
      in_one_change(procedure_.database(), [&] {
        cards.remove(stored.id(), expected);
        with_it();
      });
      return Outcome::kDone;
    } catch (const store::DbError& conflict) {
      if (conflict.number() != store::kConflict) throw;
    }
    // Somebody else may have deleted it: then only what went with it is left to delete.
    const auto theirs = cards.find(stored.id());
    expected = theirs ? store::Expected::record(*theirs) : store::Expected::absent();
    if (theirs && !screen_.confirm_loss(kMeanwhile + ".\r\nVoulez-vous tout de même la supprimer ?"))
      return Outcome::kBack;
  }
}

}  // namespace velanor::commands
