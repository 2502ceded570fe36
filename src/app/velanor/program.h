// The program at work: the databases that are open, each in its window, and those opened lately.
#pragma once

#include <QObject>
#include <memory>
#include <vector>

#include "app/velanorctl/open_store.h"

namespace velanor::app {

class MainWindow;

class Program : public QObject {
 public:
  Program();
  ~Program() override;

  // Opens what the options name, or the user's own database when they name nothing; that one is made
  // on the first run. An empty database is offered the demonstration data. False when it could not be opened:
  // the user has been told.
  bool open(const StoreOptions& options);

 private:
  struct Base {
    std::unique_ptr<store::Database> store;
    std::unique_ptr<MainWindow> window;
  };
  bool show(Base base, const QString& path);
  // Brings the demonstration data into an empty database if the user wants it.
  bool fill(Base& base);
  void remember(const QString& path);
  void forget_closed();

  std::vector<Base> bases_;
};

}  // namespace velanor::app
