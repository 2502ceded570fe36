#include "app/velanor/taking_row.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace velanor::app {

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

}  // namespace velanor::app
