// The component without a window, for a scenario.
#pragma once

#include <memory>

#include "play/player.h"
#include "velanor/database.h"

namespace velanor::app {

// Makes the component on the database and starts it. Database and boxes must outlive it.
std::unique_ptr<play::Stage> start_headless(store::Database& database, play::MessageBoxes& boxes);

}  // namespace velanor::app
