// velanor: the personnel budget cards on a window.
#include <CLI/CLI.hpp>
#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <clocale>
#include <iostream>
#include <optional>

#include "app/velanor/appearance.h"
#include "app/velanor/play.h"
#include "app/velanor/program.h"
#include "app/velanorctl/open_store.h"
#include "app/velanorctl/secrets.h"
#include "app/velanorctl/usage.h"
#include "text/failure.h"

namespace {

using namespace velanor::app;

constexpr int kFailed = 1;

struct Options {
  StoreOptions store;
  std::string base;
  std::string play;
  std::string shots;
  bool dark = false;
};

void add_options(CLI::App& program, Options& options) {
  speak_french(program);
  add_store_options(program, options.store);
  program.add_option("BASE", options.base, "La même chose que --store, sans l'écrire")
      ->type_name("")
      ->excludes("--store")
      ->excludes("--demo");
  auto* play =
      program.add_option("--play", options.play, "Joue un scénario sur la fenêtre")->type_name("FICHIER");
  program.add_option("--shots", options.shots, "Dossier des images du scénario")
      ->type_name("DOSSIER")
      ->needs(play);
  program.add_flag("--dark", options.dark, "Couleurs sombres");
}

// The toolkit's own dialogs take their formats from the environment, before there is an application. Which
// characters are typed stays the machine's.
void ask_for_french_formats() {
  if (const QByteArray all = qgetenv("LC_ALL"); !all.isEmpty()) {
    qputenv("LC_CTYPE", all);
    qunsetenv("LC_ALL");
  }
  for (const char* category : {"LC_NUMERIC", "LC_TIME", "LC_MONETARY", "LC_MEASUREMENT", "LC_MESSAGES"})
    qputenv(category, "fr_FR.UTF-8");
}

// The toolkit's own words in French, and French formats, whatever the machine's language.
void translate_toolkit(QApplication& application) {
  std::setlocale(LC_NUMERIC, "C");
  const QLocale french(QLocale::French, QLocale::France);
  QLocale::setDefault(french);
  auto* translator = new QTranslator(&application);
  if (translator->load(french, "qtbase", "_", QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
    QCoreApplication::installTranslator(translator);
}

QIcon own_icon() {
  QIcon icon;
  for (const int size : {16, 32, 48, 64, 128})
    icon.addFile(QStringLiteral(":/icon/velanor-%1.png").arg(size));
  return icon;
}

int run(QApplication& application, const Options& options) {
  if (!options.play.empty()) {
    if (options.dark) show_dark();
    const auto store = open_store(options.store);
    return play_on_window(*store,
                          {QString::fromStdString(options.play), QString::fromStdString(options.shots)});
  }
  Appearance appearance(options.dark);
  Program program(&appearance);
  program.start(options.store);
  return application.exec();
}

int parse_and_run(QApplication& application, int argc, char** argv) {
  CLI::App program("Fiches du personnel", "velanor");
  Options options;
  add_options(program, options);
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& end) {
    return end_of_parsing(program, end);
  }
  if (!options.base.empty()) options.store.url = options.base;
  return run(application, options);
}

// Help and version need no display. The toolkit's own options are still on the line.
std::optional<int> told_without_window(int argc, char** argv) {
  CLI::App program("Fiches du personnel", "velanor");
  Options options;
  add_options(program, options);
  try {
    program.parse(argc, argv);
  } catch (const CLI::Success& told) {
    return end_of_parsing(program, told);
  } catch (const CLI::ParseError&) {
  }
  return std::nullopt;
}

}  // namespace

int main(int argc, char** given) try {
  char** argv = taken_arguments(argc, given);
  if (const auto status = told_without_window(argc, argv)) return *status;
  ask_for_french_formats();
  QApplication::setStyle("Fusion");
  QApplication application(argc, argv);
  QCoreApplication::setApplicationName("velanor");
  QCoreApplication::setApplicationVersion(VELANOR_VERSION);
  QGuiApplication::setDesktopFileName("velanor");
  QApplication::setWindowIcon(own_icon());
  translate_toolkit(application);
  return parse_and_run(application, argc, argv);
} catch (const std::exception& error) {
  std::cerr << "velanor : " << velanor::text::failure_sentence(error) << "\n";
  return kFailed;
}
