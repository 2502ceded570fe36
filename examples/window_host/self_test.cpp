#include "self_test.h"

#include <velanor/hand.h>

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMetaObject>
#include <stdexcept>

namespace {

namespace control = velanor::control;
namespace screen = velanor::screen;
namespace store = velanor::store;

void must(bool holds, const std::string& sentence) {
  if (!holds) throw std::runtime_error(sentence);
}

void did(const screen::Refusal& refusal) { must(refusal.empty(), refusal.why()); }

}  // namespace

std::string SelfTest::play() {
  try {
    open_a_card();
    complete_a_date();
    refuse_a_date();
    close_with_changes();
    close_under_a_question();
  } catch (const std::exception& error) {
    return error.what();
  }
  return {};
}

// The last year's first card; ids are the codes of employee, entity and year.
void SelfTest::open_a_card() {
  const auto ids =
      database_.Select(store::DbQuery("SSELECT VELANORO PAR-DECR Annee PAR 0", "VELANORO", "0").encoded());
  must(ids.DCount() > 0, "The database has no card.");
  id_ = ids(1);
  before_ = stored();
  const QString id = QString::fromStdString(id_);
  const control::Opening opening = window_.cards().open(id.mid(5, 3), id.mid(8), id.left(5));
  must(opening.is_open(), opening.why);
  must(window_.cards().property("cardId").toString() == id, "Another card was opened.");
  must(window_.windowTitle().startsWith(window_.cards().card_title() + "[*]"),
       "The title names another card.");
  must(window_.cards().state() == control::State::kEditing, "The card cannot be changed.");
}

std::string SelfTest::enter_birth(std::string_view text) {
  auto& box = dynamic_cast<screen::TextBox&>(*window_.cards().screen().base().find("Txt_DatNais"));
  screen::Hand hand(window_.cards().screen());
  did(hand.replace_text(box, text));
  did(hand.leave());
  return box.text();
}

// By the clock of the host.
void SelfTest::complete_a_date() {
  must(enter_birth("7") == "07/03/2031", "The date was completed by another clock.");
  must(window_.isWindowModified(), "The title does not say that the card was changed.");
}

void SelfTest::refuse_a_date() {
  const std::string refused = enter_birth("07/03/1031");
  must(refused == "07/03/1031", "What was refused is not left for correction.");
  must(window_.statusBar()->currentMessage() ==
           "La date 07/03/1031 est à plus de cent ans d'ici : vérifiez l'année.",
       "Nobody says why the date was refused.");
  const screen::Control* focus = window_.cards().screen().base().focus();
  must(focus != nullptr && focus->name() == "Txt_DatNais", "The caret is not back in the field.");
}

void SelfTest::at_next_message(std::function<void()> act) {
  QObject::connect(&window_.cards(), &HostWindow::Cards::message_opened, &window_.cards(), std::move(act),
                   static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
}

// The host asks; Escape says no.
void SelfTest::close_with_changes() {
  bool asked = false;
  at_next_message([&] {
    asked = true;
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(window_.focusWidget(), &escape);
  });
  window_.close();
  while (!asked && window_.isVisible()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  must(asked, "The window closes without a question.");
  must(window_.isVisible(), "The window was closed against the answer.");
  must(window_.cards().modified(), "What was entered is lost.");
  enter_birth(velanor::entry::make_util_saisie()->InternalToDate(before_(9)));
  must(!window_.isWindowModified(), "What was taken back is told as a change.");
}

// The component asks whether the card is to be deleted.
void SelfTest::close_under_a_question() {
  bool asked = false;
  at_next_message([&] {
    asked = true;
    window_.close();
  });
  did(screen::Hand(window_.cards().screen()).click(*window_.cards().screen().base().find("Cmd_Supp")));
  must(asked, "The component deletes without a question.");
  must(!window_.isVisible(), "The window was not closed.");
  must(stored() == before_, "The card in the store is not as it was.");
}

store::DbRecord SelfTest::stored() const { return database_.OpenFile("VELANORO")->Read(id_); }
