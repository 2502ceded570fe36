#include "exchange/export_csv.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "exchange/columns.h"
#include "exchange/csv.h"

namespace velanor::exchange {
namespace {

using store::DbRecord;

// How many values an attribute has at most, and subvalues each of them; 1 names no number.
struct Shape {
  int values = 1;
  std::map<int, int> subvalues;
  bool has_subvalues = false;
  // A value holds what would part it in two where a field holds all of them.
  bool has_separator = false;
};
using Shapes = std::map<int, Shape>;

void take_shape(const DbRecord& record, Shapes& shapes) {
  for (int a = 1; a <= record.DCount(); ++a) {
    const int values = record.Count(a);
    if (values == 0) continue;
    Shape& shape = shapes[a];
    shape.values = std::max(shape.values, values);
    shape.has_separator |= record(a).find(kValueSeparator) != std::string_view::npos;
    for (int v = 1; v <= values; ++v) {
      const int subvalues = record.Count(a, v);
      int& most = shape.subvalues[v];
      most = std::max(most, subvalues);
      shape.has_subvalues |= subvalues > 1;
    }
  }
}

void add_columns(int attribute, const Shape& shape, std::vector<store::Position>& columns) {
  if (shape.values == 1 && !shape.has_subvalues && !shape.has_separator)
    return columns.push_back({attribute});
  for (const auto& [value, subvalues] : shape.subvalues) {
    if (!shape.has_subvalues) {
      columns.push_back({attribute, value});
      continue;
    }
    for (int s = 1; s <= subvalues; ++s) columns.push_back({attribute, value, s});
  }
}

std::vector<Column> columns_of(const Shapes& shapes, std::string_view file, Headings headings) {
  std::vector<store::Position> positions;
  for (const auto& [attribute, shape] : shapes) add_columns(attribute, shape, positions);
  std::vector<Column> columns;
  for (const store::Position& position : positions) {
    const bool named = headings == Headings::kNames;
    const std::string heading = named ? name_of(position, file) : heading_of(position, file);
    columns.push_back(column_of(heading, file).value_or(Column{.position = position}));
  }
  return columns;
}

std::vector<std::string> header_of(const std::vector<Column>& columns, std::string_view file) {
  std::vector<std::string> header{"id"};
  for (const Column& column : columns)
    header.push_back(column.named != nullptr ? name_of(column.position, file)
                                             : heading_of(column.position, file));
  return header;
}

}  // namespace

int export_csv(std::ostream& out, store::Database& database, std::string_view file,
               const ExportOptions& options, const std::function<void()>& record_read) {
  const auto records = database.OpenFile(file);
  const store::DbResult ids =
      database.Select(store::DbQuery("SSELECT " + std::string(file) + " PAR 0", file, "0").encoded());
  const auto each = [&](const auto& fn) {
    for (int i = 1; i <= ids.DCount(); ++i) {
      // Gone meanwhile: not exported.
      if (const auto record = records->find(ids(i))) fn(ids(i), *record);
      record_read();
    }
  };
  Shapes shapes;
  each([&](std::string_view, const DbRecord& record) { take_shape(record, shapes); });
  const auto columns = columns_of(shapes, file, options.headings);
  write_row(out, header_of(columns, file), options.separator);
  const auto entry = entry::make_util_saisie();
  const card::Codec codec(*entry);
  int written = 0;
  each([&](std::string_view id, const DbRecord& record) {
    std::vector<std::string> row{std::string(id)};
    for (const Column& column : columns)
      row.push_back(write_field(codec, column, element(record, column.position)));
    write_row(out, row, options.separator);
    ++written;
  });
  return written;
}

}  // namespace velanor::exchange
