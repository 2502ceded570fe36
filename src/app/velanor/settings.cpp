#include "app/velanor/settings.h"

namespace velanor::app {
namespace {

constexpr int kRecentFiles = 8;

// Where the toolkit keeps the settings of a program that names no organisation.
QStringList formerly_recent() {
  return QSettings("Unknown Organization", "velanor").value("recent").toStringList();
}

}  // namespace

Settings::Settings() {
  if (settings_.contains("recent")) return;
  const QStringList former = formerly_recent();
  if (former.isEmpty()) return;
  settings_.setValue("recent", former);
  set_last(former.first());
}

void Settings::remember(const QString& path) {
  QStringList files = recent();
  files.removeAll(path);
  files.prepend(path);
  settings_.setValue("recent", files.mid(0, kRecentFiles));
  set_last(path);
}

}  // namespace velanor::app
