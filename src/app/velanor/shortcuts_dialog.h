// All shortcuts, in a table that is searched.
#pragma once

#include <QWidget>

namespace velanor::app {

// Those of the window's menus as they stand there, and the keys that fields and tables answer themselves.
void show_shortcuts(QWidget& window);

}  // namespace velanor::app
