// What velanorctl takes for the tables of a base, each work in a process of its own: importing the cards,
// exporting them, checking them. The peer is SQLite's own command line with the same table, which is asked
// for no rehearsal, no judgement, no history and no checksum. A fifth of the cards of the other benchmarks,
// as the demonstration makes them.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <stdexcept>

#include "cards.h"
#include "race.h"

namespace velanor::bench {
namespace {

namespace fs = std::filesystem;
using Command = std::vector<std::string>;

constexpr double kMegabyte = 1024.0;  // in KiB, as the system tells

// Runs a program to its end, with its output in a file, and returns the most memory that it held, in MiB.
double run(const Command& command, const std::string& output = "/dev/null") {
  std::vector<char*> words;
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    const int out = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, S_IRUSR | S_IWUSR);
    dup2(out, STDOUT_FILENO);
    execvp(words[0], words.data());
    _exit(127);
  }
  int status = 0;
  rusage used{};
  if (wait4(child, &status, 0, &used) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
    throw std::runtime_error(command[0] + " " + command[1] + " has failed");
  return static_cast<double>(used.ru_maxrss) / kMegabyte;
}

// A base of cards, the same without its cards, and their table.
class Ground {
 public:
  Ground() {
    std::string name = (fs::temp_directory_path() / "velanor-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = name;
    try {
      constexpr int kPart = 5;
      run({VELANORCTL, "demo", file("base"), "--cards", std::to_string(all_cards() / kPart)});
      run({VELANORCTL, "export", file("cards.csv"), "--file", kFile, "--store", file("base")});
      fs::copy_file(file("base"), file("empty"));
      run({"sqlite3", file("empty"),
           "DELETE FROM record WHERE file = (SELECT number FROM file WHERE name = 'VELANORO'); VACUUM"});
      import_as_peer(file("peer"));
    } catch (...) {
      fs::remove_all(folder_);
      throw;
    }
  }
  ~Ground() { fs::remove_all(folder_); }
  Ground(const Ground&) = delete;
  Ground& operator=(const Ground&) = delete;

  std::string file(const std::string& name) const { return folder_ / name; }
  void import_as_peer(const std::string& base) const {
    run({"sqlite3", base, ".mode csv", ".separator ;", ".import \"" + file("cards.csv") + "\" " + kFile});
  }
  // A base as `empty`, of which nothing is in the way of what is measured.
  void put_empty(const std::string& base) const {
    for (const char* companion : {"", "-wal", "-shm"}) fs::remove(base + companion);
    fs::copy_file(file("empty"), base);
    sync();
  }

 private:
  fs::path folder_;
};

Ground& ground() {
  static Ground kept;
  return kept;
}

double most_memory(const std::string& work) {
  Ground& all = ground();
  const std::string base = all.file("base");
  if (work == "export")
    return run({VELANORCTL, work, all.file("again.csv"), "--file", kFile, "--store", base});
  if (work == "check") return run({VELANORCTL, work, "--store", base});
  all.put_empty(all.file("new"));
  return run({VELANORCTL, work, all.file("cards.csv"), "--file", kFile, "--store", all.file("new")});
}

void Import(benchmark::State& state) {
  Ground& all = ground();
  const std::string ours = all.file("ours"), peer = all.file("other");
  race(state, {.goal = 1},
       {[&] {
          fs::remove(peer);
          sync();
        },
        [&] { all.import_as_peer(peer); }},
       {[&] { all.put_empty(ours); },
        [&] {
          run({VELANORCTL, "import", all.file("cards.csv"), "--file", kFile, "--store", ours});
        }});
}

void Export(benchmark::State& state) {
  Ground& all = ground();
  race(state, {.goal = 1},
       {.run =
            [&] {
              run({"sqlite3", "-csv", "-header", "-separator", ";", all.file("peer"),
                   std::string("SELECT * FROM ") + kFile + " ORDER BY id"},
                  all.file("other.csv"));
            }},
       {.run = [&] {
         run({VELANORCTL, "export", all.file("again.csv"), "--file", kFile, "--store", all.file("base")});
       }});
}

// There is nothing that SQLite could do in its place.
void Check(benchmark::State& state) {
  ground();
  for (auto _ : state) most_memory("check");
}

void MostMemoryInMegabytes(benchmark::State& state) {
  for (auto _ : state) {
    for (const char* work : {"import", "export", "check"}) state.counters[work] = most_memory(work);
  }
}

int few_turns() { return std::min(turns(), 7); }

BENCHMARK(Import)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(few_turns());
BENCHMARK(Export)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(few_turns());
BENCHMARK(Check)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(few_turns());
BENCHMARK(MostMemoryInMegabytes)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velanor::bench
