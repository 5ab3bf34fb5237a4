# SPDX-License-Identifier: Zlib
"""Run by Blender: writes ten small models by Blender's own exporters, and where Blender evaluates their vertices.

blender -b --factory-startup --python tests/tools/convert/references/make.py
"""

import json
import math
import os
import sys

import bpy

FOLDER = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(FOLDER, "../../blender"))
import scenes  # noqa: E402

LAST, FRAMES = 20, (0, 3, 7, 10, 14, 20)
CHAIN = {"root": ((0, 0, 0), (0, 0.1, 0.6), None), "middle": ((0, 0.1, 0.6), (0, 0, 1.2), "root"),
         "tip": ((0, 0, 1.2), (0.2, 0, 1.7), "middle")}


def clear(timeline=LAST):
    bpy.ops.wm.read_factory_settings(use_empty=True)
    scene = bpy.context.scene
    scene.render.fps, scene.frame_start, scene.frame_end = 25, 0, timeline


def skin_of(rig):
    parts = [scenes.limb(rig, bone, 0.2, 1) for bone in rig.data.bones.keys()]
    return scenes.joined("skin", parts, rig, bpy.data.materials.new("skin"))


def chain(curves=None):
    rig = scenes.armature("rig", CHAIN)
    skin = skin_of(rig)
    scenes.action(rig, "sway", curves or {"root": (0, 0.5), "middle": (2, 0.8), "tip": (1, 0.7)}, 0, LAST)
    return rig, [skin]


def turned_chain():
    """The skeleton stands elsewhere, turned and scaled."""
    rig, meshes = chain()
    rig.location, rig.rotation_euler, rig.scale = (1.0, -2.0, 0.5), (0.3, 0.2, 1.1), (1.5, 1.5, 1.5)
    return meshes


def moving_chain():
    """A bone that moves away from the one above, and turns by a quaternion."""
    rig, meshes = chain({"middle": (2, 0.8)})
    tip = rig.pose.bones["tip"]
    for frame in range(0, LAST + 1, 5):
        tip.location = (0.0, 0.3 * math.sin(frame / LAST * 6.0), 0.1)
        tip.rotation_quaternion = (math.cos(frame / 40.0), 0.0, math.sin(frame / 40.0), 0.0)
        tip.keyframe_insert("location", frame=frame)
        tip.keyframe_insert("rotation_quaternion", frame=frame)
    return meshes


def on_tracks(objects):
    """Actions of one clip: on tracks of one name."""
    for obj in objects:
        data = obj.animation_data
        track = data.nla_tracks.new()
        track.name = "work"
        track.strips.new("work", 0, data.action)
        data.action = None


def reaching_chain():
    """Inverse kinematics."""
    rig, meshes = chain({"tip": (1, 0.2)})
    target = scenes.linked("target", None)
    for frame, at in ((0, (0.5, 0.2, 1.2)), (10, (-0.4, 0.6, 0.9)), (20, (0.3, -0.5, 1.4))):
        target.location = at
        target.keyframe_insert("location", frame=frame)
    bend = rig.pose.bones["middle"].constraints.new("IK")
    bend.target = target
    on_tracks([rig, target])
    return meshes


def parts():
    """Rigid parts below one another, all of them moving."""
    base = scenes.box("base", (0.8, 0.6, 0.2), (0.2, 0.1, 0.0))
    arm = scenes.box("arm", (0.2, 0.2, 1.0), (0.1, 0.0, 0.6), base)
    hand = scenes.box("hand", (0.3, 0.1, 0.2), (0.0, 0.2, 0.6), arm)
    for obj, curve in ((base, (2, 0.9)), (arm, (0, 0.6)), (hand, (1, 1.2))):
        scenes.action(obj, obj.name + "_move", {"": curve}, 0, LAST)
    on_tracks([base, arm, hand])
    return [base, arm, hand]


def scaled_parts():
    meshes = parts()
    meshes[0].scale = (1.5, 1.5, 1.5)
    meshes[2].scale = (1.0, 2.0, 0.5)
    return meshes


def gltf(path, **options):
    bpy.ops.export_scene.gltf(filepath=path, export_format="GLB", export_apply=True, **options)


def fbx(path, **options):
    bpy.ops.export_scene.fbx(filepath=path, add_leaf_bones=False, bake_anim_use_all_actions=False,
                             bake_anim_simplify_factor=0.0, **options)


def collada(path):
    bpy.ops.wm.collada_export(filepath=path, include_animations=True, export_animation_type_selection="sample",
                              sampling_rate=1)


MODELS = {
    "chain.glb": (lambda: chain()[1], gltf),
    "turned_chain.glb": (turned_chain, gltf),
    "moving_chain.glb": (moving_chain, gltf),
    "reaching_chain.glb": (reaching_chain, gltf),
    "scaled_parts.glb": (scaled_parts, gltf),
    "parts.glb": (parts, gltf),
    "chain.fbx": (lambda: chain()[1], lambda path: fbx(path, bake_anim_use_nla_strips=False)),
    "turned_chain.fbx": (turned_chain, lambda path: fbx(path, bake_anim_use_nla_strips=False)),
    "parts.fbx": (parts, lambda path: fbx(path, bake_anim_use_nla_strips=False)),
    "chain.dae": (lambda: chain()[1], collada),
}


def vertices_of(objects):
    found = []
    graph = bpy.context.evaluated_depsgraph_get()
    for obj in objects:
        evaluated = obj.evaluated_get(graph)
        for vertex in evaluated.data.vertices:
            at = evaluated.matrix_world @ vertex.co
            found += [round(at.x, 5), round(at.z, 5), round(-at.y, 5)]
    return found


def make(name):
    clear()
    build, export = MODELS[name]
    meshes = build()
    bpy.context.scene.frame_set(0)
    export(os.path.join(FOLDER, name))
    moments = []
    for frame in FRAMES:
        bpy.context.scene.frame_set(frame)
        moments.append(vertices_of(meshes))
    with open(os.path.join(FOLDER, name + ".json"), "w", encoding="ascii") as file:
        json.dump({"clips": [{"file": "", "frames": FRAMES, "vertices": moments}]}, file, separators=(",", ":"))
        file.write("\n")


for model in sys.argv[sys.argv.index("--") + 1:] if "--" in sys.argv else MODELS:
    make(model)
