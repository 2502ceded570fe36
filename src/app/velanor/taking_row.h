// The last row of a dialog that lists what can be taken back.
#pragma once

class QDialog;
class QLabel;
class QLayout;
class QPushButton;

namespace velanor::app {

// The remark, the button that takes what is chosen, and "Fermer", which Enter presses: nothing is taken by an
// Enter too many. Belongs to the dialog once it is in its layout.
QLayout* taking_row(QDialog& dialog, QLabel& remark, QPushButton& take);

}  // namespace velanor::app
