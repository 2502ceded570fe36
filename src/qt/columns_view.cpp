#include "qt/columns_view.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFont>
#include <QFontMetrics>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>

#include "qt/table_copy.h"

namespace velanor::qt {
namespace {

QFont fixed_pitch(const QFont& like) {
  QFont font(like);
  font.setFamilies({"Courier New", "Liberation Mono", "DejaVu Sans Mono", "monospace"});
  font.setStyleHint(QFont::Monospace);
  font.setFixedPitch(true);
  return font;
}

// In the ordinary font; said in full, or the header would inherit the list's.
void give_headings(QHeaderView& header) {
  QFont font = QApplication::font();
  font.setFamily(font.family());
  font.setFixedPitch(false);
  font.setStyleHint(QFont::SansSerif);
  font.setPointSizeF(font.pointSizeF());
  header.setFont(font);
}

std::vector<screen::ListBox*> lists_of(const screen::TableColumns& columns) {
  std::vector<screen::ListBox*> lists;
  for (const screen::TableColumn& column : columns) {
    if (lists.empty() || lists.back() != column.list) lists.push_back(column.list);
  }
  return lists;
}

}  // namespace

ColumnsView::ColumnsView(Acts& acts, screen::TableColumns columns, ColumnsTable& table, QObject& parent)
    : View(acts, *columns.front().list, table, parent),
      columns_(std::move(columns)),
      lists_(lists_of(columns_)),
      table_(table),
      viewport_(table.viewport()),
      lines_(new LinesModel({lists_.begin(), lists_.end()}, this)) {
  lines_->set_columns(columns_);
  table.setModel(lines_);
  if (table.property("fixedPitch").toBool()) table.setFont(fixed_pitch(table.font()));
  const QFontMetrics metrics(table.font());
  table.verticalHeader()->setDefaultSectionSize(metrics.height() + 4);
  if (lists_.size() > 1) {
    give_headings(*table.horizontalHeader());
  } else {
    table.horizontalHeader()->hide();
  }
  table.on_key = [this](QKeyEvent& event) { return key(event); };
  watch(table);
  watch(*table.viewport());
}

screen::Control& ColumnsView::control() const {
  screen::Control* focus = lists_.front()->form().focus();
  for (screen::ListBox* list : lists_) {
    if (list == focus) return *list;
  }
  return *lists_.front();
}

std::vector<const screen::Control*> ColumnsView::controls() const { return {lists_.begin(), lists_.end()}; }

screen::ListBox& ColumnsView::list_at(int column) const {
  const auto c = static_cast<std::size_t>(std::max(column, 0));
  return *lists_[std::min(c, lists_.size() - 1)];
}

void ColumnsView::show() {
  View::show();
  lines_->update();
  const int line = lists_.front()->index();
  if (line < 0) {
    table_.clearSelection();
    table_.setCurrentIndex({});
  } else {
    table_.selectRow(line);
    table_.scrollTo(lines_->index(line, 0));
  }
}

void ColumnsView::copy_line() const {
  QGuiApplication::clipboard()->setText(table_text(columns_, lists_.front()->index()));
}

void ColumnsView::copy_table() const { QGuiApplication::clipboard()->setText(table_text(columns_, -1)); }

void ColumnsView::offer_copies(const QPoint& at) {
  auto* menu = new QMenu(&table_);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  QAction* line = menu->addAction(QStringLiteral("&Copier\tCtrl+C"), this, [this] { copy_line(); });
  line->setEnabled(lists_.front()->index() >= 0);
  QAction* table =
      menu->addAction(QStringLiteral("Copier le &tableau\tCtrl+Maj+C"), this, [this] { copy_table(); });
  table->setEnabled(lists_.front()->count() > 0);
  menu->popup(at);
}

bool ColumnsView::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ContextMenu)
    return offer_copies(static_cast<QContextMenuEvent*>(event)->globalPos()), true;
  // Out of use, a table still offers to be copied, and is not the background with its menu.
  if (!table_.isEnabled() && event->type() == QEvent::MouseButtonPress &&
      static_cast<QMouseEvent*>(event)->button() == Qt::RightButton)
    return true;
  const bool twice = event->type() == QEvent::MouseButtonDblClick;
  if (watched == viewport_ && (twice || event->type() == QEvent::MouseButtonPress))
    return press(static_cast<QMouseEvent*>(event)->position().toPoint(), twice);
  // The selection is the control's, not what the pointer is dragged over.
  if (watched == viewport_ && event->type() == QEvent::MouseMove) return true;
  return View::eventFilter(watched, event);
}

bool ColumnsView::press(const QPoint& at, bool twice) {
  const QModelIndex cell = table_.indexAt(at);
  screen::ListBox& list = list_at(table_.columnAt(at.x()));
  if (!acts().press(list) || !cell.isValid()) return true;
  if (twice) {
    double_click(list, cell.row());
  } else if (acts().open_to(list)) {
    acts().act([&](screen::Hand& hand) { return hand.pick(list, cell.row()); });
  }
  return true;
}

void ColumnsView::double_click(screen::ListBox& list, int line) {
  if (acts().open_to(list)) acts().act([&](screen::Hand& hand) { return hand.double_click(list, line); });
}

bool ColumnsView::key(QKeyEvent& event) {
  const int line = lists_.front()->index();
  const int last = lists_.front()->count() - 1;
  if (event.matches(QKeySequence::Copy)) return copy_line(), true;
  switch (event.key()) {
    case Qt::Key_Up:
      return pick(std::max(line - 1, 0)), true;
    case Qt::Key_Down:
      return pick(std::min(line + 1, last)), true;
    case Qt::Key_Home:
      return pick(0), true;
    case Qt::Key_End:
      return pick(last), true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
      if (line >= 0) double_click(static_cast<screen::ListBox&>(control()), line);
      return true;
    default:
      event.ignore();
      return true;
  }
}

void ColumnsView::pick(int line) {
  auto& list = static_cast<screen::ListBox&>(control());
  if (line < 0 || line >= list.count() || !acts().open_to(list)) return;
  acts().act([&](screen::Hand& hand) { return hand.pick(list, line); });
}

}  // namespace velanor::qt
