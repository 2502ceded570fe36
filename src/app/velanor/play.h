// velanor --play: a scenario on the real window.
#pragma once

#include <QString>

#include "velanor/database.h"

namespace velanor::app {

struct PlayOptions {
  QString file;   // "-": standard input
  QString shots;  // folder of the pictures; "": none
};

// Plays on the database and returns the exit status.
int play_on_window(store::Database& database, const PlayOptions& options);

}  // namespace velanor::app
