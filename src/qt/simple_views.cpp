#include "qt/simple_views.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QShortcut>
#include <QTabBar>

#include "qt/strings.h"

namespace velanor::qt {
namespace {

// The form file marks the mnemonics of the captions that it knows.
template <typename Widget>
void show_caption(Widget& widget, const QString& shown, const std::string& caption) {
  if (without_mnemonic(shown) != to_qt(caption)) widget.setText(to_qt(caption));
}

// The style hardly tells which tab bar has the focus, in dark colours least of all.
class TabFocus : public QWidget {
 public:
  explicit TabFocus(QTabBar& bar) : QWidget(&bar) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    bar.installEventFilter(this);
    connect(&bar, &QTabBar::currentChanged, this, [this] { follow(); });
    hide();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRect(rect().adjusted(3, 3, -3, -2));
  }
  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto type = event->type();
    if (type == QEvent::FocusIn || type == QEvent::FocusOut || type == QEvent::Resize) follow();
    return QWidget::eventFilter(watched, event);
  }

 private:
  // Focus events still come while the bar is being destroyed, and is none any more.
  void follow() {
    const auto* bar = qobject_cast<const QTabBar*>(parentWidget());
    if (!bar) return;
    setGeometry(bar->tabRect(bar->currentIndex()));
    setVisible(bar->hasFocus());
  }
};

}  // namespace

LabelView::LabelView(Acts& acts, screen::Label& control, QLabel& label, QObject& parent)
    : View(acts, control, label, parent), label_(label), buddy_(label.buddy()) {}

void LabelView::show() {
  View::show();
  show_caption(label_, label_.text(), control().caption());
}

void LabelView::set_mnemonic(bool on) { label_.setBuddy(on ? buddy_.data() : nullptr); }

FrameView::FrameView(Acts& acts, screen::Frame& control, QGroupBox& box, QObject& parent)
    : View(acts, control, box, parent), box_(box) {
  box.setFocusPolicy(Qt::NoFocus);
}

void FrameView::show() {
  View::show();
  if (without_mnemonic(box_.title()) != to_qt(control().caption())) box_.setTitle(to_qt(control().caption()));
}

ButtonView::ButtonView(Acts& acts_given, screen::Control& control, QAbstractButton& button, QObject& parent)
    : View(acts_given, control, button, parent), button_(button) {
  connect(&button, &QAbstractButton::clicked, this, [this] {
    screen::Control& own = View::control();
    if (acts().open_to(own)) acts().act([&](screen::Hand& hand) { return hand.click(own); });
    refresh_again();
  });
  watch(button);
}

void ButtonView::show() {
  View::show();
  show_caption(button_, button_.text(), control().caption());
}

void ButtonView::set_mnemonic(bool on) {
  button_.setShortcut(on ? QKeySequence::mnemonic(button_.text()) : QKeySequence());
}

// An exclusive button cannot be cleared alone.
void OptionView::show() {
  ButtonView::show();
  button_.setAutoExclusive(false);
  button_.setChecked(option_.value());
  button_.setAutoExclusive(true);
}

ScrollBarView::ScrollBarView(Acts& acts_given, screen::ScrollBar& control, QScrollBar& bar, QObject& parent)
    : View(acts_given, control, bar, parent), control_(control), bar_(bar) {
  bar.setFocusPolicy(Qt::NoFocus);
  connect(&bar, &QScrollBar::valueChanged, this, [this](int value) {
    if (showing()) return;
    if (acts().open_to(control_))
      acts().act([&](screen::Hand& hand) { return hand.scroll(control_, value); });
    refresh_again();
  });
}

void ScrollBarView::show() {
  View::show();
  bar_.setRange(0, control_.max());
  bar_.setPageStep(1);
  bar_.setValue(control_.value());
}

TabsView::TabsView(Acts& acts_given, screen::Tabs& control, QTabWidget& tabs, QObject& parent)
    : View(acts_given, control, tabs, parent), control_(control), tabs_(tabs) {
  for (int page = 0; page < tabs.count(); ++page) captions_.push_back(tabs.tabText(page));
  watch(*tabs.tabBar());
  new TabFocus(*tabs.tabBar());
  tabs.installEventFilter(this);
  // From the fields around the pages as well.
  const auto step_by = [&](Qt::Key key, int by) {
    auto* shortcut = new QShortcut(QKeySequence(Qt::CTRL | key), tabs.parentWidget());
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, [this, by] { step(by); });
  };
  step_by(Qt::Key_PageDown, 1);
  step_by(Qt::Key_PageUp, -1);
  connect(&tabs, &QTabWidget::currentChanged, this, [this](int page) {
    if (!showing()) show_page(page);
  });
}

QWidget& TabsView::focus_widget() const { return *tabs_.tabBar(); }

void TabsView::describe(const QString& name) { tabs_.tabBar()->setAccessibleName(name); }

void TabsView::set_mnemonic(bool on) {
  for (int page = 0; page < tabs_.count(); ++page) {
    const QString& caption = captions_[static_cast<std::size_t>(page)];
    tabs_.setTabText(page, on ? caption : without_mnemonic(caption));
  }
}

// The current page comes first: a page that is disabled while it is shown gives way to another.
void TabsView::show() {
  View::show();
  tabs_.setTabEnabled(control_.current(), true);
  tabs_.setCurrentIndex(control_.current());
  for (int page = 0; page < control_.count(); ++page) tabs_.setTabEnabled(page, control_.page_enabled(page));
}

void TabsView::show_page(int page) {
  if (acts().open_to(control_)) acts().act([&](screen::Hand& hand) { return hand.show_page(page); });
  refresh_again();
}

void TabsView::step(int by) {
  for (int page = control_.current() + by; page >= 0 && page < control_.count(); page += by) {
    if (control_.page_enabled(page)) return show_page(page);
  }
}

// A page is shown when the rules have let the focus go, not before.
bool TabsView::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonPress && watched == tabs_.tabBar()) {
    const int page = tabs_.tabBar()->tabAt(static_cast<QMouseEvent*>(event)->position().toPoint());
    if (page >= 0) show_page(page);
    return true;
  }
  if (event->type() != QEvent::KeyPress) return watched == &tabs_ ? false : View::eventFilter(watched, event);
  const auto& key = *static_cast<QKeyEvent*>(event);
  const bool on_bar = watched == tabs_.tabBar();
  if (on_bar && key.key() == Qt::Key_Right) return step(1), true;
  if (on_bar && key.key() == Qt::Key_Left) return step(-1), true;
  return false;
}

}  // namespace velanor::qt
