#include <gtest/gtest.h>

#include <new>

#include "store/memory_backend.h"
#include "velanor/backend.h"

namespace velanor::store {
namespace {

class WithoutMemory : public MemoryBackend {
 public:
  std::optional<DbRecord> find(std::string_view, std::string_view) override { throw std::bad_alloc(); }
  bool put(std::string_view, std::string_view, const DbRecord&, const Expected&) override {
    throw std::bad_alloc();
  }
  bool erase(std::string_view, std::string_view, const Expected&) override { throw std::bad_alloc(); }
  void scan(std::string_view, const Narrowing&, Content, const Visit&) override { throw std::bad_alloc(); }
};

TEST(StoreDatabase, WithoutMemoryEveryCallEndsWithASentence) {
  StoreDatabase database(std::make_unique<WithoutMemory>());
  const auto file = database.OpenFile("F");
  const std::function<void()> calls[] = {
      [&] { file->find("1"); },
      [&] { file->write("1", DbRecord()); },
      [&] { file->DeleteRecord("1"); },
      [&] { database.Select(DbQuery("SSELECT F", "F", "0").encoded()); },
  };
  for (const auto& call : calls) {
    try {
      call();
      ADD_FAILURE() << "no failure";
    } catch (const DbError& error) {
      EXPECT_STREQ(error.what(),
                   "Il n'y a plus assez de mémoire. Fermez d'autres programmes, puis recommencez.");
    }
  }
}

}  // namespace
}  // namespace velanor::store
