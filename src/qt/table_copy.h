// The lines of a table as text for the clipboard.
#pragma once

#include <QString>

#include "velanor/form.h"

namespace velanor::qt {

// The headings and the lines, cells parted by tabulators, without the blanks that fill up figures. `line` is
// one of the lines, or -1 for all.
QString table_text(const screen::TableColumns& columns, int line);

}  // namespace velanor::qt
