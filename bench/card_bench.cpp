// What a clerk waits for, at 500,000 stored cards of about 1 KB and every town of the country:
// choosing an employee (read, lists, load) and saving a card, in memory and without a window.
#include <benchmark/benchmark.h>

#include <iostream>
#include <stdexcept>

#include "support/office.h"

namespace velanor::test {
namespace {

struct Browsing {
  Browsing() {
    MemorySink sink(database);
    demo::fill(sink, demo::of_scale(500'000));
    office.component.init();
    must(office.hand.type(office.ui.Txt_Asso, "001"));
  }
  static void must(const screen::Refusal& why) {
    if (!why.empty()) throw std::runtime_error(why.why());
  }
  // The next employee of the list, opened as a click on it does.
  void choose() {
    next = (next + 1) % office.ui.Cbo_Aidant.count();
    must(office.hand.choose(office.ui.Cbo_Aidant, next));
  }
  void abandon() { must(office.hand.click(office.ui.Cmd_Annul)); }

  store::MemoryDatabase database;
  Office office{database};
  int next = 0;
};

Browsing& browsing() {
  static Browsing browsing;
  return browsing;
}

// Changes each reference file, so that every list has to be filled anew.
void touch_reference_files(store::MemoryDatabase& database) {
  for (const char* file :
       {"CONVENTIONCOL", "SECTEUR", "COMMUNES", "ACTIVITES", "PROFIL", "ETABLISSEMENT", "RUBCHARGE"}) {
    std::string id;
    database.for_each(file, [&](std::string_view each, const store::DbRecord&) { id = each; });
    database.put(file, id, *database.find(file, id));
  }
}

void start(benchmark::State& state) {
  Browsing& at = browsing();
  for (auto _ : state) {
    Office office(at.database);
    office.component.init();
  }
}
BENCHMARK(start)->Unit(benchmark::kMillisecond);

void choose_with_lists_kept(benchmark::State& state) {
  Browsing& at = browsing();
  for (auto _ : state) {
    at.choose();
    state.PauseTiming();
    at.abandon();
    state.ResumeTiming();
  }
}
BENCHMARK(choose_with_lists_kept)->Unit(benchmark::kMillisecond);

void choose_with_every_list_anew(benchmark::State& state) {
  Browsing& at = browsing();
  for (auto _ : state) {
    state.PauseTiming();
    touch_reference_files(at.database);
    state.ResumeTiming();
    at.choose();
    state.PauseTiming();
    at.abandon();
    state.ResumeTiming();
  }
}
BENCHMARK(choose_with_every_list_anew)->Unit(benchmark::kMillisecond);

// Saving lists the employees anew; what that costs alone is measured below.
void save(benchmark::State& state) {
  Browsing& at = browsing();
  for (auto _ : state) {
    state.PauseTiming();
    at.choose();
    state.ResumeTiming();
    Browsing::must(at.office.hand.click(at.office.ui.Cmd_OK));
  }
  if (!at.office.toolkit.messages.empty() && at.office.ui.Cmd_OK.enabled()) state.SkipWithError("not saved");
}
BENCHMARK(save)->Unit(benchmark::kMillisecond);

// The same list after a change of one card, asked for by choosing the year again.
void employee_list_after_a_save(benchmark::State& state) {
  Browsing& at = browsing();
  for (auto _ : state) {
    state.PauseTiming();
    const std::string id = "00001" + at.office.ui.Txt_Asso.text() + "1999";
    at.database.put("VELANORO", id, {});
    state.ResumeTiming();
    at.office.ui.Cbo_Periode.set_index(-1);
    at.office.ui.Cbo_Periode.set_index(0);
  }
}
BENCHMARK(employee_list_after_a_save)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velanor::test

BENCHMARK_MAIN();
