# SPDX-License-Identifier: Zlib
"""Run by Blender with a window (--enable-event-simulate): pictures of the panel, and that drawing it fails nowhere.

panel_shots.py PROGRAMS FOLDER: the folder of the engine's programs, and where the pictures go.
"""

import os
import sys
import traceback

import bpy

sys.path.insert(0, os.path.dirname(__file__))
import scenes  # noqa: E402

PROGRAMS, FOLDER = sys.argv[sys.argv.index("--") + 1:]
STEP = 0.4  # seconds; the window is drawn in between
PIXELS = 400  # at least, that differ between two pictures


def view():
    area = next(area for area in bpy.context.window.screen.areas if area.type == "VIEW_3D")
    return area, area.spaces[0], next(region for region in area.regions if region.type == "UI")


def select(name):
    obj = bpy.data.objects[name]
    for other in bpy.data.objects:
        other.select_set(other == obj)
    bpy.context.view_layer.objects.active = obj


def shoot(name):
    bpy.ops.screen.screenshot(filepath=os.path.join(FOLDER, name + ".png"))


def look():
    area, space, _ = view()
    space.show_region_ui = True
    space.shading.type = "MATERIAL"
    space.overlay.show_floor = True
    region = next(r for r in area.regions if r.type == "WINDOW")
    with bpy.context.temp_override(area=area, region=region):
        bpy.ops.view3d.view_axis(type="FRONT")
        bpy.ops.view3d.view_orbit(angle=0.5, type="ORBITLEFT")
        bpy.ops.view3d.view_all()


def choose_tab():
    """The add-on's tab is the last one."""
    region = view()[2]
    x, y = region.x + region.width - 8, region.y + region.height // 2
    window = bpy.context.window
    window.event_simulate("MOUSEMOVE", "NOTHING", x=x, y=y)
    for _ in range(8):
        window.event_simulate("WHEELDOWNMOUSE", "PRESS", x=x, y=y, ctrl=True)


def exceed():
    """Something for each part of the panel to complain of."""
    bpy.data.objects["body"].modifiers.new("finer", "SUBSURF").levels = 2
    bpy.data.objects["lamp"].data.type = "AREA"
    select("body")


def steps():
    scenes.empty()
    yield  # the window is another one
    bpy.context.preferences.addons["keltra"].preferences.folder = PROGRAMS
    scenes.figure()
    scenes.stage()
    bpy.context.scene.frame_set(11)
    select("body")
    yield
    look()
    yield
    choose_tab()
    yield
    yield
    yield
    shoot("character")
    select("lamp")
    yield
    yield
    shoot("light")
    exceed()
    yield
    yield
    yield
    yield
    shoot("over_budget")
    bpy.ops.screen.userpref_show(section="ADDONS")
    window = bpy.context.window_manager.windows[-1]
    bpy.context.window_manager.addon_search = "Keltra"
    yield
    with bpy.context.temp_override(window=window):
        bpy.ops.preferences.addon_expand(module="keltra")
    window.screen.areas[0].tag_redraw()
    yield
    yield
    with bpy.context.temp_override(window=window):
        shoot("preferences")


def differing(first, second):
    images = [bpy.data.images.load(os.path.join(FOLDER, name + ".png")) for name in (first, second)]
    pixels = [list(image.pixels) for image in images]
    return sum(a != b for a, b in zip(pixels[0][::4], pixels[1][::4]))


def run(todo=steps()):
    try:
        with bpy.context.temp_override(window=bpy.context.window_manager.windows[0]):
            next(todo)
        return STEP
    except StopIteration:
        for first, second in (("character", "light"), ("light", "over_budget")):
            count = differing(first, second)
            print(f"panel: {first} and {second} differ in {count} pixels")
            if count < PIXELS:
                print("panel: FAILED")
        print("panel: done")
    except Exception:  # what escapes a timer would leave the program open
        traceback.print_exc()
    sys.stdout.flush()
    os._exit(0)  # Blender would ask whether to save


bpy.ops.preferences.addon_enable(module="keltra")
bpy.app.timers.register(run, first_interval=1.0, persistent=True)
