// One descriptor that becomes readable when somebody should look, whatever becomes of the sockets behind it.
#pragma once

namespace velanor::store::postgres {

class Bell {
 public:
  Bell();
  ~Bell();
  Bell(const Bell&) = delete;
  Bell& operator=(const Bell&) = delete;

  int descriptor() const { return epoll_; }
  // Rings when something comes through the socket; one that is closed is forgotten.
  void listen_to(int socket);
  void ring();
  void silence();

 private:
  int epoll_, event_;
};

}  // namespace velanor::store::postgres
