#include "app/velanorctl/new_base.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>

#include "app/velanorctl/base_copy.h"
#include "app/velanorctl/open_store.h"
#include "card/record/known_files.h"
#include "control/session/card_id.h"
#include "exchange/columns.h"

namespace velanor::app {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kLists = "TABLES";
constexpr const char* kNeeded[] = {"FINCONTRAT", "QUALIF", "REGROUPBUDGET", "NATURECONTRAT", "DIPLOMES"};
// What is called for less than that is not worth the call.
constexpr std::size_t kStep = 64;

std::string text_of(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::string text(std::istreambuf_iterator<char>(in), {});
  if (in.bad() || !in.is_open()) {
    throw store::DbError(store::kStoreFailure,
                         "Le tableau « " + path + " » ne peut pas être lu. Vérifiez votre droit de le lire.");
  }
  return text;
}

std::string upper(std::string name) {
  for (char& letter : name) letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 32) : letter;
  return name;
}

// Cards are judged by the reference files, so they come behind them.
std::vector<FolderTable> tables_in(const std::string& folder, std::vector<std::string>& passed_over) {
  std::vector<FolderTable> tables;
  std::error_code failure;
  for (const auto& entry : fs::directory_iterator(folder, failure)) {
    const fs::path& path = entry.path();
    if (upper(path.extension().string()) != ".CSV") continue;
    const std::string file = upper(path.stem().string());
    if (card::is_known_file(file)) {
      tables.push_back({path.filename().string(), file, {}});
    } else {
      passed_over.push_back(path.filename().string());
    }
  }
  if (failure || tables.empty()) {
    throw store::DbError(store::kStoreFailure,
                         "Le dossier « " + folder +
                             (failure ? " » ne peut pas être lu. Vérifiez votre droit de le lire."
                                      : " » n'a aucun tableau de la base. Leurs noms sont ceux des fichiers, "
                                        "par exemple SECTEUR.csv ou TABLES.csv."));
  }
  const auto place = [](const FolderTable& table) {
    return std::pair(table.file == exchange::kCardFile || table.file.starts_with("BUDGETHISTOR"), table.name);
  };
  std::sort(tables.begin(), tables.end(),
            [&](const FolderTable& a, const FolderTable& b) { return place(a) < place(b); });
  std::sort(passed_over.begin(), passed_over.end());
  return tables;
}

void refuse_two_of_a_file(const std::vector<FolderTable>& tables) {
  for (std::size_t i = 0; i < tables.size(); ++i) {
    for (std::size_t k = i + 1; k < tables.size(); ++k) {
      if (tables[i].file != tables[k].file) continue;
      throw store::DbError(store::kStoreFailure, "Les tableaux « " + tables[i].name + " » et « " +
                                                     tables[k].name +
                                                     " » sont du même fichier. Ôtez l'un des deux.");
    }
  }
}

}  // namespace

std::vector<std::string> missing_lists(store::Database& database) {
  std::vector<std::string> missing;
  const auto lists = database.OpenFile(kLists);
  for (const char* list : kNeeded) {
    if (!lists->find(list)) missing.emplace_back(list);
  }
  return missing;
}

void put_missing_lists(store::Database& database) {
  const auto lists = database.OpenFile(kLists);
  for (const std::string& list : missing_lists(database)) lists->write(list, store::DbRecord());
}

std::size_t put_example(store::Database& database, Example example, const Progressed& progressed) {
  demo::Options options;
  if (example == Example::kReferenceFiles) options.employees = 0;
  std::size_t records = 0;
  std::string open_name;
  std::unique_ptr<store::DbFile> open;
  StoreSink sink([&](auto file, auto id, const auto& record) {
    if (file != open_name) open = database.OpenFile(open_name = file);
    open->write(id, record);
    if (++records % kStep == 0) progressed(-1);
  });
  database.in_one_change([&] { demo::fill(sink, options); });
  return records;
}

bool FolderReport::has_faults() const {
  return std::any_of(tables.begin(), tables.end(),
                     [](const FolderTable& table) { return !table.report.faults.empty(); });
}

FolderReport import_folder(const std::string& folder, store::Database& empty, const Progressed& progressed) {
  card::name_id_parts(empty);
  FolderReport report;
  report.tables = tables_in(folder, report.passed_over);
  refuse_two_of_a_file(report.tables);
  std::vector<std::string> texts;
  std::ptrdiff_t lines = 0, read = 0;
  for (const FolderTable& table : report.tables) {
    texts.push_back(text_of((fs::path(folder) / table.name).string()));
    lines += std::count(texts.back().begin(), texts.back().end(), '\n') + 1;
    progressed(0);
  }
  for (std::size_t i = 0; i < texts.size(); ++i) {
    std::istringstream in(std::move(texts[i]));
    report.tables[i].report = exchange::import_csv(in, empty, report.tables[i].file, {}, [&] {
      if (++read % kStep == 0)
        progressed(std::min(1.0, static_cast<double>(read) / static_cast<double>(lines)));
    });
  }
  report.empty_lists = missing_lists(empty);
  put_missing_lists(empty);
  return report;
}

void build_from(const std::string& path, store::MemoryDatabase& contents, const Progressed& progressed) {
  store::SqliteDatabase::build(path, [&](store::SqliteDatabase& database) {
    std::size_t copied = 0;
    copy_base(contents, database, [&] {
      if (++copied % kStep == 0) progressed(-1);
    });
    return true;
  });
}

}  // namespace velanor::app
