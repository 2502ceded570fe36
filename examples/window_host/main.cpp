// The component on a window of a program of your own.
// Usage: window_host DATABASE [ENTITY YEAR EMPLOYEE]
//        window_host --self-test DATABASE
#include <velanor/sqlite_database.h>

#include <QApplication>
#include <QTimer>
#include <iostream>
#include <string>

#include "host_window.h"
#include "self_test.h"

namespace {

struct Rights : velanor::control::UserRights {
  std::string rights(std::string_view) override { return "all"; }
};

// Under the self-test the same day each time.
velanor::entry::Clock clock(bool self_test) {
  if (!self_test) return velanor::entry::system_clock();
  return [] { return velanor::entry::Date{15, 3, 2031}; };
}

int run(const QStringList& words) {
  const bool self_test = words.value(1) == "--self-test";
  const qsizetype first = self_test ? 2 : 1;
  // In this order: what is handed in outlives the window.
  velanor::store::SqliteDatabase database(words.value(first, "velanor.db").toStdString());
  Rights rights;
  NearDates entry(clock(self_test));
  HostWindow window(database, rights, entry);
  window.show();
  if (words.size() > first + 3) {
    const auto opening = window.cards().open(words[first + 1], words[first + 2], words[first + 3]);
    window.statusBar()->showMessage(QString::fromStdString(opening.why));
  }
  std::string wrong;
  SelfTest test(window, database);
  if (self_test) QTimer::singleShot(0, &window, [&] { wrong = test.play(), QApplication::exit(); });
  QApplication::exec();
  if (!wrong.empty()) std::cerr << wrong << "\n";
  return wrong.empty() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  try {
    return run(QApplication::arguments());
  } catch (const velanor::store::DbError& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}
