#include "app/velanorctl/export_target.h"

#include <filesystem>
#include <fstream>

#include "store/sqlite/unfinished_file.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {

void refuse_export_target(const std::string& path, std::string_view what) {
  namespace fs = std::filesystem;
  std::error_code none;
  const fs::file_status there = fs::symlink_status(path, none);
  const auto refused = [&](const char* why) {
    return store::DbError(store::kStoreFailure,
                          std::string(what) + " « " + path + " » n'a pas été écrit : " + why);
  };
  if (fs::is_symlink(there)) throw refused("c'est un lien. Donnez le nom du fichier lui-même.");
  if (fs::exists(there) && !fs::is_regular_file(there))
    throw refused(
        "ce n'est pas un fichier ordinaire. Donnez un autre nom, ou « - » pour la sortie standard.");
  if (store::SqliteDatabase::is_at(path)) throw refused("c'est une base de fiches. Donnez un autre nom.");
}

void write_export_file(const std::string& path, const std::function<void(const std::string&)>& write) {
  refuse_export_target(path);
  store::sqlite::UnfinishedFile file(path);
  write(file.path());
  file.complete();
}

void write_export(const std::string& path, const std::function<void(std::ostream&)>& write) {
  write_export_file(path, [&](const std::string& file) {
    std::ofstream out(file, std::ios::binary);
    write(out);
    out.flush();
    if (!out) {
      throw store::DbError(
          store::kStoreFailure,
          "Le tableau « " + path +
              " » n'a pas pu être écrit. Vérifiez la place sur le disque et votre droit d'écrire "
              "dans ce dossier.");
    }
  });
}

}  // namespace velanor::app
