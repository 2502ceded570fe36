// The lines of a table as text for the clipboard.
#pragma once

#include <QString>

#include "velanor/form.h"

namespace velanor::qt {

class LinesModel;

// The headings and the lines, cells parted by tabulators, without the blanks that fill up figures. `line` is
// one of the lines, or -1 for all. The activities are one list of a fixed layout, and two columns here.
QString table_text(const screen::ListBox& first, const LinesModel& lines, int line);

}  // namespace velanor::qt
