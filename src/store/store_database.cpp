#include <new>

#include "store/checked_writes.h"
#include "store/kept_selection.h"
#include "store/plan.h"
#include "store/select/dictionary.h"
#include "store/select/parser.h"
#include "text/failure.h"
#include "velanor/backend.h"

namespace velanor::store {
namespace {

// Whoever asks gets a sentence, whatever gave out.
template <class Act>
auto in_memory_that_suffices(Act act) try {
  return act();
} catch (const std::bad_alloc&) {
  throw DbError(kStoreFailure, text::kNoMemory);
}

class StoreFile : public DbFile {
 public:
  StoreFile(Backend& backend, std::string_view name) : backend_(&backend), name_(name) {}

  std::optional<DbRecord> find(std::string_view id) override {
    return in_memory_that_suffices([&] { return backend_->find(name_, id); });
  }
  void write(std::string_view id, const DbRecord& record, const Expected& expected) override {
    in_memory_that_suffices([&] { put_checked(*backend_, name_, id, record, expected); });
  }
  void remove(std::string_view id, const Expected& expected) override {
    in_memory_that_suffices([&] { erase_checked(*backend_, name_, id, expected); });
  }
  void remove_each(const std::vector<std::string>& ids) override {
    in_memory_that_suffices([&] { backend_->in_one_change([&] { backend_->erase_each(name_, ids); }); });
  }

 private:
  Backend* backend_;
  std::string name_;
};

DbError conflict(std::string_view file, std::string_view id, std::string_view what_was_not_done,
                 std::string_view what_others_did) {
  std::string sentence = "L'enregistrement « ";
  sentence.append(id).append(" » du fichier ").append(file).append(" ").append(what_was_not_done);
  sentence.append(" : un autre poste vient de le ").append(what_others_did);
  return {kConflict, sentence.append(". Reprenez-le pour voir ce qu'il contient.")};
}

}  // namespace

void put_checked(Backend& backend, std::string_view file, std::string_view id, const DbRecord& record,
                 const Expected& expected) {
  if (id.empty() || clean_text(id) != id) {
    throw DbError(kStoreFailure, "L'enregistrement n'a pas été écrit : son identifiant « " + clean_text(id) +
                                     " » doit être un texte non vide. Vérifiez les codes saisis.");
  }
  if (backend.put(file, id, record, expected)) return;
  throw conflict(file, id, "n'a pas été écrit", expected.wants_absence() ? "créer" : "modifier ou supprimer");
}

void erase_checked(Backend& backend, std::string_view file, std::string_view id, const Expected& expected) {
  if (!backend.erase(file, id, expected))
    throw conflict(file, id, "n'a pas été supprimé", "modifier ou supprimer");
}

void Backend::erase_each(std::string_view file, const std::vector<std::string>& ids) {
  for (const std::string& id : ids) erase(file, id, Expected::anything());
}

std::optional<std::uint64_t> Backend::changes_since(std::string_view, std::uint64_t, const VisitChange&) {
  return std::nullopt;
}

std::optional<KeptRows> Backend::kept_rows(std::string_view, std::string_view) { return std::nullopt; }

void Backend::keep_rows(std::string_view, std::string_view, const KeptRows&) {}

// Asked before the scan: what changes meanwhile makes what was visited old, not wrong.
std::uint64_t Backend::scan_if_changed(std::string_view file, std::optional<std::uint64_t> seen,
                                       const Narrowing& narrowing, Content content, const Visit& visit) {
  const std::uint64_t now = revision(file);
  if (now != seen) scan(file, narrowing, content, visit);
  return now;
}

struct StoreDatabase::Engine {
  DbResult run(std::string_view request);

  std::unique_ptr<Backend> backend;
  select::Dictionary dictionary;
  KeptSelections kept;
};

DbResult StoreDatabase::Engine::run(std::string_view request) {
  if (KeptSelection* known = kept.find(request)) return known->result(*backend);
  const DbRecord query = DbRecord::from_encoded(request);
  auto selection = std::make_unique<KeptSelection>(select::parse_statement(query(1), query(2), dictionary),
                                                   select::parse_attribute_list(query(3)));
  DbResult result = selection->result(*backend);
  // A single record is found as fast again.
  if (narrowing_of(selection->statement()).kind == Narrowing::Kind::kId) return result;
  kept.add(request, std::move(selection));
  kept.drop_what_is_too_much();
  return result;
}

StoreDatabase::StoreDatabase(std::unique_ptr<Backend> backend)
    : engine_(std::make_unique<Engine>(Engine{.backend = std::move(backend), .dictionary = {}, .kept = {}})) {
}

StoreDatabase::~StoreDatabase() = default;

Backend& StoreDatabase::backend() { return *engine_->backend; }

std::unique_ptr<DbFile> StoreDatabase::OpenFile(std::string_view name) {
  backend().open(name);
  return std::make_unique<StoreFile>(backend(), name);
}

DbResult StoreDatabase::Select(std::string_view request, std::string_view) {
  return in_memory_that_suffices([&] { return engine_->run(request); });
}

void StoreDatabase::in_one_change(const std::function<void()>& writes) { backend().in_one_change(writes); }

void StoreDatabase::in_one_view(const std::function<void()>& reads) { backend().in_one_view(reads); }

void StoreDatabase::name_id_part(std::string_view file, std::string_view name, const IdPart& part) {
  const select::Designator designator{
      .attribute = 0, .first = part.first, .count = part.count == 0 ? select::kToTheEnd : part.count};
  if (engine_->dictionary.define(file, name, designator)) engine_->kept.drop_all();
}

}  // namespace velanor::store
