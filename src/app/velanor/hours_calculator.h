// Between monthly hours and their part of a full time.
#pragma once

#include <QWidget>
#include <cstdint>
#include <optional>

class QLabel;
class QLineEdit;

namespace velanor::app {

// What is typed last is what counts: hours give the percentage, a percentage gives the hours. The full hours
// are those of the card unless others are typed. What is no figure is told, and gives nothing.
class HoursCalculator : public QWidget {
 public:
  explicit HoursCalculator(QWidget* parent = nullptr);
  // Of the establishment, in hundredths; nothing where no card says them.
  void set_full(std::optional<std::int64_t> hours);

 private:
  enum class From { kHours, kPercent };
  void calculate(From from);
  void calculate_from(QLineEdit& typed, QLineEdit& other);
  std::optional<std::int64_t> full(QString& wrong) const;

  From from_ = From::kHours;
  std::optional<std::int64_t> full_;
  QLineEdit* base_;
  QLineEdit* hours_;
  QLineEdit* percent_;
  QLabel* told_;
};

}  // namespace velanor::app
