#include "app/velanor/start_page.h"

#include <QApplication>
#include <QCommandLinkButton>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include "app/velanor/server_address.h"

namespace velanor::app {
namespace {

constexpr int kBase = Qt::UserRole, kPlace = Qt::UserRole + 1;
constexpr int kSpace = 24, kWaysWidth = 330, kRecentWidth = 420, kWidest = 1000;

QString name_of(const QString& base) {
  return is_server(base) ? ServerAddress::of(base).name() : QFileInfo(base).fileName();
}

QString place_of(const QString& base) {
  return is_server(base) ? "Sur un serveur" : QFileInfo(base).absolutePath();
}

bool is_missing(const QString& base) { return !is_server(base) && !QFileInfo::exists(base); }

// The name, and below it, in a lighter ink, where the base stands.
class BaseLines : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
    return {0, 2 * option.fontMetrics.height() + 2 * kAir + 2};
  }

  void paint(QPainter* painter, const QStyleOptionViewItem& given, const QModelIndex& at) const override {
    QStyleOptionViewItem option = given;
    initStyleOption(&option, at);
    option.text.clear();
    option.widget->style()->drawControl(QStyle::CE_ItemViewItem, &option, painter, option.widget);
    const bool chosen = option.state & QStyle::State_Selected;
    const QPalette::ColorGroup group =
        option.state & QStyle::State_Active ? QPalette::Active : QPalette::Inactive;
    QColor ink = option.palette.color(group, chosen ? QPalette::HighlightedText : QPalette::Text);
    const QRect room = option.rect.adjusted(2 * kAir, kAir, -2 * kAir, -kAir);
    const int line = option.fontMetrics.height();
    painter->save();
    QFont bold = option.font;
    bold.setBold(true);
    painter->setFont(bold);
    painter->setPen(ink);
    const auto elided = [](const QFont& font, const QString& text, int width) {
      return QFontMetrics(font).elidedText(text, Qt::ElideMiddle, width);
    };
    painter->drawText(QRect(room.topLeft(), QSize(room.width(), line)), Qt::AlignVCenter,
                      elided(bold, at.data(kBase).toString(), room.width()));
    ink.setAlphaF(chosen ? 0.9F : 0.7F);
    painter->setPen(ink);
    painter->setFont(option.font);
    painter->drawText(QRect(room.left(), room.top() + line + 2, room.width(), line), Qt::AlignVCenter,
                      elided(option.font, at.data(kPlace).toString(), room.width()));
    painter->restore();
  }

 private:
  static constexpr int kAir = 5;
};

QLabel* heading(const QString& text, double larger) {
  auto* label = new QLabel(text);
  QFont font = label->font();
  font.setPointSizeF(font.pointSizeF() * larger);
  font.setBold(true);
  label->setFont(font);
  return label;
}

}  // namespace

StartPage::StartPage(QWidget* parent) : QWidget(parent), recent_(new QListWidget) {
  setAccessibleName("Accueil");
  auto* columns = new QHBoxLayout;
  columns->setSpacing(2 * kSpace);
  columns->addWidget(make_ways());
  columns->addWidget(make_recent(), 1);
  auto* body = new QWidget;
  body->setMaximumWidth(kWidest);
  auto* column = new QVBoxLayout(body);
  column->setSpacing(kSpace);
  auto* title = heading("Fiches du personnel", 1.8);
  column->addWidget(title);
  column->addWidget(make_failure());
  column->addLayout(columns, 1);
  auto* centred = new QHBoxLayout(this);
  centred->setContentsMargins(kSpace, kSpace, kSpace, kSpace);
  centred->addStretch(1);
  centred->addWidget(body, 100);
  centred->addStretch(1);
  setTabOrder(recent_, first_way_);
}

QWidget* StartPage::make_ways() {
  auto* ways = new QWidget;
  ways->setMinimumWidth(kWaysWidth);
  auto* column = new QVBoxLayout(ways);
  column->setContentsMargins(0, 0, 0, 0);
  const auto add = [&](const char* name, const QString& text, const QString& told, auto signal) {
    auto* way = new QCommandLinkButton(text, told);
    way->setObjectName(name);
    way->setAccessibleDescription(told);
    column->addWidget(way);
    connect(way, &QCommandLinkButton::clicked, this, signal);
    if (!first_way_) first_way_ = way;
  };
  add("start_open", "&Ouvrir…", "Une base qui est sur cet ordinateur ou sur le réseau",
      &StartPage::file_asked);
  add("start_new", "&Nouvelle base…", "Vide, avec vos tables, ou avec celles de l'exemple",
      &StartPage::new_base_asked);
  add("start_example", "Ouvrir l'&exemple", "Trois entités fictives et leur personnel, dans une base neuve",
      &StartPage::example_asked);
  add("start_server", "Se &connecter à un serveur…", "Une base que plusieurs postes partagent",
      &StartPage::server_asked);
  column->addStretch(1);
  return ways;
}

QWidget* StartPage::make_recent() {
  auto* side = new QWidget;
  side->setMinimumWidth(kRecentWidth);
  auto* column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);
  recent_title_ = heading("&Bases récentes", 1.1);
  recent_title_->setBuddy(recent_);
  none_ = new QLabel("Aucune base récente.");
  recent_->setObjectName("start_recent");
  recent_->setAccessibleName("Bases récentes");
  recent_->setAccessibleDescription("Entrée ouvre la base, Suppr l'ôte de la liste");
  recent_->setToolTip("Entrée ouvre la base ; Suppr l'ôte de la liste, son fichier reste.");
  recent_->setItemDelegate(new BaseLines(recent_));
  recent_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  recent_->installEventFilter(this);
  connect(recent_, &QListWidget::itemDoubleClicked, this, &StartPage::open_chosen);
  column->addWidget(recent_title_);
  column->addWidget(none_);
  column->addWidget(recent_, 1);
  return side;
}

QWidget* StartPage::make_failure() {
  failed_ = new QFrame;
  failed_->setFrameShape(QFrame::StyledPanel);
  failure_ = new QLabel;
  failure_->setObjectName("start_failure");
  failure_->setAccessibleName("Ce qui a échoué");
  failure_->setTextFormat(Qt::PlainText);
  failure_->setWordWrap(true);
  failure_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  auto* sign = new QLabel;
  constexpr int kSign = 24;
  sign->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(kSign));
  auto* row = new QHBoxLayout(failed_);
  row->addWidget(sign, 0, Qt::AlignTop);
  row->addWidget(failure_, 1);
  failed_->hide();
  return failed_;
}

void StartPage::set_recent(const QStringList& bases) {
  const int row = recent_->currentRow();
  const bool fewer = bases.size() < bases_.size();
  bases_ = bases;
  recent_->clear();
  for (const QString& base : bases) {
    auto* item = new QListWidgetItem(recent_);
    item->setData(kBase, name_of(base));
    item->setToolTip(base);
  }
  mark_missing();
  recent_->setVisible(!bases.isEmpty());
  recent_title_->setVisible(!bases.isEmpty());
  none_->setVisible(bases.isEmpty());
  // One that was taken off the list leaves the keyboard where it was.
  recent_->setCurrentRow(fewer ? std::min(row, recent_->count() - 1) : 0);
}

void StartPage::mark_missing() {
  for (int row = 0; row < recent_->count(); ++row) {
    const QString& base = bases_[row];
    const QString place = (is_missing(base) ? "Introuvable – " : QString()) + place_of(base);
    recent_->item(row)->setData(kPlace, place);
    // What assistive tools read.
    recent_->item(row)->setText(name_of(base) + " – " + place);
  }
}

void StartPage::show_failure(const QString& sentence) {
  failure_->setText(sentence);
  failed_->setVisible(!sentence.isEmpty());
}

QString StartPage::failure() const { return failure_->text(); }

void StartPage::take_focus() {
  if (recent_->count() > 0) {
    recent_->setFocus(Qt::OtherFocusReason);
  } else {
    first_way_->setFocus(Qt::OtherFocusReason);
  }
}

void StartPage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  mark_missing();
  take_focus();
}

void StartPage::open_chosen() {
  const int row = recent_->currentRow();
  if (row >= 0 && row < bases_.size()) emit open_asked(bases_[row]);
}

void StartPage::forget_chosen() {
  const int row = recent_->currentRow();
  if (row >= 0 && row < bases_.size()) emit forget_asked(bases_[row]);
  if (bases_.isEmpty()) take_focus();
}

bool StartPage::eventFilter(QObject* watched, QEvent* event) {
  if (watched != recent_ || event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
  const auto& key = static_cast<const QKeyEvent&>(*event);
  switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      // One that is held down would go on into the base.
      if (!key.isAutoRepeat()) open_chosen();
      return true;
    case Qt::Key_Delete:
      if (!key.isAutoRepeat()) forget_chosen();
      return true;
    default:
      return false;
  }
}

}  // namespace velanor::app
