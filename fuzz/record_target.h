// Any bytes, read as operations on a record, which must agree with the model after each of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "check.h"
#include "record_model.h"
#include "store/utf8.h"
#include "velanor/record.h"

namespace velanor::store::fuzz {

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  bool at_end() const { return at_ == size_; }
  int byte() { return at_end() ? 0 : data_[at_++]; }
  // Mostly small numbers from 1, now and then one that appends or lies far off.
  int number() {
    const int value = byte();
    return value >= 240 ? kAppend : value >= 232 ? 40 : value % 6 + 1;
  }
  std::string text() {
    std::string text;
    for (int length = byte() % 8; length > 0 && !at_end(); --length) text += static_cast<char>(byte());
    return text;
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t at_ = 0;
};

// Valid sequences are what encoding some character gives.
inline std::string encode_character(char32_t code) {
  const auto byte = [](char32_t bits) { return static_cast<char>(bits); };
  const auto more = [&](int shift) { return byte(0x80 | (code >> shift & 0x3F)); };
  if (code < 0x80) return {byte(code)};
  if (code < 0x800) return {byte(0xC0 | code >> 6), more(0)};
  if (code < 0x10000) return {byte(0xE0 | code >> 12), more(6), more(0)};
  return {byte(0xF0 | code >> 18), more(12), more(6), more(0)};
}

inline void check_clean(const std::string& text) {
  const std::string clean = clean_text(text);
  for (std::size_t at = 0; at < clean.size();) {
    const char32_t code = utf8::decode(clean, at);
    const std::string sequence = encode_character(code);
    FUZZ_CHECK(code != 0 && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF));
    FUZZ_CHECK(clean.compare(at, sequence.size(), sequence) == 0);
    at += sequence.size();
  }
  FUZZ_CHECK(clean_text(clean) == clean);
}

inline void check_agree(const DbRecord& record, const RecordModel& model) {
  FUZZ_CHECK(record.encoded() == model.encoded());
  FUZZ_CHECK(record.DCount() == static_cast<int>(model.attributes.size()));
  const int attributes = record.DCount();
  for (int a = 1; a <= attributes; ++a) {
    const Attribute& attribute = model.attributes[static_cast<std::size_t>(a) - 1];
    const std::string text = encode(attribute);
    FUZZ_CHECK(record(a) == text);
    FUZZ_CHECK(record.DCount(a) == (text.empty() ? 0 : static_cast<int>(attribute.size())));
    for (int v = 1; v <= static_cast<int>(attribute.size()); ++v) {
      const Value& value = attribute[static_cast<std::size_t>(v) - 1];
      FUZZ_CHECK(record(a, v) == encode(value));
      FUZZ_CHECK(record.Count(a, v) == (encode(value).empty() ? 0 : static_cast<int>(value.size())));
      for (int s = 1; s <= static_cast<int>(value.size()); ++s) {
        FUZZ_CHECK(record(a, v, s) == value[static_cast<std::size_t>(s) - 1]);
      }
      FUZZ_CHECK(record(a, v, static_cast<int>(value.size()) + 1).empty());
    }
    FUZZ_CHECK(record(a, static_cast<int>(attribute.size()) + 1).empty());
  }
  FUZZ_CHECK(record(attributes + 1).empty());
}

inline int positive(int number) { return number == kAppend ? 7 : number; }

inline void apply(Input& input, DbRecord& record, RecordModel& model) {
  const int operation = input.byte() % 9;
  const int a = positive(input.number());
  const int v = input.number();
  const int s = input.number();
  const std::string text = input.text();
  const std::string clean = clean_text(text);
  check_clean(text);
  switch (operation) {
    case 0:
      return record.set(a, text), model.set(a, clean);
    case 1:
      return record.set(a, v, text), model.set(a, v, clean);
    case 2:
      return record.set(a, v, s, text), model.set(a, v, s, clean);
    case 3:
      return record.Insert(a, v, text), model.insert_value(a, v, {clean});
    case 4:
      return record.Insert(a, v, s, text), model.insert_subvalue(a, v, s, clean);
    case 5:
      return record.Delete(a), model.remove(a, kWhole, kWhole);
    case 6:
      return record.Delete(a, v), model.remove(a, v, kWhole);
    case 7:
      return record.Delete(a, v, s), model.remove(a, v, s);
    default:
      record.copy_attribute(a, DbRecord(record), positive(v));
      const std::size_t from = static_cast<std::size_t>(positive(v)) - 1;
      const Attribute copied = from < model.attributes.size() ? model.attributes[from] : Attribute{{""}};
      model.set(a, "");
      model.attributes[static_cast<std::size_t>(a) - 1] = copied;
  }
}

inline void run_record_operations(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(data, data + size);
  const DbRecord decoded = DbRecord::from_encoded(bytes);
  FUZZ_CHECK(DbRecord::from_encoded(decoded.encoded()) == decoded);

  Input input(data, size);
  DbRecord record;
  RecordModel model;
  while (!input.at_end()) {
    apply(input, record, model);
    model.normalise();
    check_agree(record, model);
  }
  FUZZ_CHECK(DbRecord::from_encoded(record.encoded()) == record);
}

}  // namespace velanor::store::fuzz
