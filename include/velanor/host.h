// What the application around the component hands in, besides the database.
#pragma once

#include <string>
#include <string_view>

namespace velanor::store {
class Database;
}

namespace velanor::control {

// The access-rights component. The answer is kept and passed on to nobody.
class UserRights {
 public:
  virtual ~UserRights() = default;
  virtual std::string rights(std::string_view element) = 0;
};

// The database client: opaque to the component, which only hands it to the help viewer.
class Client {
 public:
  virtual ~Client() = default;
};

class HelpViewer {
 public:
  virtual ~HelpViewer() = default;
  // Shows a page by file name, with a window title and a section letter. The client may be null
  // when the host set none.
  virtual void show(Client* client, store::Database& database, std::string_view page, std::string_view title,
                    std::string_view section) = 0;
};

// The window that contains the component.
class HostWindow {
 public:
  virtual ~HostWindow() = default;
  // The user left the component: the last call that it makes. The window may not destroy the
  // component before the call has returned.
  virtual void unload() = 0;
};

}  // namespace velanor::control
