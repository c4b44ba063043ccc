"""Drives the real program from outside: finds its widgets in the accessibility tree and operates
them with X events."""

from .journey import Journey, main
from .program import Program
from .waiting import JourneyTimeout, wait_until
from .widgets import Dialog, FileChooser, Row, Widget, Window
from .workspace import MAIN_WINDOW, RESTORE, WorkspaceJourney, codeset

__all__ = [
    "Dialog",
    "FileChooser",
    "Journey",
    "JourneyTimeout",
    "MAIN_WINDOW",
    "Program",
    "RESTORE",
    "Row",
    "Widget",
    "Window",
    "WorkspaceJourney",
    "codeset",
    "main",
    "wait_until",
]
