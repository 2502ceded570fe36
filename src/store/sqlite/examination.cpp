#include "store/sqlite/examination.h"

#include <algorithm>
#include <map>

#include "store/sqlite/failure.h"
#include "store/sqlite/schema.h"

namespace velanor::store::sqlite {
namespace {

struct Part {
  std::string type, sql;

  friend bool operator==(const Part&, const Part&) = default;
};
using Parts = std::map<std::string, Part>;

Parts parts_of(Connection& connection) {
  Parts parts;
  // Without sqlite_stat1 and the like, which any program may add, and the indexes of UNIQUE columns.
  Statement rows(connection,
                 "SELECT name, type, sql FROM main.sqlite_schema WHERE name NOT LIKE 'sqlite!_%' ESCAPE '!'");
  while (rows.step())
    parts[std::string(rows.bytes(0))] = {std::string(rows.bytes(1)), std::string(rows.bytes(2))};
  return parts;
}

// As the steps leave them that the file says it has taken.
Parts expected_parts(Connection& connection) {
  const auto steps = schema_steps();
  const auto taken =
      static_cast<std::size_t>(std::max<std::int64_t>(connection.number("PRAGMA user_version"), 0));
  Connection model(":memory:", Missing::kFail, 0);
  prepare(model, steps.first(std::min(taken, steps.size())));
  return parts_of(model);
}

std::string named(const Part& part, const std::string& name) {
  const bool index = part.type == "index";
  const char* article = index ? "l'index" : part.type == "trigger" ? "le déclencheur" : "la table";
  return std::string(part.type == "view" ? "la vue" : article) + " « " + name + " »";
}

// Backwards, which SQL has no word for.
std::vector<std::pair<std::int64_t, std::string>> wrong_tails(Connection& connection) {
  std::vector<std::pair<std::int64_t, std::string>> wrong;
  // Not by an index: it may be what is wrong.
  Statement rows(connection, "SELECT rowid, id, tail FROM main.record NOT INDEXED");
  while (rows.step()) {
    const std::string_view id = rows.bytes(1);
    std::string tail(id.rbegin(), id.rend());
    if (rows.bytes(2) != tail) wrong.emplace_back(rows.number(0), std::move(tail));
  }
  return wrong;
}

void drop_derived(Connection& connection) {
  for (const auto& [name, part] : parts_of(connection)) {
    if (part.type == "table") continue;
    std::string quoted;
    for (const char c : name) quoted += c == '"' ? "\"\"" : std::string(1, c);
    connection.run(("DROP " + part.type + " IF EXISTS \"" + quoted + "\"").c_str());
  }
}

}  // namespace

std::vector<std::string> damages_of(Connection& connection) {
  std::vector<std::string> damages;
  Statement statement(connection, "PRAGMA integrity_check(20)");
  while (statement.step()) damages.emplace_back(statement.bytes(0));
  if (damages.size() == 1 && damages.front() == "ok") damages.clear();
  return damages;
}

std::vector<std::string> disagreements_of(Connection& connection) {
  std::vector<std::string> found;
  const Parts are = parts_of(connection), should = expected_parts(connection);
  for (const auto& [name, part] : should) {
    const auto known = are.find(name);
    if (known == are.end()) found.push_back(named(part, name) + " manque");
    if (known != are.end() && known->second != part)
      found.push_back(named(part, name) + " n'est pas comme prévu");
  }
  for (const auto& [name, part] : are) {
    if (!should.contains(name)) found.push_back(named(part, name) + " n'est pas de ce programme");
  }
  if (const auto wrong = wrong_tails(connection); !wrong.empty())
    found.push_back("l'identifiant retourné de " + std::to_string(wrong.size()) +
                    " enregistrements est faux");
  return found;
}

void repair(Connection& connection) {
  Transaction transaction(connection);
  const Parts should = expected_parts(connection);
  drop_derived(connection);
  for (const auto& [row, tail] : wrong_tails(connection)) {
    Statement update(connection, "UPDATE main.record SET tail = ?2 WHERE rowid = ?1");
    update.bind(1, row);
    update.bind_blob(2, tail);
    update.step();
  }
  for (const auto& [name, part] : should) {
    if (part.type != "table") connection.run(part.sql.c_str());
  }
  connection.run("REINDEX");
  // What was kept of earlier selections may have been wrong.
  connection.run("UPDATE file SET revision = revision + 1; DELETE FROM kept");
  if (!damages_of(connection).empty() || !disagreements_of(connection).empty()) {
    throw DamagedError(kStoreFailure, "La base « " + connection.path() +
                                          " » ne peut pas être réparée et n'a pas été modifiée. Fermez les "
                                          "programmes et reprenez la dernière sauvegarde.");
  }
  transaction.commit();
}

}  // namespace velanor::store::sqlite
