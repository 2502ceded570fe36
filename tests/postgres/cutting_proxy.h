// Stands between the store and the server and cuts a connection at a message of one's choice.
#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "sqlite/temporary_folder.h"

namespace velanor::store {

class CuttingProxy {
 public:
  // Listens in a folder of its own for those who want the server at `socket`.
  explicit CuttingProxy(std::string socket);
  ~CuttingProxy();
  CuttingProxy(const CuttingProxy&) = delete;
  CuttingProxy& operator=(const CuttingProxy&) = delete;

  std::string folder() const { return folder_.file(""); }
  // From now on messages are counted, both ways; instead of the n-th its connection is cut, once. 0: none.
  void cut_at(int message);
  // Whether it has come to that since.
  bool has_cut() const { return has_cut_; }
  // How long each piece waits on its way, in milliseconds.
  void slow_down(int milliseconds) { delay_ = milliseconds; }
  // From now on nobody gets through, and who is through is cut.
  void close_gate(bool closed) { closed_ = closed; }

 private:
  void serve();
  void carry(int client);

  std::string server_;
  TemporaryFolder folder_;
  int listener_;
  std::atomic<bool> ending_ = false, has_cut_ = false, closed_ = false;
  std::atomic<int> left_ = 0, delay_ = 0;
  std::vector<std::thread> carriers_;
  std::thread server_thread_;
};

}  // namespace velanor::store
