#include "store/kept_selection.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "store/plan.h"
#include "store/select/evaluator.h"
#include "store/select/found_rows.h"

namespace velanor::store {
namespace {

constexpr std::size_t kMaxEntries = 64;
constexpr std::size_t kMaxBytes = std::size_t{64} << 20;

// What makes rows that a program has kept those of another: how they are written down, and how keys are made.
constexpr std::string_view kFormat = "1";
// Fewer are selected as soon as they are read; more would take the place of many lists.
constexpr std::size_t kFewestToKeep = 500, kMostBytesToKeep = std::size_t{24} << 20;
// Below what backends remember of changes, so that what is kept can be brought up to date.
constexpr std::size_t kMostChanges = 500;

// Each text with its length, so that nothing can pass from one to the next.
void tell(std::string& name, std::string_view text) {
  name += std::to_string(text.size());
  name += ':';
  name += text;
}

void tell(std::string& name, const select::Designator& designator) {
  for (const std::size_t number :
       {static_cast<std::size_t>(designator.attribute), designator.first, designator.count})
    name += std::to_string(number) + ' ';
}

void tell(std::string& name, const select::Criterion& criterion) {
  name += '(';
  tell(name, criterion.designator);
  for (const auto& all : criterion.tests) {
    name += '|';
    for (const select::Test& test : all) {
      name += test.negated ? '#' : '=';
      name += static_cast<char>('0' + static_cast<int>(test.kind));
      tell(name, test.text);
    }
  }
}

std::optional<Rows> loaded(std::string_view bytes) {
  std::vector<std::shared_ptr<const RowBlock>> blocks;
  while (!bytes.empty()) {
    auto block = RowBlock::load(bytes);
    if (!block) return std::nullopt;
    blocks.push_back(std::make_shared<const RowBlock>(*std::move(block)));
  }
  return Rows(std::move(blocks));
}

}  // namespace

KeptSelection::KeptSelection(select::Statement statement, std::vector<int> attributes)
    : statement_(std::move(statement)),
      attributes_(std::move(attributes)),
      maker_(statement_.sort_keys, attributes_),
      rows_(std::make_shared<const Rows>()) {}

DbResult KeptSelection::result(Backend& backend) {
  if (!revision_) take_what_was_kept(backend);
  if (!revision_ || !patch(backend)) select(backend);
  return {rows_, *revision_};
}

void KeptSelection::select(Backend& backend) {
  select::FoundRows found(maker_);
  const std::uint64_t revision =
      backend.scan_if_changed(statement_.file, revision_, narrowing_of(statement_),
                              content_needed(statement_, attributes_), [&](const Row& row) {
                                if (select::matches(statement_, row)) found.add(row);
                              });
  if (revision == revision_) return;
  rows_ = std::make_shared<const Rows>(found.rows());
  revision_ = revision;
  keep(backend);
}

bool KeptSelection::patch(Backend& backend) {
  std::shared_ptr<const Rows> rows = rows_;
  std::size_t changes = 0;
  const auto revision = backend.changes_since(statement_.file, *revision_, [&](const ChangedRow& change) {
    ++changes;
    if (auto patched = with_change(*rows, change)) rows = std::make_shared<const Rows>(*std::move(patched));
  });
  if (!revision) return false;
  rows_ = std::move(rows);
  revision_ = revision;
  changes_ += changes;
  if (changes_ > kMostChanges) keep(backend);
  return true;
}

std::optional<Rows> KeptSelection::with_change(const Rows& rows, const ChangedRow& change) {
  if (!select::may_match(statement_, change.id)) return std::nullopt;
  const Row row{change.id, change.encoded.value_or("")};
  const bool belongs = change.encoded && select::matches(statement_, row);
  const bool key_is_of_id = maker_.key_is_of_id();
  const std::string& key = maker_.key(row);
  auto place = belongs || key_is_of_id ? rows.find(key, change.id) : std::nullopt;
  const bool stays = place.has_value();
  if (!stays && !key_is_of_id) place = rows.find(change.id);
  if (!belongs) return place ? std::optional(without(rows, *place)) : std::nullopt;
  text_.clear();
  maker_.append_text(row, text_);
  if (stays && rows.text_at(*place) == text_) return std::nullopt;
  const LooseRow now{change.id, text_, key};
  const bool moves = place && !stays;
  return with(moves ? without(rows, *place) : rows, now, maker_.starts_with_id());
}

std::string KeptSelection::name() const {
  std::string name(kFormat);
  tell(name, statement_.file);
  for (const auto& alternative : statement_.criteria) {
    name += '/';
    for (const select::Criterion& criterion : alternative) tell(name, criterion);
  }
  for (const select::SortKey& key : statement_.sort_keys) {
    name += key.direction == select::Direction::kAscending ? '<' : '>';
    tell(name, key.designator);
  }
  name += '.';
  for (const int attribute : attributes_) name += std::to_string(attribute) + ' ';
  return name;
}

void KeptSelection::take_what_was_kept(Backend& backend) {
  const auto kept = backend.kept_rows(statement_.file, name());
  if (!kept) return;
  auto rows = loaded(kept->bytes);
  if (!rows) return;
  rows_ = std::make_shared<const Rows>(*std::move(rows));
  revision_ = kept->revision;
}

// It only saves time: where it fails the rows are as good.
void KeptSelection::keep(Backend& backend) try {
  changes_ = 0;
  if (rows_->count() < kFewestToKeep || rows_->bytes() > kMostBytesToKeep) return;
  std::string bytes;
  bytes.reserve(rows_->bytes());
  for (const auto& block : rows_->blocks()) block->save(bytes);
  backend.keep_rows(statement_.file, name(), {*revision_, std::move(bytes)});
} catch (const std::exception&) {
}

KeptSelection* KeptSelections::find(std::string_view request) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.request == request; });
  if (found == entries_.end()) return nullptr;
  entries_.splice(entries_.begin(), entries_, found);
  return entries_.front().selection.get();
}

void KeptSelections::add(std::string_view request, std::unique_ptr<KeptSelection> selection) {
  entries_.push_front({std::string(request), std::move(selection)});
}

void KeptSelections::drop_what_is_too_much() {
  std::size_t bytes = 0;
  const auto end = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    bytes += entry.request.size() + entry.selection->bytes();
    return bytes > kMaxBytes;
  });
  entries_.erase(end, entries_.end());
  if (entries_.size() > kMaxEntries) entries_.resize(kMaxEntries);
}

}  // namespace velanor::store
