#include "app/velanor/shortcuts_dialog.h"

#include <QAction>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/velanor/plain_table.h"
#include "qt/strings.h"
#include "text/fold.h"

namespace velanor::app {
namespace {

struct Keys {
  QString keys, does, where;
};

// What no menu tells.
const Keys kOwnKeys[] = {
    {"Tab, Maj+Tab", "Champ suivant, précédent", "Fiche"},
    {"Alt+lettre soulignée", "Le champ ou le bouton de cette lettre", "Fiche"},
    {"Ctrl+Page suivante, Ctrl+Page précédente", "Page suivante, précédente de la fiche", "Fiche"},
    {"F4", "Ouvre la liste d'un champ à choix", "Fiche"},
    {"Entrée", "Le bouton où est le curseur ; la réponse proposée d'une question", "Fiche"},
    {"Échap", "Annule la saisie en cours, ou répond non", "Fiche"},
    {"Ctrl+Z", "Rend ce qui vient d'être remplacé dans le champ", "Fiche"},
    {"Ctrl+X, Ctrl+C, Ctrl+V, Ctrl+A", "Coupe, copie, colle, choisit tout le texte", "Champs"},
    {"Ctrl+Maj+C", "Copie le tableau de la page", "Fiche"},
    {"Entrée", "Ouvre la fiche choisie", "Tableau des employés"},
    {"Ctrl+C", "Copie les lignes choisies avec leurs titres", "Tableaux"},
    {"Échap", "Efface la recherche, puis revient à la fiche", "Tableau des employés"},
    {"Entrée", "Ouvre la fiche à l'endroit de la remarque", "Contrôles"},
    {"Ctrl+Suppr", "Met de côté un avertissement, ou l'y reprend", "Contrôles"},
    {"Maj+Échap", "Arrête le travail en cours", "Barre d'état"},
    {"Entrée, Suppr", "Ouvre la base, l'ôte de la liste", "Accueil"},
    {"Alt, puis une lettre", "Ouvre un menu par sa lettre", "Menus"},
};

QString title_of(const QString& text) { return qt::without_mnemonic(text.section('\t', 0, 0)); }

void collect(const QMenu& menu, const QString& where, QList<Keys>& found) {
  for (const QAction* action : menu.actions()) {
    if (action->menu()) {
      collect(*action->menu(), where + ", " + title_of(action->text()), found);
    } else if (!action->shortcut().isEmpty()) {
      found.append({action->shortcut().toString(QKeySequence::NativeText), title_of(action->text()), where});
    }
  }
}

QList<Keys> all_keys(const QWidget& window) {
  QList<Keys> found;
  const auto* host = qobject_cast<const QMainWindow*>(&window);
  for (const QAction* action : host ? host->menuWidget()->actions() : QList<QAction*>()) {
    if (action->menu()) collect(*action->menu(), "Menu " + title_of(action->text()), found);
  }
  for (const Keys& keys : kOwnKeys) found.append(keys);
  return found;
}

void fill(PlainTable& table, const QList<Keys>& all, const QString& typed) {
  const std::string wanted = text::folded(qt::from_qt(typed.trimmed()));
  table.setRowCount(0);
  for (const Keys& keys : all) {
    const QString line = keys.keys + "\n" + keys.does + "\n" + keys.where;
    if (text::folded(qt::from_qt(line)).find(wanted) == std::string::npos) continue;
    table.add({keys.keys, keys.does, keys.where});
  }
}

}  // namespace

void show_shortcuts(QWidget& window) {
  auto* dialog = new QDialog(&window);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setWindowTitle("Raccourcis clavier");
  auto* filter = new QLineEdit;
  filter->setObjectName("shortcuts_filter");
  filter->setAccessibleName("Chercher un raccourci");
  filter->setPlaceholderText("Chercher : une touche ou ce qu'elle fait");
  filter->setClearButtonEnabled(true);
  auto* table = new PlainTable({"Touches", "Ce qu'elles font", "Où"}, "Raccourcis");
  table->setObjectName("shortcuts");
  auto* close = new QPushButton("Fermer");
  close->setAutoDefault(false);
  auto* column = new QVBoxLayout(dialog);
  column->addWidget(filter);
  column->addWidget(table, 1);
  column->addWidget(close, 0, Qt::AlignRight);
  const QList<Keys> all = all_keys(window);
  fill(*table, all, {});
  table->fit();
  QObject::connect(filter, &QLineEdit::textChanged, table,
                   [table, all](const QString& typed) { fill(*table, all, typed); });
  QObject::connect(close, &QPushButton::clicked, dialog, &QDialog::close);
  dialog->resize(820, 560);
  dialog->open();
}

}  // namespace velanor::app
