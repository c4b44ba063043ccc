"""Journeys that start with an existing workspace instead of the assistant."""

import re
from xml.sax.saxutils import escape, quoteattr

from .journey import Journey

# Escaped in addition to the characters that XML requires.
QUOTES = {'"': "&quot;", "'": "&apos;"}

MAIN_WINDOW = "Vantorelle Remark Codesets Manager 3.2.3"
UK = "English/United Kingdom [en-uk]"
EN = "English [en]"
QUESTION = "Are you sure you want to close the codeset without saving?"
# The question when unsaved changes were left behind.
RESTORE = re.compile(r"^Unsaved changes to this codeset were found, from .+\. Restore them\?$")
SUB_FOLDERS = ("codesets", "layouts", "documents", "templates")


def codeset(name, author=None, version=None, remarks=()):
    """The bytes of a codeset file. `name` and `author` are {tag: text} or a text in the language
    en-uk, `remarks` are (code, description) with a description of the same kind."""
    lines = ['<?xml version="1.0" encoding="iso-8859-1"?>', "", "<codeset>", ""]
    lines += translations("name", name, 1)
    lines += translations("author", author or {}, 1)
    if version is not None:
        lines.append(f"\t<version>{escape(version, QUOTES)}</version>")
    for code, description in remarks:
        lines += [
            "",
            "\t<remark>",
            f"\t\t<code>{code}</code>",
            *translations("description", description, 2),
            "\t</remark>",
        ]
    lines += ["", "</codeset>", ""]
    return "\n".join(lines).encode("iso-8859-1")


def translations(element, texts, depth):
    texts = {"en-uk": texts} if isinstance(texts, str) else texts
    return [
        f'{depth * chr(9)}<{element} lang="{tag}">{escape(text, QUOTES)}</{element}>'
        for tag, text in texts.items()
    ]


class WorkspaceJourney(Journey):
    """The user's language is British English. The program lists the files in `self.codesets`."""

    def setUp(self):
        super().setUp()
        self.workspace = self.home / "Vantorelle Workspace"
        self.codesets = self.workspace / "codesets"
        for folder in SUB_FOLDERS:
            (self.workspace / folder).mkdir(parents=True)
        pointer_file = self.home / ".config" / "vantorelle" / "vantorelle.xml"
        pointer_file.parent.mkdir(parents=True)
        pointer_file.write_text(
            f"<vantorelle><workspace path={quoteattr(str(self.workspace))}/></vantorelle>\n"
        )

    def put(self, name, data):
        """Writes a file in the workspace's folder of codesets."""
        path = self.codesets / name
        path.write_bytes(data)
        return path

    def prefer(self, *tags):
        """Sets the user's languages, instead of those of the environment."""
        languages = "".join(f'<language tag="{tag}"/>' for tag in tags)
        settings = f"<settings><preferred-languages>{languages}</preferred-languages></settings>\n"
        (self.workspace / "settings.xml").write_text(settings)

    def contents(self, folder=None):
        """The bytes of every file in the folder of codesets (or another), by name."""
        return {
            path.name: path.read_bytes()
            for path in (folder or self.codesets).iterdir()
            if path.is_file()
        }

    def drafts(self):
        """The bytes of every draft."""
        folder = self.home / ".local" / "state" / "vantorelle" / "drafts"
        return [path.read_bytes() for path in sorted(folder.glob("*.codeset"))]

    def open(self, **options):
        """The program and its main window."""
        program = self.start_program(**{"VANTORELLE_USER_LANGUAGE": "en-uk", **options})
        return program, program.window(MAIN_WINDOW)

    def open_editing(self, name, text, **options):
        """The program, and the editing window of the file `name`, which the list shows as
        `text`."""
        program, window = self.open(**options)
        return program, self.edit(program, window, text, name)

    def edit(self, program, window, text, name):
        """The editing window of the file `name`, which the list shows as `text`."""
        window.activate()
        window.list().row(text).select()
        window.button("Edit").click()
        return program.window(f"Edit remark codeset - {name}")

    def save(self, editing):
        editing.activate()
        editing.button("Save codeset").click()
        editing.expect_closed()

    def close_without_saving(self, program, editing):
        editing.button("Close").click()
        self.expect_message(program, "Really close?", QUESTION, "Close")
        editing.expect_closed()

    def delete(self, program, window, text, answer="Yes"):
        window.activate()
        window.list().row(text).select()
        window.button("Delete").click()
        self.expect_message(
            program,
            "Question",
            f'Do you really want to delete "{text}" from your workspace?',
            answer,
        )

    def expect_nothing_selected(self, window):
        window.list().expect_selected([])
        window.field("File name of selected item").expect_text("")
        self.expect_sensitivity(
            window,
            Clone=False,
            Edit=False,
            Save_a_copy=False,
            Delete=False,
            Add_from_file=True,
            Add_bundled=True,
            Add_new=True,
            Refresh_list=True,
        )

    def expect_message(self, program, title, message, answer):
        """Expects a dialog with exactly this message (or one that matches the pattern), and answers
        it with a button, or with a key such as "Escape"."""
        dialog = program.dialog(title)
        if isinstance(message, re.Pattern):
            self.assertRegex(dialog.message, message)
        else:
            self.assertEqual(dialog.message, message)
        if dialog.has("push button", answer):
            dialog.answer(answer)
        else:
            dialog.press(answer)
            dialog.expect_closed()

    def expect_sensitivity(self, window, **buttons):
        """`buttons` are names with underscores for blanks, and whether each is sensitive."""
        for name, sensitive in buttons.items():
            window.button(name.replace("_", " ")).expect_sensitive(sensitive)

    def end(self, program, window):
        window.close()
        program.expect_exit(0)
