# SPDX-License-Identifier: BSL-1.0
"""Reads, checks and edits settings that people edit, too."""

import qzl_io

SETTINGS = """{settings ; of the player
\t{volume 0.5}
\t{files "a.ogg" "b.ogg"}
}
"""

document = qzl_io.Document(SETTINGS, "settings.sdl")
document.set("settings/volume", document.get_float("settings/volume") / 2)
document.insert("settings", "{mute 0}")
document.save("settings.sdl")
print(qzl_io.Document.open("settings.sdl"), end="")

# All that is wrong in a text, as compilers show it.
for mistake in qzl_io.Document("{settings {volume $}", "wrong.sdl").check():
    print(mistake.rendered, end="")

# The numbers of a text, whatever blocks they are in.
numbers = [token.value for token in qzl_io.Reader("{a 1 {b 2.5} (+ 3 4)}") if isinstance(token.value, (int, float))]
print(f"The sum is {sum(numbers):g}.")

# What is asked for in vain.
try:
    document.get_int("settings/files")
except qzl_io.WrongKindError as error:
    print(error)
