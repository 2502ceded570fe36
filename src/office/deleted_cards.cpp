#include "office/deleted_cards.h"

#include "card/record/element.h"
#include "card/record/record_layout.h"
#include "control/session/card_id.h"
#include "exchange/columns.h"
#include "office/versions.h"

namespace velanor::office {
namespace {

DeletedCard deleted_card(const std::string& id, std::vector<store::Version> versions) {
  DeletedCard deleted{id, std::string(card::employee_of(id)), {}, std::move(versions), {}};
  for (std::size_t i = deleted.versions.size(); i-- > 0 && !deleted.content;) {
    if (const auto& record = deleted.versions[i].record) {
      deleted.content = i;
      deleted.name = element(*record, card::kName);
    }
  }
  return deleted;
}

}  // namespace

std::vector<DeletedCard> deleted_cards(store::Database& database, std::string_view entity,
                                       std::string_view year) {
  store::History& history = history_of(database);
  const std::string suffix = std::string(entity).append(year);
  std::vector<DeletedCard> cards;
  for (const std::string& id : history.deleted(exchange::kCardFile, suffix)) {
    if (card::is_record_id(id)) cards.push_back(deleted_card(id, history.versions(exchange::kCardFile, id)));
  }
  return cards;
}

}  // namespace velanor::office
