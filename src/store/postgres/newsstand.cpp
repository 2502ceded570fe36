#include "store/postgres/newsstand.h"

#include <utility>

namespace velanor::store::postgres {

class Newsstand::Reader : public News {
 public:
  explicit Reader(Newsstand& stand) : stand_(stand) { stand_.readers_.push_back(this); }
  ~Reader() override { std::erase(stand_.readers_, this); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  int descriptor() const override { return bell_.descriptor(); }
  std::vector<Change> take() override {
    stand_.fetch_();
    bell_.silence();
    return std::exchange(changes_, {});
  }

  void listen_to(int socket) { bell_.listen_to(socket); }
  // Who does not take what comes is told that there was too much of it.
  void hear(const Change& change) {
    constexpr std::size_t kMost = 1000;
    if (changes_.size() >= kMost) changes_ = {Change()};
    changes_.push_back(change);
    bell_.ring();
  }

 private:
  Newsstand& stand_;
  Bell bell_;
  std::vector<Change> changes_;
};

std::unique_ptr<News> Newsstand::new_reader() {
  auto reader = std::make_unique<Reader>(*this);
  if (socket_ >= 0) reader->listen_to(socket_);
  return reader;
}

void Newsstand::tell(const Change& change) {
  for (Reader* reader : readers_) reader->hear(change);
}

void Newsstand::listen_to(int socket) {
  socket_ = socket;
  if (socket < 0) return;
  for (Reader* reader : readers_) reader->listen_to(socket);
}

}  // namespace velanor::store::postgres
