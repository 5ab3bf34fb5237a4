# SPDX-License-Identifier: Zlib
"""Run by Blender with a window: pictures of the panel and of the device's screen, and that drawing fails nowhere.

panel_shots.py PROGRAMS FOLDER: the folder of the engine's programs, and where the pictures go.
"""

import os
import sys

import bpy

sys.path.insert(0, os.path.dirname(__file__))
import scenes  # noqa: E402
import window  # noqa: E402

PROGRAMS, FOLDER = sys.argv[sys.argv.index("--") + 1:]
PIXELS = 400  # at least, that differ between two pictures
SHOWN = 12  # steps until the viewer has drawn


def exceed():
    """Something for each part of the panel to complain of."""
    bpy.data.objects["body"].modifiers.new("finer", "SUBSURF").levels = 2
    bpy.data.objects["lamp"].data.type = "AREA"
    window.select("body")


def steps():
    scenes.empty()
    yield  # the window is another one
    bpy.context.preferences.addons["keltra"].preferences.folder = PROGRAMS
    scenes.figure()
    scenes.stage()
    bpy.context.scene.frame_set(11)
    window.select("body")
    yield
    window.look(0.5)
    yield
    window.choose_tab()
    yield from window.wait(3)
    window.shoot(FOLDER, "character")
    window.shoot_with_viewer(FOLDER, "before")
    bpy.ops.keltra.show()
    yield from window.wait(SHOWN)
    window.shoot_with_viewer(FOLDER, "device")
    window.select("lamp")
    yield from window.wait(2)
    window.shoot(FOLDER, "light")
    exceed()
    yield from window.wait(4)
    window.shoot(FOLDER, "over_budget")
    yield from preferences()


def preferences():
    bpy.ops.screen.userpref_show(section="ADDONS")
    other = bpy.context.window_manager.windows[-1]
    bpy.context.window_manager.addon_search = "Keltra"
    yield
    with bpy.context.temp_override(window=other):
        bpy.ops.preferences.addon_expand(module="keltra")
    other.screen.areas[0].tag_redraw()
    yield from window.wait(2)
    with bpy.context.temp_override(window=other):
        window.shoot(FOLDER, "preferences")


def pixels_of(name):
    image = bpy.data.images.load(os.path.join(FOLDER, name + ".png"))
    return list(image.pixels)[::4]


def compare():
    for first, second in (("character", "light"), ("light", "over_budget"), ("before", "device")):
        count = sum(a != b for a, b in zip(pixels_of(first), pixels_of(second)))
        print(f"panel: {first} and {second} differ in {count} pixels")
        if count < PIXELS:
            print("panel: FAILED")
    print("panel: done")


window.run(steps(), compare)
