// What the application around the component hands in, besides the database, and what it hears of.
#pragma once

#include <string>
#include <string_view>

namespace velanor::store {
class Database;
}

namespace velanor::control {

// All of these are called on the component's thread.

// The access-rights component. The answer is kept and passed on to nobody.
class UserRights {
 public:
  virtual ~UserRights() = default;
  // Called once, when they are handed in.
  virtual std::string rights(std::string_view element) = 0;
};

// The database client: opaque to the component, which only hands it to the help viewer.
class Client {
 public:
  virtual ~Client() = default;
};

class HelpViewer {
 public:
  virtual ~HelpViewer() = default;
  // Shows a page by file name, with a window title and a section letter, and does not wait until it is read.
  // The client is null where the host set none.
  virtual void show(Client* client, store::Database& database, std::string_view page, std::string_view title,
                    std::string_view section) = 0;
};

// The window that contains the component.
class HostWindow {
 public:
  virtual ~HostWindow() = default;
  // The user left the component: its last call to the host, but for the toolkit's `acted`. The window may not
  // destroy the component before the act in which it is called is over.
  virtual void unload() = 0;
};

// What is open on the component's screen.
enum class State {
  kNone,      // no card: the user chooses one
  kCreating,  // a new card, which is not stored yet
  kEditing,   // a stored card
  kReading,   // a stored card that cannot be changed: of a year that is over, or in a read-only database
};

// A card as a host names it.
struct Card {
  std::string id;  // of its record: 5 characters for the employee, 3 for the entity, 4 for the year; "" while
                   // it is not stored
  std::string title;  // code and name of the employee; of a new card the name, "Nouvelle fiche" as long as it
                      // has none
};

// A field of a card, as a host may look it up in the versions of its record.
struct FieldPlace {
  int attribute = 0;
  std::string line;  // "" for a single field; else the stored date of effect of its amendment, or the code of
                     // its activity
};

// Hears what becomes of the cards on the screen, in the order in which it came to be.
//
// Everything is told when the act that did it is over: the rules have returned, the window shows what there
// is now, and the component can be called again, also to open another card; what comes of that is told after
// what is being told. Of an act that fails (see store::DbError) that much is told as was done before it
// failed, and only then the failure goes on to whoever acted. Whoever hears may start and stop listening, and
// may destroy the component. What a listener throws does not keep the others from hearing, nor the component
// from going on: it goes on to whoever acted, unless the act failed itself.
class CardListener {
 public:
  virtual ~CardListener() = default;
  // A card is on the screen, to be made, changed or read.
  virtual void card_opened(const Card&) {}
  // It was saved: it is stored as it stood on the screen. A new one for the first time: its id is the one
  // that it was given. One in which nothing had changed was not written again.
  virtual void card_saved(const Card&) {}
  // Its record was removed.
  virtual void card_deleted(const Card&) {}
  // Another card was written as its duplicate, under the id `copy`; what is open has not changed.
  virtual void card_copied(const Card&, const std::string& copy) { (void)copy; }
  // It is on the screen no more: saved, deleted, given up, or left for another. Follows each `card_opened`
  // exactly once, but where the component ends first.
  virtual void card_closed(const Card&) {}
  // Somebody else has saved the card that is open, or deleted it: it does not stand any more as it was
  // opened. What is on the screen stays; saving it puts the two together. `author`: see store::Change.
  virtual void card_saved_elsewhere(const Card&, const std::string& author) { (void)author; }
  virtual void card_deleted_elsewhere(const Card&, const std::string& author) { (void)author; }
  // The component's state, the id or title of the card, or whether it is modified is otherwise than at the
  // last time. Once an act, after all that it did.
  virtual void state_changed() {}
  // An act is over, and all that came of it has been told: what is entered on the screen may read otherwise
  // (see ControleVelanor::card_as_entered). Also where nothing came of it; what a listener does here is an
  // act in its turn.
  virtual void act_over() {}
};

// What came of leading a component to a card.
struct Opening {
  enum class Outcome {
    kOpen,        // the card is on the screen, now or already
    kUnknown,     // there is no such card; nothing has changed
    kKept,        // the user keeps the card that was open; nothing has changed
    kBusy,        // a message waits, or an act is under way; nothing has changed
    kNotStarted,  // or the user has left
    kFailed,      // the card went away meanwhile: the user was told, and none is open
  };
  Outcome outcome = Outcome::kOpen;
  std::string why;  // a French sentence for the user; "" when the card is open
  bool is_open() const { return outcome == Outcome::kOpen; }
  static Opening busy();
  static Opening not_started();
};

}  // namespace velanor::control
