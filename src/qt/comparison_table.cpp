#include "qt/comparison_table.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <algorithm>

#include "qt/strings.h"

namespace velanor::qt {
namespace {

using screen::Answer;

enum Column { kName, kBefore, kTheirs, kMine, kColumns };
constexpr int kRowsShown = 8;
constexpr int kWidths[kColumns] = {260, 150, 190, 190};

Column column_of(Answer answer) { return answer == Answer::Mine ? kMine : kTheirs; }

}  // namespace

ComparisonTable::ComparisonTable(const std::vector<screen::Comparison::Line>& lines)
    : QTableWidget(static_cast<int>(lines.size()), kColumns), lines_(lines), answers_(lines.size()) {
  setHorizontalHeaderLabels({QStringLiteral("Champ"), QStringLiteral("Avant"),
                             QStringLiteral("Sur l'autre poste  (←)"), QStringLiteral("Ici  (→)")});
  setAccessibleName(QStringLiteral("Modifications faites sur les deux postes"));
  verticalHeader()->hide();
  setEditTriggers(NoEditTriggers);
  setSelectionBehavior(SelectRows);
  setSelectionMode(SingleSelection);
  setTabKeyNavigation(false);
  setWordWrap(true);
  for (int row = 0; row < rowCount(); ++row) {
    for (int column = 0; column < kColumns; ++column) setItem(row, column, new QTableWidgetItem);
    show_choice(row);
  }
  int width = 2 * frameWidth() + 2;
  for (int column = 0; column < kColumns; ++column) {
    setColumnWidth(column, kWidths[column]);
    width += kWidths[column];
  }
  resizeRowsToContents();
  int height = horizontalHeader()->sizeHint().height() + 2 * frameWidth();
  for (int row = 0; row < std::min(rowCount(), kRowsShown); ++row) height += rowHeight(row);
  const bool scrolls = rowCount() > kRowsShown;
  setFixedSize(width + (scrolls ? 20 : 0), height);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setCurrentCell(0, kName);
  connect(this, &QTableWidget::cellClicked, this, [this](int row, int column) {
    if (column == kTheirs) choose(row, Answer::Theirs);
    if (column == kMine) choose(row, Answer::Mine);
  });
}

bool ComparisonTable::is_complete() const {
  return std::all_of(answers_.begin(), answers_.end(), [](const auto& answer) { return answer.has_value(); });
}

std::vector<Answer> ComparisonTable::answers() const {
  std::vector<Answer> answers;
  for (const auto& answer : answers_) answers.push_back(answer.value_or(Answer::Theirs));
  return answers;
}

void ComparisonTable::choose(int row, Answer answer) {
  answers_[static_cast<std::size_t>(row)] = answer;
  show_choice(row);
  emit chosen();
}

// The sign says it to those who cannot tell the letters apart, and to assistive tools.
void ComparisonTable::show_choice(int row) {
  const auto& line = lines_[static_cast<std::size_t>(row)];
  const std::string* const texts[kColumns] = {&line.name, &line.before, &line.theirs, &line.mine};
  const auto& answer = answers_[static_cast<std::size_t>(row)];
  for (int column = 0; column < kColumns; ++column) {
    const bool taken = answer && column == column_of(*answer);
    QTableWidgetItem* cell = item(row, column);
    const QString text = texts[column]->empty() ? QStringLiteral("(vide)") : to_qt(*texts[column]);
    cell->setText(taken ? QStringLiteral("✓ ") + text : text);
    cell->setToolTip(text);
    QFont font = this->font();
    font.setBold(taken);
    cell->setFont(font);
  }
}

void ComparisonTable::go_on() {
  for (int n = 1; n <= rowCount(); ++n) {
    const int row = (currentRow() + n) % rowCount();
    if (!answers_[static_cast<std::size_t>(row)]) return setCurrentCell(row, kName);
  }
}

void ComparisonTable::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left:
      return choose(currentRow(), Answer::Theirs);
    case Qt::Key_Right:
      return choose(currentRow(), Answer::Mine);
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return go_on();
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
      return QTableWidget::keyPressEvent(event);
    default:
      // To the sheet: Escape, and the mnemonics of its buttons.
      event->ignore();
  }
}

}  // namespace velanor::qt
