// The open card, the table of the employees and the cards that it shows, on paper or as PDF files.
#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <optional>

#include "app/velanor/paper/printer.h"
#include "app/velanor/paper/sheets.h"
#include "office/card_reading.h"
#include "velanor/controle_velanor_widget.h"

class QAction;
class QMenu;

namespace velanor::app {

class CardBatch;
class EmployeesDock;
class WorkBar;

// The card is taken as it is entered when the command is given, and says where it is not saved. Nothing is
// done while the component waits for an answer.
class Printing : public QObject {
  Q_OBJECT

 public:
  // Asks and shows on the component's window; all of them outlive it.
  Printing(qt::ControleVelanorWidget& component, store::Database& database, EmployeesDock& employees,
           QObject* parent);
  void add_to(QMenu& menu);
  // What pages name as their source.
  void set_base(const QString& name) { base_ = name; }
  // Shows there how far many cards are, with the way to give them up.
  void set_work_bar(WorkBar& bar) { work_bar_ = &bar; }

 signals:
  // What happened, or what stands in the way, in a sentence.
  void told(const QString& sentence);

 private:
  enum class Way { kPrint, kPreview, kPdf };
  QAction* add(const QString& text, const QString& hint, const std::function<void()>& act);
  void update();
  bool is_free();

  void put_card(Way way);
  void put_table(Way way);
  void put(Way way, const paper::Document& document);
  void ask_printer(const paper::Document& document);
  void show_preview(const paper::Document& document);
  void ask_file(const QString& title, const std::function<void(const QString& path)>& then);
  void write(const paper::Document& document, const QString& path);

  void put_cards();
  void begin_batch(const QString& path);
  void show_part(double part);
  void end_batch(const QString& sentence);

  paper::Source source() const;
  std::optional<office::CardSheet> card_now();
  paper::EmployeeTable table_now();
  office::CardReading& reading();
  void fail(const std::exception& error);

  qt::ControleVelanorWidget& component_;
  store::Database& database_;
  EmployeesDock& employees_;
  std::unique_ptr<office::CardReading> reading_;
  QString base_, folder_;
  QList<QAction*> of_card_, of_table_;
  QAction* cards_ = nullptr;
  WorkBar* work_bar_ = nullptr;
  CardBatch* batch_ = nullptr;
};

}  // namespace velanor::app
