#!/usr/bin/python3
"""Two clerks at two windows on one database: a card is made at the first, changed at the second, and read
again at the first.

clerk.py VELANOR VELANORCTL
"""
import os
import subprocess
import sys
import tempfile

import pyatspi

from bus import TIMEOUT, Failure, Window, wait


def identity(w):
    """A new card, field after field by the tabulator."""
    w.at("Entité juridique")
    w.key("alt+f")
    w.at("Nouvelle base…")
    w.key("Escape", "Escape")
    w.fill("Entité juridique", "001")
    w.shows("Entité juridique (libellé)", "Aide aux Familles du Val")
    w.at("Aidant")
    w.key("alt+j")
    w.shows("Etat", "Création")
    w.fill("Nom de l'aidant", "Exemple Élise")
    w.key("Tab", "Tab")
    w.fill("Etablissement", "003")
    w.shows("Etablissement (libellé)", "Antenne du Sud")
    w.key("Tab", "Tab")
    w.fill("Horaire mensuel de l'établissement", "145,5")
    w.key("Tab", "Tab", "Tab")
    w.fill("Secteur", "002")
    w.shows("Secteur (libellé)", "Nord")
    w.key("Tab", "Tab")
    w.fill("Commune", "Orléans")
    w.key("Tab", "Tab", "Tab")  # by the options that are set
    w.fill("Date début contrat", "010326")
    w.key("Tab")
    w.shows("Date début contrat", "01/03/2026")


def activity(w):
    w.key("alt+j")
    w.at("Activité")
    w.key("Down", "Tab")
    w.fill("%", "100")
    w.key("alt+o")
    wait("the activity is not in its list", lambda: w.rows("Affectation des activités") ==
         [["Accompagnement véhiculé       100,00"]])


def amendment(w):
    w.key("alt+p")
    w.key("alt+j")
    w.at("Date d'effet")
    w.shows("Date d'effet", "01/03/2026")
    w.key("Tab", "Tab")
    w.at("Qualification professionnelle")
    w.key("Down")  # the list opens on its first line
    w.at("AGD, Agent à domicile")
    w.key("Return")
    w.shows("Qualification professionnelle", "AGD")
    # Stepping past grids that do not offer the qualification does not lose it.
    w.key("Tab", "Down", "Down", "Down", "Down")
    w.shows("Grille déroulement de carrière", "Intervention employé degré 1")
    w.shows("Qualification professionnelle", "AGD")
    w.key("alt+o")
    wait("the amendment is not in its list", lambda: w.rows("Avenants") ==
         [["01/03/2026", "01/03/2026", "AGD", "Intervention employé degré 1", "", "NON", "", ""]])


def items(w):
    w.key("alt+l")
    w.dialog("Détails des rubriques de saisie")
    w.key("alt+t")
    w.fill("Nombre d'heures travaillées", "120")
    w.key("alt+o")
    w.at("Retour")
    found = [row[0] for row in w.rows("Rubriques")]
    if found != ["001", "022", "028"]:
        raise Failure(f"the items are {found}")
    w.key("alt+r")
    w.dialog("Message TALVERINE", "Voulez-vous enregistrer les modifications apportées à cet article ?")
    w.at("Oui")
    w.key("Return")
    w.at("Détails")


def save(w):
    w.key("alt+o")
    w.dialog("Message TALVERINE", "Le profil de paie est obligatoire.")
    w.key("Return")
    w.fill("Profil de paie 1", "001")
    w.key("alt+o")
    w.at("Aidant")
    w.shows("Aidant", "")
    wait("the status bar does not tell that the card was saved",
         lambda: w.find("Fiche 99999 EXEMPLE ÉLISE enregistrée", pyatspi.ROLE_LABEL))


def stored(velanorctl):
    """The saved card, as the command line reads it while both windows are open."""
    table = subprocess.run([velanorctl, "show", "VELANORO", "999990012026", "--store", STORE],
                           timeout=TIMEOUT, capture_output=True, text=True, check=True).stdout
    return dict(line.split(" = ", 1) for line in table.splitlines() if line)


def expect_stored(velanorctl, **elements):
    card = stored(velanorctl)
    found = {name: card.get(name[1:].replace("_", ",")) for name in elements}
    if found != elements:
        raise Failure(f"the card is stored with {found} instead of {elements}")


def change(w):
    """The new card on the other window, which was open all the while."""
    w.come_forward()
    w.fill("Entité juridique", "001")
    w.at("Aidant")
    w.type("99999")
    w.shows("Etat", "Modification")
    w.shows("Nom de l'aidant", "EXEMPLE ÉLISE")
    w.shows("Horaire mensuel de l'établissement", "145,50")
    w.key("alt+h")
    w.fill("Horaire mensuel de l'établissement", "140")
    w.key("alt+o")
    w.at("Aidant")
    w.shows("Aidant", "")


def reopen(w):
    w.come_forward()
    w.type("99999")
    w.shows("Etat", "Modification")
    w.shows("Horaire mensuel de l'établissement", "140,00")
    w.key("alt+u")
    w.dialog("Message TALVERINE", "Voulez-vous quitter cette création ?")
    w.key("alt+o")
    w.shows("Aidant", "")


def main(velanor, velanorctl):
    subprocess.run([velanorctl, "demo", STORE], check=True, timeout=TIMEOUT, stdout=subprocess.DEVNULL)
    first, second = (Window(velanor, "--store", STORE) for _ in range(2))
    first.come_forward()
    for step in (identity, activity, amendment, items, save):
        step(first)
    expect_stored(velanorctl, _1="EXEMPLE ÉLISE", _2="14550", _4="002", _5="Orléans", _8="21245", _10="001050",
                  _11="10000", _12="21245", _14="AGD", _19="001", _30_1_1="001", _31_1_1="13200", _40="001003")
    change(second)
    expect_stored(velanorctl, _1="EXEMPLE ÉLISE", _2="14000", _31_1_1="13200")
    reopen(first)
    for window in (first, second):
        window.come_forward()
        window.leave()


with tempfile.TemporaryDirectory() as folder:
    STORE = os.path.join(folder, "fiches.db")
    try:
        main(*sys.argv[1:])
    except Failure as failure:
        sys.exit(str(failure))
print("a card was made, changed and read again at two windows")
