#include "store/select/row_maker.h"

#include <algorithm>

#include "store/mark_scanner.h"
#include "store/select/evaluator.h"

namespace velanor::store::select {
namespace {

// Ends each part of a key; less than any byte of it, so that a text comes before the longer ones
// that begin with it.
constexpr char kKeyEnd = '\0';

// A row's attributes are its values, so their values become subvalues.
void append_attribute(int attribute, const Row& row, std::string& text) {
  if (attribute == 0) {
    text += row.id;
    return;
  }
  const std::size_t begin = text.size();
  text += attribute_text(row.encoded, attribute);
  std::replace(text.begin() + static_cast<std::ptrdiff_t>(begin), text.end(), kValueMark, kSubvalueMark);
}

}  // namespace

const std::string& RowMaker::key(const Row& row) {
  key_.clear();
  for (const SortKey& sort_key : *sort_keys_) {
    const std::size_t begin = key_.size();
    const std::string_view text = text_of(sort_key.designator, row);
    // Ids and what is drawn from them are codes: they keep plain order.
    if (sort_key.designator.attribute == 0) {
      key_ += text;
    } else {
      collator_.append_key(text, key_);
    }
    key_ += kKeyEnd;
    if (sort_key.direction == Direction::kAscending) continue;
    for (std::size_t i = begin; i < key_.size(); ++i) key_[i] = static_cast<char>(~key_[i]);
  }
  return key_;
}

bool RowMaker::key_is_of_id() const {
  return std::all_of(sort_keys_->begin(), sort_keys_->end(),
                     [](const SortKey& key) { return key.designator.attribute == 0; });
}

void RowMaker::append_text(const Row& row, std::string& text) const {
  for (std::size_t i = 0; i < attributes_->size(); ++i) {
    if (i > 0) text += kValueMark;
    append_attribute((*attributes_)[i], row, text);
  }
}

}  // namespace velanor::store::select
