#include "app/velanor/import_report.h"

#include <algorithm>

#include "qt/strings.h"

namespace velanor::app {
namespace {

using qt::to_qt;

constexpr std::size_t kShown = 500;

QString counted(std::size_t count, const QString& noun) {
  return QString::number(count) + " " + noun + (count > 1 ? "s" : "");
}

void add_remarks(QStringList& lines, const QString& table,
                 const std::vector<exchange::ImportRemark>& remarks) {
  for (std::size_t i = 0; i < std::min(remarks.size(), kShown); ++i)
    lines << table + ":" + QString::number(remarks[i].line) + " : " + to_qt(remarks[i].sentence);
}

void add_records(QStringList& lines, const QString& verb,
                 const std::vector<exchange::ImportReport::Record>& records) {
  for (std::size_t i = 0; i < std::min(records.size(), kShown); ++i) {
    QStringList changes;
    for (const std::string& change : records[i].changes) changes << to_qt(change);
    lines << verb + " " + to_qt(records[i].id) + (changes.isEmpty() ? QString() : " : " + changes.join(", "));
  }
  if (records.size() > kShown)
    lines << verb + " encore " + counted(records.size() - kShown, "enregistrement");
}

}  // namespace

QStringList import_lines(const QString& table, const exchange::ImportReport& report, ImportVerb verb) {
  QStringList lines;
  if (!report.faults.empty()) {
    const std::size_t faults = report.faults.size() + report.remarks_left_out;
    lines << table + " : " + counted(faults, "faute");
    add_remarks(lines, table, report.faults);
    if (faults > kShown)
      lines << table + " : et " + counted(faults - std::min(report.faults.size(), kShown), "autre");
    return lines;
  }
  lines << table + " : " + counted(report.created.size(), "enregistrement") + " à créer, " +
               QString::number(report.changed.size()) + " à modifier, " + QString::number(report.unchanged) +
               (report.unchanged > 1 ? " inchangés" : " inchangé");
  if (verb == ImportVerb::kDid)
    lines.front()
        .replace(" à créer", report.created.size() > 1 ? " créés" : " créé")
        .replace(" à modifier", report.changed.size() > 1 ? " modifiés" : " modifié");
  add_remarks(lines, table, report.remarks);
  return lines;
}

QStringList record_lines(const exchange::ImportReport& report) {
  QStringList lines;
  add_records(lines, "crée", report.created);
  add_records(lines, "modifie", report.changed);
  return lines;
}

}  // namespace velanor::app
