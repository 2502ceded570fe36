// The component: the personnel budget cards of an employer, on a screen that a toolkit shows.
#pragma once

#include <memory>

#include "velanor/database.h"
#include "velanor/host.h"
#include "velanor/screen.h"
#include "velanor/util_saisie.h"

namespace velanor {

// Made by a host, given its three objects, then started by `init`; from then on it runs on what
// the user does through its screen. Not used again after the user has left it. Everything that is
// handed in must outlive it. Several components in one process do not disturb each other; those
// on one database share its open files.
class ControleVelanor {
 public:
  // What surrounds the component. `entry` may be null: then the default one is made.
  struct Surroundings {
    screen::Toolkit& toolkit;
    control::HelpViewer& help;
    control::HostWindow& window;
    entry::UtilSaisie* entry = nullptr;
  };

  explicit ControleVelanor(const Surroundings& surroundings);
  ~ControleVelanor();
  ControleVelanor(const ControleVelanor&) = delete;
  ControleVelanor& operator=(const ControleVelanor&) = delete;

  // Write-only properties. Setting the rights asks them once for "ELEMBUDGETPERS".
  void DroitsUtilisateur(control::UserRights& rights);
  void TheClient(control::Client& client);
  void TheDatabase(store::Database& database);

  // Start-up. Throws store::DbError when a file cannot be opened or a parameter record of the
  // file TABLES cannot be read; std::logic_error when no database was set. The component is then
  // unusable.
  void init();

  // The forms and controls, by name, and the way to act on them.
  screen::Screen& screen();
  // The working record of the card that is open: what saving would start from. Empty before
  // `init`.
  const store::DbRecord& card_in_hand() const;
  // The window was destroyed while the component called it: closes the files at once. What is still
  // under way in the component may only unwind.
  void abandon();
  // The user left it (or it was never started).
  bool closed() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace velanor
