#include "app/velanor/main_window.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QMenuBar>

#include "app/velanor/help_window.h"

namespace velanor::app {
namespace {

const QString kTitle = QStringLiteral("Fiches du personnel");

// The toolkit's translation leaves these out.
class FrenchKinds : public QFileIconProvider {
 public:
  QString type(const QFileInfo& file) const override {
    if (file.isDir()) return QStringLiteral("Dossier");
    return file.suffix() == QLatin1String("db") ? QStringLiteral("Base") : QStringLiteral("Fichier");
  }
};

}  // namespace

MainWindow::MainWindow(store::Database& database, QWidget* parent)
    : QMainWindow(parent), component_(new qt::ControleVelanorWidget(this)), database_(database) {
  setWindowTitle(kTitle);
  setCentralWidget(component_);
  make_menus();
  component_->DroitsUtilisateur(*this);
  component_->TheClient(client_);
  component_->TheDatabase(database_);
  connect(component_, &qt::ControleVelanorWidget::left, this, &QWidget::close);
  connect(component_, &qt::ControleVelanorWidget::help_asked, this, &MainWindow::show_help);
  resize(1264, 680);
}

MainWindow::~MainWindow() = default;

void MainWindow::start() { component_->init(); }

void MainWindow::make_menus() {
  QMenu* file = menuBar()->addMenu("&Fichier");
  connect(file->addAction("&Ouvrir…"), &QAction::triggered, this, &MainWindow::ask_file);
  recent_ = file->addMenu("Bases &récentes");
  recent_->setEnabled(false);
  file->addSeparator();
  QAction* quit = file->addAction("&Quitter");
  quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
  connect(quit, &QAction::triggered, this, &QWidget::close);
  QMenu* help = menuBar()->addMenu("A&ide");
  QAction* guide = help->addAction("&Guide");
  guide->setShortcut(QKeySequence(Qt::Key_F1));
  connect(guide, &QAction::triggered, this, [this] { show_help("Velanor.htm", kTitle); });
  connect(help->addAction("À &propos…"), &QAction::triggered, this, &MainWindow::show_about);
}

void MainWindow::set_source(const QString& path) {
  const QFileInfo file(path);
  setWindowTitle((path.isEmpty() ? QStringLiteral("Démonstration") : file.fileName()) + " – " + kTitle);
  if (!path.isEmpty()) folder_ = file.absolutePath();
}

void MainWindow::set_recent(const QStringList& files) {
  recent_->clear();
  recent_->setEnabled(!files.isEmpty());
  for (const QString& path : files) {
    QAction* entry = recent_->addAction(QFileInfo(path).fileName());
    entry->setToolTip(path);
    connect(entry, &QAction::triggered, this, [this, path] { emit open_asked(path); });
  }
}

void MainWindow::ask_file() {
  FrenchKinds kinds;
  QFileDialog dialog(this, "Ouvrir une base", folder_, "Bases (*.db);;Tous les fichiers (*)");
  dialog.setIconProvider(&kinds);
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.resize(820, 480);
  if (dialog.exec() == QDialog::Accepted) emit open_asked(dialog.selectedFiles().constFirst());
}

void MainWindow::show_help(const QString& page, const QString& title) {
  if (!help_) help_ = new HelpWindow(this);
  help_->show_page(page, title);
}

void MainWindow::show_about() {
  if (component_->open_message()) return;
  component_->ask({.title = "À propos",
                   .text =
                       "Fiches du personnel\r\nLes fiches budgétaires du personnel des associations d'aide à "
                       "domicile.\r\n\r\nVersion " VELANOR_VERSION,
                   .icon = screen::Icon::Information});
}

// A card that is open is not left unsaved without a word. A message that waits is answered first.
void MainWindow::closeEvent(QCloseEvent* event) {
  if (component_->screen().finished()) return emit closed();
  if (component_->open_message()) return event->ignore();
  screen::Control* leave = component_->screen().base().find("Cmd_Sortir");
  const bool card_open = component_->open_sheet() || (leave && !leave->enabled());
  const bool go =
      !card_open || component_->ask({.title = kTitle.toStdString(),
                                     .text = "Une fiche est ouverte : ce qui n'est pas enregistré sera "
                                             "perdu.\r\nQuitter quand même ?",
                                     .icon = screen::Icon::Question,
                                     .buttons = screen::Buttons::YesNo}) == screen::Answer::Yes;
  event->setAccepted(go);
  if (go) emit closed();
}

}  // namespace velanor::app
