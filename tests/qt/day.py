#!/usr/bin/python3
"""A day of work at one window, by keys alone: a card found by a part of its name, three corrected, what the
checks show mended, acts taken back, a deleted card brought back, and a card put into a PDF file.

day.py VELANOR VELANORCTL; needs pdftotext.
"""
import os
import subprocess
import sys
import tempfile

import pyatspi

from bus import TIMEOUT, Failure, Window, wait

HOURS = "Horaire mensuel de l'établissement"


class Counting(Window):
    """Counts the keys; one with Ctrl or Alt is one."""

    pressed = 0

    def key(self, *keys):
        self.pressed += len(keys)
        super().key(*keys)

    def type(self, text):
        self.pressed += len(text)
        super().type(text)

    def tells(self, sentence):
        wait(lambda: f"the status bar does not tell {sentence!r}",
             lambda: self.find(sentence, pyatspi.ROLE_LABEL))


def stored(number, card):
    table = subprocess.run([VELANORCTL, "show", "VELANORO", card, "--store", STORE],
                           timeout=TIMEOUT, capture_output=True, text=True).stdout
    return dict(line.split(" = ", 1) for line in table.splitlines() if " = " in line).get(str(number))


def expect(what, found, wanted):
    if found != wanted:
        raise Failure(f"{what}: {found!r} instead of {wanted!r}")


def find_and_correct(w):
    """From nothing open to a saved change: what a clerk does most."""
    before = w.pressed
    w.key("ctrl+f")
    w.at("Chercher un employé")
    w.type("igi")
    w.key("Return")
    w.shows("Etat", "Modification")
    w.shows("Nom de l'aidant", "CARON BRIGITTE")
    w.key("alt+h")
    w.at(HOURS)
    w.type("140")
    w.key("alt+o")
    w.tells("Fiche 00060 CARON BRIGITTE enregistrée")
    if w.pressed - before > 12:
        raise Failure(f"finding a card, changing a figure and saving took {w.pressed - before} keys")
    expect("hours", stored(2, "000600012026"), "14000")
    return w.pressed - before


def correct_the_next(w):
    w.key("ctrl+f", "Escape", "Escape")
    for card in ("00073", "00086"):
        w.key("alt+Down")
        w.shows("Aidant", card)
        w.key("alt+h")
        w.at(HOURS)
        w.type("140")
        w.key("alt+o")
        w.shows("Aidant", "")
        expect("hours of " + card, stored(2, card + "0012026"), "14000")


def take_back(w):
    w.key("alt+Down")
    w.shows("Aidant", "00099")
    hours = w.fields()[HOURS]
    # Escape closes the list, and no more.
    w.key("alt+t", "Tab", "F4")
    w.at("Ouest")
    w.key("Escape")
    w.at("Secteur (libellé)")
    w.key("alt+h")
    w.at(HOURS)
    w.type("99")
    w.key("ctrl+z", "ctrl+z")  # the text itself, key by key
    w.key("ctrl+a")
    w.type("99")
    w.key("Tab")
    w.shows(HOURS, "99,00")
    w.key("alt+p")
    w.at("Ajouter")
    lines = w.rows("Avenants")
    w.key("shift+Tab")
    w.at("Avenants")
    w.key("Home", "Tab", "Tab")
    w.at("Supprimer")
    w.key("space")
    w.dialog("Message TALVERINE", "Voulez-vous supprimer cette ligne ?")
    w.key("alt+o")
    wait("the amendment is still there", lambda: len(w.rows("Avenants")) == len(lines) - 1)
    w.key("ctrl+z")
    wait("the amendment is not back", lambda: w.rows("Avenants") == lines)
    w.tells(f"Annulé : ligne du {lines[0][0]} supprimée")
    w.key("ctrl+z")
    w.shows(HOURS, hours)
    w.key("ctrl+y")
    w.shows(HOURS, "99,00")
    w.key("ctrl+z")
    w.key("alt+o")
    w.shows("Aidant", "")
    expect("hours", stored(2, "000990012026"), hours.replace(",", ""))


def mend_what_the_checks_show(w):
    """The first contract that ends within the year goes on."""
    w.key("F8")
    found = wait("nothing is found", lambda: [r for r in w.rows("Contrôles") if "durée déterminée" in r[3]])
    card = found[0][0]
    w.key("Return")
    w.at("Date fin contrat")
    w.shows("Aidant", card)
    w.type("31122028")
    w.key("alt+o")
    w.shows("Aidant", "")
    wait("the checks still show it",
         lambda: not [r for r in w.rows("Contrôles") if r[0] == card and "durée déterminée" in r[3]])


def delete_and_bring_back(w):
    w.key("alt+a")
    w.at("Aidant")
    w.type("00065")
    w.shows("Etat", "Modification")
    w.key("alt+s")
    w.dialog("Message TALVERINE", "Voulez-vous supprimer cette fiche ?")
    w.key("alt+o")
    w.tells("Fiche 00065 BERGER SIMONE supprimée")
    expect("the deleted card", stored(1, "000650012026"), None)
    w.key("ctrl+z")
    w.shows("Nom de l'aidant", "BERGER SIMONE")
    expect("the card", stored(1, "000650012026"), "BERGER SIMONE")


def see_the_year(w):
    """Of the card that is open, and of what is typed on it."""
    name = "Année de la fiche, mois par mois"
    w.key("F7")
    wait("the year is not there", lambda: w.rows(name)[0])
    w.key("Escape", "alt+h")
    w.at(HOURS)
    w.type("303,34")
    wait("the year is not that of a full time of 303,34 hours",
         lambda: [row[0] for row in w.rows(name)][2:4] == ["151,67", "0,50"])
    w.key("Tab", "ctrl+z")
    wait("the year did not go back", lambda: w.rows(name)[3][0] == "1,00")


def put_on_paper(w, folder):
    """The card that is open."""
    file = os.path.join(folder, "fiche.pdf")
    w.key("ctrl+d")
    wait("there is no file dialog", lambda: any(
        node.getRole() in (pyatspi.ROLE_DIALOG, pyatspi.ROLE_FILE_CHOOSER) for node in w.application))
    wait("the dialog takes no keys", lambda: w.application[len(w.application) - 1].getState().contains(
        pyatspi.STATE_ACTIVE))
    w.key("ctrl+a")
    w.type(file)
    w.key("Return")
    wait("there is no PDF", lambda: os.path.exists(file))
    text = subprocess.run(["pdftotext", "-layout", file, "-"], timeout=TIMEOUT, capture_output=True,
                          text=True, check=True).stdout
    for wanted in ("BERGER SIMONE", "00065", "2026", "avenants", "Janvier", "jour.db"):
        if wanted not in text:
            raise Failure(f"the PDF does not say {wanted!r}")
    if "NON ENREGISTRÉ" in text:
        raise Failure("the PDF says that the card is not saved")


def main(velanor, folder):
    w = Counting(velanor, "--store", STORE)
    w.come_forward()
    w.fill("Entité juridique", "001")
    w.shows("Entité juridique (libellé)", "Aide aux Familles du Val")
    keys = find_and_correct(w)
    for step in (correct_the_next, take_back, mend_what_the_checks_show, delete_and_bring_back, see_the_year):
        step(w)
    put_on_paper(w, folder)
    w.key("alt+u")
    w.dialog("Message TALVERINE", "Voulez-vous quitter cette création ?")
    w.key("alt+o")
    w.shows("Aidant", "")
    w.leave()
    print(f"a day of work: {w.pressed} keys, {keys} of them to find a card, change a figure and save it")


VELANORCTL = sys.argv[2]
with tempfile.TemporaryDirectory() as scratch:
    STORE = os.path.join(scratch, "jour.db")
    subprocess.run([VELANORCTL, "demo", STORE], check=True, timeout=TIMEOUT, stdout=subprocess.DEVNULL)
    try:
        main(sys.argv[1], scratch)
    except Failure as failure:
        sys.exit(str(failure))
