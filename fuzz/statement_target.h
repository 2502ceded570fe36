// Any bytes as a statement: refused with a sentence, or run to the same result whatever the plan.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "check.h"
#include "store/checked_writes.h"
#include "store/memory_backend.h"
#include "velanor/memory_database.h"

namespace velanor::store::fuzz {

// Ignores what is known of the ids, so that every selection looks at every record.
class UnplannedBackend : public MemoryBackend {
 public:
  void scan(std::string_view file, const Narrowing&, Content content, const Visit& visit) override {
    MemoryBackend::scan(file, {}, content, visit);
  }
};

inline void fill(Backend& backend) {
  const char* const kCards[][2] = {
      {"000010072026",
       "MARTIN\xFE"
       "2\xFD"
       "10\xFC"
       "x"},
      {"000020072026",
       "Élodie\xFE"
       "02"},
      {"000010072025",
       "\xFE\xFE"
       "a\"b"},
      {"éàè010080",
       "[x]\xFE"
       "400"},
      {"01400", "œuf\xFE\xFD"},
      {"9", ""},
  };
  for (const auto& [id, text] : kCards) put_checked(backend, "VELANORO", id, DbRecord::from_encoded(text));
}

template <class B>
class Filled : public StoreDatabase {
 public:
  Filled() : StoreDatabase(std::make_unique<B>()) {
    fill(backend());
    name_id_part("VELANORO", "CodeAsso", {.first = 6, .count = 3});
    name_id_part("VELANORO", "Annee", {.first = 9});
  }
};

inline void check_ascending(const DbResult& result) {
  for (int i = 2; i <= result.DCount(); ++i) FUZZ_CHECK(result(i - 1, 1) < result(i, 1));
}

inline void run_statement(const std::uint8_t* data, std::size_t size) {
  static Filled<MemoryBackend> planned;
  static Filled<UnplannedBackend> unplanned;
  const std::string statement(data, data + size);
  const std::string request = DbQuery(statement, "VELANORO", "0 1 2").encoded();
  try {
    const DbResult result = planned.Select(request);
    const DbResult other = unplanned.Select(request);
    FUZZ_CHECK(result.DCount() == other.DCount() && result.DCount() <= 6);
    for (int i = 1; i <= result.DCount(); ++i) FUZZ_CHECK(result(i) == other(i));
    if (statement.find("PAR") == std::string::npos) check_ascending(result);
  } catch (const DbError& error) {
    FUZZ_CHECK(error.number() == kBadStatement);
    FUZZ_CHECK(std::string_view(error.what()).starts_with("Sélection illisible au caractère "));
  }
}

}  // namespace velanor::store::fuzz
