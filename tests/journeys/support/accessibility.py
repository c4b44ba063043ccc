"""The accessibility tree as plain functions over accessible objects. An object that vanishes while
it is read counts as absent."""

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

# A program that ends during a request makes the accessibility library complain in this process.
# That is no fault of the program, and must not end the journey.
GLib.log_set_always_fatal(GLib.LogLevelFlags.LEVEL_ERROR)

# By default a program that does not answer within 0.8 seconds, because it has other work or gets no
# processor time, would count as one whose objects have vanished.
Atspi.set_timeout(10_000, 30_000)

LISTS = ("table", "tree table")
BUTTONS = ("push button", "toggle button")
TEXTS = ("text", "password text", "entry")
# Role names of Debian 13's accessibility library, with the names that are used here.
RENAMED_ROLES = {"button": "push button"}
NOWHERE = -(2**31)


def application(pid):
    """The accessible object of the process, its remembered state dropped, or None."""
    desktop = Atspi.get_desktop(0)
    desktop.clear_cache()
    for child in children(desktop):
        if attempt(child.get_process_id) == pid:
            child.clear_cache()
            return child
    return None


def attempt(question, *arguments, default=None):
    try:
        return question(*arguments)
    except GLib.Error:
        return default


def children(accessible):
    for index in range(attempt(accessible.get_child_count, default=0)):
        child = attempt(accessible.get_child_at_index, index)
        if child is not None:
            yield child


def descendants(accessible, closed=LISTS):
    """All below the object in reading order. Objects of the closed roles are not entered: the cells
    of a list are many, and found by row instead."""
    for child in children(accessible):
        yield child
        if role(child) not in closed:
            yield from descendants(child, closed)


def role(accessible):
    """The same name with every version of the accessibility library."""
    role_name = attempt(accessible.get_role_name, default="")
    return RENAMED_ROLES.get(role_name, role_name)


def name(accessible):
    return attempt(accessible.get_name, default="")


def description(accessible):
    return attempt(accessible.get_description, default="")


def states(accessible):
    """The state names, such as "focused", "sensitive", "showing"."""
    state_set = attempt(accessible.get_state_set)
    return {state.value_nick for state in state_set.get_states()} if state_set else set()


def interfaces(accessible):
    return attempt(accessible.get_interfaces, default=[])


def text(accessible):
    """The text that the object shows, or None when it shows none."""
    return (
        attempt(Atspi.Text.get_text, accessible, 0, -1)
        if "Text" in interfaces(accessible)
        else None
    )


def extents(accessible):
    """(x, y, width, height) on the screen in the toolkit's pixels, or None when it is not on the
    screen."""
    if "Component" not in interfaces(accessible):
        return None
    box = attempt(Atspi.Component.get_extents, accessible, Atspi.CoordType.SCREEN)
    if box is None or NOWHERE in (box.x, box.y) or box.width <= 0 or box.height <= 0:
        return None
    return box.x, box.y, box.width, box.height


def labels_of(accessible):
    """The texts of the labels that are related to the object."""
    return [
        name(relation.get_target(index))
        for relation in attempt(accessible.get_relation_set, default=[])
        if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY
        for index in range(relation.get_n_targets())
    ]


def dump(accessible, depth=0):
    """The tree as text, one object per line: role, name, text where it differs, states, place."""
    shown = text(accessible)
    parts = [role(accessible), repr(name(accessible))]
    if shown and shown != name(accessible):
        parts.append(f"text={shown!r}")
    if description(accessible):
        parts.append(f"description={description(accessible)!r}")
    if labels_of(accessible):
        parts.append(f"labelled by {labels_of(accessible)!r}")
    parts.append(" ".join(sorted(states(accessible) - {"enabled", "visible"})))
    parts.append(str(extents(accessible) or "off screen"))
    return "".join(
        [
            "  " * depth,
            " ".join(parts),
            "\n",
            *(dump(child, depth + 1) for child in children(accessible)),
        ]
    )
