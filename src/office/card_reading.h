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
    // A component that has started has read these already.
    control::Variable& shared = procedure_.variable();
    if (shared.naturecontrat.empty()) shared.naturecontrat = table("NATURECONTRAT");
    if (shared.diplomes.empty()) shared.diplomes = table("DIPLOMES");
    return card::Labels(procedure_);
  }

  store::DbRecord table(std::string_view name) const {
    return file(control::File::kTables).find(name).value_or(store::DbRecord());
  }

  std::unique_ptr<entry::UtilSaisie> entry_;
  control::Procedure procedure_;
  card::Reading reading_;
};

}  // namespace velanor::office
