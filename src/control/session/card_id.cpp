#include "control/session/card_id.h"

namespace velanor::card {

void name_id_parts(store::Database& database) {
  database.name_id_part("VELANORO", "CodeAsso",
                        {.first = kEmployeeCodeLength + 1, .count = kEntityCodeLength});
  // To the end: ids of old stores may be longer.
  database.name_id_part("VELANORO", "Annee", {.first = kEmployeeCodeLength + kEntityCodeLength + 1});
}

}  // namespace velanor::card
