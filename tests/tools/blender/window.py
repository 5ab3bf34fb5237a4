# SPDX-License-Identifier: Zlib
"""For scripts that try Blender's window, which is on a screen in memory: steps, clicks and pictures."""

import os
import subprocess
import sys
import traceback

import bpy

STEP = 0.4  # seconds; the window is drawn in between
VIEWER = (240, 320)  # pixels


def area_of(kind):
    return next(area for area in bpy.context.window.screen.areas if area.type == kind)


def region_of(area, kind):
    return next(region for region in area.regions if region.type == kind)


def select(name):
    obj = bpy.data.objects[name]
    for other in bpy.data.objects:
        other.select_set(other == obj)
    bpy.context.view_layer.objects.active = obj


def look(angle):
    """From the front and a little from the side, with the sidebar."""
    area = area_of("VIEW_3D")
    area.spaces[0].show_region_ui = True
    area.spaces[0].shading.type = "MATERIAL"
    with bpy.context.temp_override(area=area, region=region_of(area, "WINDOW")):
        bpy.ops.view3d.view_axis(type="FRONT")
        bpy.ops.view3d.view_orbit(angle=angle, type="ORBITLEFT")
        bpy.ops.view3d.view_all()


def choose_tab():
    """The add-on's tab of the sidebar, which is the last one."""
    region, window = region_of(area_of("VIEW_3D"), "UI"), bpy.context.window
    x, y = region.x + region.width - 8, region.y + region.height // 2
    window.event_simulate("MOUSEMOVE", "NOTHING", x=x, y=y)
    for _ in range(8):
        window.event_simulate("WHEELDOWNMOUSE", "PRESS", x=x, y=y, ctrl=True)


def shoot(folder, name):
    bpy.ops.screen.screenshot(filepath=os.path.join(folder, name + ".png"))


def shoot_with_viewer(folder, name):
    """The viewer's window, which is at the screen's upper left, before Blender's own.

    Both in one picture of the screen would need a window manager; without one Blender's part of it is black.
    """
    shoot(folder, name)
    paste = ("import sys\nfrom PIL import Image, ImageGrab\npicture = Image.open(sys.argv[1]).convert('RGB')\n"
             f"viewer = ImageGrab.grab(xdisplay='').crop((0, 0, {VIEWER[0]}, {VIEWER[1]}))\n"
             "picture.paste(viewer, (70, picture.height - viewer.height - 90))\npicture.save(sys.argv[1])\n")
    subprocess.run(["/usr/bin/python3", "-c", paste, os.path.join(folder, name + ".png")], check=True)


def wait(steps):
    for _ in range(steps):
        yield


def run(steps, finish):
    """Takes one step of the generator after the other, then ends the program."""

    def step():
        try:
            with bpy.context.temp_override(window=bpy.context.window_manager.windows[0]):
                next(steps)
            return STEP
        except StopIteration:
            finish()
        except Exception:  # what escapes a timer would leave the program open
            traceback.print_exc()
        bpy.ops.preferences.addon_disable(module="keltra")  # it ends the viewer that it has started
        sys.stdout.flush()
        os._exit(0)  # Blender would ask whether to save

    bpy.ops.preferences.addon_enable(module="keltra")
    bpy.app.timers.register(step, first_interval=1.0, persistent=True)
