#include "app/velanor/program.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QScopeGuard>
#include <QSettings>
#include <QStandardPaths>
#include <algorithm>

#include "app/velanor/main_window.h"
#include "demo/demo.h"

namespace velanor::app {
namespace {

constexpr int kRecentFiles = 8;
const QString kRecent = QStringLiteral("recent");

QString own_database() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
  QDir().mkpath(folder);
  return QDir(folder).filePath("velanor.db");
}

// Made empty before the store writes into it, so that nobody else could ever read it.
void make_private(const QString& path) {
  QFile file(path);
  if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFileDevice::ReadOwner | QFileDevice::WriteOwner))
    file.close();
}

// The records that the component reads at its start are missing.
bool is_empty(store::Database& database) { return !database.OpenFile("TABLES")->find("FINCONTRAT"); }

}  // namespace

Program::Program() = default;
Program::~Program() = default;

bool Program::open(const StoreOptions& options) try {
  StoreOptions named = options;
  const bool own = named.url.empty() && !named.demo;
  if (own) {
    const QString path = own_database();
    make_private(path);
    named.url = path.toStdString();
  }
  const QString path = QString::fromStdString(named.demo ? "" : path_of(named.url));
  Base base{open_store(named, own ? IfMissing::kCreate : IfMissing::kFail), nullptr};
  if (!show(std::move(base), path)) return false;
  if (!named.demo) remember(QFileInfo(path).absoluteFilePath());
  return true;
} catch (const std::exception& error) {
  QMessageBox::critical(nullptr, "Fiches du personnel", QString::fromUtf8(error.what()));
  return false;
}

bool Program::show(Base base, const QString& path) {
  base.window = std::make_unique<MainWindow>(*base.store);
  MainWindow& window = *base.window;
  window.set_source(path);
  window.set_recent(QSettings().value(kRecent).toStringList());
  connect(&window, &MainWindow::open_asked, this, [this](const QString& asked) {
    StoreOptions options;
    options.url = asked.toStdString();
    open(options);
  });
  connect(
      &window, &MainWindow::closed, this, [this] { forget_closed(); }, Qt::QueuedConnection);
  window.show();
  if (is_empty(*base.store) && !fill(base)) return false;
  window.start();
  bases_.push_back(std::move(base));
  return true;
}

// The component does not start on an empty database.
bool Program::fill(Base& base) {
  qt::ControleVelanorWidget& component = base.window->component();
  const auto answer = component.ask({.title = "Fiches du personnel",
                                     .text = "Cette base est vide.\r\nVoulez-vous y mettre les données de "
                                             "démonstration (trois entités fictives et "
                                             "leur personnel) ?",
                                     .icon = screen::Icon::Question,
                                     .buttons = screen::Buttons::YesNo,
                                     .preset = screen::Answer::Yes});
  if (answer != screen::Answer::Yes) {
    component.ask(
        {.title = "Fiches du personnel",
         .text = "Une base vide ne peut pas être ouverte : importez d'abord vos fichiers de référence par la "
                 "commande velanorctl import, puis relancez le programme.",
         .icon = screen::Icon::Information});
    return false;
  }
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  const auto restore = qScopeGuard([] { QGuiApplication::restoreOverrideCursor(); });
  base.store->in_one_change([&] {
    StoreSink sink(
        [&](auto file, auto id, const auto& record) { base.store->OpenFile(file)->write(id, record); });
    demo::fill(sink);
  });
  return true;
}

void Program::remember(const QString& path) {
  QSettings settings;
  QStringList recent = settings.value(kRecent).toStringList();
  recent.removeAll(path);
  recent.prepend(path);
  recent = recent.mid(0, kRecentFiles);
  settings.setValue(kRecent, recent);
  for (const Base& base : bases_) base.window->set_recent(recent);
}

void Program::forget_closed() {
  const auto gone = [](const Base& base) { return !base.window->isVisible(); };
  bases_.erase(std::remove_if(bases_.begin(), bases_.end(), gone), bases_.end());
}

}  // namespace velanor::app
