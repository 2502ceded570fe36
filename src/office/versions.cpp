#include "office/versions.h"

#include <algorithm>
#include <array>
#include <ctime>

#include "card/record/element.h"
#include "card/record/record_layout.h"
#include "card/record/saving.h"
#include "exchange/columns.h"

namespace velanor::office {
namespace {

using store::DbError;
using store::DbRecord;
using store::Version;

const DbRecord& content_of(const Version& version) {
  if (version.record) return *version.record;
  throw DbError(store::kStoreFailure,
                "La version " + std::to_string(version.number) +
                    (version.sound ? " est une suppression : elle n'a pas de contenu à rétablir."
                                   : " est endommagée : elle ne peut pas être rétablie.") +
                    " Choisissez-en une autre.");
}

// What was seen is what it takes the place of, even when others write meanwhile. A damaged record is none
// that could be expected.
store::Expected expected_of(const Version& last) {
  if (!last.sound) return store::Expected::anything();
  return last.record ? store::Expected::record(*last.record) : store::Expected::absent();
}

// Results were computed once and belong to no version.
DbRecord with_results_of(const DbRecord* now, DbRecord card) {
  if (now != nullptr) {
    for (const card::Field& result : card::kResults) set_element(card, result, element(*now, result));
    set_element(card, card::kStatus, element(*now, card::kStatus));
  }
  card::drop_stale_results(card, now);
  return card;
}

}  // namespace

store::History& history_of(store::Database& database) {
  if (store::History* history = database.history()) return *history;
  throw DbError(
      store::kStoreFailure,
      "Cette base ne garde pas d'historique : elle n'est qu'en mémoire. Ouvrez une base enregistrée.");
}

std::vector<Version> versions_of(store::Database& database, std::string_view file, std::string_view id) {
  auto versions = history_of(database).versions(file, id);
  if (!versions.empty()) return versions;
  throw DbError(store::kStoreFailure, "L'enregistrement « " + std::string(id) + " » du fichier " +
                                          std::string(file) +
                                          " n'a jamais existé dans cette base. Vérifiez le fichier et "
                                          "l'identifiant.");
}

const Version& version_numbered(const std::vector<Version>& versions, std::uint64_t number) {
  const auto found = std::find_if(versions.begin(), versions.end(),
                                  [=](const Version& version) { return version.number == number; });
  if (found != versions.end()) return *found;
  throw DbError(store::kStoreFailure,
                "Il n'y a pas de version " + std::to_string(number) +
                    " de cet enregistrement. « velanorctl history » donne celles qui sont gardées.");
}

std::string moment_of(const Version& version) {
  if (version.time == 0) return "avant l'historique";
  const std::time_t time = version.time;
  std::tm local{};
  localtime_r(&time, &local);
  std::array<char, 64> text{};
  return {text.data(), std::strftime(text.data(), text.size(), "%d/%m/%Y %H:%M:%S", &local)};
}

std::string author_of(const Version& version) { return version.author.empty() ? "inconnu" : version.author; }

std::string kind_of(const std::vector<Version>& versions, std::size_t index) {
  const Version& version = versions[index];
  if (!version.sound) return "endommagée";
  if (!version.record) return "suppression";
  if (index == 0) return version.number == 1 ? "création" : "modification";
  const Version& before = versions[index - 1];
  return before.sound && !before.record ? "nouvelle création" : "modification";
}

BroughtBack bring_back(store::Database& database, std::string_view file, std::string_view id,
                       const std::vector<Version>& versions, const Version& wanted) {
  const Version& last = versions.back();
  const DbRecord* const now = last.record ? &*last.record : nullptr;
  BroughtBack back{.written = true, .was_deleted = last.sound && now == nullptr, .number = last.number};
  DbRecord content = content_of(wanted);
  if (file == exchange::kCardFile) content = with_results_of(now, std::move(content));
  if (now != nullptr && *now == content) {
    back.written = false;
    return back;
  }
  database.OpenFile(file)->write(id, content, expected_of(last));
  back.number = versions_of(database, file, id).back().number;
  return back;
}

}  // namespace velanor::office
