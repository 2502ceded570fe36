// The component on a window of a program of your own. Usage: window_host DATABASE
#include <velanor/controle_velanor_widget.h>
#include <velanor/sqlite_database.h>

#include <QApplication>
#include <QMainWindow>

namespace {

struct Rights : velanor::control::UserRights {
  std::string rights(std::string_view) override { return "all"; }
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  velanor::store::SqliteDatabase database(argc > 1 ? argv[1] : "velanor.db");
  Rights rights;
  QMainWindow window;
  auto* cards = new velanor::qt::ControleVelanorWidget(&window);
  cards->DroitsUtilisateur(rights);
  cards->TheDatabase(database);
  cards->init();
  QObject::connect(cards, &velanor::qt::ControleVelanorWidget::left, &window, &QWidget::close);
  window.setCentralWidget(cards);
  window.show();
  return QApplication::exec();
}
