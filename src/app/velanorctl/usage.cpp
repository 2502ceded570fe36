#include "app/velanorctl/usage.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <optional>
#include <string_view>
#include <vector>

#include "app/velanorctl/secrets.h"

namespace velanor::app {
namespace {

// What the parser's labels leave in English, or without the blank before a colon.
class FrenchHelp : public CLI::Formatter {
 public:
  FrenchHelp() {
    label("Usage", "Usage ");
    label("Positionals", "Arguments");
    label("Needs", "Avec ");
    label("Excludes", "Exclut ");
    label("REQUIRED", "(obligatoire)");
    label("SUBCOMMAND", "SOUS-COMMANDE");
    label("SUBCOMMANDS", "SOUS-COMMANDES");
  }
  std::string make_group(std::string group, bool is_positional,
                         std::vector<const CLI::Option*> options) const override {
    return CLI::Formatter::make_group(group + " ", is_positional, std::move(options));
  }
  // What a check accepts is told in English behind a colon; our descriptions tell it in French.
  std::string make_option_opts(const CLI::Option* option) const override {
    std::string all = CLI::Formatter::make_option_opts(option);
    const std::string type = option->get_type_name();
    const std::size_t check = type.find(':');
    if (check == std::string::npos) return all;
    return " " + type.substr(0, check) + all.substr(1 + type.size());
  }
};

struct Phrase {
  const char* theirs;
  const char* ours;
};

// A star stands for any text; $1 is the first of them.
constexpr Phrase kPhrases[] = {
    {"A subcommand is required", "il manque une sous-commande"},
    {"* is required", "$1 manque"},
    {"* requires *", "$1 ne va pas sans $2"},
    {"* excludes *", "$1 et $2 s'excluent"},
    {"*: * required * missing", "$1 attend une valeur"},
    {"*: At Most 1 required but received *", "$1 est donné plus d'une fois"},
    {"* was given a disallowed flag override", "$1 ne prend pas de valeur"},
    {"*: Value * not in range * to *", "$1 : « $2 » n'est pas un nombre de $3 à $4"},
    {"*: * not in {*}", "$1 : « $2 » n'est pas une des valeurs possibles"},
    {"Could not convert: * = *", "$1 : « $2 » n'est pas une des valeurs possibles"},
    {"*: *", "la valeur de $1 n'est pas admise"},
};

// What the stars of a phrase stand for in a sentence; nothing when it is another phrase.
std::optional<std::vector<std::string>> stars(std::string_view sentence, std::string_view phrase) {
  std::vector<std::string> found;
  for (;;) {
    const std::size_t star = phrase.find('*');
    const std::string_view words = phrase.substr(0, star);
    if (!sentence.starts_with(words)) return std::nullopt;
    sentence.remove_prefix(words.size());
    if (star == phrase.npos) break;
    phrase.remove_prefix(star + 1);
    const std::string_view next = phrase.substr(0, phrase.find('*'));
    const std::size_t end = next.empty() ? sentence.size() : sentence.find(next);
    if (end == sentence.npos) return std::nullopt;
    found.emplace_back(sentence.substr(0, end));
    sentence.remove_prefix(end);
  }
  if (!sentence.empty()) return std::nullopt;
  return found;
}

std::string translated(const std::string& sentence) {
  for (const auto& [theirs, ours] : kPhrases) {
    const auto found = stars(sentence, theirs);
    if (!found) continue;
    std::string text = ours;
    for (std::size_t n = 0; n < found->size(); ++n)
      text = CLI::detail::find_and_replace(text, "$" + std::to_string(n + 1), (*found)[n]);
    return text;
  }
  return "la ligne de commande n'est pas comprise";
}

bool is_option(const std::string& word) { return word.size() > 1 && word.front() == '-'; }

// A word that nobody knows explains best why another is missing.
std::string fault(const CLI::App& program, const CLI::ParseError& error) {
  const std::string sentence = error.what();
  const std::vector<std::string> unknown = program.remaining(true);
  const auto option = std::find_if(unknown.begin(), unknown.end(), is_option);
  if (option != unknown.end()) return "l'option " + *option + " n'existe pas";
  if (unknown.empty()) return translated(sentence);
  const bool wants_command = !program.get_subcommands({}).empty() && program.get_subcommands().empty();
  return (wants_command ? "il n'y a pas de sous-commande " : "argument inattendu : ") + unknown.front();
}

std::string call(const CLI::App& program) {
  std::string call = program.get_name();
  for (const CLI::App* command : program.get_subcommands()) call += " " + command->get_name();
  return call;
}

}  // namespace

void speak_french(CLI::App& program) {
  program.formatter(std::make_shared<FrenchHelp>());
  program.set_help_flag("-h,--help", "Affiche cette aide");
  program.set_version_flag("--version", program.get_name() + " " VELANOR_VERSION, "Affiche la version");
}

int end_of_parsing(const CLI::App& program, const CLI::ParseError& end) {
  if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) return program.exit(end);
  std::cerr << program.get_name() << " : " << without_passwords(fault(program, end)) << ". Voir "
            << call(program) << " --help.\n";
  return kUsageStatus;
}

}  // namespace velanor::app
