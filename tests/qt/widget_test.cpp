// What reaches the widgets past the keyboard: pasted and assistive values, sheets, long lists.
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <iostream>

#include "play/player.h"
#include "qt/action_button.h"
#include "qt/controle_velanor_widget.h"
#include "qt/message_sheet.h"
#include "qt/strings.h"
#include "store/memory_database.h"

namespace velanor::qt {
namespace {

// Fails its writes on demand.
class FailingFile : public store::DbFile {
 public:
  FailingFile(std::unique_ptr<store::DbFile> file, const bool& fail) : file_(std::move(file)), fail_(fail) {}
  std::optional<store::DbRecord> find(std::string_view id) override { return file_->find(id); }
  void write(std::string_view id, const store::DbRecord& record) override {
    if (fail_) throw store::DbError(store::kStoreFailure, "Le disque est plein.");
    file_->write(id, record);
  }
  void DeleteRecord(std::string_view id) override { file_->DeleteRecord(id); }

 private:
  std::unique_ptr<store::DbFile> file_;
  const bool& fail_;
};

class FailingDatabase : public store::Database {
 public:
  explicit FailingDatabase(store::Database& database) : database_(database) {}
  std::unique_ptr<store::DbFile> OpenFile(std::string_view name) override {
    return std::make_unique<FailingFile>(database_.OpenFile(name), fail);
  }
  store::DbResult Select(std::string_view request, std::string_view option) override {
    return database_.Select(request, option);
  }
  bool fail = false;

 private:
  store::Database& database_;
};

class WidgetTest : public testing::Test, private control::UserRights {
 protected:
  WidgetTest() {
    play::RecordingDatabase recording(memory_);
    play::MessageBoxes boxes;
    play::Player player({recording, boxes, nullptr, std::cout, std::cerr});
    player.play(play::read_scenario(VELANOR_SCENARIOS "/lib/cards.play"));
  }

  void open_card() {
    start();
    type("Txt_Asso", "001");
    type("Txt_Aidant", "00010");
    ASSERT_EQ(text("Txt_Etat"), "Modification");
  }

  void start() {
    widget_.DroitsUtilisateur(*this);
    widget_.TheDatabase(database_);
    widget_.show();
    widget_.activateWindow();
    QCoreApplication::processEvents();
    widget_.init();
  }

  template <typename Widget>
  Widget& widget(const char* name) {
    return *widget_.findChild<Widget*>(name);
  }
  std::string text(const char* name) {
    return static_cast<screen::TextControl*>(widget_.screen().base().find(name))->text();
  }
  void type(const char* name, const QString& characters) {
    widget<QWidget>(name).setFocus(Qt::TabFocusReason);
    for (const QChar character : characters) {
      QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(character));
      QCoreApplication::sendEvent(widget_.window()->focusWidget(), &key);
    }
  }
  void paste(const char* name, const QString& value) {
    QGuiApplication::clipboard()->setText(value);
    widget<QLineEdit>(name).selectAll();
    widget<QLineEdit>(name).paste();
  }
  // Runs while the next message waits, then gives its first answer.
  void at_next_message(std::function<void(MessageSheet&)> look) {
    QObject::connect(&widget_, &ControleVelanorWidget::message_opened, &widget_,
                     [this, look = std::move(look)] {
                       QTimer::singleShot(0, &widget_, [this, look] {
                         MessageSheet& sheet = *widget_.open_message();
                         look(sheet);
                         emit sheet.answered(MessageSheet::closing_answer(sheet.message().buttons));
                       });
                     });
  }

  store::MemoryDatabase memory_;
  FailingDatabase database_{memory_};
  ControleVelanorWidget widget_;

 private:
  std::string rights(std::string_view) override { return {}; }
};

TEST_F(WidgetTest, PastedValueIsJudgedAsIfItWereTyped) {
  open_card();
  paste("Txt_HorMensEtab", "1a5x0.5");
  EXPECT_EQ(text("Txt_HorMensEtab"), "150,5");
  EXPECT_EQ(widget<QLineEdit>("Txt_HorMensEtab").text().toStdString(), "150,5");
}

TEST_F(WidgetTest, AssistiveValueIsJudgedToo) {
  open_card();
  widget<QLineEdit>("Txt_HorMensEtab").setText("12b,3,4");
  EXPECT_EQ(text("Txt_HorMensEtab"), "12,34");
}

TEST_F(WidgetTest, KeyReplacesTheSelectionOfAFieldEnteredByTab) {
  open_card();
  type("Txt_HorMensEtab", ",5");
  EXPECT_EQ(text("Txt_HorMensEtab"), ",5");
}

TEST_F(WidgetTest, NothingBehindAMessageAnswers) {
  open_card();
  int buttons = 0;
  at_next_message([&](MessageSheet& sheet) {
    widget<QLineEdit>("Txt_HorMensEtab").setText("1");
    widget<QAbstractButton>("Cmd_Annul").click();
    widget<QAbstractButton>("Cmd_Supp").click();
    widget<QLineEdit>("Txt_HorMensEtab").setFocus(Qt::OtherFocusReason);
    buttons = static_cast<int>(sheet.findChildren<ActionButton*>().size());
  });
  widget<QAbstractButton>("Cmd_Supp").click();
  EXPECT_EQ(buttons, 2);
  EXPECT_EQ(text("Txt_HorMensEtab"), "151,67");
  EXPECT_EQ(widget<QLineEdit>("Txt_HorMensEtab").text().toStdString(), "151,67");
  EXPECT_EQ(text("Txt_Etat"), "Modification");
}

TEST_F(WidgetTest, FailureOfTheStoreIsToldAndTheCardStays) {
  open_card();
  std::string told;
  at_next_message([&](MessageSheet& sheet) { told = sheet.message().text; });
  database_.fail = true;
  type("Txt_HorMensEtab", "150");
  widget<QAbstractButton>("Cmd_OK").click();
  EXPECT_EQ(told, "Le disque est plein.");
  EXPECT_EQ(text("Txt_Etat"), "Modification");
  EXPECT_EQ(text("Txt_NomAidant"), "MARTIN JEANNE");
  database_.fail = false;
  widget<QAbstractButton>("Cmd_OK").click();
  EXPECT_EQ(memory_.OpenFile("VELANORO")->find("000100012026").value()(2), "15000");
}

TEST_F(WidgetTest, ThirtyFiveThousandTownsOpenAtOnce) {
  open_card();
  auto& towns = static_cast<screen::ComboBox&>(*widget_.screen().base().find("Cbo_Com"));
  std::vector<std::string> many;
  for (int i = 0; i < 35000; ++i) many.push_back("Commune " + std::to_string(i));
  towns.refill(many);
  auto& box = widget<QComboBox>("Cbo_Com");
  QElapsedTimer time;
  time.start();
  box.setFocus(Qt::TabFocusReason);
  box.showPopup();
  QCoreApplication::processEvents();
  const qint64 opening = time.elapsed();
  EXPECT_EQ(box.count(), 35000);
  EXPECT_TRUE(box.view()->isVisible());
  box.hidePopup();
  widget_.activateWindow();
  QCoreApplication::processEvents();
  box.lineEdit()->selectAll();
  time.restart();
  type("Cbo_Com", "Commune 3");
  const qint64 typing = time.elapsed();
  EXPECT_EQ(text("Cbo_Com"), "Commune 3");
  RecordProperty("opening_ms", static_cast<int>(opening));
  RecordProperty("typing_ms", static_cast<int>(typing));
  std::cout << "35,000 lines: opened in " << opening << " ms, 9 keys in " << typing << " ms\n";
  EXPECT_LT(opening, 200);
}

TEST_F(WidgetTest, EveryControlHasANameForAssistiveTools) {
  start();
  for (const screen::Control* control : widget_.screen().base().controls()) {
    if (!control->takes_focus()) continue;
    const auto* shown = widget_.findChild<QWidget*>(to_qt(control->name()));
    if (!shown || shown->objectName() == "Ong_FichPers") continue;
    EXPECT_FALSE(shown->accessibleName().isEmpty()) << control->name();
  }
}

}  // namespace
}  // namespace velanor::qt

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
