#!/usr/bin/python3
"""The first starts of the program, without a database: the offer of the demonstration is declined, then
taken, and not made again.

first_start.py VELANOR VELANORCTL; HOME is a folder of the test's own.
"""
import os
import stat
import sys

from bus import TIMEOUT, Failure, Window

OWN_DATABASE = os.path.expanduser("~/.local/share/velanor/velanor.db")


def decline(velanor):
    w = Window(velanor)
    w.come_forward()
    w.dialog("Fiches du personnel", "Cette base est vide.\r\nVoulez-vous y mettre les données de démonstration "
             "(trois entités fictives et leur personnel) ?")
    w.key("alt+n")
    w.dialog("Fiches du personnel", "Une base vide ne peut pas être ouverte : importez d'abord vos fichiers de "
             "référence par la commande velanorctl import, puis relancez le programme.")
    w.key("Return")
    w.process.wait(TIMEOUT)


def accept(velanor):
    w = Window(velanor)
    w.come_forward()
    w.at("Oui")
    w.key("Return")
    w.fill("Entité juridique", "001")
    w.shows("Entité juridique (libellé)", "Aide aux Familles du Val")
    mode = stat.S_IMODE(os.stat(OWN_DATABASE).st_mode)
    if mode != 0o600:
        raise Failure(f"the database has the mode {mode:o}")
    w.leave()


def use_again(velanor):
    w = Window(velanor)
    w.come_forward()
    w.at("Entité juridique")
    w.key("alt+f", "Down", "Down", "Right")
    w.at("velanor.db")
    # One at a time: what comes while a menu closes goes with it.
    for behind in ("Bases récentes", "Fichier", "Entité juridique"):
        w.key("Escape")
        w.at(behind)
    w.fill("Entité juridique", "001")
    w.shows("Entité juridique (libellé)", "Aide aux Familles du Val")
    w.leave()


try:
    for step in (decline, accept, use_again):
        step(sys.argv[1])
except Failure as failure:
    sys.exit(str(failure))
print("the demonstration was offered until it was taken")
