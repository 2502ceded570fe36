#include "card/record/named_fields.h"

#include <algorithm>
#include <cstdint>

#include "card/record/card_dates.h"
#include "entry/decimal.h"
#include "text/number.h"
#include "text/utf8.h"

namespace velanor::card {
namespace {

using Card = card::CardScreen;
using Items = forms::ItemScreen;

template <card::Encoding E>
constexpr CardField field(card::Attribute<E> attribute, std::string_view name, std::string_view noun,
                          Box box = {}, std::string_view list = {}) {
  return {attribute.number, E, name, noun, box, list};
}

constexpr CardField kFields[] = {
    field(card::kName, "Nom", "Le nom", &Card::Txt_NomAidant),
    field(card::kEstablishmentHours, "Horaire de l'établissement", "L'horaire mensuel de l'établissement",
          &Card::Txt_HorMensEtab),
    field(card::kAgreement, "Convention", "La convention collective", &Card::Txt_ConvCol, "CONVENTIONCOL"),
    field(card::kSector, "Secteur", "Le secteur", &Card::Txt_Secteur, "SECTEUR"),
    field(card::kTown, "Commune", "La commune", {}, "COMMUNES"),
    field(card::kContractType, "Type de contrat", "Le type de contrat"),
    field(card::kStaffKind, "Personnel", "La catégorie de personnel"),
    field(card::kContractStart, "Début de contrat", "La date de début de contrat", &Card::Txt_DatDeb),
    field(card::kBirth, "Date de naissance", "La date de naissance", &Card::Txt_DatNais),
    field(card::kProfile1, "Profil 1", "Le profil de paie", &Card::Txt_Profil1, "PROFIL"),
    field(card::kProfile2, "Profil 2", "Le second profil de paie", &Card::Txt_Profil2, "PROFIL"),
    field(card::kExemptedHours, "Heures exonérées", "Le pourcentage des heures exonérées",
          &Card::Txt_HresExo),
    field(card::kCeiling, "Plafond", "Le plafond de sécurité sociale", &Card::Txt_PlafSecu),
    field(card::kContractEnd, "Fin de contrat", "La date de fin de contrat", &Card::Txt_DatFin),
    field(card::kEndReason, "Motif de fin", "Le motif de fin de contrat", {}, "FINCONTRAT"),
    field(card::kSocialBase, "Assiette", "L'assiette de sécurité sociale", &Card::Txt_AssSS),
    field(card::kEstablishment, "Établissement", "L'établissement", &Card::Txt_CodEtab, "ETABLISSEMENT"),
    field(card::kMutualEmployee, "Mutuelle salarié", "La part salariale de la mutuelle",
          &Card::Txt_MutSalContrat),
    field(card::kMutualEmployer, "Mutuelle employeur", "La part patronale de la mutuelle",
          &Card::Txt_MutPatContrat),
    field(card::kMutualCharge, "Charge de mutuelle", "La charge de mutuelle", &Card::Txt_ChargMutContrat,
          "RUBCHARGE"),
    field(card::kContractNature, "Nature du contrat", "La nature du contrat", {}, "NATURECONTRAT"),
    field(card::kBranchEntry, "Entrée dans la branche", "La date d'entrée dans la branche",
          &Card::Txt_DateBranche),
    field(card::kEducation, "Niveau d'études", "Le niveau d'études", {}, "DIPLOMES"),
    field(card::kActivity, "Activité", "L'activité", {}, "ACTIVITES"),
    field(card::kShare, "Part", "La part d'une activité", &Card::Txt_Pourc),
    field(card::kEffective, "Date d'effet", "Une date d'effet", &Card::Txt_DatEffet),
    field(card::kGridStart, "Départ de grille", "Une date de départ de grille", &Card::Txt_DatDepGrille),
    field(card::kQualification, "Qualification", "La qualification", {}, "QUALIF"),
    field(card::kGrid, "Grille", "La grille", {}, "GRILLESCCBUDGET"),
    field(card::kCategory, "Catégorie", "La catégorie d'un avenant", &Card::Txt_Categorie),
    field(card::kHourlyRate, "Taux horaire", "Un taux horaire", &Card::Txt_TxHor),
    field(card::kMonthlyTime, "Durée mensuelle", "Une durée mensuelle", &Card::Txt_DureMens),
    field(card::kNewMeasure, "Nouvelle mesure", "Une nouvelle mesure"),
    field(card::kItemCode, "Rubrique", "La rubrique", &Items::Txt_Code, "RUBSAISIE"),
    field(card::kItemBase, "Base", "Une base de rubrique", &Items::Txt_Base),
    field(card::kItemRate, "Taux", "Un taux de rubrique", &Items::Txt_Taux),
    field(card::kItemAmount, "Montant", "Un montant de rubrique", &Items::Txt_Montant),
};

constexpr FlagWord kFlagWords[] = {
    {card::kContractType, "D", "CDD"},     {card::kContractType, "I", "CDI"},
    {card::kStaffKind, "P", "PRODUCTION"}, {card::kStaffKind, "A", "ADMINISTRATION"},
    {card::kNewMeasure, "O", "OUI"},       {card::kNewMeasure, "N", "NON"},
};

card::Fault fault(const CardField& field, const std::string& is_wrong, std::string_view value) {
  return card::Fault(std::string(field.noun) + " " + is_wrong + " : « … ».", std::string(value));
}

std::optional<card::Fault> fault_of_length(const CardField& field, std::string_view shown) {
  const int most = field.box.length();
  if (most == 0 || text::length(shown) <= most) return std::nullopt;
  return fault(field, "dépasse les " + std::to_string(most) + " caractères de sa case", shown);
}

std::optional<card::Fault> fault_of_flag(const CardField& field, std::string_view stored) {
  const bool known = std::any_of(std::begin(kFlagWords), std::end(kFlagWords), [&](const FlagWord& flag) {
    return flag.attribute == field.attribute && flag.letter == stored;
  });
  return known ? std::nullopt : std::optional(fault(field, "est illisible", stored));
}

std::optional<card::Fault> fault_of_date(const CardField& field, std::string_view stored) {
  if (stored_day(stored)) return std::nullopt;
  return fault(field, "est illisible", stored);
}

std::optional<card::Fault> fault_of_figure(const CardField& field, std::string_view stored) {
  const auto figure = text::whole_number(stored);
  if (!figure) return fault(field, "est illisible", stored);
  const int scale = decimals(field.encoding);
  const std::string shown = entry::format_decimal(*figure, scale, scale);
  if (*figure < 0) return fault(field, "est au-dessous de zéro", shown);
  return fault_of_length(field, shown);
}

}  // namespace

// The boxes themselves know, so they are made once to be asked.
int Box::length() const {
  static const card::CardScreen card;
  static const forms::ItemScreen items;
  if (of_card != nullptr) return (card.*of_card).max_length();
  return of_items != nullptr ? (items.*of_items).max_length() : 0;
}

std::span<const CardField> card_fields() { return kFields; }

const CardField* card_field(int attribute) {
  const auto* const found = std::find_if(std::begin(kFields), std::end(kFields), [=](const CardField& field) {
    return field.attribute == attribute;
  });
  return found == std::end(kFields) ? nullptr : found;
}

std::span<const FlagWord> flag_words() { return kFlagWords; }

int decimals(card::Encoding encoding) {
  switch (encoding) {
    case card::Encoding::kHundredths:
      return 2;
    case card::Encoding::kThousandths:
      return 3;
    case card::Encoding::kTenThousandths:
      return 4;
    default:
      return 0;
  }
}

std::optional<card::Fault> fault_of(const CardField& field, std::string_view stored) {
  if (stored.empty()) return std::nullopt;
  if (field.encoding == card::Encoding::kFlag) return fault_of_flag(field, stored);
  if (field.encoding == card::Encoding::kDate) return fault_of_date(field, stored);
  if (decimals(field.encoding) > 0) return fault_of_figure(field, stored);
  // The screen shows the establishment without its entity.
  const bool establishment = field.attribute == card::kEstablishment;
  return fault_of_length(field, establishment ? text::mid(stored, card::kEntityCodeLength + 1) : stored);
}

}  // namespace velanor::card
