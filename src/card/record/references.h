// The codes that the reference files hold.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "card/record/named_fields.h"
#include "velanor/database.h"

namespace velanor::card {

// Reads the reference files once: what it says holds for them as they were when it was made. A list
// is a file by its ids, a record of TABLES by its codes, or COMMUNES by its names.
class References {
 public:
  explicit References(store::Database& database);

  bool has(std::string_view list, std::string_view code) const;
  // Whether a card may take a code that its list has.
  bool fits(std::string_view list, std::string_view code) const;
  // A code that a spreadsheet has stripped of its leading zeros with them again, and one that belongs
  // to an entity behind the code of the entity. Any other text as it is.
  std::string completed(std::string_view list, std::string_view code, std::string_view entity) const;

  // As a day number; 0 when there is none.
  int reference_day() const { return reference_day_; }
  // What is wrong with the reference files themselves, so that no card could be right.
  const std::vector<Fault>& faults() const { return faults_; }

 private:
  void read_table(store::DbFile& tables, std::string_view table);
  void read_parameters(store::Database& database);

  using Codes = std::set<std::string, std::less<>>;
  std::map<std::string, Codes, std::less<>> codes_, fit_;
  int reference_day_ = 0;
  std::vector<Fault> faults_;
};

// That the list of the field does not have the code.
Fault unknown_code(const Field& field, std::string_view code);
// That a card may not take it.
Fault unfit_code(const Field& field, std::string_view code);
Fault unknown_entity(std::string_view entity);

}  // namespace velanor::card
