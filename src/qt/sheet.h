// A dialog drawn as a sheet: laid over the component, inside the same native window.
#pragma once

#include <QFrame>
#include <QWidget>

class QVBoxLayout;

namespace velanor::qt {

// A new native window gets the focus late, and what is typed meanwhile is lost; a sheet has it at once.
// It covers its parent, dims it and takes the mouse for itself. Assistive tools see a dialog.
class Sheet : public QWidget {
  Q_OBJECT

 public:
  // What stands behind the title says which one of its kind it is.
  Sheet(const QString& title, QWidget& over, const QString& subtitle = {});

  // The contents stand below the title.
  void set_contents(QWidget* contents);
  // The button that closes the sheet.
  QWidget& close_box() const { return *close_; }

 signals:
  void close_asked();

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void place();

  QFrame* panel_;
  QWidget* close_;
  QVBoxLayout* column_;
};

}  // namespace velanor::qt
