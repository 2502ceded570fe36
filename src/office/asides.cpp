#include "office/asides.h"

#include <functional>
#include <optional>

#include "card/record/element.h"
#include "exchange/columns.h"
#include "velanor/date.h"

namespace velanor::office {

using store::DbRecord;
namespace {

constexpr int kKinds = 1, kWho = 2, kDays = 3, kNames = 4;
constexpr int kColumns[] = {kKinds, kWho, kDays, kNames};

void remove(DbRecord& record, WarningKind kind) {
  for (int v = record.Count(kKinds); v >= 1; --v) {
    if (record(kKinds, v) != name_of(kind).name) continue;
    for (const int column : kColumns) record.Delete(column, v);
  }
}

// A record that another clerk changes meanwhile is read anew.
void change(store::Database& database, std::string_view id, const std::function<void(DbRecord&)>& what) {
  constexpr int kTries = 5;
  const auto file = database.OpenFile(kAsidesFile);
  for (int left = kTries; left > 0; --left) try {
      const std::optional<DbRecord> stored = file->find(id);
      const auto expected = stored ? store::Expected::record(*stored) : store::Expected::absent();
      DbRecord record = stored.value_or(DbRecord());
      what(record);
      if (record.Count(kKinds) > 0) return file->write(id, record, expected);
      return stored ? file->remove(id, expected) : void();
    } catch (const store::DbError& error) {
      if (error.number() != store::kConflict || left == 1) throw;
    }
}

}  // namespace

std::vector<Aside> asides_in(const DbRecord& record, std::string_view name) {
  std::vector<Aside> asides;
  for (int v = 1; v <= record.Count(kKinds); ++v) {
    const auto kind = warning_named(record(kKinds, v));
    if (kind && record(kNames, v) == name)
      asides.push_back(
          {*kind, std::string(record(kWho, v)), entry::stored_day(record(kDays, v)).value_or(0)});
  }
  return asides;
}

void set_aside(store::Database& database, std::string_view id, const Aside& aside) {
  const auto card = database.OpenFile(exchange::kCardFile)->find(id);
  if (!card) {
    throw store::DbError(
        store::kStoreFailure,
        "Cette fiche vient d'être supprimée : rien n'a été mis de côté. Refaites les contrôles (F8).");
  }
  change(database, id, [&](DbRecord& record) {
    remove(record, aside.kind);
    const int value = record.Count(kKinds) + 1;
    record.set(kKinds, value, name_of(aside.kind).name);
    record.set(kWho, value, aside.who);
    record.set(kDays, value, std::to_string(aside.day));
    record.set(kNames, value, element(*card, card::kName));
  });
}

void take_back(store::Database& database, std::string_view id, WarningKind kind) {
  change(database, id, [&](DbRecord& record) { remove(record, kind); });
}

}  // namespace velanor::office
