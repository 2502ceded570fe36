#include "app/velanor/taking_row.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include "text/failure.h"
#include "velanor/database.h"

namespace velanor::app {
namespace {

void try_and_tell(QDialog& dialog, const std::function<void()>& what) try {
  what();
} catch (const std::exception& error) {
  QMessageBox::critical(&dialog, dialog.windowTitle(), QString::fromStdString(text::failure_sentence(error)));
}

}  // namespace

QLayout* taking_row(QDialog& dialog, QLabel& remark, QPushButton& take) {
  auto* close = new QPushButton("&Fermer");
  close->setDefault(true);
  take.setAutoDefault(false);
  remark.setWordWrap(true);
  QObject::connect(close, &QPushButton::clicked, &dialog, &QDialog::reject);
  auto* row = new QHBoxLayout;
  row->addWidget(&remark, 1);
  row->addWidget(&take);
  row->addWidget(close);
  return row;
}

void take_back(QDialog& dialog, const std::function<void()>& take, const QString& overtaken,
               const std::function<void()>& reread) {
  bool late = false;
  try_and_tell(dialog, [&] {
    try {
      take();
    } catch (const store::DbError& error) {
      if (error.number() != store::kConflict) throw;
      late = true;
    }
  });
  if (!late) return;
  QMessageBox::information(&dialog, dialog.windowTitle(), overtaken);
  try_and_tell(dialog, reread);
}

}  // namespace velanor::app
