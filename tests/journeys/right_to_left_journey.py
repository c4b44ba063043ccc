"""Every window of a user whose language is written from right to left."""

import os

import small_screen_journey
from small_screen_journey import UK
from support import codeset, main


class Mirrored:
    """The texts stay English: the toolkit takes the direction from a module (right_to_left.cpp,
    whose path is in the environment) instead of the user's language."""

    environment = {"GTK_MODULES": os.environ["VANTORELLE_RIGHT_TO_LEFT"]}


class RightToLeft(Mirrored, small_screen_journey.SmallScreen):
    def expect_order(self, *widgets):
        """The widgets follow each other from right to left."""
        places = [widget.resting_extents()[0] for widget in widgets]
        self.assertEqual(places, sorted(places, reverse=True), repr(widgets))

    def test_every_window_begins_at_the_right(self):
        self.put("plain.codeset", codeset("Plain", remarks=[("1", "One")]))
        program, window = self.open()
        self.expect_order(window.list(), window.button("Add new"))
        window.button("Add new").click()
        naming = program.window("Add new")
        self.expect_order(naming.button("OK"), naming.button("Cancel"))
        naming.press("Escape")
        naming.expect_closed()
        editing = self.edit(program, window, "Plain", "plain.codeset")
        self.expect_order(
            editing.field(UK), editing.combo(), editing.button(" - "), editing.button(" + ")
        )
        self.expect_order(
            editing.button("Add new"), editing.button("Edit"), editing.button("Delete")
        )
        self.expect_order(editing.button("Save codeset"), editing.button("Close"))
        self.expect_order(editing.list("Remark codes"), editing.fields()[-1])
        editing.button("Add new").click()
        dialog = program.window("Edit remark code")
        self.expect_order(
            dialog.field(UK), dialog.combo(), dialog.button(" - "), dialog.button(" + ")
        )
        self.expect_order(dialog.button("OK"), dialog.button("Cancel"))


class BeginningsRightToLeft(Mirrored, small_screen_journey.Beginnings):
    pass


if __name__ == "__main__":
    main()
