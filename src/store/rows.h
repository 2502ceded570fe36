// The rows of a result in their order, as results share them and as they are patched.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velanor/record.h"

namespace velanor::store {

// Some successive rows. Each has the id of its record, its text (elements between value marks, their parts
// between subvalue marks) and the key that it is sorted by, which is kept once for rows that share it.
class RowBlock {
 public:
  // Rows are added in ascending order of (key, id). Where `starts_with_id` the text of each begins with its
  // id, which is then kept once.
  explicit RowBlock(bool starts_with_id) : starts_with_id_(starts_with_id) {}
  void reserve(std::size_t rows, std::size_t bytes);
  void add(std::string_view id, std::string_view text, std::string_view key);

  bool starts_with_id() const { return starts_with_id_; }
  std::size_t size() const { return entries_.size(); }
  std::size_t bytes() const;
  std::string_view id(std::size_t row) const;
  std::string_view text(std::size_t row) const { return slice(entries_[row].text, end_of(row)); }
  std::string_view key(std::size_t row) const { return key_of(entries_[row].key); }
  // The row behind those that share the key of this one.
  std::size_t key_end(std::size_t row) const;
  // The first row that is not before (key, id).
  std::size_t lower_bound(std::string_view key, std::string_view id) const;
  std::optional<std::size_t> find(std::string_view id) const;

  // What `load` makes the block of again; only on machines of the same byte order.
  void save(std::string& bytes) const;
  // Takes the block from the start of the bytes; nothing where they are none that `save` wrote.
  static std::optional<RowBlock> load(std::string_view& bytes);

 private:
  // Where the id and the text begin, and the number of the key.
  struct Entry {
    std::uint32_t id, text, key;
  };
  std::uint32_t end_of(std::size_t row) const {
    return row + 1 < entries_.size() ? entries_[row + 1].id : static_cast<std::uint32_t>(texts_.size());
  }
  std::string_view slice(std::uint32_t begin, std::uint32_t end) const {
    return std::string_view(texts_).substr(begin, end - begin);
  }
  std::string_view key_of(std::uint32_t number) const {
    const std::uint32_t begin = number == 0 ? 0 : key_ends_[number - 1];
    return std::string_view(keys_).substr(begin, key_ends_[number] - begin);
  }
  bool is_sound() const;

  bool starts_with_id_;
  std::vector<Entry> entries_;
  std::string texts_, keys_;
  std::vector<std::uint32_t> key_ends_;
};

// A sequence of rows that never changes: a patch makes a new one, which shares all blocks but those that it
// touches with the old. Rows are numbered from 0.
class Rows {
 public:
  struct Place {
    std::size_t block = 0, row = 0;
  };

  Rows() = default;
  // Without empty blocks; keys and ids ascend over all of them.
  explicit Rows(std::vector<std::shared_ptr<const RowBlock>> blocks);

  std::size_t count() const { return ends_.empty() ? 0 : ends_.back(); }
  std::size_t bytes() const { return bytes_; }
  const std::vector<std::shared_ptr<const RowBlock>>& blocks() const { return blocks_; }

  std::string_view text(std::size_t row) const;
  // The row behind those that were sorted as equal to this one.
  std::size_t run_end(std::size_t row) const;

  // Where the row of the id stands under the key.
  std::optional<Place> find(std::string_view key, std::string_view id) const;
  // The same, whatever its key is: looks at every row.
  std::optional<Place> find(std::string_view id) const;
  std::string_view text_at(Place place) const { return blocks_[place.block]->text(place.row); }

 private:
  Place place_of(std::size_t row) const;

  std::vector<std::shared_ptr<const RowBlock>> blocks_;
  // How many rows there are up to the end of each block.
  std::vector<std::size_t> ends_;
  std::size_t bytes_ = 0;
};

// A row by itself.
struct LooseRow {
  std::string_view id, text, key;
};

// Puts rows together that come in ascending order of (key, id).
class RowsBuilder {
 public:
  explicit RowsBuilder(bool starts_with_id) : starts_with_id_(starts_with_id) {}
  void add(const LooseRow& row);
  Rows rows();

 private:
  void close();

  bool starts_with_id_;
  std::size_t bytes_before_ = 0;  // of the block before, which the next will be like
  std::shared_ptr<RowBlock> open_;
  std::vector<std::shared_ptr<const RowBlock>> blocks_;
};

// Without the row there.
Rows without(const Rows& rows, Rows::Place place);
// With the row where its key and id belong, in place of one that stands there already.
Rows with(const Rows& rows, const LooseRow& row, bool starts_with_id);

}  // namespace velanor::store
