#include "app/velanor/paper/pdf.h"

#include <QMarginsF>
#include <QPageSize>
#include <fstream>

#include "app/velanorctl/export_target.h"
#include "qt/strings.h"
#include "store/sqlite/unfinished_file.h"
#include "velanor/database.h"

namespace velanor::app::paper {
namespace {

store::DbError failure(const std::string& path) {
  return {store::kStoreFailure, "Le document" + (path.empty() ? "" : " « " + path + " »") +
                                    " n'a pas pu être écrit. Vérifiez la place sur le disque et votre droit "
                                    "d'écrire dans ce dossier."};
}

}  // namespace

Pdf::Pdf(const QString& title, const QSizeF& paper) : buffer_(&bytes_), writer_(&buffer_) {
  buffer_.open(QIODevice::WriteOnly);
  writer_.setTitle(title);
  writer_.setCreator("Fiches du personnel");
  writer_.setResolution(kPerInch);
  const bool across = paper.width() > paper.height();
  const QSizeF upright = (across ? paper.transposed() : paper) / kPoint;
  writer_.setPageSize(QPageSize(upright, QPageSize::Point, {}, QPageSize::FuzzyMatch));
  writer_.setPageOrientation(across ? QPageLayout::Landscape : QPageLayout::Portrait);
  writer_.setPageMargins({});
}

void Pdf::add(const Page& page) {
  const bool ready = begun_ ? writer_.newPage() : painter_.begin(&writer_);
  if (!ready) throw failure({});
  begun_ = true;
  page.draw(painter_);
}

QByteArray Pdf::finish() {
  if (!begun_ || !painter_.end()) throw failure({});
  buffer_.close();
  return std::move(bytes_);
}

QByteArray pdf_of(const QString& title, const QSizeF& paper, const std::vector<Page>& pages) {
  Pdf pdf(title, paper);
  for (const Page& page : pages) pdf.add(page);
  return pdf.finish();
}

void write_document(const QString& path, const QByteArray& bytes) {
  const std::string name = qt::from_qt(path);
  refuse_export_target(name, "Le document");
  store::sqlite::UnfinishedFile file(name);
  {
    std::ofstream out(file.path(), std::ios::binary);
    out.write(bytes.data(), bytes.size());
    out.flush();
    if (!out) throw failure(name);
  }
  file.complete();
}

}  // namespace velanor::app::paper
