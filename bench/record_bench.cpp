// The record's own encoding against JSON, MessagePack and Protocol Buffers, on different cards in turn.
#include <google/protobuf/arena.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <simdjson.h>

#include <cstdlib>
#include <memory>
#include <msgpack.hpp>
#include <new>

#include "card.pb.h"
#include "cards.h"
#include "race.h"

namespace {
std::size_t allocations = 0;
}

// Counted, to see that decoding takes no memory anew.
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace velanor::bench {
namespace {

using store::DbRecord;

constexpr int kCards = 64, kRounds = 200, kTimes = kCards * kRounds;

// Where what stands: fields of one value, columns of lines, columns of lines of items.
constexpr std::pair<int, int> kFields[] = {{1, 16}, {34, 37}, {46, 46}};
constexpr int kFirstColumn = 17, kFirstItems = 30, kLastItems = 33;

// What was read of a card, which is the same for all.
struct Seen {
  std::size_t elements = 0, bytes = 0;
  void operator()(std::string_view text) {
    ++elements;
    bytes += text.size() + static_cast<unsigned char>(text.front());
  }
  friend bool operator==(const Seen&, const Seen&) = default;
};

void read(const DbRecord& record, Seen& seen) {
  for (const auto& [first, last] : kFields) {
    for (int field = first; field <= last; ++field) seen(record(field));
  }
  for (int column = kFirstColumn; column < kFirstItems; ++column) {
    for (int line = 1, lines = record.DCount(column); line <= lines; ++line) seen(record(column, line));
  }
  for (int column = kFirstItems; column <= kLastItems; ++column) {
    for (int line = 1, lines = record.DCount(column); line <= lines; ++line) {
      for (int item = 1, items = record.Count(column, line); item <= items; ++item)
        seen(record(column, line, item));
    }
  }
}

// The fields, then the columns, then the columns of items, as a list of texts or lists.
void write_json(const DbRecord& record, rapidjson::Writer<rapidjson::StringBuffer>& writer) {
  const auto text = [&](std::string_view t) { writer.String(t.data(), static_cast<unsigned>(t.size())); };
  writer.StartArray();
  for (const auto& [first, last] : kFields) {
    for (int field = first; field <= last; ++field) text(record(field));
  }
  for (int column = kFirstColumn; column <= kLastItems; ++column) {
    writer.StartArray();
    for (int line = 1; line <= record.DCount(column); ++line) {
      if (column < kFirstItems) {
        text(record(column, line));
        continue;
      }
      writer.StartArray();
      for (int item = 1; item <= record.Count(column, line); ++item) text(record(column, line, item));
      writer.EndArray();
    }
    writer.EndArray();
  }
  writer.EndArray();
}

std::string json_of(const DbRecord& record) {
  rapidjson::StringBuffer buffer;
  rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
  write_json(record, writer);
  return {buffer.GetString(), buffer.GetSize()};
}

// From the same lists.
std::string msgpack_of(const std::string& json) {
  rapidjson::Document document;
  document.Parse(json.c_str());
  msgpack::sbuffer buffer;
  msgpack::packer<msgpack::sbuffer> packer(buffer);
  const std::function<void(const rapidjson::Value&)> pack = [&](const rapidjson::Value& value) {
    if (value.IsString()) {
      packer.pack_str(value.GetStringLength());
      packer.pack_str_body(value.GetString(), value.GetStringLength());
      return;
    }
    packer.pack_array(value.Size());
    for (const auto& member : value.GetArray()) pack(member);
  };
  pack(document);
  return {buffer.data(), buffer.size()};
}

std::string protobuf_of(const DbRecord& record) {
  pb::Card card;
  const auto bytes = [](std::string_view text) { return std::string(text); };
  for (const auto& [first, last] : kFields) {
    for (int field = first; field <= last; ++field) card.add_fields(bytes(record(field)));
  }
  for (int column = kFirstColumn; column < kFirstItems; ++column) {
    auto* lines = card.add_columns();
    for (int line = 1; line <= record.DCount(column); ++line) lines->add_lines(bytes(record(column, line)));
  }
  for (int column = kFirstItems; column <= kLastItems; ++column) {
    auto* items = card.add_items();
    for (int line = 1; line <= record.DCount(column); ++line) {
      auto* of_line = items->add_lines();
      for (int item = 1; item <= record.Count(column, line); ++item)
        of_line->add_lines(bytes(record(column, line, item)));
    }
  }
  return card.SerializeAsString();
}

struct Cards {
  std::vector<DbRecord> records;
  std::vector<std::string> encoded, json, msgpack, protobuf;
  std::vector<simdjson::padded_string> padded_json;
  Cards() {
    std::mt19937 random(1);
    for (int i = 0; i < kCards; ++i) {
      records.push_back(card(random));
      encoded.push_back(records.back().encoded());
      json.push_back(json_of(records.back()));
      padded_json.emplace_back(json.back());
      msgpack.push_back(msgpack_of(json.back()));
      protobuf.push_back(protobuf_of(records.back()));
    }
  }
};
const Cards& cards() {
  static const Cards made;
  return made;
}

// Each card of the round with its number.
template <class Work>
void each_card(Work work) {
  for (int round = 0; round < kRounds; ++round) {
    for (std::size_t i = 0; i < kCards; ++i) work(i);
  }
}

enum class From { kStore, kOutside };

// Ours reads into one record, which keeps its memory; what comes from outside is checked to be UTF-8.
void decode(benchmark::State& state, double goal, From from,
            const std::function<void(std::size_t, Seen&)>& decode_peer) {
  const Cards& all = cards();
  DbRecord record;
  Seen peers, our;
  std::size_t allocated = 0;
  race(state, {.goal = goal, .times = kTimes},
       {.prepare = [&] { peers = {}; },
        .run = [&] { each_card([&](std::size_t i) { decode_peer(i, peers); }); }},
       {.prepare =
            [&] {
              our = {};
              record.assign_trusted(all.encoded.front());
              for (const std::string& longest : all.encoded) record.assign_trusted(longest);
              allocated = allocations;
            },
        .run =
            [&] {
              each_card([&](std::size_t i) {
                from == From::kStore ? record.assign_trusted(all.encoded[i])
                                     : record.assign_encoded(all.encoded[i]);
                read(record, our);
              });
              allocated = allocations - allocated;
            }});
  state.counters["allocations"] = static_cast<double>(allocated) / kTimes;
  if (peers != our || our.elements != 122u * kTimes) state.SkipWithError("something else was read");
}

void against_simdjson(benchmark::State& state, From from) {
  simdjson::ondemand::parser parser;
  const auto read_array = [](auto array, auto& self, Seen& seen) -> void {
    for (auto member : array) {
      simdjson::ondemand::value value = member.value();
      if (value.type() == simdjson::ondemand::json_type::string) {
        seen(value.get_string().value());
      } else {
        self(value.get_array().value(), self, seen);
      }
    }
  };
  decode(state, 3, from, [&](std::size_t i, Seen& seen) {
    auto document = parser.iterate(cards().padded_json[i]);
    read_array(document.get_array().value(), read_array, seen);
  });
}
void DecodeAgainstSimdjson(benchmark::State& state) { against_simdjson(state, From::kStore); }
// As simdjson checks what it reads.
void DecodeFromOutsideAgainstSimdjson(benchmark::State& state) { against_simdjson(state, From::kOutside); }
VELANOR_RACE(DecodeAgainstSimdjson);
VELANOR_RACE(DecodeFromOutsideAgainstSimdjson);

// A document in memory that it keeps.
using JsonMemory = rapidjson::MemoryPoolAllocator<>;

void read_json(const rapidjson::Value& value, Seen& seen) {
  if (value.IsString()) return seen({value.GetString(), value.GetStringLength()});
  for (const auto& member : value.GetArray()) read_json(member, seen);
}

void DecodeAgainstRapidjson(benchmark::State& state) {
  std::vector<char> memory(64 * 1024), stack(16 * 1024), text;
  decode(state, 10, From::kStore, [&](std::size_t i, Seen& seen) {
    JsonMemory values(memory.data(), memory.size()), levels(stack.data(), stack.size());
    text.assign(cards().json[i].c_str(), cards().json[i].c_str() + cards().json[i].size() + 1);
    rapidjson::GenericDocument<rapidjson::UTF8<>, JsonMemory, JsonMemory> document(&values, 4096, &levels);
    document.ParseInsitu(text.data());
    read_json(document, seen);
  });
}
VELANOR_RACE(DecodeAgainstRapidjson);

void read_protobuf(const pb::Card& card, Seen& seen) {
  for (const auto& field : card.fields()) seen(field);
  for (const auto& column : card.columns()) {
    for (const auto& line : column.lines()) seen(line);
  }
  for (const auto& items : card.items()) {
    for (const auto& line : items.lines()) {
      for (const auto& item : line.lines()) seen(item);
    }
  }
}

// Into one message, which keeps its memory.
void DecodeAgainstProtobuf(benchmark::State& state) {
  pb::Card message;
  decode(state, 11, From::kStore, [&](std::size_t i, Seen& seen) {
    message.ParseFromString(cards().protobuf[i]);
    read_protobuf(message, seen);
  });
}
VELANOR_RACE(DecodeAgainstProtobuf);

void read_msgpack(const msgpack::object& value, Seen& seen) {
  if (value.type == msgpack::type::STR) return seen({value.via.str.ptr, value.via.str.size});
  for (std::uint32_t i = 0; i < value.via.array.size; ++i) read_msgpack(value.via.array.ptr[i], seen);
}

void write_msgpack(const msgpack::object& value, msgpack::packer<msgpack::sbuffer>& packer) {
  if (value.type == msgpack::type::STR) {
    packer.pack_str(value.via.str.size);
    packer.pack_str_body(value.via.str.ptr, value.via.str.size);
    return;
  }
  packer.pack_array(value.via.array.size);
  for (std::uint32_t i = 0; i < value.via.array.size; ++i) write_msgpack(value.via.array.ptr[i], packer);
}

// Texts stay where they are read.
bool stay(msgpack::type::object_type, std::size_t, void*) { return true; }

void DecodeAgainstMsgpack(benchmark::State& state) {
  msgpack::zone zone;
  decode(state, 3, From::kStore, [&](std::size_t i, Seen& seen) {
    zone.clear();
    const std::string& bytes = cards().msgpack[i];
    read_msgpack(msgpack::unpack(zone, bytes.data(), bytes.size(), stay), seen);
  });
}
VELANOR_RACE(DecodeAgainstMsgpack);

// The third field of a decoded card, each time of another size, and the card encoded into memory that is
// used again.
const std::string kTexts[] = {"1234567", "12345", "123456789", "123456"};
constexpr int kChanged = 3;

void change(benchmark::State& state, double goal, const Runner& peer, const std::function<bool()>& is_same) {
  std::vector<DbRecord> records = cards().records;
  std::string encoded;
  std::size_t bytes = 0, turn = 0;
  race(state, {.goal = goal, .times = kTimes}, peer, {.run = [&] {
         each_card([&](std::size_t i) {
           records[i].set(kChanged, kTexts[turn++ % std::size(kTexts)]);
           encoded = records[i].encoded();
           bytes += encoded.size();
         });
       }});
  benchmark::DoNotOptimize(bytes);
  const DbRecord last = DbRecord::from_encoded(encoded);
  if (last(kChanged) != kTexts[(turn - 1) % std::size(kTexts)] || last(46) != cards().records.back()(46) ||
      !is_same())
    state.SkipWithError("something else was written");
}

void ChangeAgainstMsgpack(benchmark::State& state) {
  msgpack::zone zone;
  std::vector<msgpack::object> objects;
  for (const std::string& bytes : cards().msgpack)
    objects.push_back(msgpack::unpack(zone, bytes.data(), bytes.size(), stay));
  msgpack::sbuffer buffer;
  std::size_t turn = 0;
  change(state, 3,
         {.run =
              [&] {
                each_card([&](std::size_t i) {
                  const std::string& text = kTexts[turn++ % std::size(kTexts)];
                  msgpack::object& changed = objects[i].via.array.ptr[kChanged - 1];
                  changed.via.str = {static_cast<std::uint32_t>(text.size()), text.data()};
                  buffer.clear();
                  msgpack::packer<msgpack::sbuffer> packer(buffer);
                  write_msgpack(objects[i], packer);
                });
              }},
         [&] {
           msgpack::zone other;
           Seen seen, wanted;
           read_msgpack(msgpack::unpack(other, buffer.data(), buffer.size()), seen);
           DbRecord record = cards().records.back();
           record.set(kChanged, kTexts[(turn - 1) % std::size(kTexts)]);
           read(record, wanted);
           return seen == wanted;
         });
}
VELANOR_RACE(ChangeAgainstMsgpack);

void ChangeAgainstRapidjson(benchmark::State& state) {
  std::vector<rapidjson::Document> documents(kCards);
  for (std::size_t i = 0; i < kCards; ++i) documents[i].Parse(cards().json[i].c_str());
  rapidjson::StringBuffer buffer;
  std::size_t turn = 0;
  change(state, 9,
         {.run =
              [&] {
                each_card([&](std::size_t i) {
                  const std::string& text = kTexts[turn++ % std::size(kTexts)];
                  documents[i][kChanged - 1].SetString(rapidjson::StringRef(text.data(), text.size()));
                  buffer.Clear();
                  rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
                  documents[i].Accept(writer);
                });
              }},
         [&] {
           DbRecord record = cards().records.back();
           record.set(kChanged, kTexts[(turn - 1) % std::size(kTexts)]);
           return json_of(record) == std::string(buffer.GetString(), buffer.GetSize());
         });
}
VELANOR_RACE(ChangeAgainstRapidjson);

void ChangeAgainstProtobuf(benchmark::State& state) {
  std::vector<pb::Card> messages(kCards);
  for (std::size_t i = 0; i < kCards; ++i) messages[i].ParseFromString(cards().protobuf[i]);
  std::string buffer;
  std::size_t turn = 0;
  change(state, 15,
         {.run =
              [&] {
                each_card([&](std::size_t i) {
                  messages[i].set_fields(kChanged - 1, kTexts[turn++ % std::size(kTexts)]);
                  messages[i].SerializeToString(&buffer);
                });
              }},
         [&] {
           DbRecord record = cards().records.back();
           record.set(kChanged, kTexts[(turn - 1) % std::size(kTexts)]);
           return protobuf_of(record) == buffer;
         });
}
VELANOR_RACE(ChangeAgainstProtobuf);

// What no peer does: for the record of how fast it is.
void Copy(benchmark::State& state) {
  const DbRecord& record = cards().records.front();
  for (auto _ : state) benchmark::DoNotOptimize(DbRecord(record));
  state.counters["size"] = sizeof(DbRecord);
}
BENCHMARK(Copy);

void DecodeOnce(benchmark::State& state) {
  const std::string& bytes = cards().encoded.front();
  for (auto _ : state) benchmark::DoNotOptimize(DbRecord::from_trusted(bytes));
}
BENCHMARK(DecodeOnce);

// A record filled element by element, as a card is from its screen.
void Fill(benchmark::State& state) {
  const DbRecord& source = cards().records.front();
  for (auto _ : state) {
    DbRecord filled;
    for (int a = 1; a <= source.DCount(); ++a) {
      for (int v = 1; v <= source.DCount(a); ++v) {
        for (int s = 1; s <= source.Count(a, v); ++s) filled.set(a, v, s, source(a, v, s));
      }
    }
    benchmark::DoNotOptimize(filled.encoded());
  }
}
BENCHMARK(Fill);

void InsertAndDeleteInTheMiddle(benchmark::State& state) {
  DbRecord record = cards().records.front();
  for (auto _ : state) {
    record.Insert(20, 3, "12345");
    record.Delete(20, 3);
  }
}
BENCHMARK(InsertAndDeleteInTheMiddle);

}  // namespace
}  // namespace velanor::bench
