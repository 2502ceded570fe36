// A host destroys the widget, or closes its window, when it likes. What matters most is what the sanitizers
// say of these.
#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QTimer>
#include <QVBoxLayout>

#include "velanor/hand.h"
#include "window_test.h"

namespace velanor::qt {
namespace {

// A store of the host's that goes with the widget: nobody may come to it any more.
class MortalDatabase : public store::Database {
 public:
  MortalDatabase(store::Database& database, const bool& dead) : database_(database), dead_(dead) {}
  std::unique_ptr<store::DbFile> OpenFile(std::string_view name) override {
    return std::make_unique<File>(database_.OpenFile(name), dead_);
  }
  store::DbResult Select(std::string_view request, std::string_view option) override {
    expect_alive(dead_);
    return database_.Select(request, option);
  }
  void name_id_part(std::string_view file, std::string_view name, const store::IdPart& part) override {
    database_.name_id_part(file, name, part);
  }

 private:
  static void expect_alive(const bool& dead) { EXPECT_FALSE(dead) << "the store was used after the widget"; }
  class File : public store::DbFile {
   public:
    File(std::unique_ptr<store::DbFile> file, const bool& dead) : file_(std::move(file)), dead_(dead) {}
    ~File() override { expect_alive(dead_); }
    std::optional<store::DbRecord> find(std::string_view id) override {
      expect_alive(dead_);
      return file_->find(id);
    }
    void write(std::string_view id, const store::DbRecord& record, const store::Expected& expected) override {
      expect_alive(dead_);
      file_->write(id, record, expected);
    }
    void remove(std::string_view id, const store::Expected& expected) override {
      expect_alive(dead_);
      file_->remove(id, expected);
    }

   private:
    std::unique_ptr<store::DbFile> file_;
    const bool& dead_;
  };
  store::Database& database_;
  const bool& dead_;
};

class LifetimeTest : public WindowTest {
 protected:
  LifetimeTest() {
    widget_.set_failure_handler([this](auto) { ++failures_; });
  }
  ~LifetimeTest() override {
    owned_.reset();
    mortal_.reset();
    EXPECT_EQ(failures_, 0);
  }

  void open_mortal_card() {
    widget_.TheDatabase(*mortal_);
    widget_.show();
    widget_.activateWindow();
    QCoreApplication::processEvents();
    widget_.init();
    type("Txt_Asso", "001");
    type("Txt_Aidant", "00010");
    ASSERT_EQ(text("Txt_Etat"), "Modification");
  }
  void destroy() {
    owned_.reset();
    dead_ = true;
    mortal_.reset();
  }
  bool stored() { return memory_.OpenFile("VELANORO")->find("000100012026").has_value(); }
  // Everything that was put off has been done.
  static void settle() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  bool dead_ = false;
  int failures_ = 0;
  std::unique_ptr<MortalDatabase> mortal_ = std::make_unique<MortalDatabase>(memory_, dead_);
};

enum class Moment { kWhileItOpens, kWhileItWaits, kAfterItsYes, kWithItsWindow };

class QuestionTest : public LifetimeTest, public testing::WithParamInterface<std::tuple<int, Moment>> {
 protected:
  void click_with_the_mouse(QWidget& widget) {
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
      const QPointF at = widget.rect().center();
      QMouseEvent event(type, at, widget.mapToGlobal(at), Qt::LeftButton,
                        type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
      QCoreApplication::sendEvent(&widget, &event);
    }
  }

  // Everything by which a question comes up: each stands on other frames of the toolkit.
  void ask(int how) {
    switch (how) {
      case 0:
        return click("Cmd_Supp");
      case 1:
        return click_with_the_mouse(shown("Cmd_Supp"));
      case 2:
        shown("Cmd_Supp").setFocus(Qt::TabFocusReason);
        return press(Qt::Key_Return);
      case 3:
        return press(Qt::Key_Escape);
      case 4:  // a refusal on the way out of a field
        type("Txt_DatNais", "320126");
        return press(Qt::Key_Tab);
      case 5:
        type("Txt_DatNais", "320126");
        return click_with_the_mouse(shown("Txt_HorMensEtab"));
      case 6:  // over a form
        open_items_of_first_amendment();
        click("Cmd_Ajouter");
        return press(Qt::Key_Escape);
      case 7:
        open_items_of_first_amendment();
        click("Cmd_Ajouter");
        return click_with_the_mouse(shown("Cmd_Annuler"));
      case 8:  // while a key is typed
        return type("Cbo_Secteur", ""), type("Txt_Secteur", "999");
      default:
        widget_.ask({.title = "Fiches du personnel", .text = "Quitter ?", .buttons = screen::Buttons::YesNo});
    }
  }
};

TEST_P(QuestionTest, TheWidgetGoesWhileItIsAsked) {
  const auto [how, moment] = GetParam();
  auto window = std::make_unique<QWidget>();
  if (moment == Moment::kWithItsWindow) {
    (new QVBoxLayout(window.get()))->addWidget(&widget_);
    window->show();
  }
  open_mortal_card();
  bool asked = false;
  const auto destroy_all = [&, moment = moment] {
    asked = true;
    if (moment == Moment::kAfterItsYes) emit widget_.open_message()->answered(screen::Answer::Yes);
    if (moment == Moment::kWithItsWindow) (void)owned_.release();
    window.reset();
    destroy();
  };
  QObject::connect(&widget_, &ControleVelanorWidget::message_opened, qApp, [&, moment = moment] {
    if (moment == Moment::kWhileItOpens || moment == Moment::kAfterItsYes) return destroy_all();
    QTimer::singleShot(0, qApp, destroy_all);
  });
  ask(how);
  EXPECT_TRUE(asked);
  settle();
  EXPECT_TRUE(stored());
}

INSTANTIATE_TEST_SUITE_P(Moments, QuestionTest,
                         testing::Combine(testing::Range(0, 10),
                                          testing::Values(Moment::kWhileItOpens, Moment::kWhileItWaits,
                                                          Moment::kAfterItsYes, Moment::kWithItsWindow)));

// Each news in turn, of an act of the user's, of the host's and of an opening.
enum class By { kUser, kHost, kOpening };

class NewsTest : public LifetimeTest, public testing::WithParamInterface<std::tuple<int, By>> {
 protected:
  template <typename Signal>
  void destroy_at(Signal signal) {
    QObject::connect(&widget_, signal, qApp, [this] { destroy(); });
  }
  void destroy_at(int news) {
    using Widget = ControleVelanorWidget;
    switch (news) {
      case 0:
        return destroy_at(&Widget::card_opened);
      case 1:
        return destroy_at(&Widget::state_changed);
      case 2:
        return destroy_at(&Widget::card_id_changed);
      case 3:
        return destroy_at(&Widget::card_title_changed);
      case 4:
        return destroy_at(&Widget::card_closed);
      default:
        return destroy_at(&Widget::card_saved);
    }
  }
  void click_by(By by, const char* name) {
    if (by == By::kUser) return click(name);
    EXPECT_EQ(screen::Hand(widget_.screen()).click(*widget_.screen().top().find(name)), "");
  }
};

TEST_P(NewsTest, TheWidgetGoesWhenItTellsThem) {
  const auto [news, by] = GetParam();
  open_mortal_card();
  click("Cmd_OK");
  destroy_at(news);
  auto& employee = dynamic_cast<screen::TextBox&>(*widget_.screen().top().find("Txt_Aidant"));
  if (by == By::kOpening) widget_.open("001", "2026", "00010");
  if (by == By::kUser) type("Txt_Aidant", "00010");
  if (by == By::kHost) {
    EXPECT_EQ(screen::Hand(widget_.screen()).type(employee, "00010"), "");
  }
  if (owned_) click_by(by, "Cmd_OK");
  EXPECT_EQ(owned_, nullptr);
  settle();
}

INSTANTIATE_TEST_SUITE_P(All, NewsTest,
                         testing::Combine(testing::Range(0, 6),
                                          testing::Values(By::kUser, By::kHost, By::kOpening)));

TEST_F(LifetimeTest, TheWidgetGoesUnderAMessageOfAnActOfTheHosts) {
  open_mortal_card();
  at_next_message([&](MessageSheet&) { destroy(); });
  EXPECT_EQ(screen::Hand(widget_.screen()).click(*widget_.screen().top().find("Cmd_Supp")), "");
  EXPECT_EQ(owned_, nullptr);
  settle();
  EXPECT_TRUE(stored());
}

TEST_F(LifetimeTest, TheWidgetGoesWhileAnOpeningAsks) {
  open_mortal_card();
  type("Txt_HorMensEtab", "1");
  at_next_message([&](MessageSheet&) { destroy(); });
  EXPECT_EQ(widget_.open("001", "2026", "00020").outcome, control::Opening::Outcome::kNotStarted);
  settle();
}

TEST_F(LifetimeTest, TheWidgetGoesUnderAnOpenForm) {
  open_mortal_card();
  open_items_of_first_amendment();
  QTimer::singleShot(0, qApp, [this] { destroy(); });
  while (owned_) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  settle();
}

TEST_F(LifetimeTest, TheWidgetGoesUnderTwoMessages) {
  open_mortal_card();
  screen::Answer of_host = screen::Answer::Yes;
  at_next_message([&](MessageSheet&) {
    at_next_message([&](MessageSheet&) { destroy(); });
    of_host = widget_.ask({.title = "Hôte", .text = "Oui ?", .buttons = screen::Buttons::YesNo});
  });
  click("Cmd_Supp");
  settle();
  EXPECT_EQ(of_host, screen::Answer::No);
  EXPECT_TRUE(stored());
}

TEST_F(LifetimeTest, TheWidgetGoesWhenItSaysThatTheUserLeft) {
  widget_.TheDatabase(*mortal_);
  widget_.show();
  widget_.init();
  QObject::connect(&widget_, &ControleVelanorWidget::left, qApp, [this] { destroy(); });
  click("Cmd_Sortir");
  while (owned_) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  settle();
}

TEST_F(LifetimeTest, TheWidgetGoesWhileItAsksForHelp) {
  open_mortal_card();
  QObject::connect(&widget_, &ControleVelanorWidget::help_asked, qApp, [this] { destroy(); });
  QMouseEvent right(QEvent::MouseButtonPress, QPointF(3, 3), QPointF(3, 3), Qt::RightButton, Qt::RightButton,
                    Qt::NoModifier);
  QCoreApplication::sendEvent(&widget_, &right);
  widget<QAction>("Mnu_Sommaire").trigger();
  EXPECT_EQ(owned_, nullptr);
  settle();
}

TEST_F(LifetimeTest, TheWidgetGoesWhileAMenuOrAListHangsOverIt) {
  open_mortal_card();
  QMouseEvent right(QEvent::MouseButtonPress, QPointF(3, 3), QPointF(3, 3), Qt::RightButton, Qt::RightButton,
                    Qt::NoModifier);
  QCoreApplication::sendEvent(&widget_, &right);
  ASSERT_NE(QApplication::activePopupWidget(), nullptr);
  destroy();
  settle();
  EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(LifetimeTest, TheWidgetGoesWhileItStarts) {
  // The only entity has no personnel records.
  for (const char* entity : {"001", "007"}) memory_.OpenFile("ASSOCIATION")->DeleteRecord(entity);
  QObject::connect(&widget_, &ControleVelanorWidget::message_opened, qApp, [this] { destroy(); });
  widget_.TheDatabase(*mortal_);
  widget_.show();
  widget_.init();
  EXPECT_EQ(owned_, nullptr) << "no message came up";
  settle();
}

TEST_F(LifetimeTest, AMessageOnAWindowThatIsClosedIsClosedToo) {
  open_mortal_card();
  int asked = 0;
  QObject::disconnect(&widget_, &ControleVelanorWidget::message_opened, nullptr, nullptr);
  QObject::connect(&widget_, &ControleVelanorWidget::message_opened, qApp, [&] {
    ++asked;
    QTimer::singleShot(0, qApp, [this] { widget_.close(); });
  });
  QApplication::setQuitOnLastWindowClosed(false);
  click("Cmd_Supp");
  QApplication::setQuitOnLastWindowClosed(true);
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(text("Txt_Etat"), "Modification");
  EXPECT_TRUE(stored());
  widget_.show();
  EXPECT_EQ(widget_.open_message(), nullptr);
  EXPECT_TRUE(shown("Cmd_Supp").isEnabled());
}

}  // namespace
}  // namespace velanor::qt
