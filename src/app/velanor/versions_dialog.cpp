#include "app/velanor/versions_dialog.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "app/velanor/plain_table.h"
#include "app/velanor/taking_row.h"
#include "exchange/columns.h"
#include "office/record_changes.h"
#include "office/versions.h"
#include "qt/strings.h"
#include "text/utf8.h"

namespace velanor::app {
namespace {

using qt::to_qt;
using store::Version;

QString capitalised(const QString& word) { return word.left(1).toUpper() + word.mid(1); }

QLabel* heading(const QString& text, QWidget* of) {
  auto* label = new QLabel(text);
  label->setBuddy(of);
  return label;
}

}  // namespace

VersionsDialog::VersionsDialog(store::Database& database, std::string id, const QString& title,
                               const QString& locked, QWidget* parent)
    : QDialog(parent),
      database_(database),
      id_(std::move(id)),
      locked_(locked),
      list_(new PlainTable({"N°", "Date", "Par", "Nature"}, "Versions de la fiche")),
      changes_(new PlainTable({"Champ", "Avant", "Après"}, "Ce que cette version a changé")),
      remark_(new QLabel),
      take_(new QPushButton("&Reprendre cette version")) {
  setWindowTitle("Historique – " + title);
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowModality(Qt::WindowModal);
  auto* column = new QVBoxLayout(this);
  column->addWidget(heading("&Versions, la plus récente d'abord", list_));
  column->addWidget(list_, 2);
  column->addWidget(heading("&Ce que cette version a changé", changes_));
  column->addWidget(changes_, 3);
  column->addLayout(taking_row(*this, *remark_, *take_));
  connect(list_, &QTableWidget::itemSelectionChanged, this, &VersionsDialog::show_changes);
  connect(take_, &QPushButton::clicked, this, &VersionsDialog::bring_back);
  read();
  resize(860, 560);
  list_->setFocus();
}

void VersionsDialog::read() {
  versions_ = office::versions_of(database_, exchange::kCardFile, id_);
  list_->setRowCount(0);
  for (std::size_t i = versions_.size(); i-- > 0;) {
    const Version& version = versions_[i];
    list_->add({QString::number(version.number), to_qt(office::moment_of(version)),
                to_qt(office::author_of(version)), capitalised(to_qt(office::kind_of(versions_, i)))});
  }
  list_->fit();
  list_->choose(0);
  show_changes();
}

std::size_t VersionsDialog::chosen_index() const {
  return versions_.size() - 1 - static_cast<std::size_t>(list_->chosen());
}

const Version* VersionsDialog::chosen() const {
  return list_->chosen() < 0 ? nullptr : &versions_[chosen_index()];
}

void VersionsDialog::show_changes() {
  changes_->setRowCount(0);
  const Version* version = chosen();
  take_->setEnabled(locked_.isEmpty() && version && version->record && version != &versions_.back());
  remark_->setText(version == &versions_.back() ? "C'est la version actuelle." : locked_);
  if (!version || !version->record) return;
  const Version* before = chosen_index() > 0 ? &versions_[chosen_index() - 1] : nullptr;
  const store::DbRecord was = before && before->record ? *before->record : store::DbRecord();
  for (const office::Change& change : office::changes_between(exchange::kCardFile, was, *version->record))
    changes_->add({to_qt(change.name), to_qt(change.before), to_qt(change.after)});
  changes_->fit();
}

void VersionsDialog::bring_back() {
  const auto take = [this] {
    const Version* version = chosen();
    if (!version) return;
    office::bring_back(database_, exchange::kCardFile, id_, versions_, *version);
    emit brought_back(to_qt(office::moment_of(*version)));
    accept();
  };
  take_back(
      *this, take,
      "Cette fiche vient d'être enregistrée par quelqu'un d'autre : rien n'a été repris. Son historique est "
      "relu, choisissez à nouveau.",
      [this] { read(); });
}

}  // namespace velanor::app
