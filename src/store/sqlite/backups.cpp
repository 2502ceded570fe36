#include "store/sqlite/backups.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <utility>

#include "store/sqlite/connection.h"
#include "store/sqlite/examination.h"
#include "store/sqlite/failure.h"
#include "store/sqlite/schema.h"
#include "store/sqlite/unfinished_file.h"
#include "text/number.h"

namespace velanor::store::sqlite {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kEnding = ".db";
constexpr std::size_t kDayLength = 8, kTimeLength = 6;
constexpr int kKeptByThemselves = 30;
constexpr int kPatience = 1000;

std::string moment_text(const std::tm& now) {
  char text[kDayLength + 1 + kTimeLength + 1];
  return {text, std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", &now)};
}

std::tm moment_of(const std::string& text) {
  std::tm moment{};
  strptime(text.c_str(), "%Y%m%d-%H%M%S", &moment);
  moment.tm_isdst = -1;
  return moment;
}

// A name that somebody gave by hand may hold any digits.
bool is_moment(const std::string& text) {
  std::tm moment = moment_of(text);
  const std::tm as_named = moment;
  return std::mktime(&moment) != -1 && moment.tm_mday == as_named.tm_mday &&
         moment.tm_mon == as_named.tm_mon && moment.tm_min == as_named.tm_min;
}

DbError no_folder(const std::string& folder) {
  return {kStoreFailure, "Le dossier de sauvegarde « " + folder +
                             " » n'existe pas. Créez-le, ou vérifiez que son disque est branché."};
}

// What it holds is as secret as the base. One that is there stays as it is.
void make_private_folder(const std::string& folder) {
  ::mkdir(folder.c_str(), S_IRWXU);
  std::error_code none;
  if (!fs::is_directory(fs::symlink_status(folder, none))) {
    throw DbError(kStoreFailure,
                  "Le dossier de sauvegarde « " + folder +
                      " » n'a pas pu être créé. Vérifiez votre droit d'écrire à côté de la base.");
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

Backups Backups::beside(const std::string& base, TimeOfDay now) {
  return {base + ".sauvegardes", fs::path(base).stem().string(), kKeptByThemselves, std::move(now)};
}

std::string Backups::path_of(const Age& age) const {
  const std::string count = age.second > 1 ? "-" + std::to_string(age.second) : "";
  return (fs::path(folder_) / (name_ + "-" + age.first + count + std::string(kEnding))).string();
}

// Nothing for a name that is not exactly that of a backup.
std::optional<Backups::Age> Backups::age_of(const std::string& path) const {
  const std::string name = fs::path(path).filename().string();
  const std::size_t begin = name_.size() + 1, length = kDayLength + 1 + kTimeLength;
  if (name.size() < begin + length + kEnding.size()) return std::nullopt;
  Age age{name.substr(begin, length), 1};
  std::string_view count(name);
  count.remove_prefix(begin + length);
  count.remove_suffix(kEnding.size());
  if (!count.empty()) std::from_chars(count.data() + 1, count.data() + count.size(), age.second);
  const bool moment = text::is_digits(age.first.substr(0, kDayLength)) && age.first[kDayLength] == '-' &&
                      text::is_digits(age.first.substr(kDayLength + 1));
  return moment && path_of(age) == path ? std::optional(age) : std::nullopt;
}

std::vector<std::pair<Backups::Age, std::string>> Backups::by_age() const {
  std::vector<std::pair<Age, std::string>> backups;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(folder_, none)) {
    std::string path = (fs::path(folder_) / entry.path().filename()).string();
    const auto age = age_of(path);
    if (age && fs::is_regular_file(entry.symlink_status()) && SqliteDatabase::is_at(path))
      backups.emplace_back(*age, std::move(path));
  }
  std::sort(backups.rbegin(), backups.rend());
  return backups;
}

std::vector<Backup> Backups::newest_first() const {
  std::vector<Backup> backups;
  for (const auto& [age, path] : by_age()) {
    std::error_code gone;
    const auto size = fs::file_size(path, gone);
    if (!gone && is_moment(age.first)) backups.push_back({path, moment_of(age.first), size});
  }
  return backups;
}

Backups::Report Backups::make(SqliteDatabase& database, const std::function<void(double)>& progress) const {
  if (!fs::is_directory(folder_)) throw no_folder(folder_);
  remove_left_behind();
  Report report;
  report.path = make_under_free_name(database, progress);
  remove_older(report);
  return report;
}

std::optional<Backups::Report> Backups::make_daily(SqliteDatabase& database,
                                                   const std::function<void(double)>& progress) const {
  if (database.read_only() || database.files().empty()) return std::nullopt;
  make_private_folder(folder_);
  const std::string today = moment_text(now_()).substr(0, kDayLength);
  const auto known = by_age();
  const bool made = std::any_of(known.begin(), known.end(),
                                [&](const auto& backup) { return backup.first.first.starts_with(today); });
  return made ? std::nullopt : std::optional(make(database, progress));
}

// Two that are made within one second try for names until each has its own.
std::string Backups::make_under_free_name(SqliteDatabase& database,
                                          const std::function<void(double)>& progress) const {
  constexpr int kTries = 100;
  const std::string moment = moment_text(now_());
  for (int count = 1;; ++count) {
    std::string path = path_of({moment, count});
    try {
      database.back_up(path, progress);
      return path;
    } catch (const NameTaken&) {
      if (count == kTries) throw;
    }
  }
}

// The one just made stays, whatever the clock says of the others.
void Backups::remove_older(Report& report) const {
  int kept = 1;
  for (const auto& [age, path] : by_age()) {
    if (path == report.path || kept++ < keep_) continue;
    std::error_code refused;
    fs::remove(path, refused);
    (refused ? report.kept_against_will : report.removed).push_back(path);
  }
}

// A name is tried once, so whoever was killed over it leaves what no later one would come across.
void Backups::remove_left_behind() const {
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(folder_, none)) {
    const std::string path = (fs::path(folder_) / entry.path().filename()).string();
    const auto whole = UnfinishedFile::path_meant_by(path);
    if (whole && age_of(*whole)) UnfinishedFile::remove_if_left_behind(path);
  }
}

// One of an earlier version has no checksums, and stays as it is: opening it would bring it up to date.
void verify_backup(const std::string& path) try {
  const DamagedError damaged(kStoreFailure, "");
  Connection file(path, Missing::kFail, kPatience);
  if (file.number("PRAGMA application_id") != kApplicationId) throw failure(SQLITE_NOTADB, path, "");
  if (!damages_of(file).empty()) throw damaged;
  const auto version = static_cast<std::size_t>(file.number("PRAGMA user_version"));
  if (version == schema_steps().size() && !SqliteDatabase(path).damaged_records().empty()) throw damaged;
} catch (const DamagedError&) {
  // Of a base one would be told to take back its backup.
  throw DamagedError(kStoreFailure, "La sauvegarde « " + path + " » est endommagée. Prenez-en une autre.");
}

}  // namespace velanor::store::sqlite
