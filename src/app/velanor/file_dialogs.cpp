#include "app/velanor/file_dialogs.h"

#include <QFileDialog>
#include <QFileIconProvider>
#include <QFileInfo>

namespace velanor::app {
namespace {

// The toolkit's translation leaves these out.
class FrenchKinds : public QFileIconProvider {
 public:
  QString type(const QFileInfo& file) const override {
    if (file.isDir()) return QStringLiteral("Dossier");
    return file.suffix() == QLatin1String("db") ? QStringLiteral("Base") : QStringLiteral("Fichier");
  }
};

QFileDialog* make(QWidget& window, const QString& title, const QString& place, const QString& kinds) {
  static FrenchKinds french_kinds;
  auto* dialog = new QFileDialog(&window, title, place, kinds);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setIconProvider(&french_kinds);
  dialog->resize(820, 480);
  return dialog;
}

}  // namespace

QFileDialog* open_dialog(QWidget& window, const QString& title, const QString& folder, const QString& kinds) {
  QFileDialog* dialog = make(window, title, folder, kinds);
  dialog->setFileMode(QFileDialog::ExistingFile);
  return dialog;
}

QFileDialog* save_dialog(QWidget& window, const QString& title, const QString& proposed, const QString& kinds,
                         const QString& suffix) {
  QFileDialog* dialog = make(window, title, QFileInfo(proposed).path(), kinds);
  dialog->selectFile(QFileInfo(proposed).fileName());
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setDefaultSuffix(suffix);
  return dialog;
}

QFileDialog* folder_dialog(QWidget& window, const QString& title, const QString& folder) {
  QFileDialog* dialog = make(window, title, folder, {});
  dialog->setFileMode(QFileDialog::Directory);
  dialog->setOption(QFileDialog::ShowDirsOnly);
  return dialog;
}

}  // namespace velanor::app
