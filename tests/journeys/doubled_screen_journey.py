"""Every window on a screen of twice the density, where the toolkit draws each of its pixels with
two by two."""

import small_screen_journey
from support import main


class DoubledScreen(small_screen_journey.SmallScreen):
    environment = {"GDK_SCALE": "2"}


class BeginningsOnADoubledScreen(small_screen_journey.Beginnings):
    environment = {"GDK_SCALE": "2"}


if __name__ == "__main__":
    main()
