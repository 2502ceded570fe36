// What the components of one process share on one database: open files and cached records.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "screen/control.h"
#include "store/database.h"

namespace velanor::control {

// The files kept open, in the order in which they are opened.
enum class File {
  kActivities,
  kEntities,
  kCards,
  kParameters,
  kTowns,
  kAgreements,
  kGrids,
  kProfiles,
  kCharges,
  kItems,
  kSectors,
  kTables,
  kTemplates,
};
inline constexpr std::array<std::string_view, 13> kFileNames{
    "ACTIVITES", "ASSOCIATION", "VELANORO",  "BUDGETPARAM", "COMMUNES", "CONVENTIONCOL",    "GRILLESCCBUDGET",
    "PROFIL",    "RUBCHARGE",   "RUBSAISIE", "SECTEUR",     "TABLES",   "BUDGETTRAMESAISIE"};

// The shared variables: dropped when the last component leaves.
struct Variable {
  std::array<std::unique_ptr<store::DbFile>, kFileNames.size()> files;
  std::unique_ptr<store::DbFile> establishments;  // opened when first read
  store::DbRecord fincontrat;                     // end-of-contract reasons
  store::DbRecord qualif;                         // qualifications
  store::DbRecord regroupbudget;                  // budget groupings
  store::DbRecord naturecontrat;                  // contract natures
  store::DbRecord diplomes;                       // diplomas
  store::DbQuery request;                         // the request last sent
};

// The shared routines, on the variables of one database. Every component holds its own; the
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

// Sizes a scroll bar for a list: maximum one less than its lines, visible when they are more
// than a page, back at the top.
void size_scroll_bar(screen::ScrollBar& bar, const screen::ListBox& list, int page);

}  // namespace velanor::control
