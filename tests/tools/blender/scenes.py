# SPDX-License-Identifier: Zlib
"""Scenes for the add-on's tests, made by script."""

import math

import bpy


def empty():
    bpy.ops.wm.read_homefile(use_empty=True)  # add-ons stay enabled
    bpy.context.scene.render.fps = 25


def material(name, pixels=None):
    """One with a picture of that many pixels, in checks."""
    made = bpy.data.materials.new(name)
    made.use_nodes = True
    shader = made.node_tree.nodes["Principled BSDF"]
    shader.inputs["Base Color"].default_value = (0.8, 0.4, 0.2, 1.0)
    if pixels:
        image = bpy.data.images.new(name, *pixels)
        width, height = pixels
        dark = [(x * 8 // width + y * 8 // height) % 2 for y in range(height) for x in range(width)]
        image.pixels.foreach_set([part for d in dark for part in (0.9 - 0.6 * d, 0.7 - 0.3 * d, 0.3 + 0.3 * d, 1.0)])
        image.pack()
        node = made.node_tree.nodes.new("ShaderNodeTexImage")
        node.image = image
        made.node_tree.links.new(node.outputs["Color"], shader.inputs["Base Color"])
    return made


def linked(name, data, parent=None):
    obj = bpy.data.objects.new(name, data)
    bpy.context.scene.collection.objects.link(obj)
    obj.parent = parent
    return obj


def box(name, size, at=(0, 0, 0), parent=None, cuts=0):
    bpy.ops.mesh.primitive_cube_add(size=1.0)
    obj = bpy.context.object
    obj.name = name
    obj.data.transform(__import__("mathutils").Matrix.Diagonal((*size, 1.0)))
    obj.location, obj.parent = at, parent
    if cuts:
        obj.modifiers.new("cuts", "SUBSURF").levels = cuts
        obj.modifiers["cuts"].subdivision_type = "SIMPLE"
    return obj


def action(obj, name, curves, first=1, last=41):
    """An action that turns bones, or the object itself for an empty name: {bone: (axis, angle)}."""
    data = obj.animation_data or obj.animation_data_create()
    made = data.action = bpy.data.actions.new(name)
    made.use_fake_user = True
    for bone, (axis, angle) in curves.items():
        target = obj.pose.bones[bone] if bone else obj
        target.rotation_mode = "XYZ"
        for frame in range(first, last + 1, 5):
            target.rotation_euler = (0.0, 0.0, 0.0)
            target.rotation_euler[axis] = angle * math.sin((frame - first) / (last - first) * 2.0 * math.pi)
            target.keyframe_insert("rotation_euler", frame=frame)
    return made


BONES = {  # name: head, tail, parent
    "hip": ((0, 0, 0.9), (0, 0, 1.1), None), "spine": ((0, 0, 1.1), (0, 0, 1.6), "hip"),
    "head": ((0, 0, 1.6), (0, 0, 1.9), "spine"),
    "arm.L": ((0.2, 0, 1.5), (0.8, 0, 1.5), "spine"), "arm.R": ((-0.2, 0, 1.5), (-0.8, 0, 1.5), "spine"),
    "thigh.L": ((0.12, 0, 0.9), (0.12, -0.03, 0.5), "hip"), "shin.L": ((0.12, -0.03, 0.5), (0.12, 0, 0.05), "thigh.L"),
    "thigh.R": ((-0.12, 0, 0.9), (-0.12, -0.03, 0.5), "hip"),
    "shin.R": ((-0.12, -0.03, 0.5), (-0.12, 0, 0.05), "thigh.R"),
    "foot_control.L": ((0.12, 0, 0.05), (0.12, -0.2, 0.05), None),
}


def armature(name, bones=None):
    obj = linked(name, bpy.data.armatures.new(name))
    bpy.context.view_layer.objects.active = obj
    bpy.ops.object.mode_set(mode="EDIT")
    for bone, (head, tail, parent) in (bones or BONES).items():
        edit = obj.data.edit_bones.new(bone)
        edit.head, edit.tail = head, tail
        edit.parent = obj.data.edit_bones[parent] if parent else None
        edit.use_deform = not bone.startswith("foot_control")
    bpy.ops.object.mode_set(mode="OBJECT")
    return obj


def limb(rig, bone, width, cuts=3):
    """A box along the bone, cut into pieces, whose lower half follows the bone above too."""
    from mathutils import Matrix, Vector
    data = rig.data.bones[bone]
    length = data.length
    obj = box(f"part {bone}", (width, length, width))
    place = data.matrix_local @ Matrix.Translation(Vector((0, length / 2, 0)))
    bpy.context.view_layer.objects.active = obj
    bpy.ops.object.mode_set(mode="EDIT")
    bpy.ops.mesh.subdivide(number_cuts=cuts)
    bpy.ops.object.mode_set(mode="OBJECT")
    own = obj.vertex_groups.new(name=bone)
    above = data.parent and data.parent.use_deform and obj.vertex_groups.new(name=data.parent.name)
    for vertex in obj.data.vertices:
        along = vertex.co.y / length + 0.5
        share = 0.5 * (1.0 - along) if above and along < 0.5 else 0.0
        own.add([vertex.index], 1.0 - share, "REPLACE")
        if share:
            above.add([vertex.index], share, "REPLACE")
    obj.data.transform(place)
    return obj


def joined(name, parts, rig, look):
    """Parts with weights as one skin of a skeleton, with that material."""
    for obj in bpy.data.objects:
        obj.select_set(obj in parts)
    bpy.context.view_layer.objects.active = parts[0]
    bpy.ops.object.join()
    skin = bpy.context.object
    skin.name = name
    skin.data.materials.append(look)
    skin.parent = rig
    skin.modifiers.new("armature", "ARMATURE").object = rig
    return skin


def figure(skin_material=None):
    """A character of one mesh: nine bones, a control bone with inverse kinematics, two actions."""
    rig = armature("rig")
    parts = [limb(rig, bone, 0.16 if "arm" in bone or "shin" in bone else 0.24) for bone in BONES
             if not bone.startswith("foot_control")]
    body = joined("body", parts, rig, skin_material or material("skin", (64, 64)))
    body.data.name = "body"
    foot = rig.pose.bones["shin.L"].constraints.new("IK")
    foot.target, foot.subtarget, foot.chain_count = rig, "foot_control.L", 2
    action(rig, "wave", {"arm.L": (2, 1.2), "head": (1, 0.5)}, 1, 31)
    walk = action(rig, "walk", {"thigh.R": (0, 0.7), "shin.R": (0, 0.5), "arm.L": (1, 0.6), "arm.R": (1, 0.6),
                                "hip": (1, 0.1)})
    control = rig.pose.bones["foot_control.L"]
    for frame, up, along in ((1, 0.0, 0.0), (11, 0.25, 0.15), (21, 0.0, 0.3), (41, 0.0, 0.0)):
        control.location = (0.0, along, up)
        control.keyframe_insert("location", frame=frame)
    assert walk == rig.animation_data.action
    return rig, body


def machine():
    """Rigid parts below one another, a scaled one, a constraint, and tracks of several strips."""
    base = box("base", (1.0, 1.0, 0.2))
    pillar = box("pillar", (0.2, 0.2, 1.0), (0, 0, 0.6), base)
    pillar.scale = (1.0, 1.0, 1.5)
    jib = box("jib", (1.4, 0.1, 0.1), (0.5, 0, 0.8), base, cuts=2)
    eye = box("eye", (0.2, 0.3, 0.4), (-0.8, 0, 1.0), base)
    eye.scale = (-1.0, 1.0, 1.5)
    ball = box("ball", (0.3, 0.3, 0.3), (2, 0, 1))
    look = eye.constraints.new("TRACK_TO")
    look.target, look.track_axis, look.up_axis = ball, "TRACK_X", "UP_Z"
    for obj in (base, pillar, jib, eye, ball):
        obj.data.materials.append(bpy.data.materials.get("metal") or material("metal"))
    swing = action(jib, "swing", {"": (2, 0.8)}, 1, 21)
    dip = action(jib, "dip", {"": (1, 0.4)}, 1, 11)
    data = jib.animation_data
    data.action = None
    track = data.nla_tracks.new()
    track.name = "work"
    track.strips.new("swing", 1, swing)
    track.strips.new("dip", 26, dip).repeat = 2.0
    ball.animation_data_create()
    roll = ball.animation_data.action = bpy.data.actions.new("roll")
    for frame, at in ((1, (2, 0, 1)), (20, (0, 2, 0.5)), (40, (-2, 1, 1.5))):
        ball.location = at
        ball.keyframe_insert("location", frame=frame)
    ball.animation_data.action = None
    other = ball.animation_data.nla_tracks.new()
    other.name = "work"
    other.strips.new("roll", 1, roll)
    return base, jib, eye, ball


def stage():
    """Lights of three kinds, a helper, a hidden box, and markers."""
    floor = box("floor", (4, 4, 0.1))
    floor.data.materials.append(material("boards", (128, 64)))
    secret = box("secret", (0.5, 0.5, 0.5), (1, 1, 0.3))
    secret.keltra.hidden = True
    door = box("door", (0.8, 0.1, 1.6), (-1, 1, 0.8))
    door.keltra.aux_id = 7
    glass = material("glass")
    glass.keltra.use_transparency, glass.keltra.transparency, glass.keltra.filter = True, 0.5, "NEAREST"
    door.data.materials.append(glass)
    spawn = linked("spawn", None)
    spawn.location, spawn.keltra.helper, spawn.keltra.aux_id = (0, -1, 0), True, 3
    for name, kind, reach in (("lamp", "POINT", 6.0), ("sun", "SUN", None), ("cone", "SPOT", None)):
        light = linked(name, bpy.data.lights.new(name, kind))
        light.location = (1, -1, 3)
        if reach:
            light.data.use_custom_distance, light.data.cutoff_distance = True, reach
    action(door, "turn", {"": (2, 1.5)}, 1, 61)
    scene = bpy.context.scene
    scene.frame_start, scene.frame_end = 1, 61
    scene.timeline_markers.new("open", frame=11)
    scene.timeline_markers.new("close", frame=31)
    return floor, secret, door
