#include "exchange/record_builder.h"

#include <algorithm>

namespace velanor::exchange {

void RecordBuilder::add(const store::Position& position, std::string_view text) {
  const auto go_to = [this](int& at, int number, char mark) {
    for (; at < number; ++at) bytes_ += mark;
  };
  if (position.attribute > attribute_) value_ = subvalue_ = 1;
  go_to(attribute_, position.attribute, store::kAttributeMark);
  if (position.value > value_) subvalue_ = 1;
  go_to(value_, position.value, store::kValueMark);
  go_to(subvalue_, position.subvalue, store::kSubvalueMark);
  if (std::all_of(text.begin(), text.end(), [](char byte) { return byte > 0; }))
    bytes_.append(text);
  else
    bytes_.append(store::clean_text(text));
}

store::DbRecord RecordBuilder::take() {
  attribute_ = value_ = subvalue_ = 1;
  auto record = store::DbRecord::from_trusted(bytes_);
  bytes_.clear();
  return record;
}

}  // namespace velanor::exchange
