#include "app/velanor/table_dialogs.h"

#include <QMenu>

#include "app/velanor/busy.h"
#include "app/velanor/consult_dialog.h"
#include "app/velanor/import_dialog.h"
#include "app/velanor/main_window.h"
#include "app/velanor/table_export_dialog.h"
#include "app/velanor/workplace.h"

namespace velanor::app {

TableDialogs::TableDialogs(MainWindow& window, Workplace& place, QObject* parent)
    : QObject(parent), window_(window), place_(place) {}

void TableDialogs::add_to(QMenu& menu) {
  const auto add = [&](const QString& text, void (TableDialogs::*slot)()) {
    QAction* action = menu.addAction(text);
    connect(action, &QAction::triggered, this, slot);
    return action;
  };
  add("&Consulter une table…", &TableDialogs::consult)->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_T));
  menu.addSeparator();
  QAction* import = add("&Importer une table…", &TableDialogs::import);
  import->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T));
  if (place_.database.read_only()) {
    import->setEnabled(false);
    import->setToolTip("Cette base est protégée en écriture");
  }
  add("&Exporter une table…", &TableDialogs::export_table)->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_M));
}

void TableDialogs::consult() {
  if (is_busy(*place_.component)) return emit told(kFinishFirst);
  (new ConsultDialog({place_.connection, place_.database}, place_.database, &window_))->open();
}

// What is imported may be what the card on the screen was filled from.
void TableDialogs::import() {
  if (is_busy(*place_.component)) return emit told(kFinishFirst);
  if (place_.component->state() != control::State::kNone)
    return emit told(
        "Enregistrez ou annulez d'abord la fiche ouverte : une table ne s'importe pas sous elle.");
  auto* dialog = new ImportDialog({place_.connection, place_.database}, place_.database, &window_);
  connect(dialog, &ImportDialog::imported, &window_, &MainWindow::reopen_asked);
  dialog->open();
}

void TableDialogs::export_table() {
  if (is_busy(*place_.component)) return emit told(kFinishFirst);
  (new TableExportDialog({place_.connection, place_.database}, place_.database, &window_))->open();
}

}  // namespace velanor::app
