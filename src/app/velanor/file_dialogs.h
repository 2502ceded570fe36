// Dialogs that ask for a file, in French throughout. They belong to the window, and go when they are closed.
#pragma once

#include <QString>

class QFileDialog;
class QWidget;

namespace velanor::app {

// For a file that is there.
QFileDialog* open_dialog(QWidget& window, const QString& title, const QString& folder, const QString& kinds);
// For one to be written; `proposed`: its path. Where a file stands the toolkit asks whether it is replaced.
QFileDialog* save_dialog(QWidget& window, const QString& title, const QString& proposed, const QString& kinds,
                         const QString& suffix);
QFileDialog* folder_dialog(QWidget& window, const QString& title, const QString& folder);

}  // namespace velanor::app
