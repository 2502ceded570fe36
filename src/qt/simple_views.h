// Labels, frames, buttons, option buttons, scroll bars and the tab control.
#pragma once

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QPointer>
#include <QRadioButton>
#include <QScrollBar>
#include <QTabWidget>

#include "qt/view.h"

namespace velanor::qt {

class LabelView : public View {
 public:
  LabelView(Acts& acts, screen::Label& control, QLabel& label, QObject& parent);
  void set_mnemonic(bool on) override;

 protected:
  void show() override;

 private:
  QLabel& label_;
  QPointer<QWidget> buddy_;
};

class FrameView : public View {
 public:
  FrameView(Acts& acts, screen::Frame& control, QGroupBox& box, QObject& parent);

 protected:
  void show() override;

 private:
  QGroupBox& box_;
};

class ButtonView : public View {
 public:
  ButtonView(Acts& acts, screen::Control& control, QAbstractButton& button, QObject& parent);
  void set_mnemonic(bool on) override;

 protected:
  void show() override;

 private:
  QAbstractButton& button_;
};

class OptionView : public ButtonView {
 public:
  OptionView(Acts& acts, screen::OptionButton& control, QRadioButton& button, QObject& parent)
      : ButtonView(acts, control, button, parent), option_(control), button_(button) {}

 protected:
  void show() override;

 private:
  screen::OptionButton& option_;
  QRadioButton& button_;
};

class ScrollBarView : public View {
 public:
  ScrollBarView(Acts& acts, screen::ScrollBar& control, QScrollBar& bar, QObject& parent);

 protected:
  void show() override;

 private:
  screen::ScrollBar& control_;
  QScrollBar& bar_;
};

class TabsView : public View {
 public:
  TabsView(Acts& acts, screen::Tabs& control, QTabWidget& tabs, QObject& parent);
  QWidget& focus_widget() const override;
  void set_mnemonic(bool on) override;
  void describe(const QString& name) override;

 protected:
  void show() override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void show_page(int page);
  void step(int by);

  screen::Tabs& control_;
  QTabWidget& tabs_;
  std::vector<QString> captions_;
};

}  // namespace velanor::qt
