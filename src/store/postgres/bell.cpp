#include "store/postgres/bell.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>

namespace velanor::store::postgres {

Bell::Bell() : epoll_(epoll_create1(EPOLL_CLOEXEC)), event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  listen_to(event_);
}

Bell::~Bell() {
  ::close(event_);
  ::close(epoll_);
}

void Bell::listen_to(int socket) {
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.fd = socket;
  epoll_ctl(epoll_, EPOLL_CTL_ADD, socket, &event);
}

void Bell::ring() {
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto written = ::write(event_, &one, sizeof one);
}

void Bell::silence() {
  std::uint64_t count = 0;
  [[maybe_unused]] const auto read = ::read(event_, &count, sizeof count);
}

}  // namespace velanor::store::postgres
