// The files of a base as a clerk calls them.
#pragma once

#include <QString>
#include <QStringList>

#include "velanor/database.h"

class QComboBox;

namespace velanor::app {

// "Secteurs (SECTEUR)"; the name alone of a file that nobody here knows.
QString described(const QString& file);
// Offers those that the base holds, and of the known ones also those that are empty, each with its name as
// the data of its line. Cards and what is computed of them come last, or not at all.
enum class OfferCards { kYes, kNo };
void offer_files(QComboBox& box, store::Database& database, OfferCards cards);

}  // namespace velanor::app
