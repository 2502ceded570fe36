#include "app/velanor/help_window.h"

#include <QShortcut>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace velanor::app {

HelpWindow::HelpWindow(QWidget* owner) : QWidget(owner, Qt::Window), browser_(new QTextBrowser(this)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(browser_);
  browser_->setOpenExternalLinks(true);
  browser_->document()->setDocumentMargin(16);
  connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
  resize(900, 640);
}

void HelpWindow::show_page(const QString& page, const QString& title) {
  setWindowTitle(title);
  browser_->setSource(QUrl("qrc:/guide/" + page));
  show();
  raise();
  activateWindow();
}

}  // namespace velanor::app
