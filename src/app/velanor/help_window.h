// The guide in a window of its own.
#pragma once

#include <QWidget>

class QTextBrowser;

namespace velanor::app {

class HelpWindow : public QWidget {
 public:
  explicit HelpWindow(QWidget* owner);
  // A page of the guide by its file name.
  void show_page(const QString& page, const QString& title);

 private:
  QTextBrowser* browser_;
};

}  // namespace velanor::app
