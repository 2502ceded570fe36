#include "app/velanorctl/age.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "store/sqlite/unfinished_file.h"
#include "velanor/sqlite_database.h"

namespace velanor::app {
namespace {

constexpr int kNotFound = 127;

store::DbError not_encrypted(const std::string& why) {
  return {store::kStoreFailure, "La sauvegarde n'a pas été chiffrée, et rien n'a été écrit : " + why};
}

// The ways in and out of the program that is started; they end with this.
class Redirection {
 public:
  Redirection(const std::string& from, const std::string& to) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, from.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, to.c_str(), O_WRONLY | O_TRUNC | O_NOFOLLOW,
                                     0);
  }
  ~Redirection() { posix_spawn_file_actions_destroy(&actions_); }
  Redirection(const Redirection&) = delete;
  Redirection& operator=(const Redirection&) = delete;
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

// Its exit status; kNotFound where there is no such program.
int run_age(std::string recipient, const std::string& from, const std::string& to) {
  std::string program = "age", option = "--recipient";
  char* const arguments[] = {program.data(), option.data(), recipient.data(), nullptr};
  const Redirection files(from, to);
  pid_t child = 0;
  if (posix_spawnp(&child, "age", files.get(), nullptr, arguments, environ) != 0) return kNotFound;
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

}  // namespace

void encrypt_for(const std::string& recipient, const std::string& from, const std::string& to) {
  store::sqlite::UnfinishedFile file(to);
  const int status = run_age(recipient, from, file.path());
  if (status == kNotFound)
    throw not_encrypted("le programme « age » n'est pas installé. Installez-le, puis recommencez.");
  if (status != 0) {
    throw not_encrypted(
        "« age » a refusé. Vérifiez le destinataire (une clé publique « age1… ») et la place sur le disque.");
  }
  if (!file.complete_if_free())
    throw store::NameTaken(store::kStoreFailure,
                           "Le fichier « " + to + " » existe déjà. Donnez un autre nom, ou ôtez-le.");
}

}  // namespace velanor::app
