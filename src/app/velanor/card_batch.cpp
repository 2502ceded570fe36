#include "app/velanor/card_batch.h"

#include <QElapsedTimer>
#include <utility>

#include "app/velanor/paper/flow.h"
#include "qt/strings.h"
#include "store/sqlite/failure.h"
#include "text/failure.h"

namespace velanor::app {
namespace {

using qt::to_qt;

constexpr int kSlice = 12, kPatience = 100;  // milliseconds
constexpr double kOfReading = 0.5;           // of all the work

QString counted(std::size_t count) { return QString::number(count) + (count > 1 ? " fiches" : " fiche"); }

}  // namespace

CardBatch::CardBatch(qt::ControleVelanorWidget& component, store::Database& database, Order order,
                     QObject* parent)
    : QObject(parent), component_(component), order_(std::move(order)), database_(database) {
  go_on_.setSingleShot(true);
  connect(&go_on_, &QTimer::timeout, this, &CardBatch::go_on);
}

// Whoever hears of it may destroy this.
void CardBatch::go_on() try {
  if (component_.open_message() || component_.screen().acting()) return go_on_.start(kPatience);
  QElapsedTimer time;
  time.start();
  bool more = true;
  while (more && time.elapsed() < kSlice) more = step();
  if (!more) return emit ended(finish());
  go_on_.start(0);
  emit progressed(part());
} catch (const std::exception& error) {
  emit ended(to_qt(text::failure_sentence(error)));
}

bool CardBatch::step() {
  if (cards_.size() < order_.ids.size()) return read(cards_.size()), true;
  if (!pdf_) return bind(), true;
  pdf_->add(pages_[drawn_++]);
  return drawn_ < pages_.size();
}

// One that cannot be read, or has gone, is told in the list; the others may be sound.
void CardBatch::read(std::size_t card) {
  const std::string& id = order_.ids[card];
  const office::CardName name = office::name_of_card(id);
  paper::Listed listed{to_qt(name.employee), order_.names[card]};
  if (!reading_) reading_ = std::make_unique<office::CardReading>(database_);
  try {
    if (const auto record = reading_->file(control::File::kCards).find(id)) {
      listed.pages =
          paper::card_pages(office::sheet_of(*reading_, name, *record), paper::Saved::kYes, paper::kUpright);
    } else {
      listed.remark = "supprimée";
    }
  } catch (const store::sqlite::DamagedRecord&) {
    listed.remark = "illisible";
  }
  if (listed.pages.empty()) ++unread_;
  cards_.push_back(std::move(listed));
}

void CardBatch::bind() {
  pages_ = paper::bound(order_.shown, std::move(cards_), paper::kUpright);
  cards_.resize(order_.ids.size());
  paper::put_feet(pages_, paper::kUpright, order_.source);
  pdf_ = std::make_unique<paper::Pdf>("Fiches du personnel", paper::kUpright);
}

double CardBatch::part() const {
  if (!pdf_) return kOfReading * static_cast<double>(cards_.size()) / static_cast<double>(order_.ids.size());
  return kOfReading + (1 - kOfReading) * static_cast<double>(drawn_) / static_cast<double>(pages_.size());
}

QString CardBatch::finish() {
  paper::write_document(order_.path, pdf_->finish());
  QString told = QString("%1, %2 pages, écrites dans « %3 »")
                     .arg(counted(order_.ids.size() - static_cast<std::size_t>(unread_)))
                     .arg(pages_.size())
                     .arg(order_.path);
  if (unread_ > 0) told += QString(" ; %1 sans page, comme la liste le dit").arg(unread_);
  return told + ".";
}

}  // namespace velanor::app
