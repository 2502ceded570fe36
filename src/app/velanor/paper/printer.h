// Pages on a printer, and on the screen before they go there.
#pragma once

#include <QDialog>
#include <QPrinter>
#include <functional>
#include <vector>

#include "app/velanor/paper/page.h"

class QLabel;
class QPrintPreviewWidget;

namespace velanor::app::paper {

// Something to be put on paper of any size.
struct Document {
  QString title;
  QSizeF paper;  // that suits it
  std::function<std::vector<Page>(const QSizeF& paper)> pages;
};

void set_up(QPrinter& printer, const Document& document);
// The pages that are chosen, or all. False where the printer takes none.
bool print(QPrinter& printer, const Document& document);

class Preview : public QDialog {
  Q_OBJECT

 public:
  // Shows the document as it is now.
  Preview(Document document, QWidget* parent);

 signals:
  void print_asked();
  void pdf_asked();

 private:
  void add_buttons();
  void turn(int by);
  void show_number();

  Document document_;
  QPrinter printer_{QPrinter::HighResolution};
  QPrintPreviewWidget* pages_;
  QLabel* number_;
};

}  // namespace velanor::app::paper
