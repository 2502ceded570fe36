#include "play/scenario.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string_view>

namespace velanor::play {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// A file's text; throws where it is none.
std::string text_of(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  // A folder opens and then cannot be read.
  if (!in || fs::is_directory(file)) throw std::runtime_error("cannot read the file " + file.string());
  text << in.rdbuf();
  return text.str();
}

std::string_view trimmed(std::string_view line) {
  constexpr std::string_view kBlanks = " \t\r";
  const auto first = line.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return line.substr(first, line.find_last_not_of(kBlanks) - first + 1);
}

class Reader {
 public:
  void read_file(const fs::path& file) {
    const std::string text = text_of(file);
    open_.push_back(fs::weakly_canonical(file));
    read(text, file.string(), file.parent_path());
    open_.pop_back();
  }

  void read(std::string_view text, const std::string& name, const fs::path& folder) {
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    for (int line = 1; !text.empty(); ++line) {
      const auto end = text.find('\n');
      std::string_view content = text.substr(0, end);
      if (content.ends_with('\r')) content.remove_suffix(1);
      read_line(content, name + ":" + std::to_string(line), folder);
      text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
  }

  Scenario result() && { return std::move(scenario_); }

 private:
  void read_line(std::string_view line, const std::string& place, const fs::path& folder) try {
    const auto words = words_of(line);
    if (words.empty()) return;
    Step step{place, std::string(trimmed(line)), parse_command(words)};
    if (step.command.verb == Verb::Include)
      include(std::move(step), folder);
    else
      scenario_.steps.push_back(std::move(step));
  } catch (const SyntaxError& error) {
    scenario_.errors.push_back(place + ": " + error.what());
  }

  // Only an inclusion that fails is left as a step.
  void include(Step step, const fs::path& folder) try {
    const fs::path file = folder / step.command.name;
    if (std::find(open_.begin(), open_.end(), fs::weakly_canonical(file)) != open_.end())
      throw std::runtime_error(file.string() + " includes itself without end");
    read_file(file);
  } catch (const std::runtime_error& error) {
    step.broken = error.what();
    scenario_.steps.push_back(std::move(step));
  }

  Scenario scenario_;
  std::vector<fs::path> open_;  // the files being read, each included by the one before
};

}  // namespace

Scenario read_scenario(const fs::path& file) {
  Reader reader;
  reader.read_file(file);
  return std::move(reader).result();
}

Scenario read_scenario(std::istream& text, const std::string& name, const fs::path& folder) {
  std::ostringstream content;
  content << text.rdbuf();
  Reader reader;
  reader.read(content.str(), name, folder);
  return std::move(reader).result();
}

}  // namespace velanor::play
