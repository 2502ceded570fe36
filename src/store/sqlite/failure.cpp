#include "store/sqlite/failure.h"

#include <sqlite3.h>

namespace velanor::store::sqlite {
namespace {

// What follows "La base « PATH » ".
struct Sentence {
  int code;
  std::string_view text;
};

constexpr Sentence kSentences[] = {
    {SQLITE_FULL, "n'a pas été modifiée : le disque est plein. Libérez de la place, puis recommencez."},
    {SQLITE_READONLY,
     "n'a pas été modifiée : elle est en lecture seule. Demandez le droit d'écrire dans ce fichier et dans "
     "son dossier."},
    {SQLITE_PERM, "est refusée par le système. Demandez le droit de lire et d'écrire ce fichier."},
    {SQLITE_AUTH, "est refusée par le système. Demandez le droit de lire et d'écrire ce fichier."},
    {SQLITE_BUSY,
     "est occupée par un autre programme. Attendez qu'il ait terminé ou fermez-le, puis recommencez."},
    {SQLITE_LOCKED,
     "est occupée par un autre programme. Attendez qu'il ait terminé ou fermez-le, puis recommencez."},
    {SQLITE_NOTADB, "n'est pas une base de fiches du personnel. Choisissez un autre fichier."},
    {SQLITE_CORRUPT, "est endommagée. Fermez le programme et reprenez la dernière sauvegarde."},
    {SQLITE_CANTOPEN,
     "ne peut pas être ouverte. Vérifiez que le fichier et son dossier existent et que vous avez le droit "
     "de les lire et d'y écrire."},
    {SQLITE_IOERR,
     "ne répond pas : le disque a refusé la lecture ou l'écriture. Vérifiez le disque ou la liaison avec "
     "lui, puis recommencez."},
    {SQLITE_NOMEM, "demande plus de mémoire qu'il n'y en a. Fermez d'autres programmes, puis recommencez."},
    {SQLITE_TOOBIG, "n'a pas été modifiée : l'enregistrement est trop long. Raccourcissez-le."},
};

}  // namespace

DbError failure(int code, std::string_view path, std::string_view detail) {
  constexpr int kPrimaryCode = 0xFF;
  const std::string subject = "La base « " + std::string(path) + " » ";
  for (const Sentence& sentence : kSentences) {
    if (sentence.code == (code & kPrimaryCode)) return {kStoreFailure, subject + std::string(sentence.text)};
  }
  return {kStoreFailure, subject + "a répondu par une erreur (" + std::to_string(code) + ", « " +
                             std::string(detail) +
                             " »). Recommencez ; si l'erreur revient, vérifiez la base par « velanorctl "
                             "check »."};
}

}  // namespace velanor::store::sqlite
