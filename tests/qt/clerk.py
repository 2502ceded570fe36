#!/usr/bin/python3
"""Two clerks at two windows on one database, seen from outside: every key is an event of the X server,
everything that is read comes through the accessibility bus, as a screen reader would get it.

clerk.py VELANOR VELANORCTL; needs a display with a window manager, a session bus, xdotool and pyatspi.
"""
import os
import subprocess
import sys
import tempfile
import time

import pyatspi
from gi.repository import Atspi

TIMEOUT = 30  # seconds, for a state that comes in a tenth of one


class Failure(Exception):
    pass


def wait(what, state):
    """Asks until the state is there; the bus answers no faster than the program has time to."""
    until = time.monotonic() + TIMEOUT
    while time.monotonic() < until:
        try:
            found = state()
        except Exception:  # gone or too busy to answer, so not there yet
            found = None
        if found:
            return found
    raise Failure(what() if callable(what) else what)


def x(*command):
    return subprocess.run(["xdotool", *command], timeout=TIMEOUT, capture_output=True, text=True).stdout.split()


def below(node):
    """All that is on the screen, parents first."""
    for child in node:
        if child and child.getState().contains(pyatspi.STATE_SHOWING):
            yield child
            if child.getRole() != pyatspi.ROLE_TABLE:
                yield from below(child)


def text_of(node):
    return node.queryText().getText(0, -1)


class Window:
    def __init__(self, velanor):
        self.process = subprocess.Popen([velanor, "--store", STORE])
        self.application = wait("the program is not on the bus", self.on_the_bus)
        self.frame = wait("there is no window", lambda: self.application[0])
        self.x_id = wait("X has no window", lambda: x("search", "--all", "--onlyvisible", "--pid",
                                                      str(self.process.pid), "--name", "Fiches du personnel"))[0]

    def on_the_bus(self):
        ours = [a for a in pyatspi.Registry.getDesktop(0) if a and a.get_process_id() == self.process.pid]
        if ours:
            ours[0].set_cache_mask(Atspi.Cache.NONE)
        return ours and ours[0]

    def come_forward(self):
        x("windowactivate", self.x_id)
        wait("the window does not come forward",
             lambda: self.frame.getState().contains(pyatspi.STATE_ACTIVE) and x("getactivewindow")[0] == self.x_id)

    def focused(self):
        """The names of what has the focus, innermost last."""
        return [n.name for n in below(self.frame) if n.getState().contains(pyatspi.STATE_FOCUSED)
                and n.getRole() != pyatspi.ROLE_PAGE_TAB]

    def at(self, name):
        wait(lambda: f"the focus is at {self.focused()} instead of {name!r}", lambda: self.focused()[-1] == name)

    def find(self, name, role):
        return next(n for n in below(self.frame) if n.name == name and n.getRole() == role)

    def fields(self):
        return {n.name: text_of(n) for n in below(self.frame) if n.getRole() == pyatspi.ROLE_TEXT}

    def shows(self, name, value):
        wait(lambda: f"{name!r} shows {self.fields().get(name)!r} instead of {value!r}",
             lambda: text_of(self.find(name, pyatspi.ROLE_TEXT)) == value)

    def dialog(self, name, text=None):
        found = wait(f"there is no dialog {name!r}", lambda: self.find(name, pyatspi.ROLE_DIALOG))
        if text and found.description != text:
            raise Failure(f"the dialog says {found.description!r} instead of {text!r}")

    def rows(self, name):
        table = self.find(name, pyatspi.ROLE_TABLE).queryTable()
        return [[table.getAccessibleAt(r, c).name for c in range(table.nColumns)] for r in range(table.nRows)]

    def key(self, *keys):
        x("key", "--delay", "5", *keys)

    def type(self, text):
        x("type", "--delay", "5", text)

    def fill(self, name, text):
        """The focus has come to the field of that name: what is typed stands in it."""
        self.at(name)
        self.type(text)

    def leave(self):
        self.key("ctrl+q")
        if status := self.process.wait(TIMEOUT):
            raise Failure(f"the program ended with {status}")


def identity(w):
    """A new card, field after field by the tabulator."""
    w.at("Entité juridique")
    w.key("alt+f")
    w.at("Ouvrir…")
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
    w.key("Tab", "Tab", "Tab", "Tab", "Tab")
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
    w.at("AGD")
    w.key("Return")
    w.shows("Qualification professionnelle", "AGD")
    w.key("Tab", "Down")
    w.shows("Grille déroulement de carrière", "Cadre degré 1")
    w.key("alt+o")
    wait("the amendment is not in its list", lambda: w.rows("Avenants") ==
         [["01/03/2026", "01/03/2026", "AGD", "Cadre degré 1", "", "NON", "", ""]])


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
    first, second = Window(velanor), Window(velanor)
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
