// Keys that are brought to a list after it has gone.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace velanor::qt {

// A list that hangs over the window (of a combo box, of a completion, a menu) has the keyboard to itself,
// and the server goes on bringing it what is typed until the word that it has gone has come round. Such
// keys are the window's over which it hung: they are taken there, as shortcuts and as keys.
class LateKeys : public QObject {
 public:
  explicit LateKeys(QObject* parent = nullptr);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // Whether the keys go to a window that is no more to be seen, past the one that was active before.
  bool are_late() const;
  bool is_owners(const QObject* receiver) const;
  bool take_back(QEvent* event);

  QPointer<QWidget> owner_;
  quint64 heard_ = 0;  // when the last key came that was looked at while its window was there
};

}  // namespace velanor::qt
