#include "app/velanorctl/base_copy.h"

namespace velanor::app {
namespace {

std::vector<std::string> ids_of(store::Database& database, const std::string& file) {
  const store::DbResult found =
      database.Select(store::DbQuery("SSELECT " + file + " PAR 0", file, "0").encoded());
  std::vector<std::string> ids;
  for (int i = 1; i <= found.DCount(); ++i) ids.emplace_back(found(i));
  return ids;
}

// What can no longer be read is not brought along, and must not pass for a deletion.
std::vector<store::Version> sound_versions(store::Database& from, const std::string& file,
                                           const std::string& id) {
  auto versions = from.history()->versions(file, id);
  if (versions.empty() || versions.back().sound) {
    std::erase_if(versions, [](const store::Version& version) { return !version.sound; });
    return versions;
  }
  throw store::DbError(store::kStoreFailure, "L'enregistrement « " + id + " » du fichier " + file +
                                                 " est endommagé. Rien n'a été copié ; rétablissez-en une "
                                                 "version par « velanorctl restore-version ».");
}

// Whether the versions went along.
bool copy_versions(store::Database& from, store::Database& to, const std::string& file, const std::string& id,
                   BaseCopyReport& report) {
  if (from.history() == nullptr || to.history() == nullptr) return false;
  const auto versions = sound_versions(from, file, id);
  if (!to.history()->restore(file, id, versions)) return false;
  report.versions += versions.size();
  return true;
}

void copy_file(store::Database& from, store::Database& to, const std::string& file, BaseCopyReport& report,
               const std::function<void()>& step) {
  const auto source = from.OpenFile(file), target = to.OpenFile(file);
  for (const std::string& id : ids_of(from, file)) {
    if (!copy_versions(from, to, file, id, report))
      target->write(id, source->Read(id), store::Expected::absent());
    ++report.records;
    step();
  }
  if (from.history() == nullptr) return;
  for (const std::string& id : from.history()->deleted(file, "")) {
    if (copy_versions(from, to, file, id, report)) ++report.deleted;
  }
}

}  // namespace

BaseCopyReport copy_base(store::Database& from, store::Database& to, const std::function<void()>& step) {
  BaseCopyReport report;
  const auto copy_all = [&] {
    if (!to.files().empty()) {
      throw store::DbError(
          store::kStoreFailure,
          "La base à remplir contient déjà des enregistrements. Rien n'a été copié ; donnez une "
          "base vide.");
    }
    for (const std::string& file : from.history() ? from.history()->files() : from.files()) {
      copy_file(from, to, file, report, step);
      ++report.files;
    }
  };
  from.in_one_view([&] { to.in_one_change(copy_all); });
  return report;
}

}  // namespace velanor::app
