#!/usr/bin/python3
"""The first starts of the program, without a database: the start page is there, the example is opened by one
key, and again straight away at the next start.

first_start.py VELANOR VELANORCTL; HOME is a folder of the test's own.
"""
import glob
import os
import stat
import sys

from bus import TIMEOUT, Failure, Window

EXAMPLES = os.path.expanduser("~/.local/share/velanor/exemple-*.db")


def leave_at_once(velanor):
    w = Window(velanor)
    w.come_forward()
    w.at("Ouvrir…")
    w.leave()
    if glob.glob(EXAMPLES):
        raise Failure("a base was made that nobody asked for")


def open_example(velanor):
    w = Window(velanor)
    w.come_forward()
    w.at("Ouvrir…")
    w.key("alt+e")
    w.fill("Entité juridique", "001")
    w.shows("Entité juridique (libellé)", "Aide aux Familles du Val")
    mode = stat.S_IMODE(os.stat(glob.glob(EXAMPLES)[0]).st_mode)
    if mode != 0o600:
        raise Failure(f"the database has the mode {mode:o}")
    w.leave()


def use_again(velanor):
    w = Window(velanor)
    w.come_forward()
    w.at("Entité juridique")
    w.key("alt+f", "r")
    w.at(os.path.basename(glob.glob(EXAMPLES)[0]))
    # One at a time: what comes while a menu closes goes with it.
    for behind in ("Bases récentes", "Fichier", "Entité juridique"):
        w.key("Escape")
        w.at(behind)
    w.fill("Entité juridique", "001")
    w.shows("Entité juridique (libellé)", "Aide aux Familles du Val")
    w.leave()


try:
    for step in (leave_at_once, open_example, use_again):
        step(sys.argv[1])
except Failure as failure:
    sys.exit(str(failure))
print("the example was opened from the start page, and straight away at the next start")
