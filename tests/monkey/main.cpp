// Plays a game of the random user, the invariants checked after each act.
// Usage: monkey [ACTIONS] [SEED] [plain|failing] [CHECK...]
// The seed is printed; without a kind it decides on that too, a third of the games on a store that fails
// at times. The checks that are named are left out.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>

#include "monkey/monkey.h"
#include "support/awkward.h"

namespace velanor::test {
namespace {

struct Game {
  long actions = 20'000;
  std::uint64_t seed = std::random_device{}();
  Store store = Store::kPlain;
  std::vector<std::string> left_out;
};

Game game_of(const std::vector<std::string>& arguments) {
  Game game;
  if (!arguments.empty()) game.actions = std::stol(arguments[0]);
  if (arguments.size() > 1) game.seed = std::stoull(arguments[1]);
  game.store = game.seed % 3 == 0 ? Store::kFailing : Store::kPlain;
  const auto checks = Invariants::names();
  for (std::size_t i = 2; i < arguments.size(); ++i) {
    if (arguments[i] == "plain" || arguments[i] == "failing") {
      game.store = arguments[i] == "plain" ? Store::kPlain : Store::kFailing;
    } else if (std::find(checks.begin(), checks.end(), arguments[i]) != checks.end()) {
      game.left_out.push_back(arguments[i]);
    } else {
      throw std::invalid_argument("no check " + arguments[i]);
    }
  }
  return game;
}

int tell_breach(const Monkey& monkey, long action, const std::string& breach) {
  for (const std::string& step : monkey.trail()) std::cout << "  " << step << "\n";
  std::cout << "action " << action << ": " << breach << "\n0 passed, 1 failed\n";
  return 1;
}

int play(const Game& game) {
  std::cout << "seed " << game.seed << ", " << (game.store == Store::kPlain ? "plain" : "failing") << " store"
            << std::endl;
  store::MemoryDatabase base;
  MemorySink sink(base, Towns::kSome);
  demo::fill(sink, {.employees = 60});
  add_awkward_records(base);
  Monkey monkey(base, game.store, game.seed);
  for (const std::string& check : game.left_out) monkey.leave_out(check);
  const auto begun = std::chrono::steady_clock::now();
  for (long i = 0; i < game.actions; ++i) {
    std::string breach;
    try {
      breach = monkey.act();
    } catch (const std::exception& error) {
      breach = std::string("thrown: ") + error.what();
    }
    if (!breach.empty()) return tell_breach(monkey, i, breach);
  }
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begun;
  const Score& score = monkey.score();
  std::cout << game.actions << " actions, "
            << static_cast<long>(static_cast<double>(game.actions) / took.count())
            << " a second; cards saved: " << score.saved << " (" << score.created
            << " new), lines added: " << score.added << ", failures survived: " << score.failures
            << ", ways out proved: " << score.ways_out << ", led to cards: " << score.led
            << ", steps back and forth: " << score.steps << "\n1 passed, 0 failed\n";
  return 0;
}

}  // namespace
}  // namespace velanor::test

int main(int argc, char** argv) {
  return velanor::test::play(velanor::test::game_of({argv + 1, argv + argc}));
}
