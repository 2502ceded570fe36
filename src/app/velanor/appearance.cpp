#include "app/velanor/appearance.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QMenu>
#include <QPalette>
#include <QStyle>

namespace velanor::app {
namespace {

struct Choice {
  const char *name, *text;
};
constexpr Choice kColours[] = {
    {"desktop", "Couleurs du &bureau"}, {"light", "&Claires"}, {"dark", "&Sombres"}};
constexpr Choice kDark = kColours[2];

struct Size {
  int percent;
  const char* text;
};
constexpr Size kSizes[] = {{100, "&Normale"}, {115, "&Grande"}, {130, "&Très grande"}};

QPalette dark_palette() {
  const QColor window(45, 47, 51), base(30, 32, 35), text(232, 232, 232), dim(135, 138, 143),
      accent(61, 126, 214);
  QPalette palette(window);
  palette.setColor(QPalette::Base, base);
  // A field that is out of use is told by its ground, not only by its text.
  palette.setColor(QPalette::Disabled, QPalette::Base, window);
  palette.setColor(QPalette::AlternateBase, QColor(37, 39, 43));
  palette.setColor(QPalette::ToolTipBase, window);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
    palette.setColor(role, text);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, dim);
  palette.setColor(QPalette::PlaceholderText, dim);
  palette.setColor(QPalette::Highlight, accent);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, QColor(120, 175, 250));
  return palette;
}

// An empty palette is the desktop's.
QPalette palette_named(const QString& name) {
  if (name == QLatin1String("dark")) return dark_palette();
  return name == QLatin1String("light") ? QApplication::style()->standardPalette() : QPalette();
}

QFont larger(QFont font, int percent) {
  font.setPointSizeF(font.pointSizeF() * percent / 100);
  return font;
}

QAction* checkable(QActionGroup& group, const QString& text, const QVariant& choice, bool checked) {
  QAction* action = group.addAction(text);
  action->setCheckable(true);
  action->setData(choice);
  action->setChecked(checked);
  return action;
}

}  // namespace

void show_dark() { QApplication::setPalette(dark_palette()); }

Appearance::Appearance(bool dark)
    : font_(QApplication::font()), colours_(new QActionGroup(this)), sizes_(new QActionGroup(this)) {
  const QString chosen = dark ? QString(kDark.name) : settings_.colours();
  for (const Choice& choice : kColours) checkable(*colours_, choice.text, choice.name, chosen == choice.name);
  if (!colours_->checkedAction()) colours_->actions().front()->setChecked(true);
  for (const Size& size : kSizes)
    checkable(*sizes_, size.text, size.percent, settings_.text_size() == size.percent);
  if (!sizes_->checkedAction()) sizes_->actions().front()->setChecked(true);
  if (colours_->checkedAction() != colours_->actions().front())
    QApplication::setPalette(palette_named(chosen));
  if (const int percent = sizes_->checkedAction()->data().toInt(); percent != kSizes[0].percent)
    QApplication::setFont(larger(font_, percent));
  connect(colours_, &QActionGroup::triggered, this, [this](const QAction* action) {
    settings_.set_colours(action->data().toString());
    QApplication::setPalette(palette_named(action->data().toString()));
  });
  connect(sizes_, &QActionGroup::triggered, this, [this](const QAction* action) {
    settings_.set_text_size(action->data().toInt());
    QApplication::setFont(larger(font_, action->data().toInt()));
  });
}

void Appearance::add_to(QMenu& menu) {
  add_group(menu, "Co&uleurs", *colours_);
  add_group(menu, "Taille du te&xte", *sizes_);
}

void Appearance::add_group(QMenu& menu, const QString& title, const QActionGroup& group) {
  menu.addMenu(title)->addActions(group.actions());
}

}  // namespace velanor::app
