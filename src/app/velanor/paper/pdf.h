// Pages as a PDF file.
#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QPainter>
#include <QPdfWriter>
#include <QSizeF>
#include <QString>

#include "app/velanor/paper/page.h"

namespace velanor::app::paper {

// Takes page after page; whoever has many adds them between two events. Its texts can be searched and copied,
// its fonts come with it.
class Pdf {
 public:
  Pdf(const QString& title, const QSizeF& paper);

  void add(const Page& page);
  // Nothing is added afterwards. Throws store::DbError where the pages could not be put down.
  QByteArray finish();

 private:
  QByteArray bytes_;
  QBuffer buffer_;
  QPdfWriter writer_;
  QPainter painter_;
  bool begun_ = false;
};

QByteArray pdf_of(const QString& title, const QSizeF& paper, const std::vector<Page>& pages);

// Whole or not at all, readable by its owner alone; in the place of an older file, and of nothing else.
// Throws store::DbError, and then what stood there still does.
void write_document(const QString& path, const QByteArray& bytes);

}  // namespace velanor::app::paper
