// The last row of a dialog that lists what can be taken back.
#pragma once

#include <QString>
#include <functional>

class QDialog;
class QLabel;
class QLayout;
class QPushButton;

namespace velanor::app {

// The remark, the button that takes what is chosen, and "Fermer", which Enter presses: nothing is taken by an
// Enter too many. Belongs to the dialog once it is in its layout.
QLayout* taking_row(QDialog& dialog, QLabel& remark, QPushButton& take);

// Runs what such a button does, and says what fails of it. Where somebody else was faster, `overtaken` is
// said and `reread` reads what the dialog shows.
void take_back(QDialog& dialog, const std::function<void()>& take, const QString& overtaken,
               const std::function<void()>& reread);

}  // namespace velanor::app
