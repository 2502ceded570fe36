// What the window shows while no base is open: ways to one, and those opened lately.
#pragma once

#include <QStringList>
#include <QWidget>

class QCommandLinkButton;
class QFrame;
class QLabel;
class QListWidget;

namespace velanor::app {

// The keyboard is on the base opened last: the arrows and Enter open one, Suppr takes it off the list.
class StartPage : public QWidget {
  Q_OBJECT

 public:
  explicit StartPage(QWidget* parent = nullptr);

  // The latest first: paths, and URLs of servers. Files that are away are marked.
  void set_recent(const QStringList& bases);
  // Says what failed, until the next attempt; "" says nothing.
  void show_failure(const QString& sentence);
  QString failure() const;
  // To the base opened last, or to the first of the ways.
  void take_focus();

 signals:
  void open_asked(const QString& base);
  void file_asked();
  void new_base_asked();
  void example_asked();
  void server_asked();
  void forget_asked(const QString& base);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  QWidget* make_ways();
  QWidget* make_recent();
  QWidget* make_failure();
  void mark_missing();
  void open_chosen();
  void forget_chosen();

  QStringList bases_;
  QCommandLinkButton* first_way_ = nullptr;
  QListWidget* recent_;
  QLabel* recent_title_;
  QLabel* none_;
  QFrame* failed_;
  QLabel* failure_;
};

}  // namespace velanor::app
