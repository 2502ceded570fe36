#!/usr/bin/python3
"""A typist without a plan: thousands of keys at every speed into the program's window. It must never fail,
and the cards that are saved on the way must keep all rules. Run by hand, for as long as one likes:

on_bus.sh random_keys.py VELANOR VELANORCTL SECONDS SEED
"""
import os
import random
import subprocess
import sys
import tempfile
import time

from bus import TIMEOUT, Failure, Window, x

KEYS = (["Tab"] * 12 + ["shift+Tab"] * 3 + ["Return"] * 4 + ["Escape"] * 3 + ["Down"] * 5 + ["Up", "F4"] * 2 +
        ["alt+Down", "Page_Down", "Home", "End", "BackSpace", "Delete", "space", "F2", "comma", "a", "S", "O",
         "ctrl+Page_Down", "ctrl+Page_Up", "ctrl+Tab", "ctrl+a", "ctrl+c", "ctrl+v", "ctrl+z"] +
        list("0123456789") * 2 + ["alt+" + c for c in "jjjooouldpmsctvnheabgfi"])


def stays_in_front(window):
    """Puts away the guide and the file dialog; false when the program has ended."""
    if window.process.poll() is not None:
        return False
    if x("getactivewindow") != [window.x_id]:
        x("key", "Escape")
        x("windowactivate", window.x_id)
    return True


def play(velanor, store, until, rnd):
    window = Window(velanor, "--store", store)
    window.come_forward()
    window.at("Entité juridique")
    keys, typed = ["0", "0", "1", "0", "0", "0", "9", "1"], 0
    while stays_in_front(window):
        if time.monotonic() > until:
            window.process.terminate()
            window.process.wait(TIMEOUT)
            return typed
        x("key", "--delay", rnd.choice(["0", "3", "12"]), *keys)
        typed += len(keys)
        keys = [rnd.choice(KEYS) for _ in range(40)]
    if window.process.returncode:
        raise Failure(f"the program ended with {window.process.returncode} after {typed} keys")
    return typed


def main(velanor, velanorctl, seconds, seed):
    rnd = random.Random(int(seed))
    until = time.monotonic() + float(seconds)
    typed = 0
    with tempfile.TemporaryDirectory() as folder:
        store = os.path.join(folder, "fiches.db")
        subprocess.run([velanorctl, "demo", store], check=True, stdout=subprocess.DEVNULL)
        while time.monotonic() < until:
            typed += play(velanor, store, until, rnd)
        subprocess.run([velanorctl, "check", "--store", store], check=True)
    print(f"{typed} keys, no failure")


try:
    main(*sys.argv[1:])
except (Failure, subprocess.CalledProcessError) as failure:
    sys.exit(str(failure))
