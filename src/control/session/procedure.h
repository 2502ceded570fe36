// The shared routines of the components of one process on one database.
#pragma once

#include <memory>
#include <string_view>

#include "control/session/variable.h"
#include "velanor/database.h"

namespace velanor::control {

// Works on the variables of one database. Every component holds its own; the
// database must outlive them all.
class Procedure {
 public:
  explicit Procedure(store::Database& database) : database_(database) {}

  // Joins those who are already on the database, or opens the thirteen files; reads the records
  // "FINCONTRAT", "QUALIF" and "REGROUPBUDGET". Throws the store's error and then holds nothing.
  void OuvrirFichiers();
  // Leaves; the last one to leave closes the files and drops the records.
  void FermerFichiers() { variable_.reset(); }

  store::Database& database() const { return database_; }
  Variable& variable() const { return *variable_; }
  store::DbFile& file(File file) const { return *variable_->files[static_cast<std::size_t>(file)]; }
  store::DbFile& establishments() const;
  store::DbResult select(std::string_view statement, std::string_view file,
                         std::string_view attributes) const;

 private:
  store::Database& database_;
  std::shared_ptr<Variable> variable_;
};

}  // namespace velanor::control
