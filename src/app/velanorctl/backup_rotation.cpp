#include "app/velanorctl/backup_rotation.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>
#include <utility>

#include "card/record/known_files.h"
#include "text/number.h"

namespace velanor::app {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kEnding = ".db";
constexpr std::size_t kDayLength = 8, kTimeLength = 6;

// When a backup was made: the moment as in its name, and which it was within the second.
using Age = std::pair<std::string, int>;

std::string moment_text(const std::tm& now) {
  char text[kDayLength + 1 + kTimeLength + 1];
  return {text, std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", &now)};
}

std::string path_of_backup(const Rotation& rotation, const Age& age) {
  const std::string count = age.second > 1 ? "-" + std::to_string(age.second) : "";
  return (fs::path(rotation.folder) / (rotation.name + "-" + age.first + count + std::string(kEnding)))
      .string();
}

// Nothing for a name that is not exactly that of a backup.
std::optional<Age> age_of(const Rotation& rotation, const std::string& path) {
  const std::string name = fs::path(path).filename().string();
  const std::size_t begin = rotation.name.size() + 1, length = kDayLength + 1 + kTimeLength;
  if (name.size() < begin + length + kEnding.size()) return std::nullopt;
  Age age{name.substr(begin, length), 1};
  std::string_view count(name);
  count.remove_prefix(begin + length);
  count.remove_suffix(kEnding.size());
  if (!count.empty()) std::from_chars(count.data() + 1, count.data() + count.size(), age.second);
  const bool moment = text::is_digits(age.first.substr(0, kDayLength)) && age.first[kDayLength] == '-' &&
                      text::is_digits(age.first.substr(kDayLength + 1));
  return moment && path_of_backup(rotation, age) == path ? std::optional(age) : std::nullopt;
}

std::vector<std::pair<Age, std::string>> backups_newest_first(const Rotation& rotation) {
  std::vector<std::pair<Age, std::string>> backups;
  for (const auto& entry : fs::directory_iterator(rotation.folder)) {
    const std::string path = (fs::path(rotation.folder) / entry.path().filename()).string();
    const auto age = age_of(rotation, path);
    if (age && fs::is_regular_file(entry.symlink_status()) && store::SqliteDatabase::is_at(path))
      backups.emplace_back(*age, path);
  }
  std::sort(backups.rbegin(), backups.rend());
  return backups;
}

// Two that are made within one second try for names until each has its own.
std::string back_up_under_free_name(store::SqliteDatabase& database, const Rotation& rotation,
                                    const std::string& moment, const std::function<void(double)>& progress) {
  constexpr int kTries = 100;
  for (int count = 1;; ++count) {
    std::string path = path_of_backup(rotation, {moment, count});
    try {
      database.back_up(path, progress);
      return path;
    } catch (const store::NameTaken&) {
      if (count == kTries) throw;
    }
  }
}

// The one just made stays, whatever the clock says of the others.
void remove_older(const Rotation& rotation, RotationReport& report) {
  int kept = 1;
  for (const auto& [age, path] : backups_newest_first(rotation)) {
    if (path == report.path || kept++ < rotation.keep) continue;
    std::error_code refused;
    fs::remove(path, refused);
    (refused ? report.kept_against_will : report.removed).push_back(path);
  }
}

}  // namespace

TimeOfDay system_time() {
  return [] {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return local;
  };
}

RotationReport back_up_in_rotation(store::SqliteDatabase& database, const Rotation& rotation,
                                   const TimeOfDay& now, const std::function<void(double)>& progress) {
  if (!fs::is_directory(rotation.folder)) {
    throw store::DbError(store::kStoreFailure,
                         "Le dossier de sauvegarde « " + rotation.folder +
                             " » n'existe pas. Créez-le, ou vérifiez que son disque est branché.");
  }
  RotationReport report;
  report.path = back_up_under_free_name(database, rotation, moment_text(now()), progress);
  remove_older(rotation, report);
  return report;
}

}  // namespace velanor::app
