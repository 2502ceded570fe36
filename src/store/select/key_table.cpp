#include "store/select/key_table.h"

#include <algorithm>
#include <functional>

namespace velanor::store::select {

std::uint64_t packed_prefix(std::string_view key) {
  std::uint64_t prefix = 0;
  for (std::size_t i = 0; i < 8; ++i) {
    prefix = prefix << 8 | (i < key.size() ? static_cast<unsigned char>(key[i]) : 0u);
  }
  return prefix;
}

std::uint32_t KeyTable::number_of(std::string_view key) {
  const auto hash = static_cast<std::uint32_t>(std::hash<std::string_view>()(key));
  const std::size_t mask = slots_.size() - 1;
  std::size_t at = hash & mask;
  for (; slots_[at].number_plus_one != 0; at = (at + 1) & mask) {
    const std::uint32_t number = slots_[at].number_plus_one - 1;
    if (slots_[at].hash == hash && this->key(number) == key) return number;
  }
  keys_ += key;
  ends_.push_back(keys_.size());
  slots_[at] = {hash, static_cast<std::uint32_t>(ends_.size())};
  if (ends_.size() * 2 > slots_.size()) grow();
  return static_cast<std::uint32_t>(ends_.size() - 1);
}

std::string_view KeyTable::key(std::uint32_t number) const {
  const std::size_t begin = number == 0 ? 0 : ends_[number - 1];
  return std::string_view(keys_).substr(begin, ends_[number] - begin);
}

std::size_t KeyTable::free_slot(std::uint32_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t at = hash & mask;
  while (slots_[at].number_plus_one != 0) at = (at + 1) & mask;
  return at;
}

void KeyTable::grow() {
  std::vector<Slot> old(slots_.size() * 2);
  old.swap(slots_);
  for (const Slot& slot : old) {
    if (slot.number_plus_one != 0) slots_[free_slot(slot.hash)] = slot;
  }
}

std::vector<std::uint32_t> KeyTable::sorted() const {
  struct Entry {
    std::uint64_t prefix;
    std::uint32_t number;
  };
  std::vector<Entry> entries(size());
  for (std::uint32_t i = 0; i < entries.size(); ++i) entries[i] = {packed_prefix(key(i)), i};
  std::sort(entries.begin(), entries.end(), [this](const Entry& a, const Entry& b) {
    return a.prefix != b.prefix ? a.prefix < b.prefix : key(a.number) < key(b.number);
  });
  std::vector<std::uint32_t> numbers(entries.size());
  std::transform(entries.begin(), entries.end(), numbers.begin(), [](const Entry& e) { return e.number; });
  return numbers;
}

}  // namespace velanor::store::select
