#include "control/session/procedure.h"

#include "control/session/card_id.h"

namespace velanor::control {

void Procedure::OuvrirFichiers() {
  card::name_id_parts(database_);
  auto variable = database_.shared_.lock();
  if (!variable) {
    variable = std::make_shared<Variable>();
    for (std::size_t i = 0; i < kFileNames.size(); ++i)
      variable->files[i] = database_.OpenFile(kFileNames[i]);
    database_.shared_ = variable;
  }
  store::DbFile& tables = *variable->files[static_cast<std::size_t>(File::kTables)];
  variable->fincontrat = tables.Read("FINCONTRAT");
  variable->qualif = tables.Read("QUALIF");
  variable->regroupbudget = tables.Read("REGROUPBUDGET");
  variable_ = std::move(variable);
}

store::DbFile& Procedure::establishments() const {
  if (!variable_->establishments) variable_->establishments = database_.OpenFile("ETABLISSEMENT");
  return *variable_->establishments;
}

store::DbResult Procedure::select(std::string_view statement, std::string_view file,
                                  std::string_view attributes) const {
  return database_.Select(store::DbQuery(statement, file, attributes).encoded());
}

}  // namespace velanor::control
