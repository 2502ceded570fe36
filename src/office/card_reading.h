// What the cards of a database are read by: its reference files, its codes and their labels.
#pragma once

#include <memory>
#include <string_view>

#include "card/record/draft.h"
#include "control/session/procedure.h"
#include "velanor/database.h"
#include "velanor/util_saisie.h"

namespace velanor::office {

class CardReading {
 public:
  // Joins the files that are open on the database, which outlives it. Throws store::DbError.
  explicit CardReading(store::Database& database, const entry::Clock& clock = entry::system_clock())
      : entry_(entry::make_util_saisie(clock)),
        procedure_(database),
        reading_{card::Codec(*entry_), labels()} {}
  CardReading(const CardReading&) = delete;
  CardReading& operator=(const CardReading&) = delete;

  // This outlives the draft.
  card::Draft draft(store::DbRecord card) const { return card::Draft(reading_, std::move(card)); }
  store::DbFile& file(control::File file) const { return procedure_.file(file); }
  const control::Procedure& procedure() const { return procedure_; }
  const card::Labels& labels_of_codes() const { return reading_.labels; }

 private:
  card::Labels labels() {
    procedure_.OuvrirFichiers();
    return card::Labels(procedure_);
  }

  std::unique_ptr<entry::UtilSaisie> entry_;
  control::Procedure procedure_;
  card::Reading reading_;
};

}  // namespace velanor::office
