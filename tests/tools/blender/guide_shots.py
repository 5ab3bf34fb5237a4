# SPDX-License-Identifier: Zlib
"""Run by Blender with a window: the character of docs/first_character.md, and the pictures of its steps.

guide_shots.py PROGRAMS FOLDER DATA: the folder of the engine's programs, where pictures go, and what is exported.
"""

import math
import os
import sys

import bpy
from mathutils import Matrix, Vector

sys.path.insert(0, os.path.dirname(__file__))
import scenes  # noqa: E402
import window  # noqa: E402

PROGRAMS, FOLDER, DATA = sys.argv[sys.argv.index("--") + 1:]
PALETTE = {"skin": (0.85, 0.6, 0.45), "hair": (0.25, 0.13, 0.08), "shirt": (0.75, 0.2, 0.15),
           "trousers": (0.15, 0.25, 0.5), "shoes": (0.12, 0.1, 0.1), "eyes": (0.05, 0.05, 0.08)}
BONES = {  # name: head, tail, parent
    "hip": ((0, 0, 0.92), (0, 0, 1.08), None), "spine": ((0, 0, 1.08), (0, 0, 1.5), "hip"),
    "head": ((0, 0, 1.5), (0, 0, 1.85), "spine"),
    **{f"{name}.{side}": (tuple(Vector(head) * Vector((s, 1, 1))), tuple(Vector(tail) * Vector((s, 1, 1))),
                          f"{above}.{side}" if above in ("arm", "thigh", "shin") else above)
       for side, s in (("L", 1), ("R", -1))
       for name, head, tail, above in (
           ("arm", (0.2, 0, 1.42), (0.36, 0, 1.15), "spine"), ("forearm", (0.36, 0, 1.15), (0.44, -0.04, 0.88), "arm"),
           ("thigh", (0.1, 0, 0.92), (0.11, -0.02, 0.5), "hip"),
           ("shin", (0.11, -0.02, 0.5), (0.11, 0.02, 0.1), "thigh"),
           ("foot", (0.11, 0.02, 0.1), (0.11, -0.16, 0.04), "shin"))},
}


def palette():
    """A picture of 64 x 64 pixels with a stripe for each colour."""
    made = scenes.material("clothes", (64, 64))
    image = bpy.data.images["clothes"]
    colours = list(PALETTE.values())
    rows = [colours[min(x * len(colours) // 64, len(colours) - 1)] for x in range(64)] * 64
    image.pixels.foreach_set([part for colour in rows for part in (*colour, 1.0)])
    image.pack()
    return made


def blob(rig, bone, colour, centre, size, segments=10, rings=7):
    """A rounded part that follows one bone, its upper third the bone above too."""
    bpy.ops.mesh.primitive_uv_sphere_add(segments=segments, ring_count=rings, radius=1.0)
    obj = bpy.context.object
    for polygon in obj.data.polygons:
        polygon.use_smooth = True
    u = (list(PALETTE).index(colour) + 0.5) / len(PALETTE)
    for loop in obj.data.uv_layers[0].data:
        loop.uv = (u, 0.5)
    axis = Vector(BONES[bone][1]) - Vector(BONES[bone][0])
    turn = axis.to_track_quat("Z", "Y").to_matrix().to_4x4() if colour != "hair" else Matrix()
    own, parent = obj.vertex_groups.new(name=bone), BONES[bone][2]
    above = parent and obj.vertex_groups.new(name=parent)
    for vertex in obj.data.vertices:
        share = 0.5 if above and vertex.co.z < -0.6 and bone != "head" else 0.0
        own.add([vertex.index], 1.0 - share, "REPLACE")
        if share:
            above.add([vertex.index], share, "REPLACE")
    obj.data.transform(Matrix.Translation(centre) @ turn @ Matrix.Diagonal((*size, 1.0)))
    return obj


def middle(bone):
    return (Vector(BONES[bone][0]) + Vector(BONES[bone][1])) / 2


def walker():
    rig = scenes.armature("walker", BONES)
    parts = [blob(rig, "spine", "shirt", Vector((0, 0, 1.28)), (0.2, 0.13, 0.27)),
             blob(rig, "hip", "trousers", Vector((0, 0, 0.98)), (0.18, 0.13, 0.14)),
             blob(rig, "head", "skin", Vector((0, 0, 1.66)), (0.13, 0.14, 0.17)),
             blob(rig, "head", "hair", Vector((0, 0.03, 1.74)), (0.145, 0.145, 0.12))]
    for side, s in (("L", 1), ("R", -1)):
        parts.append(blob(rig, "head", "eyes", Vector((0.05 * s, -0.125, 1.68)), (0.02, 0.02, 0.02), 6, 4))
        for bone, colour, width in (("arm", "shirt", 0.075), ("forearm", "skin", 0.055), ("thigh", "trousers", 0.095),
                                    ("shin", "trousers", 0.075), ("foot", "shoes", 0.065)):
            name = f"{bone}.{side}"
            length = (Vector(BONES[name][1]) - Vector(BONES[name][0])).length
            parts.append(blob(rig, name, colour, middle(name), (width, width, length * 0.62)))
    scenes.joined("body", parts, rig, palette())
    rig.show_in_front = False
    wave(rig)
    walk(rig)
    return rig


def turn(rig, action_name, curves):
    """{bone: (axis of the bone, function of the phase)}."""
    data = rig.animation_data or rig.animation_data_create()
    data.action = bpy.data.actions.new(action_name)
    data.action.use_fake_user = True
    for bone, (axis, value) in curves.items():
        pose = rig.pose.bones[bone]
        pose.rotation_mode = "XYZ"
        for frame in range(0, 26):
            pose.rotation_euler = (0, 0, 0)
            pose.rotation_euler[axis] = value(frame / 25.0 * 2.0 * math.pi)
            pose.keyframe_insert("rotation_euler", frame=frame + 1)


def walk(rig):
    curves = {}
    for side, s in (("L", 0.0), ("R", math.pi)):
        curves[f"thigh.{side}"] = (0, lambda t, s=s: 0.55 * math.sin(t + s))
        curves[f"shin.{side}"] = (0, lambda t, s=s: -0.45 + 0.45 * math.cos(t + s + 0.6))
        curves[f"arm.{side}"] = (0, lambda t, s=s: -0.45 * math.sin(t + s))
    curves["spine"] = (1, lambda t: 0.08 * math.sin(t))
    turn(rig, "walk", curves)


def wave(rig):
    turn(rig, "wave", {"arm.L": (2, lambda t: -2.2 + 0.1 * math.sin(t)),
                       "forearm.L": (2, lambda t: -0.4 + 0.5 * math.sin(2 * t)),
                       "head": (1, lambda t: 0.15 * math.sin(t))})


def steps():
    scenes.empty()
    yield
    bpy.context.preferences.addons["keltra"].preferences.folder = PROGRAMS
    bpy.context.preferences.view.filebrowser_display_type = "SCREEN"
    walker()
    scene = bpy.context.scene
    scene.frame_start, scene.frame_end = 1, 26
    scene.frame_set(8)
    window.select("body")
    yield
    window.look(0.6)
    yield
    window.choose_tab()
    yield from window.wait(3)
    window.shoot(FOLDER, "blender_panel")
    scene.keltra.path = os.path.join(DATA, "walker.kte")
    area = window.area_of("VIEW_3D")
    with bpy.context.temp_override(area=area, region=window.region_of(area, "WINDOW")):
        bpy.ops.export_scene.keltra("INVOKE_DEFAULT")
    yield from window.wait(3)
    window.shoot(FOLDER, "blender_export")
    bpy.context.window.event_simulate("RET", "PRESS", x=400, y=400)
    bpy.context.window.event_simulate("RET", "RELEASE", x=400, y=400)
    yield from window.wait(6)
    assert os.path.exists(os.path.join(DATA, "walker.kte")), "the dialog has exported nothing"
    area = window.area_of("VIEW_3D")
    area.type = "TEXT_EDITOR"
    area.spaces[0].text = bpy.data.texts["Keltra report"]
    area.spaces[0].show_region_ui = False
    yield from window.wait(2)
    window.shoot(FOLDER, "blender_report")
    area.type = "VIEW_3D"
    bpy.ops.wm.save_as_mainfile(filepath=os.path.join(FOLDER, "walker.blend"), copy=False)
    yield from window.wait(2)
    bpy.ops.keltra.show()
    yield from window.wait(15)
    window.shoot_with_viewer(FOLDER, "blender_show")


window.run(steps(), lambda: print("panel: done"))
