#include "app/velanor/program.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
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

}  // namespace

Program::Program() = default;
Program::~Program() = default;

bool Program::open(const StoreOptions& options) try {
  StoreOptions named = options;
  bool first = false;
  if (named.url.empty() && !named.demo) {
    const QString path = own_database();
    first = !QFileInfo::exists(path);
    make_private(path);
    named.url = path.toStdString();
  }
  Base base{open_store(named, IfMissing::kCreate), nullptr};
  const QString path = QString::fromStdString(named.demo ? "" : path_of(named.url));
  show(std::move(base), named.demo ? QStringLiteral("Démonstration") : QFileInfo(path).fileName(), first);
  if (!named.demo) remember(QFileInfo(path).absoluteFilePath());
  return true;
} catch (const std::exception& error) {
  QMessageBox::critical(nullptr, "Fiches du personnel", QString::fromUtf8(error.what()));
  return false;
}

void Program::show(Base base, const QString& name, bool offer) {
  base.window = std::make_unique<MainWindow>(*base.store);
  MainWindow& window = *base.window;
  window.set_source(name);
  window.set_recent(QSettings().value(kRecent).toStringList());
  connect(&window, &MainWindow::open_asked, this, [this](const QString& path) {
    StoreOptions options;
    options.url = path.toStdString();
    open(options);
  });
  connect(
      &window, &MainWindow::closed, this, [this] { forget_closed(); }, Qt::QueuedConnection);
  window.show();
  if (offer) offer_demonstration(base);
  window.start();
  bases_.push_back(std::move(base));
}

void Program::offer_demonstration(Base& base) {
  const auto answer =
      base.window->component().ask({.title = "Fiches du personnel",
                                    .text = "Votre base vient d'être créée et elle est vide.\r\nVoulez-vous "
                                            "y mettre les données de démonstration "
                                            "(trois entités fictives et leur personnel) ?",
                                    .icon = screen::Icon::Question,
                                    .buttons = screen::Buttons::YesNo});
  if (answer != screen::Answer::Yes) return;
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  in_one_change(*base.store, [&] {
    StoreSink sink(
        [&](auto file, auto id, const auto& record) { base.store->OpenFile(file)->write(id, record); });
    demo::fill(sink);
  });
  QGuiApplication::restoreOverrideCursor();
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
