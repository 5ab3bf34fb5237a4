# SPDX-License-Identifier: Zlib
# Run by Blender: makes a model with an armature, a skin and an action, saves it as the first argument, and writes
# where each vertex stands in some frames to the second, with Y up as in glTF.
import math
import sys

import bpy

blend, reference = sys.argv[sys.argv.index("--") + 1:]
bpy.ops.wm.read_factory_settings(use_empty=True)
scene = bpy.context.scene
scene.render.fps = 25

bpy.ops.object.armature_add(location=(1.0, 2.0, 0.5), rotation=(0.0, 0.0, 0.4))
rig = bpy.context.object
rig.name = "rig"
bpy.ops.object.mode_set(mode="EDIT")
lower = rig.data.edit_bones[0]
lower.name, lower.head, lower.tail = "lower", (0, 0, 0), (0, 0.2, 1)
upper = rig.data.edit_bones.new("upper")
upper.head, upper.tail, upper.parent = lower.tail, (0, 0, 2.2), lower
bpy.ops.object.mode_set(mode="OBJECT")

bpy.ops.mesh.primitive_cylinder_add(vertices=8, radius=0.3, depth=2.0, location=(1.0, 2.0, 1.5))
skin = bpy.context.object
for name, low, high in (("lower", -9.0, 0.0), ("upper", 0.0, 9.0)):
    group = skin.vertex_groups.new(name=name)
    group.add([v.index for v in skin.data.vertices if low <= v.co.z <= high], 1.0, "REPLACE")
skin.parent = rig
skin.matrix_parent_inverse = rig.matrix_world.inverted()
skin.modifiers.new("armature", "ARMATURE").object = rig

rig.animation_data_create().action = bpy.data.actions.new("wave")
for bone, axis in (("lower", 0), ("upper", 2)):
    pose = rig.pose.bones[bone]
    pose.rotation_mode = "XYZ"
    for frame in range(1, 22):
        pose.rotation_euler[axis] = math.sin((frame - 1) / 20.0 * 3.0)
        pose.keyframe_insert("rotation_euler", frame=frame)
scene.frame_start, scene.frame_end = 1, 21
bpy.ops.wm.save_as_mainfile(filepath=blend)

with open(reference, "w", encoding="ascii") as out:
    for frame in range(1, 22, 4):
        scene.frame_set(frame)
        evaluated = skin.evaluated_get(bpy.context.evaluated_depsgraph_get())
        for vertex in evaluated.data.vertices:
            at = evaluated.matrix_world @ vertex.co
            out.write(f"{frame} {at.x} {at.z} {-at.y}\n")
