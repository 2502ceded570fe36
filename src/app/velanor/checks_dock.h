// What is wrong with the cards of the entity and year on the screen, and what had better be looked at.
#pragma once

#include <QDockWidget>
#include <QPointer>
#include <QTimer>
#include <memory>
#include <vector>

#include "app/velanor/shown_year.h"
#include "office/checking.h"

class QCheckBox;
class QLabel;
class QPushButton;

namespace velanor::app {

class PlainTable;

// Looks at the stored cards a few at a time between the keys of the user, and anew when one is saved, copied
// or deleted here. It acts on nothing while the component waits for an answer.
class ChecksDock : public QDockWidget {
  Q_OBJECT

 public:
  // Both outlive it.
  ChecksDock(qt::ControleVelanorWidget& component, store::Database& database, QWidget* parent);

  // Shows itself, looks at all cards anew and takes the keyboard.
  void check();

 Q_SIGNALS:
  // What happened, or what stands in the way, in a sentence.
  void told(const QString& sentence);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void lay_out();
  bool is_free();
  void show_at_first();
  void renew();
  void renew_if_shown();
  void look_on();
  void stop();
  void finish();
  void fail(const QString& sentence);
  void show_findings();
  void show_choice();
  office::Finding* chosen();
  void open_chosen();
  void lead_to(const card::Fault& fault);
  void change_aside();

  qt::ControleVelanorWidget& component_;
  store::Database& database_;
  std::unique_ptr<office::Checking> checking_;  // while it goes on
  QTimer go_on_;
  ShownYear year_;  // that was looked at
  QString heading_of_all_;
  std::vector<office::Finding> findings_;
  std::vector<std::size_t> lines_;  // of the table: which finding
  int damaged_ = 0;
  bool placed_ = false;
  QPointer<QWidget> came_from_;
  QLabel* heading_;
  PlainTable* table_;
  QPushButton* aside_;
  QPushButton* stop_;
  QCheckBox* with_asides_;
};

}  // namespace velanor::app
