#include "card/record/fit_codes.h"

#include <algorithm>

#include "card/record/record_layout.h"
#include "velanor/query.h"

namespace velanor::card {
namespace {

std::string with(int attribute, std::string_view is, std::string_view text) {
  return "AVEC " + std::to_string(attribute) + " " + std::string(is) + " " + store::quoted(text);
}

// Charges of mutual insurances whose both shares are amounts, or that the employer alone pays as an amount.
std::string mutual_charges() {
  using namespace charges;
  const auto amount = [](int share) { return with(share, "=", kAmount); };
  const std::string mutual = with(kNature, "=", kMutual);
  return "SSELECT RUBCHARGE " + mutual + " AND " + amount(kEmployeeShare) + " AND " + amount(kEmployerShare) +
         " OR " + mutual + " AND " + amount(kEmployerAlone) + " PAR 1";
}

}  // namespace

const Fit* fit_of(std::string_view list) {
  static const Fit kFits[] = {
      {kAgreement.list, "SSELECT CONVENTIONCOL " + with(0, "#", agreements::kReserved) + " 0 PAR 0",
       "Vous ne pouvez pas sélectionner cette convention."},
      {kProfile1.list, "SSELECT PROFIL " + with(profiles::kMandate, "#", kMarked) + " PAR 1",
       "Vous ne pouvez pas affecter un profil mandataire."},
      {kMutualCharge.list, mutual_charges(),
       "La rubrique de charge n'existe pas ou ne répond pas aux critères, veuillez la ressaisir."},
  };
  const auto* const found =
      std::find_if(std::begin(kFits), std::end(kFits), [=](const Fit& fit) { return fit.list == list; });
  return found == std::end(kFits) ? nullptr : found;
}

}  // namespace velanor::card
