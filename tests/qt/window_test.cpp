#include "window_test.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QTabWidget>
#include <QTimer>
#include <iostream>

#include "play/player.h"

namespace velanor::qt {
WindowTest::WindowTest() : owned_(std::make_unique<ControleVelanorWidget>()), widget_(*owned_) {
  play::RecordingDatabase recording(memory_);
  play::MessageBoxes boxes;
  play::Player player({recording, boxes, nullptr, std::cout, std::cerr});
  player.play(play::read_scenario(VELANOR_SCENARIOS "/lib/cards.play"));
  QObject::connect(owned_.get(), &ControleVelanorWidget::message_opened, owned_.get(),
                   [this] { message_opened(); });
}

void WindowTest::start() {
  widget_.DroitsUtilisateur(*this);
  widget_.TheDatabase(database_);
  widget_.show();
  widget_.activateWindow();
  QCoreApplication::processEvents();
  widget_.init();
}

void WindowTest::open_card() {
  start();
  type("Txt_Asso", "001");
  type("Txt_Aidant", "00010");
  ASSERT_EQ(text("Txt_Etat"), "Modification");
}

void WindowTest::open_items_of_first_amendment() {
  widget<QTabWidget>("Ong_FichPers").setCurrentIndex(1);
  auto& amendments = widget<QWidget>("Lst_DatEffet");
  amendments.setFocus(Qt::TabFocusReason);
  press(amendments, Qt::Key_Home);
  click("Cmd_Detail");
  ASSERT_EQ(top().name(), "Frm_RubSaisie");
}

void WindowTest::press(QWidget& on, int key, Qt::KeyboardModifiers with, const QString& text) {
  QKeyEvent event(QEvent::KeyPress, key, with, text);
  QCoreApplication::sendEvent(&on, &event);
}

void WindowTest::press(int key, Qt::KeyboardModifiers with, const QString& text) {
  press(*widget_.window()->focusWidget(), key, with, text);
}

void WindowTest::type(const char* name, const QString& characters) {
  shown(name).setFocus(Qt::TabFocusReason);
  type_on(characters);
}

void WindowTest::type_on(const QString& characters) {
  for (const QChar character : characters) press(Qt::Key_unknown, Qt::NoModifier, character);
}

void WindowTest::paste(const char* name, const QString& value) {
  QGuiApplication::clipboard()->setText(value);
  widget<QLineEdit>(name).selectAll();
  widget<QLineEdit>(name).paste();
}

void WindowTest::at_next_message(Look look) { looks_.push_back(std::move(look)); }

void WindowTest::message_opened() {
  const QPointer<MessageSheet> sheet(owned_->open_message());
  Look look;
  if (!looks_.empty()) {
    look = std::move(looks_.front());
    looks_.erase(looks_.begin());
  }
  told_.push_back(sheet->message().text);
  QTimer::singleShot(0, owned_.get(), [sheet, look] {
    if (sheet && look) look(*sheet);
    if (sheet && sheet->isVisible()) emit sheet->answered(sheet->closing_answer());
  });
}

}  // namespace velanor::qt

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
