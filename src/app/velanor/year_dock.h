// The budget year of the open card under it, as it is typed.
#pragma once

#include <QDockWidget>
#include <QPointer>
#include <QTimer>
#include <memory>

#include "office/card_reading.h"
#include "velanor/controle_velanor_widget.h"

class QAction;
class QLabel;

namespace velanor::app {

class HoursCalculator;
class YearTable;

// Follows the acts of the user, not each while they come but when they are over. Reads nothing while it is
// hidden.
class YearDock : public QDockWidget {
  Q_OBJECT

 public:
  // Both outlive it.
  YearDock(qt::ControleVelanorWidget& component, store::Database& database, QWidget* parent);

  // Shows itself and takes the keyboard; where it has it, hides and gives it back.
  QAction* action() const { return action_; }
  // Whether the window holds it under the whole component.
  bool has_room() const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void lay_out();
  void fit();
  void toggle();
  void go_back();
  void renew();
  void show_card(const store::DbRecord& card);
  void show_none();

  qt::ControleVelanorWidget& component_;
  store::Database& database_;
  std::unique_ptr<office::CardReading> reading_;  // as soon as something is read
  QTimer soon_;
  QPointer<QWidget> came_from_;
  QAction* action_;
  QLabel* none_;
  YearTable* table_;
  HoursCalculator* calculator_;
};

}  // namespace velanor::app
