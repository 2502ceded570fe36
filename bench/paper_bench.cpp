// What the year of a card and its pages cost: a card alone, and 400 cards as one PDF file as `velanor` writes
// it. Without a display.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <cstdlib>

#include "app/velanor/paper/pdf.h"
#include "app/velanor/paper/sheets.h"
#include "app/velanorctl/open_store.h"
#include "office/card_year.h"

namespace velanor::app::paper {
namespace {

constexpr std::size_t kCards = 400;

struct Cards {
  std::unique_ptr<store::Database> database = open_store({"", true});
  office::CardReading reading{*database};
  std::vector<std::string> ids;
  std::vector<store::DbRecord> records;
  Cards() {
    const auto found = database->Select(store::DbQuery("SSELECT VELANORO", "VELANORO", "0").encoded());
    for (std::size_t i = 0; i < kCards; ++i) {
      ids.emplace_back(found(1 + static_cast<int>(i) % found.DCount(), 1));
      records.push_back(reading.file(control::File::kCards).Read(ids.back()));
    }
  }
  office::CardSheet sheet(std::size_t card) const {
    return office::sheet_of(reading, office::name_of_card(ids[card]), records[card]);
  }
};
Cards& cards() {
  static Cards made;
  return made;
}

void YearOfACard(benchmark::State& state) {
  const Cards& made = cards();
  std::size_t card = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(office::year_of(made.reading.draft(made.records[card]), 2026));
    card = (card + 1) % kCards;
  }
}
BENCHMARK(YearOfACard)->Unit(benchmark::kMicrosecond);

void SheetOfACard(benchmark::State& state) {
  std::size_t card = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(cards().sheet(card));
    card = (card + 1) % kCards;
  }
}
BENCHMARK(SheetOfACard)->Unit(benchmark::kMicrosecond);

void PagesOfACard(benchmark::State& state) {
  const office::CardSheet sheet = cards().sheet(0);
  for (auto _ : state) benchmark::DoNotOptimize(card_pages(sheet, Saved::kYes, kUpright));
}
BENCHMARK(PagesOfACard)->Unit(benchmark::kMicrosecond);

void PdfOf400Cards(benchmark::State& state) {
  std::size_t pages = 0;
  qsizetype bytes = 0;
  for (auto _ : state) {
    std::vector<Listed> all;
    for (std::size_t card = 0; card < kCards; ++card)
      all.push_back({"", "", {}, card_pages(cards().sheet(card), Saved::kYes, kUpright)});
    auto book = bound({}, std::move(all), kUpright);
    put_feet(book, kUpright, {"base", "jour"});
    pages = book.size();
    bytes = pdf_of("Fiches", kUpright, book).size();
  }
  state.counters["pages"] = static_cast<double>(pages);
  state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(PdfOf400Cards)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velanor::app::paper

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  QGuiApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
