// Reads the rows of a table into the records that they make.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "exchange/card_import.h"
#include "exchange/change_list.h"
#include "exchange/columns.h"
#include "exchange/csv.h"
#include "exchange/import_csv.h"
#include "exchange/record_builder.h"

namespace velanor::exchange {

// Writes nothing.
class ImportRows {
 public:
  // Keeps the database and the options, which outlive it.
  ImportRows(std::shared_ptr<TableSource> source, store::Database& database, std::string_view file,
             const ImportOptions& options);

  void read(const std::function<void()>& row_read);
  // What would be done; nothing where there is a fault.
  const ImportReport& report() const { return report_; }
  ImportReport take_report() { return std::move(report_); }
  ChangeList& changes() { return changes_; }

 private:
  struct ColumnText {
    std::size_t column;
    std::string_view text;
  };
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
  void plan_columns();
  bool has_id() const;
  bool may_be_spelt_out() const;
  void pass_limit(int line, const std::string& sentence);
  void read_row(CsvRowView& row);
  bool fits_columns(CsvRowView& row);
  bool find_id(const CsvRowView& row, std::string& id);
  std::string id_of(const CsvRowView& row, std::string& wrong) const;
  bool begin_record(int line, const std::string& id);
  void fill(const CsvRowView& row);
  void read_texts(const CsvRowView& row);
  std::string_view text_of(int line, std::size_t at, std::string_view field);
  std::string completed(const Column& column, std::string_view field) const;
  void build_record();
  void change_record();
  void fill_values(const Column& column, std::string_view values);
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
  // Of each column, whether its cells may be codes to be completed, and its place among the others in a
  // record.
  std::vector<bool> completed_;
  std::vector<std::size_t> places_;
  std::vector<std::size_t> id_columns_;  // one, or those of the three parts
  std::optional<CardImport> cards_;
  std::unordered_set<std::string> ids_;
  std::optional<Pending> pending_;
  // What the row has to store, column by column; which fields held something; what was made of some.
  std::vector<ColumnText> texts_;
  std::vector<std::size_t> filled_;
  std::deque<std::string> made_;
  RecordBuilder builder_;
  ChangeList changes_;
  int rows_ = 0;
  std::size_t bytes_ = 0;
  ImportReport report_;
};

}  // namespace velanor::exchange
