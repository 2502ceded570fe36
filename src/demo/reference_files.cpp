#include "demo/reference_files.h"

#include <map>
#include <string>
#include <utility>

#include "card/record/reference_layout.h"
#include "control/session/years.h"
#include "demo/source.h"
#include "demo/table.h"
#include "velanor/date.h"

namespace velanor::demo {
namespace {

using Records = std::vector<std::pair<std::string, store::DbRecord>>;

void add_values(store::DbRecord& record, int attribute, int line, std::string_view cell) {
  for (std::string_view value : split(cell, '|')) record.set(attribute, line++, value);
}

Records read_records(const Table& table) {
  Records records;
  int line = 0;
  for (const Row& row : table.rows) {
    line = !records.empty() && records.back().first == row[0] ? line + 1 : 1;
    if (line == 1) records.emplace_back(row[0], store::DbRecord());
    for (std::size_t i = 1; i < row.size(); ++i) {
      add_values(records.back().second, table.attribute_of(i), line, row[i]);
    }
  }
  return records;
}

void put_own_records(Sink& sink, std::string_view file, const Records& records, const Employer& employer) {
  for (const auto& [id, record] : records) {
    if (!id.starts_with(employer.model)) continue;
    store::DbRecord own = record;
    if (file == "ASSOCIATION" && employer.code != employer.model) {
      own.set(card::kReferenceLabel, std::string(record(card::kReferenceLabel)) + " " + employer.code);
    }
    sink.put(file, employer.code + id.substr(employer.code.size()), own);
  }
}

bool belongs_to_employers(std::string_view file) {
  return file == "ASSOCIATION" || file == "ETABLISSEMENT" || file == "ACTIVITES";
}

// The first of January of every budget year; the last is the reference date.
void set_reference_dates(store::DbRecord& parameters, const std::vector<int>& years) {
  for (int year : years)
    parameters.set(control::kReferenceDates, store::kAppend,
                   std::to_string(*entry::day_number({1, 1, year})));
}

}  // namespace

void put_reference_files(Sink& sink, const std::vector<Employer>& employers, const Options& options) {
  for (const Source& text : sources()) {
    if (text.name.starts_with("demo/")) continue;
    std::string_view file = text.name.substr(0, text.name.find('.'));
    file = file == "communes" ? "COMMUNES" : file.substr(file.find('/') + 1);
    Records records = read_records(read_table(text.text));
    if (file == "BUDGETPARAM") set_reference_dates(records.front().second, options.years);
    if (belongs_to_employers(file)) {
      for (const Employer& employer : employers) put_own_records(sink, file, records, employer);
    } else {
      for (const auto& [id, record] : records) sink.put(file, id, record);
    }
  }
}

}  // namespace velanor::demo
