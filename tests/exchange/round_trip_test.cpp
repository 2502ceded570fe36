// Tables of every file: the sources, and what an export writes, as it stands or through a spreadsheet.
#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "app/velanorctl/open_store.h"
#include "demo/source.h"
#include "exchange/csv.h"
#include "exchange/export_csv.h"
#include "exchange/import_csv.h"
#include "store/notation.h"
#include "velanor/memory_database.h"

namespace velanor::exchange {
namespace {

using Records = std::map<std::string, std::string>;

// The records that are not the same in both, one below the other; at most one.
std::string difference(const Records& a, const Records& b) {
  if (a.size() != b.size()) return std::to_string(a.size()) + " and " + std::to_string(b.size());
  for (const auto& [id, record] : a) {
    const auto found = b.find(id);
    if (found == b.end()) return id + " is not there";
    if (found->second != record) return id + "\n" + store::shown(record) + "\n" + store::shown(found->second);
  }
  return {};
}

class RoundTrip : public testing::Test {
 protected:
  static Records records(store::Database& database, const std::string& file) {
    Records all;
    const auto opened = database.OpenFile(file);
    const auto ids = database.Select(store::DbQuery("SSELECT " + file, file, "0").encoded());
    for (int i = 1; i <= ids.DCount(); ++i) all[std::string(ids(i))] = opened->Read(ids(i)).encoded();
    return all;
  }
  static std::string exported(const std::string& file, const ExportOptions& options) {
    std::ostringstream out;
    out << kByteOrderMark;
    export_csv(out, demonstration(), file, options);
    return out.str();
  }
  static void import(const std::string& table, store::Database& database, const std::string& file) {
    std::istringstream in(table);
    const ImportReport report = import_csv(in, database, file);
    for (const auto& fault : report.faults) ADD_FAILURE() << fault.line << ": " << fault.sentence;
  }
  // Reference files first: cards name them.
  static std::vector<std::string> files() {
    std::vector<std::string> files;
    for (const auto& file : demonstration().files()) {
      if (file != "VELANORO") files.push_back(file);
    }
    files.emplace_back("VELANORO");
    return files;
  }
  static store::MemoryDatabase& demonstration() {
    static const auto base = app::open_store({.url = "", .demo = true});
    return dynamic_cast<store::MemoryDatabase&>(*base);
  }
};

TEST_F(RoundTrip, EverySourceMakesWhatTheDemonstrationHas) {
  store::MemoryDatabase base;
  int read = 0;
  for (const demo::Source& source : demo::sources()) {
    if (source.name.starts_with("demo/")) continue;
    SCOPED_TRACE(source.name);
    std::string file(source.name.substr(source.name.find('/') + 1));
    file = file == "communes.csv" ? "COMMUNES" : file.substr(0, file.find('.'));
    import(std::string(source.text), base, file);
    ++read;
    if (file == "BUDGETPARAM") continue;
    EXPECT_EQ(difference(records(base, file), records(demonstration(), file)), "");
  }
  EXPECT_EQ(read, 13);
  // Its reference dates follow the years that are asked for.
  EXPECT_EQ((*base.find("BUDGETPARAM", "1"))(10), (*demonstration().find("BUDGETPARAM", "1"))(10));
}

TEST_F(RoundTrip, EveryFileComesBackTheSameInEveryForm) {
  ASSERT_EQ(files().size(), 16u);
  for (const ExportOptions options : {ExportOptions{Headings::kPositions, ';'},
                                      {Headings::kPositions, ','},
                                      {Headings::kNames, ';'},
                                      {Headings::kNames, ','}}) {
    store::MemoryDatabase copy;
    for (const auto& file : files()) {
      SCOPED_TRACE(file + options.separator);
      import(exported(file, options), copy, file);
      EXPECT_EQ(difference(records(copy, file), records(demonstration(), file)), "");
    }
  }
}

// What a spreadsheet makes of a table that is opened and saved: figures without leading zeros, as many
// separators on every line, lines and columns without anything, Windows line ends.
std::string through_spreadsheet(const std::string& table) {
  std::istringstream in(table);
  CsvReader reader(in);
  std::ostringstream out;
  for (CsvRow row; reader.next(row);) {
    for (auto& field : row.fields) {
      const bool digits = !field.empty() && field.find_first_not_of("0123456789") == field.npos;
      if (digits) field.erase(0, std::min(field.find_first_not_of('0'), field.size() - 1));
    }
    row.fields.insert(row.fields.end(), 2, "");
    std::ostringstream line;
    write_row(line, row.fields, ';');
    out << line.str().substr(0, line.str().size() - 1) << "\r\n";
  }
  return out.str() + ";;;;\r\n;;;;\r\n";
}

TEST_F(RoundTrip, ATableThatASpreadsheetHasSavedComesBackTheSame) {
  for (const Headings headings : {Headings::kPositions, Headings::kNames}) {
    store::MemoryDatabase copy;
    for (const auto& file : files()) {
      SCOPED_TRACE(file);
      import(through_spreadsheet(exported(file, {.headings = headings})), copy, file);
      EXPECT_EQ(difference(records(copy, file), records(demonstration(), file)), "");
    }
  }
}

TEST_F(RoundTrip, ABarInATextComesBackAsOne) {
  store::MemoryDatabase base, copy;
  store::DbRecord record;
  record.set(1, "Nord | Sud");
  base.put("SECTEUR", "001", record);
  std::ostringstream out;
  export_csv(out, base, "SECTEUR");
  import(out.str(), copy, "SECTEUR");
  EXPECT_EQ(difference(records(copy, "SECTEUR"), records(base, "SECTEUR")), "");
}

}  // namespace
}  // namespace velanor::exchange
