"""A program of ours on a real display as its user meets it: keys are events of the X server, and what is
read comes through the accessibility bus, as a screen reader would get it.

Needs a display with a window manager, a session bus, xdotool and pyatspi (on_bus.sh gives all of them).
"""
import subprocess
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
    """A window of a program that is started for it."""

    def __init__(self, *command):
        self.process = subprocess.Popen(command)
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
