#include "play/scenario.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace velanor::play {
namespace {

namespace fs = std::filesystem;

// A folder of scenarios, of its own for each test.
class ScenarioFiles : public testing::Test {
 protected:
  void SetUp() override {
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    folder_ = fs::path(testing::TempDir()) / ("scenario_" + test);
    fs::remove_all(folder_);
    fs::create_directories(folder_ / "lib");
  }
  void TearDown() override { fs::remove_all(folder_); }

  void write(const std::string& name, const std::string& text) { std::ofstream(folder_ / name) << text; }

  // Without the folder, so that an expectation can be written.
  std::vector<std::string> steps(const std::string& name) {
    std::vector<std::string> lines;
    for (const Step& step : read_scenario(folder_ / name).steps)
      lines.push_back(within(step.place) + " " + step.source + (step.broken.empty() ? "" : " ! ") +
                      within(step.broken));
    return lines;
  }

  std::string within(std::string text) const {
    const std::string folder = folder_.string() + "/";
    for (auto at = text.find(folder); at != std::string::npos; at = text.find(folder))
      text.erase(at, folder.size());
    return text;
  }

  fs::path folder_;
};

using Texts = std::vector<std::string>;

TEST_F(ScenarioFiles, IncludedFilesAreFoundBesideTheOneThatNamesThem) {
  write("main.play", "init\ninclude lib/a.play\ninclude lib/b.play\nclose\n");
  write("lib/a.play", "# nothing\n\n  include b.play\nleave");
  write("lib/b.play", "tab 1\n");
  EXPECT_EQ(steps("main.play"), (Texts{"main.play:1 init", "lib/b.play:1 tab 1", "lib/a.play:4 leave",
                                       "lib/b.play:1 tab 1", "main.play:4 close"}));
}

TEST_F(ScenarioFiles, AnInclusionThatCannotBeMadeIsAStepThatFails) {
  write("main.play", "include lib/none.play\ninclude lib\ninclude lib/a.play\ninit\n");
  write("lib/a.play", "include ../main.play\n");
  EXPECT_EQ(steps("main.play"),
            (Texts{"main.play:1 include lib/none.play ! cannot read the file lib/none.play",
                   "main.play:2 include lib ! cannot read the file lib",
                   "lib/a.play:1 include ../main.play ! lib/../main.play includes itself without end",
                   "main.play:4 init"}));
}

TEST_F(ScenarioFiles, AFileThatIsNotThereCannotBeRead) {
  EXPECT_THROW(read_scenario(folder_ / "none.play"), std::runtime_error);
  EXPECT_THROW(read_scenario(folder_ / "lib"), std::runtime_error);
}

TEST(Scenario, ByteOrderMarkAndCarriageReturnsArePassedOver) {
  std::istringstream text(
      "\xEF\xBB\xBF"
      "init\r\n\r\nclick Cmd_OK\r\n  leave  ");
  const Scenario scenario = read_scenario(text, "-", ".");
  EXPECT_EQ(scenario.errors, Texts{});
  ASSERT_EQ(scenario.steps.size(), 3u);
  EXPECT_EQ(scenario.steps[1].command.name, "Cmd_OK");
  EXPECT_EQ(scenario.steps[2].place, "-:4");
  EXPECT_EQ(scenario.steps[2].source, "leave");
}

TEST(Scenario, EveryLineThatIsNotOfTheLanguageIsReported) {
  std::istringstream text("start\ninit\ntab\n");
  EXPECT_EQ(read_scenario(text, "x.play", ".").errors,
            (Texts{"x.play:1: word 1: there is no command \"start\"",
                   "x.play:3: word 2 is missing: the command is tab N"}));
}

}  // namespace
}  // namespace velanor::play
