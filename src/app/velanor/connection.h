// Another connection to the base of a window, for work beside it.
#pragma once

#include <functional>
#include <memory>

#include "app/velanor/task.h"
#include "velanor/database.h"

namespace velanor::app {

// Opens it, on whatever thread; throws store::DbError. Empty for a base in memory, which has but one.
using Connection = std::function<std::unique_ptr<store::Database>()>;

// Work on the base: beside the window on a connection of its own, or, where there is none, here and now on
// the window's.
class BaseWork {
 public:
  BaseWork(Connection connection, store::Database& own) : connection_(std::move(connection)), own_(&own) {}

  using Work = std::function<void(store::Database&, const std::function<void(double)>& progressed)>;
  // To be started; nothing where it was done at once. Throws then what the work throws.
  std::unique_ptr<Task> make(Work work) const {
    if (!connection_) return work(*own_, [](double) {}), nullptr;
    return std::make_unique<Task>([connect = connection_, work = std::move(work)](Task::Report& report) {
      const auto database = connect();
      work(*database, [&](double part) { report.part(part); });
    });
  }

 private:
  Connection connection_;
  store::Database* own_;
};

}  // namespace velanor::app
