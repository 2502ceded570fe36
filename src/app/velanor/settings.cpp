#include "app/velanor/settings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace velanor::app {
namespace {

constexpr int kRecentFiles = 8;

// Where the toolkit keeps the settings of a program that names no organisation.
QStringList formerly_recent() {
  return QSettings("Unknown Organization", "velanor").value("recent").toStringList();
}

// Made before the toolkit writes into it, which then leaves its rights as they are.
void make_private(const QString& path) {
  constexpr auto kOwner = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
  QDir().mkpath(QFileInfo(path).absolutePath());
  QFile file(path);
  if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly, kOwner)) return file.close();
  file.setPermissions(kOwner);
}

}  // namespace

Settings::Settings() {
  make_private(settings_.fileName());
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

void Settings::forget(const QString& path) {
  QStringList files = recent();
  files.removeAll(path);
  settings_.setValue("recent", files);
  if (last() == path) set_last({});
}

}  // namespace velanor::app
