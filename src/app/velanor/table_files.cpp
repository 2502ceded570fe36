#include "app/velanor/table_files.h"

#include <QComboBox>
#include <algorithm>

#include "qt/strings.h"

namespace velanor::app {
namespace {

struct File {
  const char *name, *label;
  bool of_cards = false;
};
constexpr File kFiles[] = {
    {"ACTIVITES", "Activités"},
    {"COMMUNES", "Communes"},
    {"CONVENTIONCOL", "Conventions collectives"},
    {"ASSOCIATION", "Entités juridiques"},
    {"ETABLISSEMENT", "Établissements"},
    {"GRILLESCCBUDGET", "Grilles de carrière"},
    {"TABLES", "Listes de codes"},
    {"BUDGETPARAM", "Paramètres du budget"},
    {"PROFIL", "Profils de paie"},
    {"RUBCHARGE", "Rubriques de charge"},
    {"RUBSAISIE", "Rubriques de saisie"},
    {"SECTEUR", "Secteurs"},
    {"BUDGETTRAMESAISIE", "Trames de saisie"},
    {"VELANORO", "Fiches du personnel", true},
    {"BUDGETREMARQUES", "Remarques mises de côté", true},
    {"BUDGETHISTORCUMUL", "Cumuls du calcul", true},
    {"BUDGETDETAILCALCUL", "Mois du calcul", true},
};

const File* known(const QString& name) {
  const auto* found =
      std::find_if(std::begin(kFiles), std::end(kFiles), [&](const File& file) { return name == file.name; });
  return found == std::end(kFiles) ? nullptr : found;
}

}  // namespace

QString described(const QString& file) {
  const File* found = known(file);
  return found ? QString("%1 (%2)").arg(QString(found->label), file) : file;
}

void offer_files(QComboBox& box, store::Database& database, OfferCards cards) {
  const auto add = [&](const QString& name) { box.addItem(described(name), name); };
  for (const File& file : kFiles) {
    if (!file.of_cards) add(file.name);
  }
  for (const std::string& name : database.files()) {
    if (const QString file = qt::to_qt(name); !known(file)) add(file);
  }
  for (const File& file : kFiles) {
    if (file.of_cards && cards == OfferCards::kYes) add(file.name);
  }
}

}  // namespace velanor::app
