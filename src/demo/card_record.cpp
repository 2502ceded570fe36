#include "demo/card_record.h"

#include <algorithm>
#include <array>
#include <functional>
#include <span>
#include <string>

#include "card/record/element.h"
#include "card/record/record_compare.h"
#include "velanor/date.h"

namespace velanor::demo {
namespace {

using store::DbRecord;

// A record written front to back, which takes no moving of what is already there. Empty texts
// leave no trace, so that a record has one form only.
class RecordText {
 public:
  // The position must lie behind that of every text before.
  void set(int attribute, int value, int subvalue, std::string_view text) {
    if (text.empty()) return;
    if (attribute > attribute_) value_ = subvalue_ = 1;
    for (; attribute_ < attribute; ++attribute_) bytes_ += store::kAttributeMark;
    if (value > value_) subvalue_ = 1;
    for (; value_ < value; ++value_) bytes_ += store::kValueMark;
    for (; subvalue_ < subvalue; ++subvalue_) bytes_ += store::kSubvalueMark;
    bytes_ += text;
  }
  DbRecord record() const { return DbRecord::from_encoded(bytes_); }

 private:
  std::string bytes_;
  int attribute_ = 1, value_ = 1, subvalue_ = 1;
};

// Monthly ceiling of social security, in hundredths; years before or after the list take its ends.
int ceiling_of(int year) {
  constexpr int kFirstYear = 2023;
  constexpr std::array kCeilings{366600, 386400, 392500, 400500};
  const int last = static_cast<int>(kCeilings.size()) - 1;
  return kCeilings[static_cast<std::size_t>(std::clamp(year - kFirstYear, 0, last))];
}

std::string text(std::optional<int> number) { return number ? std::to_string(*number) : std::string(); }
std::string text(std::string_view text) { return std::string(text); }
std::string text_or_none(int number) { return number == 0 ? std::string() : std::to_string(number); }

using Amendments = std::span<const Amendment>;

// The amendments that are on the card of a year: a career has them in order of date.
Amendments amendments_until(const Career& career, int last_day) {
  const auto& all = career.amendments;
  const auto end =
      std::find_if(all.begin(), all.end(), [&](const Amendment& a) { return a.effective > last_day; });
  return {all.begin(), end};
}

template <typename Items, typename Cell>
void put_column(RecordText& record, const card::Field& field, const Items& lines, Cell cell) {
  int line = 0;
  for (const auto& each : lines) record.set(field.number, ++line, 1, text(std::invoke(cell, each)));
}

template <typename Cell>
void put_items(RecordText& record, const card::Field& field, Amendments amendments, Cell cell) {
  int amendment_number = 0;
  for (const Amendment& amendment : amendments) {
    ++amendment_number;
    int line = 0;
    for (const ItemLine& item : amendment.items) {
      record.set(field.number, amendment_number, ++line, text(std::invoke(cell, item)));
    }
  }
}

template <typename Value>
void put(RecordText& record, const card::Field& field, const Value& value) {
  record.set(field.number, 1, 1, text(value));
}

void put_identity(RecordText& record, const Career& career) {
  put(record, card::kName, career.name);
  put(record, card::kEstablishmentHours, career.establishment->hours);
  put(record, card::kAgreement, career.agreement);
  put(record, card::kSector, career.sector);
  put(record, card::kTown, career.town);
  put(record, card::kContractType, career.fixed_term ? card::kFixedTerm : card::kPermanent);
  put(record, card::kStaffKind,
      career.staff == Staff::kProduction ? card::kProduction : card::kAdministrative);
  put(record, card::kContractStart, career.start);
  put(record, card::kBirth, career.birth);
  put_column(record, card::kActivity, career.activities, &ActivityShare::activity);
  put_column(record, card::kShare, career.activities, &ActivityShare::share);
}

void put_amendments(RecordText& record, const Career& career, Amendments lines) {
  const bool administration = career.staff == Staff::kAdministration;
  put_column(record, card::kEffective, lines, &Amendment::effective);
  put_column(record, card::kGridStart, lines, [](const Amendment& a) { return text_or_none(a.grid_start); });
  put_column(record, card::kQualification, lines, [](const Amendment& a) { return a.qualification->code; });
  put_column(record, card::kGrid, lines,
             [](const Amendment& a) { return a.grid != nullptr ? a.grid->id : std::string_view(); });
  put_column(record, card::kCategory, lines, &Amendment::category);
  put_column(record, card::kHourlyRate, lines,
             [](const Amendment& a) { return text_or_none(a.hourly_rate); });
  put_column(record, card::kMonthlyTime, lines,
             [&](const Amendment& a) { return text_or_none(administration ? a.monthly_time : 0); });
}

void put_pay(RecordText& record, const Career& career, int year, bool end_is_known) {
  put(record, card::kProfile1, career.profile1);
  put(record, card::kProfile2, career.profile2);
  put(record, card::kExemptedHours, career.exempted);
  if (career.ceiling_percent != 0)
    put(record, card::kCeiling, ceiling_of(year) / 100 * career.ceiling_percent);
  if (!end_is_known) return;
  put(record, card::kContractEnd, career.end);
  put(record, card::kEndReason, career.end_reason);
}

void put_mutual_and_origin(RecordText& record, const Career& career, const Employer& employer) {
  put(record, card::kStatus, "0");
  put(record, card::kEstablishment, employer.code + std::string(career.establishment->code));
  put(record, card::kMutualEmployee, career.mutual_employee);
  put(record, card::kMutualEmployer, career.mutual_employer);
  put(record, card::kMutualCharge, career.mutual_charge);
  put(record, card::kContractNature, career.nature);
  put(record, card::kBranchEntry, career.branch_entry);
  put(record, card::kEducation, career.education);
}

}  // namespace

std::optional<DbRecord> card_of(const Career& career, const Employer& employer, int year) {
  const int first_day = *entry::day_number({1, 1, year});
  const int last_day = *entry::day_number({31, 12, year});
  if (career.start > last_day || career.end.value_or(first_day) < first_day) return {};
  const Amendments lines = amendments_until(career, last_day);
  RecordText record;
  put_identity(record, career);
  put_amendments(record, career, lines);
  put_pay(record, career, year, career.end && (career.fixed_term || *career.end <= last_day));
  put_items(record, card::kItemCode, lines, &ItemLine::code);
  put_items(record, card::kItemBase, lines, &ItemLine::base);
  put_items(record, card::kItemRate, lines, &ItemLine::rate);
  put_items(record, card::kItemAmount, lines,
            [](const ItemLine& item) { return std::optional(item.amount); });
  put(record, card::kSocialBase, career.social_base);
  put_column(record, card::kNewMeasure, lines,
             [](const Amendment& a) { return a.new_measure ? card::kYes : card::kNo; });
  put_mutual_and_origin(record, career, employer);
  return record.record();
}

void set_results(DbRecord& card, const Career& career, int year) {
  constexpr int kMonths = 12;
  const Amendment& line = amendments_until(career, *entry::day_number({31, 12, year})).back();
  const long long rate = line.hourly_rate != 0 ? line.hourly_rate : line.qualification->lowest_rate;
  const long long gross = kMonths * (line.monthly_time * rate / 1000);
  const long long charges = gross * 32 / 100;
  const long long mutual = kMonths * career.mutual_employer.value_or(0);
  const long long full_time = 10000LL * line.monthly_time / career.establishment->hours;
  std::size_t next = 0;
  for (long long result :
       {gross, charges, gross + charges + mutual, static_cast<long long>(kMonths) * line.monthly_time,
        full_time, mutual, gross / kMonths, 0LL}) {
    set_element(card, card::kResults[next++], std::to_string(result));
  }
  set_element(card, card::kStatus, "1");
}

}  // namespace velanor::demo
