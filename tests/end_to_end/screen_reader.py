#!/usr/bin/python3
"""What a screen reader can tell of Quietlark's windows, by the accessibility bus.

usage: screen_reader.py find ROLE NAME     the middle of what is shown and called that: X Y
       screen_reader.py text ROLE NAME     the text in it
       screen_reader.py focused            ROLE: NAME of what has the keyboard
       screen_reader.py shown              ROLE: NAME of everything that is shown, a line each
       screen_reader.py faults             what has a role but no name, a name or the keyboard but no role

A name matches what begins with it. Ends with 1 when there is no such thing.
"""
import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

State = Atspi.StateType


def children(node):
    for index in range(node.get_child_count()):
        child = node.get_child_at_index(index)
        if child is not None:
            yield child


def shown(node):
    """The node and what is below it, as far as it can be seen, from the outside in."""
    # A window that has just gone is answered for by nobody.
    try:
        states = node.get_state_set()
        if node.get_role() != Atspi.Role.APPLICATION and not states.contains(State.SHOWING):
            return
        yield node
        for child in children(node):
            yield from shown(child)
    except GLib.Error:
        return


def everything():
    for application in children(Atspi.get_desktop(0)):
        if (application.get_name() or "").lower() == "quietlark":
            yield from shown(application)


def matching(role, name):
    for node in everything():
        if node.get_role_name() == role and (node.get_name() or "").startswith(name):
            return node
    sys.exit(1)


def described(node):
    return f"{node.get_role_name()}: {node.get_name()}"


def has_keyboard(node):
    # The inner parts of an editor say that they have it as well.
    states = node.get_state_set()
    return states.contains(State.FOCUSED) and states.contains(State.FOCUSABLE)


# What only holds others together, which a screen reader passes over.
PASSED_OVER = (Atspi.Role.UNKNOWN, Atspi.Role.INVALID, Atspi.Role.FILLER)
# Of these it says what is in them.
CONTAINERS = (
    Atspi.Role.APPLICATION,
    Atspi.Role.FRAME,
    Atspi.Role.DIALOG,
    Atspi.Role.WINDOW,
    Atspi.Role.LAYERED_PANE,
    Atspi.Role.SCROLL_BAR,
)


def is_faulty(node):
    takes_keyboard = node.get_state_set().contains(State.FOCUSABLE)
    role, name = node.get_role(), node.get_name()
    if role in PASSED_OVER:
        return takes_keyboard or bool(name)
    return role not in CONTAINERS and not name


def main(what, *rest):
    if what == "find":
        box = matching(*rest).get_extents(Atspi.CoordType.SCREEN)
        print(box.x + box.width // 2, box.y + box.height // 2)
    elif what == "text":
        node = matching(*rest)
        print(Atspi.Text.get_text(node, 0, Atspi.Text.get_character_count(node)))
    elif what == "focused":
        focused = [described(node) for node in everything() if has_keyboard(node)]
        print(*focused[:1] or ["nothing"])
    elif what == "shown":
        print(*map(described, everything()), sep="\n")
    elif what == "faults":
        print(*[described(node) for node in everything() if is_faulty(node)], sep="\n", end="")
    else:
        sys.exit(__doc__)


main(*sys.argv[1:])
