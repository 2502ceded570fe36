#include "velanor/store_database.h"

#include "store/plan.h"
#include "store/select/evaluator.h"
#include "store/select/found_rows.h"
#include "store/select/parser.h"

namespace velanor::store {
namespace {

class StoreFile : public DbFile {
 public:
  StoreFile(Backend& backend, std::string_view name) : backend_(&backend), name_(name) {}

  std::optional<DbRecord> find(std::string_view id) override { return backend_->find(name_, id); }
  void write(std::string_view id, const DbRecord& record, Expected expected) override {
    put_checked(*backend_, name_, id, record, expected);
  }
  void DeleteRecord(std::string_view id) override { backend_->erase(name_, id); }

 private:
  Backend* backend_;
  std::string name_;
};

}  // namespace

void put_checked(Backend& backend, std::string_view file, std::string_view id, const DbRecord& record,
                 Expected expected) {
  if (id.empty() || clean_text(id) != id) {
    throw DbError(kStoreFailure, "L'enregistrement n'a pas été écrit : son identifiant « " + clean_text(id) +
                                     " » doit être un texte non vide. Vérifiez les codes saisis.");
  }
  if (backend.put(file, id, record, expected)) return;
  throw DbError(kConflict, "L'enregistrement « " + std::string(id) + " » du fichier " + std::string(file) +
                               " n'a pas été écrit : un autre poste vient de le créer. Reprenez-le pour voir "
                               "ce qu'il contient.");
}

StoreDatabase::StoreDatabase(std::unique_ptr<Backend> backend, select::Dictionary dictionary)
    : backend_(std::move(backend)), dictionary_(std::move(dictionary)) {}

std::unique_ptr<DbFile> StoreDatabase::OpenFile(std::string_view name) {
  backend_->open(name);
  return std::make_unique<StoreFile>(*backend_, name);
}

DbResult StoreDatabase::Select(std::string_view request, std::string_view) {
  if (const auto* kept = cache_.find(request)) {
    if (kept->revision == backend_->revision(kept->file)) return kept->result;
  }
  const DbRecord query = DbRecord::from_encoded(request);
  // Asked before the scan: what changes meanwhile makes the kept result old, not wrong.
  const std::string file(query(2));
  const std::uint64_t revision = backend_->revision(file);
  DbResult result = run(query);
  cache_.keep({std::string(request), file, revision, result});
  return result;
}

DbResult StoreDatabase::run(const DbRecord& query) {
  const select::Statement statement = select::parse_statement(query(1), query(2), dictionary_);
  const std::vector<int> attributes = select::parse_attribute_list(query(3));
  select::FoundRows found(statement.sort_keys, attributes);
  backend_->scan(statement.file, narrowing_of(statement), content_needed(statement, attributes),
                 [&](const select::Row& row) {
                   if (select::matches(statement, row)) found.add(row);
                 });
  return found.result();
}

}  // namespace velanor::store
