#include "store/result_cache.h"

#include <algorithm>

namespace velanor::store {
namespace {

constexpr std::size_t kMaxEntries = 32;
constexpr std::size_t kMaxBytes = 32u << 20;

std::size_t bytes_of(const ResultCache::Entry& entry) { return entry.request.size() + entry.result.bytes(); }

}  // namespace

const ResultCache::Entry* ResultCache::find(std::string_view request) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.request == request; });
  if (found == entries_.end()) return nullptr;
  entries_.splice(entries_.begin(), entries_, found);
  return &entries_.front();
}

void ResultCache::keep(Entry entry) {
  if (find(entry.request) != nullptr) {
    bytes_ -= bytes_of(entries_.front());
    entries_.pop_front();
  }
  bytes_ += bytes_of(entry);
  entries_.push_front(std::move(entry));
  while (entries_.size() > kMaxEntries || bytes_ > kMaxBytes) drop_oldest();
}

void ResultCache::drop_oldest() {
  bytes_ -= bytes_of(entries_.back());
  entries_.pop_back();
}

}  // namespace velanor::store
