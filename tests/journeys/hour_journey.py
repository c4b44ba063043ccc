"""A large codeset by keyboard alone: sixty codes in three languages are entered, and later each of
them is changed. The journey counts the keys pressed besides the texts."""

from support import WorkspaceJourney, codeset, display, main

LANGUAGES = ("en-uk", "sv", "de")

CODES = [
    (
        f"W{number:02}",
        {
            "en-uk": f"Worm damage {number}",
            "sv": f"Maskskada {number}",
            "de": f"Wurmschaden {number}",
        },
    )
    for number in range(1, 61)
]


class Keyboard:
    """Types texts, and counts every other key."""

    def __init__(self, pause):
        self.pause = pause
        self.presses = 0

    def press(self, *keys):
        self.presses += len(keys)
        display.xdotool("key", "--delay", self.pause, *keys)

    def type(self, text):
        display.xdotool("type", "--delay", self.pause, "--", text)


class Hour(WorkspaceJourney):
    def setUp(self):
        super().setUp()
        self.prefer(*LANGUAGES)

    def open_new(self):
        program, window = self.open()
        window.list().expect_focus()
        window.tab_to(window.button("Add new"))
        display.press("space")
        naming = program.window("Add new")
        naming.field().expect_focus()
        display.press("Home")
        display.type_text("worm\n")
        naming.expect_closed()
        return program, program.window("Edit remark codeset - worm.codeset")

    def add_code(self, program, keyboard, code, texts):
        keyboard.press("ctrl+n")
        dialog = program.window("Edit remark code")
        dialog.field("Remark code").expect_focus()
        keyboard.type(code)
        keyboard.press("Tab")
        for number, text in enumerate(texts.values()):
            if number > 0:
                keyboard.press("ctrl+Return")
            keyboard.type(text)
        keyboard.press("Return")
        dialog.expect_closed()

    def enter_codes(self, pause):
        program, editing = self.open_new()
        keyboard = Keyboard(pause)
        keyboard.type("Worms")
        for code, texts in CODES:
            self.add_code(program, keyboard, code, texts)
        print(
            f"{keyboard.presses / len(CODES):.2f} presses for each new code, "
            f"{pause} ms from key to key"
        )
        self.assertLessEqual(keyboard.presses, 5 * len(CODES))
        keyboard.press("ctrl+s")
        editing.expect_closed()
        self.assertEqual(self.contents(), {"worm.codeset": codeset("Worms", remarks=CODES)})

    def test_sixty_new_codes_at_10_ms(self):
        self.enter_codes(10)

    def test_sixty_new_codes_at_30_ms(self):
        self.enter_codes(30)

    def change_codes(self, pause):
        self.put("worm.codeset", codeset("Worms", remarks=CODES))
        program, window = self.open()
        window.list().expect_focus()
        display.press("space")
        window.list().expect_selected(["Worms"])
        window.tab_to(window.button("Edit"))
        display.press("space")
        editing = program.window("Edit remark codeset - worm.codeset")
        codes = editing.list("Remark codes")
        editing.tab_to(codes)
        display.press("Down", "Home")
        codes.expect_selected(["W01. Worm damage 1"])
        editing.tab_to(editing.button("Edit"))
        keyboard = Keyboard(pause)
        display.press("space")
        dialog = program.window("Edit remark code")
        dialog.field("Remark code").expect_focus()
        display.press("Tab", "Tab")
        for number in range(1, 61):
            program.wait(
                lambda number=number: program.focused()
                and program.focused().text == f"Maskskada {number}",
                "the next code",
            )
            keyboard.type(f"Tramask {number}" if number % 20 == 0 else f"Maskar {number}")
            keyboard.press("ctrl+Down")
        dialog.expect_closed()
        editing.expect_active()
        print(
            f"{keyboard.presses / len(CODES):.2f} presses for each changed code, "
            f"{pause} ms from key to key"
        )
        self.assertEqual(keyboard.presses, len(CODES))
        display.press("ctrl+s")
        editing.expect_closed()
        changed = [
            (code, {**texts, "sv": f"Tramask {number}" if number % 20 == 0 else f"Maskar {number}"})
            for number, (code, texts) in enumerate(CODES, 1)
        ]
        self.assertEqual(self.contents(), {"worm.codeset": codeset("Worms", remarks=changed)})

    def test_one_description_in_each_of_sixty_codes_at_10_ms(self):
        self.change_codes(10)

    def test_one_description_in_each_of_sixty_codes_at_30_ms(self):
        self.change_codes(30)


if __name__ == "__main__":
    main()
