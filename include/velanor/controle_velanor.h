// The component: the personnel budget cards of an employer, on a screen that a toolkit shows.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "velanor/database.h"
#include "velanor/date.h"
#include "velanor/host.h"
#include "velanor/screen.h"
#include "velanor/util_saisie.h"

namespace velanor {

// Made by a host, given its three objects, then started by `init`; from then on it runs on what the user does
// through its screen, and on what the host does through it (see Hand) or asks of it here. When the user has
// left it, it is not used again, and only waits to be destroyed. A host on a Qt window has it made and driven
// by the widget (controle_velanor_widget.h).
//
// One thread, that of the host's user interface. Everything that is handed in by reference must outlive it.
// Several components in one process do not disturb each other; those on one database share its open files.
// It may be destroyed between two acts, and by a listener, but not by the toolkit, the help viewer or the
// host window while it calls them (see `abandon`).
class ControleVelanor {
 public:
  // What surrounds the component, and outlives it.
  struct Surroundings {
    screen::Toolkit& toolkit;
    control::HelpViewer& help;
    control::HostWindow& window;
  };

  explicit ControleVelanor(const Surroundings& surroundings);
  ~ControleVelanor();
  ControleVelanor(const ControleVelanor&) = delete;
  ControleVelanor& operator=(const ControleVelanor&) = delete;

  // ---- Before `init`.

  // Write-only properties; the client may be left out. Setting the rights asks them once for
  // "ELEMBUDGETPERS".
  void DroitsUtilisateur(control::UserRights& rights);
  void TheClient(control::Client& client);
  void TheDatabase(store::Database& database);
  // An entry utility of the host's own; without one the default is made, on this clock or the system's.
  void set_entry(entry::UtilSaisie& entry);
  void set_clock(entry::Clock clock);

  // Start-up. Throws store::DbError when a file cannot be opened or a parameter record of the
  // file TABLES cannot be read; std::logic_error when no database was set, or the second time. After a
  // DbError the component is unusable.
  void init();

  // ---- What is open. May be asked at any time, also within an act, and after each key.

  // kNone also before `init` and after the user has left.
  control::State state() const;
  // Of the card that is open (see control::Card); "" when none is.
  std::string card_id() const;
  std::string card_title() const;
  // It would be lost with the card: a line or a box that reads otherwise than when the card was opened, or an
  // entry that was begun. What was taken back is no change.
  bool modified() const;

  // Does what a clerk would do to have that card on the screen. Codes may lack their leading zeros. Nothing
  // is done where there is no such card, where a message waits, and where it is open already, whatever is
  // being entered on it. Another card with changes is asked for as "Annuler" asks; without changes it goes
  // without a question, with its forms and the line under edit. Throws store::DbError when the store fails on
  // the way: the screen then shows what `state` says.
  control::Opening open(std::string_view entity, std::string_view year, std::string_view employee);

  // Reads the card that is open anew from the store, as one does who leaves it and opens it again; asks and
  // throws as `open` does. kUnknown where none is open, where it is not stored yet, and where it is gone from
  // the store: it then stays on the screen.
  control::Opening reload();

  // ---- Taking back what was confirmed on the card that is open, and doing it again.

  // The step that would be taken back, or done again, in the words of the screen: "ligne du 01/03/2026
  // supprimée". "" where there is none: also while a line, or a form over the card, is being entered, for
  // that is confirmed or abandoned where it is, and on a card that cannot be changed. Steps end with the
  // card.
  std::string undo_name() const;
  std::string redo_name() const;
  // What has just been typed is judged first, as when a field is left, and is a step then. The user is led to
  // what has changed. False where there was no such step, or where what was typed cannot stand. Throws
  // store::DbError where a reference file cannot be read.
  bool undo();
  bool redo();

  // ---- What helps while entering, beside what the controls hold and say.

  // "Reste à répartir : 33,33 %", of the split of activities; "" where no card is open.
  std::string split_told() const;
  // "Total des heures : 151,67", of the payroll items on the screen; "" where none are. Throws store::DbError
  // where the items' file cannot be read.
  std::string hours_told() const;
  // Puts what remains of the split into the line that is being entered, or else on the line that is selected.
  // Both, and the next, are what a clerk would do: a sentence why not, "" where it is done. Throw
  // store::DbError.
  std::string put_remainder();
  // Gives the amendment that is selected, which has no payroll items, those of the one before it.
  std::string repeat_items();
  // The field that the user's hand is on; nothing where it is on none that is stored.
  std::optional<control::FieldPlace> field_in_hand() const;

  // ---- What others write meanwhile, where the database hears of it (see store::Database::news).

  // Becomes readable when there is something to hear; -1 where nothing ever comes.
  int news_descriptor() const;
  // To be called then, by a host that is not a widget. Renews the list of the employees where it has changed,
  // and tells the listeners of an open card that somebody else has saved or deleted. Asks nothing of the user
  // and leaves what he is typing; fails of nothing, for what cannot be read now is read at the next time.
  // False, and nothing heard yet, while a message waits or an act is under way.
  bool hear_news();

  // Listeners hear in the order in which they came; each must stop before it is destroyed, or outlive this.
  // One that never came is passed over.
  void listen(control::CardListener& listener);
  void ignore(control::CardListener& listener);

  // ---- The screen.

  // The forms and controls, by name, and the way to act on them. What a host writes into a control itself,
  // and not as an act, is told with the next act.
  screen::Screen& screen();
  // The working record of the card that is open: what saving would start from. Empty before
  // `init`.
  const store::DbRecord& card_in_hand() const;
  // The card that is open as it reads now: what its boxes hold, its lines, and in its place among them the
  // amendment that is being entered, as soon as its date could stand. What no encoding reads is "". Empty
  // where none is open. Throws store::DbError where a reference file cannot be read.
  store::DbRecord card_as_entered() const;
  // Where an attribute of a card is entered or shown: a box, or the list that has a line for each of its
  // values. Null for what is on no page of the card, and before `init`. It may be out of use just now.
  screen::Control* place_of(int attribute);
  // The window was destroyed while the component called it: closes the files at once. What is still
  // under way in the component may only unwind; nothing is told any more.
  void abandon();
  // The user left it (or it was never started).
  bool closed() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace velanor
