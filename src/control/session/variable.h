// What the components of one process share on one database: open files and cached records.
#pragma once

#include <array>
#include <memory>
#include <string_view>

#include "velanor/database.h"

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
};

}  // namespace velanor::control
