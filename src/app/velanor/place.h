// Where a window stands: where the last one stood, and not on top of another that is open.
#pragma once

#include <QByteArray>
#include <QLockFile>
#include <memory>

class QWidget;

namespace velanor::app {

// The windows of all programs of this user are numbered; one that is closed gives its number back.
class Place {
 public:
  Place();
  // `kept` is the geometry of the window that was closed last, or empty.
  void give_to(QWidget& window, const QByteArray& kept) const;

 private:
  int number_ = 0;
  std::unique_ptr<QLockFile> lock_;
};

}  // namespace velanor::app
