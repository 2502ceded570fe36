#include "store/postgres/failure.h"

#include "velanor/record.h"

namespace velanor::store::postgres {
namespace {

// What follows "La base PLACE ". A code ends where the table's does: "53" is a whole class.
struct Sentence {
  std::string_view code, text;
};

constexpr std::string_view kAskForSetup =
    "n'est pas préparée pour les fiches du personnel. Demandez à celui qui gère le serveur d'y exécuter "
    "« velanorctl setup-server ».";

constexpr Sentence kSentences[] = {
    {"3F000", kAskForSetup},
    {"42P01", kAskForSetup},
    {"42883", kAskForSetup},
    {"42501",
     "a refusé : vous n'en avez pas le droit, et rien n'a été modifié. Demandez à celui qui gère le serveur "
     "de "
     "vous donner le rôle qu'il faut."},
    {"25006",
     "n'a pas été modifiée : elle est ouverte en lecture seule. Ouvrez la base principale pour écrire."},
    {"55P03",
     "est occupée par un autre poste, qui y écrit depuis longtemps. Rien n'a été modifié ; attendez un "
     "moment, "
     "puis recommencez."},
    {"40",
     "n'a pas été modifiée : un autre poste y écrivait les mêmes enregistrements au même moment. "
     "Recommencez."},
    {"57014", "n'a pas répondu à temps. Rien n'a été modifié ; recommencez dans un moment."},
    {"53100",
     "n'a pas été modifiée : le disque du serveur est plein. Prévenez celui qui gère le serveur, puis "
     "recommencez."},
    {"53", "manque de moyens sur son serveur. Rien n'a été modifié ; recommencez dans un moment."},
    {"54", "n'a pas été modifiée : l'enregistrement est trop long. Raccourcissez-le."},
    {"XX", "est endommagée. Arrêtez de vous en servir et prévenez celui qui gère le serveur."},
};

constexpr std::string_view kNoServer =
    "ce qui répond à cette adresse et à ce port n'est pas un serveur PostgreSQL";

// What the library says, in its words or with the server's code, and what a person is told.
constexpr Sentence kConnecting[] = {
    {":  28P01:", "le mot de passe n'est pas celui de l'utilisateur"},
    {":  28000:", "le serveur n'admet pas cet utilisateur, ou pas de ce poste ou par une telle liaison"},
    {":  3D000:", "cette base n'existe pas sur le serveur"},
    {":  42501:", "cet utilisateur n'a pas le droit de s'y relier"},
    {":  53300:", "trop de postes y sont déjà reliés"},
    {":  57P03:", "le serveur démarre ou s'arrête"},
    {"Connection refused", "personne ne répond à cette adresse et à ce port"},
    {"No such file or directory", "aucun serveur ne tourne à cet endroit"},
    {"could not translate host name", "ce nom de serveur n'est pas connu"},
    {"No route to host", "ce serveur n'est pas joignable par le réseau"},
    {"Network is unreachable", "ce serveur n'est pas joignable par le réseau"},
    {"does not support SSL", "le serveur ne chiffre pas ses liaisons"},
    {"root certificate file", "le certificat de l'autorité manque sur ce poste, dans ~/.postgresql/root.crt"},
    {"certificate verify failed", "le certificat du serveur n'est pas de l'autorité que ce poste connaît"},
    {"invalid port number", "le port n'est pas un nombre de 1 à 65535"},
    {"invalid response to SSL negotiation", kNoServer},
    {"expected authentication request", kNoServer},
    {"server certificate for", "le certificat du serveur n'est pas à ce nom"},
};

}  // namespace

// The lines that follow the first are advice of the library's.
std::string connection_failure(std::string_view message) {
  for (const Sentence& sentence : kConnecting) {
    if (message.find(sentence.code) != message.npos) return std::string(sentence.text);
  }
  return "la liaison n'a pas pu se faire ; en détail : « " +
         clean_text(message.substr(0, message.find('\n'))) + " »";
}

ConnectionLost::ConnectionLost(std::string_view place)
    : DbError(kStoreFailure, "La liaison avec la base " + std::string(place) +
                                 " est coupée. Ce qui est à l'écran y reste ; vérifiez le réseau, puis "
                                 "recommencez.") {}

Unreachable::Unreachable(std::string_view place, std::string_view detail)
    : DbError(kStoreFailure,
              "La base " + std::string(place) + " n'a pas pu être atteinte (" + clean_text(detail) +
                  "). Rien n'a été modifié, et ce qui est à l'écran y reste ; vérifiez le réseau et "
                  "le serveur, puis recommencez.") {}

bool ends_connection(std::string_view sqlstate) {
  return sqlstate.starts_with("08") || sqlstate.starts_with("57P");
}

DbError failure(std::string_view sqlstate, std::string_view place, std::string_view detail) {
  const std::string subject = "La base " + std::string(place) + " ";
  for (const Sentence& sentence : kSentences) {
    if (sqlstate.starts_with(sentence.code)) return {kStoreFailure, subject + std::string(sentence.text)};
  }
  return {kStoreFailure, subject + "a répondu par une erreur (" + std::string(sqlstate) + ", « " +
                             clean_text(detail) +
                             " »). Recommencez ; si l'erreur revient, prévenez celui qui gère le serveur."};
}

}  // namespace velanor::store::postgres
