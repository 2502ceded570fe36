#include "exchange/export_csv.h"

#include <string>
#include <vector>

#include "exchange/columns.h"
#include "exchange/csv.h"
#include "exchange/shapes.h"
#include "exchange/spool.h"

namespace velanor::exchange {
namespace {

using store::DbRecord;

std::vector<Column> columns_at(const std::vector<store::Position>& positions, std::string_view file,
                               Headings headings) {
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

// Rows, written many at once.
class Rows {
 public:
  Rows(std::ostream& out, const Shapes& shapes, const std::vector<Column>& columns, char separator)
      : out_(out), shapes_(shapes), columns_(columns), separator_(separator) {}
  ~Rows() = default;
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;

  void add(std::string_view id, std::string_view encoded) {
    append_field(text_, id, separator_);
    std::size_t behind = 0;  // columns that have been passed, none of which has a separator yet
    shapes_.place(encoded, [&](const Placed& element) {
      text_.append(element.column + 1 - behind, separator_);
      behind = element.column + 1;
      const Column& column = columns_[element.column];
      if (column.named == nullptr)
        append_field(text_, element.text, separator_);
      else
        append_field(text_, write_field(codec_, column, element.text), separator_);
    });
    text_.append(columns_.size() - behind, separator_);
    text_ += '\n';
    constexpr std::size_t kEnough = std::size_t{1} << 16;
    if (text_.size() >= kEnough) write();
  }
  void write() {
    out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
    text_.clear();
  }

 private:
  std::ostream& out_;
  const Shapes& shapes_;
  const std::vector<Column>& columns_;
  char separator_;
  std::unique_ptr<entry::UtilSaisie> entry_ = entry::make_util_saisie();
  card::Codec codec_{*entry_};
  std::string text_;
};

}  // namespace

// Each record is read once, and waits aside until it is known which columns there are.
int export_csv(std::ostream& out, store::Database& database, std::string_view file,
               const ExportOptions& options, const std::function<void()>& record_read) {
  const auto records = database.OpenFile(file);
  const store::DbResult ids =
      database.Select(store::DbQuery("SSELECT " + std::string(file) + " PAR 0", file, "0").encoded());
  Shapes shapes;
  SpooledTexts read;
  for (int i = 1; i <= ids.DCount(); ++i) {
    // Gone meanwhile: not exported.
    if (const auto record = records->find(ids(i))) {
      shapes.take(record->encoded());
      read.add(ids(i));
      read.add(record->encoded());
    }
    record_read();
  }
  const auto columns = columns_at(shapes.columns(), file, options.headings);
  write_row(out, header_of(columns, file), options.separator);
  Rows rows(out, shapes, columns, options.separator);
  read.rewind();
  int written = 0;
  for (std::string id, encoded; read.take(id) && read.take(encoded); ++written) {
    rows.add(id, encoded);
    record_read();
  }
  rows.write();
  return written;
}

}  // namespace velanor::exchange
