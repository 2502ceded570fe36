#include "velanor/wrapped_database.h"

namespace velanor::store {

template <typename Make>
auto WrappedDatabase::pass(const DatabaseCall& call, Make make) {
  before(call);
  if constexpr (std::is_void_v<decltype(make())>) {
    make();
    after(call);
  } else {
    auto result = make();
    after(call);
    return result;
  }
}

class WrappedDatabase::File : public DbFile {
 public:
  File(WrappedDatabase& owner, std::string_view name, std::unique_ptr<DbFile> inner)
      : owner_(owner), name_(name), inner_(std::move(inner)) {}

  std::optional<DbRecord> find(std::string_view id) override {
    return owner_.pass({DatabaseCall::Kind::kFind, name_, id}, [&] { return inner_->find(id); });
  }
  void write(std::string_view id, const DbRecord& record, const Expected& expected) override {
    owner_.pass({DatabaseCall::Kind::kWrite, name_, id, &record},
                [&] { inner_->write(id, record, expected); });
  }
  void remove(std::string_view id, const Expected& expected) override {
    owner_.pass({DatabaseCall::Kind::kDelete, name_, id}, [&] { inner_->remove(id, expected); });
  }

 private:
  WrappedDatabase& owner_;
  std::string name_;
  std::unique_ptr<DbFile> inner_;
};

std::unique_ptr<DbFile> WrappedDatabase::OpenFile(std::string_view name) {
  return pass({DatabaseCall::Kind::kOpen, name, {}},
              [&] { return std::make_unique<File>(*this, name, inner_.OpenFile(name)); });
}

DbResult WrappedDatabase::Select(std::string_view request, std::string_view option) {
  return pass({DatabaseCall::Kind::kSelect, {}, request}, [&] { return inner_.Select(request, option); });
}

}  // namespace velanor::store
