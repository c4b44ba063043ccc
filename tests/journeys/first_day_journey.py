"""From the first start to the last byte: assistant, delivered codesets, add, clone, edit, save,
delete, close."""

import re
import stat
from xml.etree import ElementTree

from support import MAIN_WINDOW, Journey, main
from support.journey import delivered_stage


def read_summary(path, languages):
    """The list's text for a codeset file, read by an independent parser."""
    root = ElementTree.parse(path).getroot()

    def text(name):
        texts = {element.get("lang"): element.text for element in root.findall(name)}
        return next(texts[language] for language in languages if language in texts)

    return f"{text('name')} ({text('author')}) {root.findtext('version')}"


class FirstDay(Journey):
    def test_a_codeset_is_cloned_edited_and_saved_to_the_byte(self):
        program = self.start_program(VANTORELLE_USER_LANGUAGE="sv")
        workspace = self.home / "Vantorelle Workspace"
        self.create_workspace(program, workspace)

        window = program.window(MAIN_WINDOW)
        delivered = sorted((delivered_stage() / "codesets").glob("*.codeset"))
        summaries = [read_summary(path, ["sv"]) for path in delivered]
        self.assertCountEqual(window.list().texts(), summaries)
        metals = next(text for text in summaries if text.startswith("Metaller "))

        self.delete(program, window, metals, workspace / "codesets" / "metals.codeset")
        self.add_bundled(program, window, metals, workspace / "codesets" / "metals.codeset")
        self.clone(program, window, metals, "my_metals.codeset")

        own = workspace / "codesets" / "my_metals.codeset"
        original = (delivered_stage() / "codesets" / "metals.codeset").read_bytes()
        self.assertEqual(own.read_bytes(), original)

        window.list().expect_selected([])
        # Two rows read the same now; the file name tells them apart.
        self.select_file(window, metals, "my_metals.codeset")
        window.button("Edit").click()
        self.edit(program)
        window.expect_active()
        self.assertEqual(own.read_bytes(), self.edited(original))

        summary = read_summary(own, ["sv"])
        self.assertTrue(summary.startswith("Mina metaller "))
        self.delete(program, window, summary, own)
        self.assertCountEqual(window.list().texts(), summaries)
        window.close()
        program.expect_exit(0)

    def create_workspace(self, program, workspace):
        assistant = program.window("Vantorelle Workspace Setup")
        assistant.button("Next").click()
        assistant.field("Workspace location").expect_text(str(workspace))
        assistant.button("Apply").click()
        assistant.button("Close").click()
        assistant.expect_closed()
        program.window(MAIN_WINDOW)
        for folder in ("codesets", "layouts", "documents", "templates"):
            self.assertEqual(stat.S_IMODE((workspace / folder).stat().st_mode), 0o700)
        pointer = ElementTree.parse(
            self.home / ".config" / "vantorelle" / "vantorelle.xml"
        ).getroot()
        self.assertEqual(pointer.find("workspace").get("path"), str(workspace))

    def delete(self, program, window, summary, path):
        window.list().row(summary).select()
        window.field("File name of selected item").expect_text(path.name)
        window.button("Delete").click()
        question = program.dialog("Question")
        self.assertEqual(
            question.message, f'Do you really want to delete "{summary}" from your workspace?'
        )
        question.answer("Yes")
        program.wait(lambda: not path.exists(), f"{path.name} to be gone")

    def add_bundled(self, program, window, summary, path):
        window.button("Add bundled").click()
        selector = program.window("Select one to add")
        selector.list().row(summary).select()
        selector.button("OK").click()
        selector.expect_closed()
        program.wait(path.exists, f"{path.name} to be there")

    def clone(self, program, window, summary, name):
        window.list().row(summary).select()
        window.button("Clone").click()
        naming = program.window("Add new")
        naming.field().enter(name)
        naming.button("OK").click()
        naming.expect_closed()

    def select_file(self, window, summary, name):
        rows = [row for row in window.list().rows() if row.text == summary]
        for row in rows:
            row.select()
            if window.field("File name of selected item").text == name:
                return
        self.fail(f"no row for {name}")

    def edit(self, program):
        editing = program.window("Edit remark codeset - my_metals.codeset")
        editing.field("Swedish [sv]").enter("Mina metaller")
        self.add_code(program, editing)
        codes = editing.list("Remark codes")
        codes.expect_selected([])
        program.wait(
            lambda: codes.texts()[-1:] == ["Zz1. Ny kod, provisorisk"], "the new row at the end"
        )
        self.move_code(program, editing)
        program.wait(
            lambda: codes.texts()[:1] and codes.texts()[0].startswith("Aa1. "),
            "the moved row at the top",
        )
        codes.row(re.compile(r"Cr2\. ")).select()
        editing.button("Delete").click()
        program.wait(
            lambda: not any(text.startswith("Cr2. ") for text in codes.texts()),
            "the row to be gone",
        )
        editing.button("Save codeset").click()
        editing.expect_closed()

    def add_code(self, program, editing):
        editing.button("Add new").click()
        dialog = program.window("Edit remark code")
        dialog.field("Remark code").type("Zz1")
        dialog.field(index=1).enter("  Ny kod,   provisorisk ")
        dialog.button(" + ").click()
        dialog.field(index=2).expect_focus()
        dialog.field(index=2).type("New code, provisional")
        dialog.press("Return")
        dialog.expect_closed()

    def move_code(self, program, editing):
        editing.list("Remark codes").row(re.compile(r"Cr15\. ")).select()
        editing.button("Edit").click()
        dialog = program.window("Edit remark code")
        dialog.field("Remark code").expect_text("Cr15")
        dialog.field("Remark code").enter("Aa1")
        dialog.button("OK").click()
        dialog.expect_closed()

    def edited(self, original):
        """The expected contents of the edited file, made from the delivered one."""
        text = original.decode("iso-8859-1")
        text = text.replace(
            '<name lang="sv">Metaller</name>', '<name lang="sv">Mina metaller</name>'
        )
        head, *remarks = text.removesuffix("\n</codeset>\n").split("\n\t<remark>\n")
        by_code = {
            re.match(r"\t\t<code>(.*)</code>\n", remark).group(1): remark for remark in remarks
        }
        moved = by_code.pop("Cr15").replace("<code>Cr15<", "<code>Aa1<")
        by_code.pop("Cr2")
        added = (
            "\t\t<code>Zz1</code>\n"
            '\t\t<description lang="sv">Ny kod, provisorisk</description>\n'
            '\t\t<description lang="en-uk">New code, provisional</description>\n'
            "\t</remark>\n"
        )
        remarks = [moved, *by_code.values(), added]
        result = "\n\t<remark>\n".join([head, *remarks]) + "\n</codeset>\n"
        return result.encode("iso-8859-1")


if __name__ == "__main__":
    main()
