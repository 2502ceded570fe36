#include "app/velanor/daily_backup.h"

#include <exception>

#include "store/sqlite/backups.h"

namespace velanor::app {
namespace {

struct GivenUp : std::exception {};

}  // namespace

DailyBackup::DailyBackup(const QString& base) : base_(base.toStdString()) {}

DailyBackup::~DailyBackup() {
  ends_ = true;
  if (thread_.joinable()) thread_.join();
}

void DailyBackup::start() { thread_ = std::thread(&DailyBackup::work, this); }

void DailyBackup::work() try {
  store::SqliteDatabase database(base_);
  store::sqlite::Backups::beside(base_).make_daily(database, [this](double) {
    if (ends_) throw GivenUp();
  });
} catch (const GivenUp&) {
} catch (const std::exception& error) {
  emit failed(QStringLiteral("La sauvegarde du jour n'a pas été faite. ") + QString::fromUtf8(error.what()));
}

}  // namespace velanor::app
