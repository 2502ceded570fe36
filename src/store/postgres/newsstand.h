// Those who hear what others write.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "store/postgres/bell.h"
#include "velanor/news.h"

namespace velanor::store::postgres {

// Each reader has a queue and a bell of his own, so that none takes another's news. Outlives its readers.
class Newsstand {
 public:
  // `fetch` brings in what has come through the connection, without waiting.
  explicit Newsstand(std::function<void()> fetch) : fetch_(std::move(fetch)) {}

  std::unique_ptr<News> new_reader();
  void tell(const Change& change);
  // News come through this socket from now on; -1: through none.
  void listen_to(int socket);

 private:
  class Reader;

  std::function<void()> fetch_;
  std::vector<Reader*> readers_;
  int socket_ = -1;
};

}  // namespace velanor::store::postgres
