#include "postgres/cutting_proxy.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>

namespace velanor::store {
namespace {

constexpr int kTick = 20;  // milliseconds between two looks at what is asked of the proxy

sockaddr_un address_of(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

int new_socket() { return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0); }

const sockaddr* plain(const sockaddr_un& address) { return reinterpret_cast<const sockaddr*>(&address); }

bool send_all(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

// One direction: bytes in, whole messages out. The first of a client's has no letter in front.
struct Direction {
  int from, to;
  bool has_letter;
  std::string bytes = {};

  bool read() {
    char block[65536];
    const auto size = ::recv(from, block, sizeof block, 0);
    if (size > 0) bytes.append(block, static_cast<std::size_t>(size));
    return size > 0;
  }
  std::string next_message() {
    const std::size_t head = has_letter ? 1 : 0;
    if (bytes.size() < head + 4) return {};
    std::size_t length = head;
    std::size_t counted = 0;
    for (std::size_t i = 0; i < 4; ++i) counted = counted << 8 | static_cast<unsigned char>(bytes[head + i]);
    length += counted;
    if (bytes.size() < length) return {};
    std::string message = bytes.substr(0, length);
    bytes.erase(0, length);
    has_letter = true;
    return message;
  }
};

}  // namespace

CuttingProxy::CuttingProxy(std::string socket) : server_(std::move(socket)), listener_(new_socket()) {
  const auto address = address_of(folder() + ".s.PGSQL.5432");
  ::bind(listener_, plain(address), sizeof address);
  ::listen(listener_, 64);
  server_thread_ = std::thread([this] { serve(); });
}

CuttingProxy::~CuttingProxy() {
  ending_ = true;
  server_thread_.join();
  for (std::thread& carrier : carriers_) carrier.join();
  ::close(listener_);
}

void CuttingProxy::cut_at(int message) {
  has_cut_ = false;
  left_ = message;
}

void CuttingProxy::serve() {
  while (!ending_) {
    pollfd waited{listener_, POLLIN, 0};
    if (::poll(&waited, 1, kTick) != 1) continue;
    const int client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (closed_) {
      ::close(client);
    } else {
      carriers_.emplace_back([this, client] { carry(client); });
    }
  }
}

void CuttingProxy::carry(int client) {
  const int server = new_socket();
  const auto address = address_of(server_);
  bool open = ::connect(server, plain(address), sizeof address) == 0;
  Direction ways[] = {{client, server, false}, {server, client, true}};
  const auto pass = [&](Direction& way) {
    if (!way.read()) return false;
    if (delay_ > 0) std::this_thread::sleep_for(std::chrono::milliseconds(delay_));
    for (std::string message; !(message = way.next_message()).empty();) {
      if (left_ > 0 && --left_ == 0) {
        has_cut_ = true;
        return false;
      }
      if (!send_all(way.to, message)) return false;
    }
    return true;
  };
  while (open && !ending_ && !closed_) {
    pollfd waited[] = {{client, POLLIN, 0}, {server, POLLIN, 0}};
    if (::poll(waited, 2, kTick) <= 0) continue;
    for (int i = 0; i < 2; ++i) open = open && (waited[i].revents == 0 || pass(ways[i]));
  }
  ::close(client);
  ::close(server);
}

}  // namespace velanor::store
