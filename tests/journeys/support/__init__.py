"""Drives the real program from outside: finds its widgets in the accessibility tree and operates
them with X events."""

from .journey import Journey, main
from .program import Program
from .waiting import JourneyTimeout, wait_until
from .widgets import Dialog, FileChooser, Row, Widget, Window
from .workspace import EN, MAIN_WINDOW, QUESTION, RESTORE, UK, WorkspaceJourney, codeset

__all__ = [
    "Dialog",
    "EN",
    "FileChooser",
    "Journey",
    "JourneyTimeout",
    "MAIN_WINDOW",
    "Program",
    "QUESTION",
    "RESTORE",
    "Row",
    "UK",
    "Widget",
    "Window",
    "WorkspaceJourney",
    "codeset",
    "main",
    "wait_until",
]
