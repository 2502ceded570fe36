#include "app/velanor/backups_dialog.h"

#include <QApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QScopeGuard>
#include <QVBoxLayout>

#include "app/velanor/plain_table.h"
#include "app/velanor/taking_row.h"
#include "qt/strings.h"
#include "text/failure.h"

namespace velanor::app {
namespace {

using qt::from_qt, qt::to_qt;

QString moment(const store::sqlite::Backup& backup) {
  const std::tm& made = backup.made;
  return QDateTime({made.tm_year + 1900, made.tm_mon + 1, made.tm_mday},
                   {made.tm_hour, made.tm_min, made.tm_sec})
      .toString("dd/MM/yyyy HH:mm:ss");
}

QString size_of(const store::sqlite::Backup& backup) {
  return QLocale(QLocale::French)
      .formattedDataSize(static_cast<qint64>(backup.size), 1, QLocale::DataSizeTraditionalFormat);
}

}  // namespace

BackupsDialog::BackupsDialog(const QString& base, QWidget* parent)
    : QDialog(parent),
      base_(base),
      backups_(store::sqlite::Backups::beside(from_qt(base)).newest_first()),
      list_(new PlainTable({"Faite le", "Taille", "Fichier"}, "Sauvegardes")),
      take_(new QPushButton("&Reprendre cette sauvegarde")) {
  setWindowTitle("Sauvegardes – " + QFileInfo(base).fileName());
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowModality(Qt::WindowModal);
  auto* remark = new QLabel(
      backups_.empty()
          ? "Il n'y a pas encore de sauvegarde : la première se fait à l'ouverture de la base."
          : "Une sauvegarde se fait à la première ouverture de chaque jour ; trente sont gardées.");
  auto* column = new QVBoxLayout(this);
  column->addWidget(list_);
  column->addLayout(taking_row(*this, *remark, *take_));
  for (const auto& backup : backups_)
    list_->add({moment(backup), size_of(backup), QFileInfo(to_qt(backup.path)).fileName()});
  list_->fit();
  connect(list_, &QTableWidget::itemSelectionChanged, this, [this] { take_->setEnabled(chosen()); });
  connect(take_, &QPushButton::clicked, this, &BackupsDialog::take);
  take_->setEnabled(false);
  list_->choose(0);
  resize(760, 380);
  list_->setFocus();
}

const store::sqlite::Backup* BackupsDialog::chosen() const {
  const int line = list_->chosen();
  return line < 0 ? nullptr : &backups_[static_cast<std::size_t>(line)];
}

void BackupsDialog::take() try {
  const store::sqlite::Backup* backup = chosen();
  if (!backup) return;
  const QString when = moment(*backup);
  {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const auto restore = qScopeGuard([] { QGuiApplication::restoreOverrideCursor(); });
    store::sqlite::verify_backup(backup->path);
  }
  QMessageBox question(QMessageBox::Question, windowTitle(),
                       "Reprendre la sauvegarde du " + when +
                           " ?\n\nElle a été vérifiée. Ce qui a été enregistré depuis n'y est pas ; la base "
                           "actuelle est gardée à côté, sous un autre nom.",
                       QMessageBox::Yes | QMessageBox::No, this);
  question.setDefaultButton(QMessageBox::No);
  if (question.exec() != QMessageBox::Yes) return;
  emit taken(to_qt(backup->path), when);
  accept();
} catch (const std::exception& error) {
  QMessageBox::critical(this, windowTitle(), to_qt(text::failure_sentence(error)));
}

}  // namespace velanor::app
