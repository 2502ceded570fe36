#include "store/select/key_table.h"

#include <algorithm>
#include <cstring>

namespace velanor::store::select {

namespace {

constexpr std::size_t kWord = sizeof(std::uint64_t);

template <class Word>
std::uint64_t word_at(const char* at) {
  Word word;
  std::memcpy(&word, at, sizeof word);
  return word;
}

// The last bytes of a key, at most eight, in some order; words overlap rather than stop short.
std::uint64_t tail_word(std::string_view key) {
  if (key.size() >= kWord) return word_at<std::uint64_t>(key.data() + key.size() - kWord);
  constexpr std::size_t kHalf = kWord / 2;
  if (key.size() >= kHalf) {
    return word_at<std::uint32_t>(key.data()) << 32 | word_at<std::uint32_t>(key.data() + key.size() - kHalf);
  }
  return packed_prefix(key);
}

// Keys are short and there are many: this is inlined, a library's hash is a call.
std::uint32_t hash_of(std::string_view key) {
  constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15u;
  const auto mixed = [](std::uint64_t hash) { return (hash ^ hash >> 32) * kOdd; };
  std::uint64_t hash = mixed(tail_word(key) + key.size());
  for (std::size_t at = 0; at + kWord < key.size(); at += kWord) {
    hash = mixed(hash ^ word_at<std::uint64_t>(key.data() + at));
  }
  return static_cast<std::uint32_t>(hash >> 32);
}

}  // namespace

std::uint64_t packed_prefix(std::string_view key) {
  std::uint64_t prefix = 0;
  if (key.size() >= kWord) {
    // Without a look at the end in between this is one instruction.
    for (std::size_t i = 0; i < kWord; ++i) prefix = prefix << 8 | static_cast<unsigned char>(key[i]);
    return prefix;
  }
  for (std::size_t i = 0; i < kWord; ++i) {
    prefix = prefix << 8 | (i < key.size() ? static_cast<unsigned char>(key[i]) : 0u);
  }
  return prefix;
}

std::uint32_t KeyTable::number_of(std::string_view key) {
  const std::uint32_t hash = hash_of(key);
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
  std::vector<Entry> entries(size());
  for (std::uint32_t i = 0; i < entries.size(); ++i) entries[i].number = i;
  sort(entries, 0);
  std::vector<std::uint32_t> numbers(entries.size());
  std::transform(entries.begin(), entries.end(), numbers.begin(), [](const Entry& e) { return e.number; });
  return numbers;
}

// Eight bytes at a time, for names often begin alike; few that do are compared as they are.
void KeyTable::sort(std::span<Entry> entries, std::size_t depth) const {
  constexpr std::size_t kFew = 12, kDeep = 8 * kWord;
  const auto rest = [&](const Entry& entry) {
    const std::string_view whole = key(entry.number);
    return whole.substr(std::min(depth, whole.size()));
  };
  if (entries.size() <= kFew || depth >= kDeep) {
    std::sort(entries.begin(), entries.end(),
              [&](const Entry& a, const Entry& b) { return rest(a) < rest(b); });
    return;
  }
  for (Entry& entry : entries) entry.prefix = packed_prefix(rest(entry));
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.prefix < b.prefix; });
  for (auto begin = entries.begin(); begin != entries.end();) {
    const auto end = std::find_if(begin + 1, entries.end(),
                                  [begin](const Entry& entry) { return entry.prefix != begin->prefix; });
    if (end - begin > 1) sort({begin, end}, depth + kWord);
    begin = end;
  }
}

}  // namespace velanor::store::select
