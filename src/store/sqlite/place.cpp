#include "store/sqlite/place.h"

#include <sys/stat.h>
#include <sys/vfs.h>

#include <algorithm>
#include <filesystem>

#include "velanor/database.h"

namespace velanor::store::sqlite {
namespace {

DbError refusal(const std::string& path, const std::string& what) {
  return {kStoreFailure, "La base « " + path + " » n'a pas été ouverte : " + what};
}

std::string folder_of(const std::string& path) {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  return folder.empty() ? "." : folder.string();
}

}  // namespace

bool is_network(unsigned long type) {
  constexpr unsigned long kNfs = 0x6969, kCifs = 0xFF534D42, kSmb = 0x517B, kSmb2 = 0xFE534D42;
  // The number is signed on some machines.
  constexpr unsigned long kAll = 0xFFFFFFFF;
  const unsigned long known[] = {kNfs, kCifs, kSmb, kSmb2};
  return std::find(std::begin(known), std::end(known), type & kAll) != std::end(known);
}

void refuse_unsafe_place(const std::string& path) {
  struct stat status {};
  const bool there = ::lstat(path.c_str(), &status) == 0;
  if (there && S_ISLNK(status.st_mode))
    throw refusal(path, "c'est un lien. Donnez le chemin du fichier lui-même.");
  if (there && !S_ISREG(status.st_mode))
    throw refusal(path, "ce n'est pas un fichier. Donnez le chemin d'un fichier de base.");
  struct statfs system {};
  if (::statfs(folder_of(path).c_str(), &system) != 0) return;
  if (is_network(static_cast<unsigned long>(system.f_type))) {
    throw refusal(
        path,
        "elle est sur un partage du réseau, où deux postes peuvent l'abîmer. Mettez-la sur un disque de "
        "cette machine.");
  }
}

bool readable_by_others(const std::string& path) {
  struct stat file {
  }, folder{};
  if (::stat(path.c_str(), &file) != 0 || ::stat(folder_of(path).c_str(), &folder) != 0) return false;
  return ((file.st_mode & S_IRGRP) && (folder.st_mode & S_IXGRP)) ||
         ((file.st_mode & S_IROTH) && (folder.st_mode & S_IXOTH));
}

}  // namespace velanor::store::sqlite
