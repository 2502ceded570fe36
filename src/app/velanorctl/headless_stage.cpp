#include "app/velanorctl/headless_stage.h"

#include "velanor/controle_velanor.h"

namespace velanor::app {
namespace {

// There is no application around the component: nobody restricts, shows help or unloads.
class NoRights : public control::UserRights {
  std::string rights(std::string_view) override { return {}; }
};

class NoHelp : public control::HelpViewer {
  void show(control::Client*, store::Database&, std::string_view, std::string_view,
            std::string_view) override {}
};

class NoWindow : public control::HostWindow {
  void unload() override {}
};

class HeadlessStage : public play::Stage {
 public:
  HeadlessStage(store::Database& database, play::MessageBoxes& boxes)
      : toolkit_(boxes), component_({toolkit_, help_, window_}), actor_(component_.screen()) {
    component_.DroitsUtilisateur(rights_);
    component_.TheClient(client_);
    component_.TheDatabase(database);
    component_.init();
  }

  screen::Screen& screen() override { return component_.screen(); }
  play::Actor& actor() override { return actor_; }

 private:
  play::ScriptedToolkit toolkit_;
  NoRights rights_;
  control::Client client_;
  NoHelp help_;
  NoWindow window_;
  ControleVelanor component_;
  play::HandActor actor_;
};

}  // namespace

std::unique_ptr<play::Stage> start_headless(store::Database& database, play::MessageBoxes& boxes) {
  return std::make_unique<HeadlessStage>(database, boxes);
}

}  // namespace velanor::app
