#include "app/velanor/deleted_cards_dialog.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/velanor/plain_table.h"
#include "app/velanor/taking_row.h"
#include "exchange/columns.h"
#include "office/versions.h"
#include "qt/strings.h"

namespace velanor::app {

using qt::to_qt;

DeletedCardsDialog::DeletedCardsDialog(store::Database& database, const std::string& entity,
                                       const std::string& year, const QString& locked, QWidget* parent)
    : QDialog(parent),
      database_(database),
      entity_(entity),
      year_(year),
      locked_(locked),
      list_(new PlainTable({"Code", "Nom", "Supprimée le", "Par"}, "Fiches supprimées")),
      remark_(new QLabel),
      take_(new QPushButton("&Rétablir la fiche")) {
  setWindowTitle("Fiches supprimées – entité " + to_qt(entity) + ", année " + to_qt(year));
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowModality(Qt::WindowModal);
  auto* column = new QVBoxLayout(this);
  column->addWidget(list_);
  column->addLayout(taking_row(*this, *remark_, *take_));
  connect(list_, &QTableWidget::itemSelectionChanged, this, &DeletedCardsDialog::update_button);
  connect(take_, &QPushButton::clicked, this, &DeletedCardsDialog::bring_back);
  read();
  resize(680, 380);
  list_->setFocus();
}

void DeletedCardsDialog::read() {
  cards_ = office::deleted_cards(database_, entity_, year_);
  list_->setRowCount(0);
  for (const office::DeletedCard& card : cards_) {
    list_->add({to_qt(card.employee), card.content ? to_qt(card.name) : QStringLiteral("(oublié)"),
                to_qt(office::moment_of(card.versions.back())),
                to_qt(office::author_of(card.versions.back()))});
  }
  list_->fit();
  list_->choose(0);
  update_button();
}

const office::DeletedCard* DeletedCardsDialog::chosen() const {
  const int line = list_->chosen();
  const office::DeletedCard* card = line < 0 ? nullptr : &cards_[static_cast<std::size_t>(line)];
  return card && card->content ? card : nullptr;
}

void DeletedCardsDialog::update_button() {
  take_->setEnabled(chosen() && locked_.isEmpty());
  remark_->setText(cards_.empty() ? "Aucune fiche n'a été supprimée pour cette entité et cette année."
                                  : locked_);
}

void DeletedCardsDialog::bring_back() {
  const auto take = [this] {
    const office::DeletedCard* card = chosen();
    if (!card) return;
    office::bring_back(database_, exchange::kCardFile, card->id, card->versions,
                       card->versions[*card->content]);
    emit brought_back(to_qt(entity_), to_qt(year_), to_qt(card->employee), to_qt(card->name));
    accept();
  };
  take_back(*this, take,
            "Ce code vient d'être repris par quelqu'un d'autre : rien n'a été rétabli. La liste est relue.",
            [this] { read(); });
}

}  // namespace velanor::app
