// Reads the rows of a table into the records that they make.
#pragma once

#include <functional>
#include <istream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/card_import.h"
#include "exchange/columns.h"
#include "exchange/csv.h"
#include "exchange/import_csv.h"

namespace velanor::exchange {

// A record to be written. Both are encoded, which is smaller than records.
struct RecordChange {
  std::string id;
  std::optional<std::string> before;  // nothing: it is new
  std::string content;
};

// Writes nothing.
class ImportRows {
 public:
  // Keeps the database and the options, which outlive it.
  ImportRows(std::istream& in, store::Database& database, std::string_view file,
             const ImportOptions& options);

  void read(const std::function<void()>& row_read);
  // What would be done; nothing where there is a fault.
  const ImportReport& report() const { return report_; }
  const std::vector<RecordChange>& changes() const { return changes_; }

 private:
  // The record that rows are being read into.
  struct Pending {
    std::string id;
    int line = 0;
    // How many rows it has had.
    int rows = 0;
    std::optional<store::DbRecord> before;
    store::DbRecord record;
    bool good = true;
  };

  void fault(int line, const std::string& sentence);
  void note(std::vector<ImportRemark>& list, int line, const std::string& sentence);
  bool is_cards() const { return file_name_ == kCardFile; }

  bool read_header();
  void read_headings(const CsvRow& header);
  void add_column(int line, const std::string& heading);
  bool has_id() const;
  bool may_be_spelt_out() const;
  void pass_limit(int line, const std::string& sentence);
  void read_row(CsvRow& row);
  bool fits_columns(CsvRow& row);
  bool find_id(const CsvRow& row, std::string& id);
  std::string id_of(const CsvRow& row, std::string& wrong) const;
  bool begin_record(int line, const std::string& id);
  void fill(const CsvRow& row);
  void fill_values(const Column& column, std::string_view field);
  void take_record();
  void finish_card();
  std::vector<std::string> changes_of_record() const;

  const ImportOptions& options_;
  CsvReader reader_;
  store::Database& database_;
  std::string file_name_;
  std::unique_ptr<store::DbFile> file_;
  std::unique_ptr<entry::UtilSaisie> entry_;
  card::Codec codec_{*entry_};
  std::vector<Column> columns_;
  std::optional<CardImport> cards_;
  std::set<std::string, std::less<>> ids_;
  std::optional<Pending> pending_;
  std::vector<RecordChange> changes_;
  int rows_ = 0;
  std::size_t bytes_ = 0;
  ImportReport report_;
};

}  // namespace velanor::exchange
