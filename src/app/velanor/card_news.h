// What others write to the base on a window, told while the component waits for nothing.
#pragma once

#include <QObject>
#include <memory>

#include "velanor/controle_velanor_widget.h"
#include "velanor/database.h"

class QSocketNotifier;

namespace velanor::app {

// Where the base does not hear of others, the window that comes back to the front is the moment to look.
class CardNews : public QObject {
  Q_OBJECT

 public:
  // Hears from now on, what is written from now on. Both outlive it.
  CardNews(qt::ControleVelanorWidget& component, store::Database& database, QObject* parent);
  ~CardNews() override;

 signals:
  // A record was written or deleted. No id: any of the file; no file: anything.
  void written(const QString& file, const QString& id);
  // Somebody may have written something.
  void may_be_written();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void hear();

  qt::ControleVelanorWidget& component_;
  std::unique_ptr<store::News> news_;
  QSocketNotifier* heard_ = nullptr;
};

}  // namespace velanor::app
