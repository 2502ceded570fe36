// Many cards as one PDF file, beside the clerk's work.
#pragma once

#include <QObject>
#include <QTimer>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/velanor/paper/pdf.h"
#include "app/velanor/paper/sheets.h"
#include "office/card_reading.h"
#include "velanor/controle_velanor_widget.h"

namespace velanor::app {

// Some milliseconds at a time between the keys of the user, and nothing while the component waits for an
// answer. Each card is read once, as it is stored then. The file is written at the end; who destroys this
// before leaves nothing.
class CardBatch : public QObject {
  Q_OBJECT

 public:
  static constexpr std::size_t kMost = 2000;  // cards, whose pages are kept until the end
  struct Order {
    std::vector<std::string> ids;
    std::vector<QString> names;  // as the table shows them
    paper::EmployeeTable shown;
    paper::Source source;
    QString path;
  };

  // Both outlive it.
  CardBatch(qt::ControleVelanorWidget& component, store::Database& database, Order order, QObject* parent);
  void start() { go_on_.start(0); }

 signals:
  // From 0 to 1.
  void progressed(double part);
  // What was written, or what stood in the way, in a sentence; nothing is done afterwards.
  void ended(const QString& sentence);

 private:
  void go_on();
  bool step();
  void read(std::size_t card);
  void bind();
  double part() const;
  QString finish();

  qt::ControleVelanorWidget& component_;
  Order order_;
  std::unique_ptr<office::CardReading> reading_;
  store::Database& database_;
  QTimer go_on_;
  std::vector<paper::Listed> cards_;
  int unread_ = 0;
  std::vector<paper::Page> pages_;
  std::size_t drawn_ = 0;
  std::unique_ptr<paper::Pdf> pdf_;
};

}  // namespace velanor::app
