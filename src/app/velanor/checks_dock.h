// What is wrong with the cards of the entity and year on the screen, and what had better be looked at.
#pragma once

#include <QDockWidget>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <memory>
#include <vector>

#include "app/velanor/shown_year.h"
#include "office/checking.h"

class QCheckBox;
class QLabel;
class QPushButton;
class QSpinBox;

namespace velanor::app {

class CardNews;
class PlainTable;

// Looks at the stored cards a few at a time between the keys of the user, and follows what is on the screen
// and what is written, here and by others. It acts on nothing while the component waits for an answer.
class ChecksDock : public QDockWidget {
  Q_OBJECT

 public:
  // Both outlive it.
  ChecksDock(qt::ControleVelanorWidget& component, store::Database& database, QWidget* parent);

  // Shows itself, looks at all cards anew and takes the keyboard.
  void check();
  // Within how many days a contract ends soon; from 1 to 366, others are brought there.
  int days_ahead() const;
  void set_days_ahead(int days);

 Q_SIGNALS:
  // What happened, or what stands in the way, in a sentence.
  void told(const QString& sentence);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void lay_out();
  QLayout* make_head();
  void follow_component();
  void follow_others();
  bool is_free();
  void show_at_first();
  void renew();
  void follow();
  void renew_all();
  void renew_if_stale();
  void renew_card(const QString& id);
  bool is_at_work() const { return checking_ && !checking_->done(); }
  void look_on();
  void look_at_written();
  void look_at_more();
  void stop();
  void empty(const QString& why);
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
  std::unique_ptr<office::Checking> checking_;  // of the year below; none where it was given up
  QTimer go_on_, follow_;
  ShownYear year_;
  QStringList written_;       // cards that are yet to be looked at again
  bool all_anew_ = true;      // anything may have been written since
  CardNews* news_ = nullptr;  // from the first check on
  QString heading_of_all_;
  std::vector<office::Finding> findings_;
  std::vector<std::size_t> lines_;  // of the table: which finding
  bool placed_ = false;
  QPointer<QWidget> came_from_;
  QLabel* heading_;
  QSpinBox* days_;
  PlainTable* table_;
  QPushButton* aside_;
  QPushButton* stop_;
  QCheckBox* with_asides_;
};

}  // namespace velanor::app
