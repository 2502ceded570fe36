// Colours and size of the text, the same for all windows of the program.
#pragma once

#include <QFont>
#include <QObject>

#include "app/velanor/settings.h"

class QActionGroup;
class QMenu;

namespace velanor::app {

// Dark colours for the whole program.
void show_dark();

// Chosen in the menus, at once for all windows, and kept in the settings.
class Appearance : public QObject {
 public:
  // Applies what the settings say; `dark`: dark colours for this run, whatever they say.
  explicit Appearance(bool dark);
  void add_to(QMenu& menu);

 private:
  void add_group(QMenu& menu, const QString& title, const QActionGroup& group);

  Settings settings_;
  QFont font_;  // the desktop's
  QActionGroup* colours_;
  QActionGroup* sizes_;
};

}  // namespace velanor::app
