#include "app/velanor/hours_calculator.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>

#include "entry/decimal.h"
#include "office/hours.h"
#include "qt/strings.h"

namespace velanor::app {
namespace {

constexpr std::int64_t kMost = 10'000'000;  // hundredths: nobody works more, and products of it hold

QString shown(std::int64_t hundredths) {
  return QString::fromStdString(entry::format_decimal(hundredths, 2, 2));
}

// Above nothing: what is 0 is asked for as such.
std::optional<std::int64_t> figure(const QLineEdit& box, QString& wrong) {
  const auto typed = entry::parse_decimal(qt::from_qt(box.text()), 2);
  if (typed && *typed >= 0 && *typed <= kMost) return typed;
  wrong = "« " + box.text() + " » n'est pas " +
          (typed ? "possible : de 0 à " + shown(kMost) + "." : QString("un nombre."));
  return std::nullopt;
}

QLineEdit* box(QGridLayout& grid, const QString& title, const char* name, const QString& hint) {
  const int row = grid.rowCount();
  auto* edit = new QLineEdit;
  edit->setObjectName(name);
  edit->setAccessibleName(hint);
  edit->setToolTip(hint);
  edit->setAlignment(Qt::AlignRight);
  auto* label = new QLabel(title);
  label->setBuddy(edit);
  grid.addWidget(label, row, 0);
  grid.addWidget(edit, row, 1);
  return edit;
}

}  // namespace

HoursCalculator::HoursCalculator(QWidget* parent) : QWidget(parent), told_(new QLabel) {
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setVerticalSpacing(1);
  base_ = box(*grid, "Plein temps", "calculator_full",
              "Heures mensuelles d'un plein temps ; vide : celles de l'établissement de la fiche");
  hours_ = box(*grid, "Heures", "calculator_hours", "Heures mensuelles, pour en calculer le pourcentage");
  percent_ = box(*grid, "%", "calculator_percent",
                 "Pourcentage du plein temps, pour en calculer les heures mensuelles");
  told_->setObjectName("calculator_told");
  told_->setTextFormat(Qt::PlainText);
  told_->setWordWrap(true);
  told_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  told_->setMinimumHeight(2 * fontMetrics().height());
  grid->addWidget(told_, grid->rowCount(), 0, 1, 2);
  grid->setRowStretch(grid->rowCount(), 1);
  setFixedWidth(fontMetrics().horizontalAdvance("Plein temps 0000000000"));
  connect(hours_, &QLineEdit::textEdited, this, [this] { calculate(From::kHours); });
  connect(percent_, &QLineEdit::textEdited, this, [this] { calculate(From::kPercent); });
  connect(base_, &QLineEdit::textEdited, this, [this] { calculate(from_); });
}

void HoursCalculator::set_full(std::optional<std::int64_t> hours) {
  if (hours == full_) return;
  full_ = hours;
  base_->setPlaceholderText(hours ? shown(*hours) : QString());
  base_->setAccessibleDescription(hours ? "De la fiche : " + shown(*hours) : QString());
  calculate(from_);
}

std::optional<std::int64_t> HoursCalculator::full(QString& wrong) const {
  const bool own = !base_->text().trimmed().isEmpty();
  const auto full = own ? figure(*base_, wrong) : full_;
  if (wrong.isEmpty() && (!full || *full <= 0)) wrong = "Tapez les heures d'un plein temps.";
  return wrong.isEmpty() ? full : std::nullopt;
}

void HoursCalculator::calculate(From from) {
  from_ = from;
  from == From::kHours ? calculate_from(*hours_, *percent_) : calculate_from(*percent_, *hours_);
}

void HoursCalculator::calculate_from(QLineEdit& typed, QLineEdit& other) {
  other.clear();
  QString wrong;
  if (typed.text().trimmed().isEmpty()) return told_->clear();
  const auto value = figure(typed, wrong);
  const auto whole = value ? full(wrong) : std::nullopt;
  if (!whole) return told_->setText(wrong);
  const bool hours = from_ == From::kHours;
  other.setText(shown(hours ? office::percent_of(*value, *whole) : office::hours_of(*value, *whole)));
  const auto part =
      hours ? office::full_time(*value, *whole) : office::full_time(office::hours_of(*value, *whole), *whole);
  told_->setText(part ? "ETP " + shown(*part) : QString());
}

}  // namespace velanor::app
