#include "app/velanor/paper/printer.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPageSize>
#include <QPainter>
#include <QPrintPreviewWidget>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace velanor::app::paper {
namespace {

QPushButton* button(QHBoxLayout& row, const QString& text, const QString& hint = {}) {
  auto* made = new QPushButton(text);
  made->setAutoDefault(false);
  made->setToolTip(hint);
  row.addWidget(made);
  return made;
}

}  // namespace

void set_up(QPrinter& printer, const Document& document) {
  printer.setDocName(document.title);
  printer.setPageSize(QPageSize(QPageSize::A4));
  printer.setPageOrientation(document.paper.width() > document.paper.height() ? QPageLayout::Landscape
                                                                              : QPageLayout::Portrait);
  printer.setFullPage(true);
}

bool print(QPrinter& printer, const Document& document) {
  const QSizeF paper = printer.pageLayout().fullRect(QPageLayout::Point).size() * kPoint;
  const std::vector<Page> pages = document.pages(paper);
  const bool some = printer.printRange() == QPrinter::PageRange && printer.fromPage() > 0;
  const std::size_t first = some ? static_cast<std::size_t>(printer.fromPage()) - 1 : 0;
  const std::size_t last =
      some ? std::min(static_cast<std::size_t>(printer.toPage()), pages.size()) : pages.size();
  QPainter painter;
  if (first >= last || !painter.begin(&printer)) return false;
  const double scale = static_cast<double>(printer.resolution()) / kPerInch;
  painter.scale(scale, scale);
  for (std::size_t p = first; p < last; ++p) {
    if (p > first && !printer.newPage()) return false;
    pages[p].draw(painter);
  }
  return painter.end();
}

Preview::Preview(Document document, QWidget* parent)
    : QDialog(parent),
      document_(std::move(document)),
      pages_(new QPrintPreviewWidget(&printer_)),
      number_(new QLabel) {
  setWindowTitle("Aperçu – " + document_.title);
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowModality(Qt::WindowModal);
  set_up(printer_, document_);
  number_->setObjectName("preview_number");
  pages_->setAccessibleName("Aperçu des pages");
  connect(pages_, &QPrintPreviewWidget::paintRequested, this,
          [this](QPrinter* printer) { print(*printer, document_); });
  connect(pages_, &QPrintPreviewWidget::previewChanged, this, &Preview::show_number);
  auto* column = new QVBoxLayout(this);
  add_buttons();
  column->addWidget(pages_, 1);
  pages_->fitInView();
  pages_->updatePreview();
  constexpr int kWidth = 800, kHeight = 640;
  resize(kWidth, kHeight);
}

void Preview::add_buttons() {
  auto* row = new QHBoxLayout;
  static_cast<QVBoxLayout*>(layout())->addLayout(row);
  connect(button(*row, "Page p&récédente"), &QPushButton::clicked, this, [this] { turn(-1); });
  connect(button(*row, "Page &suivante"), &QPushButton::clicked, this, [this] { turn(1); });
  row->addWidget(number_);
  row->addStretch(1);
  connect(button(*row, "&Largeur", "La page aussi large que la fenêtre"), &QPushButton::clicked, pages_,
          &QPrintPreviewWidget::fitToWidth);
  connect(button(*row, "Page &entière"), &QPushButton::clicked, pages_, &QPrintPreviewWidget::fitInView);
  row->addStretch(1);
  connect(button(*row, "&Imprimer…"), &QPushButton::clicked, this, [this] {
    accept();
    emit print_asked();
  });
  connect(button(*row, "&PDF…"), &QPushButton::clicked, this, [this] {
    accept();
    emit pdf_asked();
  });
  connect(button(*row, "&Fermer"), &QPushButton::clicked, this, &QDialog::reject);
}

void Preview::turn(int by) { pages_->setCurrentPage(pages_->currentPage() + by); }

void Preview::show_number() {
  number_->setText(QString("Page %1 sur %2").arg(pages_->currentPage()).arg(pages_->pageCount()));
}

}  // namespace velanor::app::paper
