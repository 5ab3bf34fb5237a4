# SPDX-License-Identifier: Zlib
"""A scene as glTF: shapes and materials by Blender's own exporter, clips as Blender evaluates them.

Clips are sampled here because the exporter's choice of actions and tracks differs between Blender's versions, and
because it does not evaluate constraints between objects, or several strips of a track.
"""

import bpy
from mathutils import Matrix, Quaternion, Vector

from .glb import Glb

SOURCE = "keltra_source"
UPRIGHT = Matrix(((1, 0, 0, 0), (0, 0, 1, 0), (0, -1, 0, 0), (0, 0, 0, 1)))  # from Z up to Y up
STILL = 1e-6


class NodeSources:
    """While a scene is exported, notes at each node which object or bone it is made of."""

    active = False

    def gather_node_hook(self, node, blender_object, export_settings):
        if NodeSources.active and blender_object:
            node.extras = {**(node.extras or {}), SOURCE: [blender_object.name]}

    def gather_joint_hook(self, node, blender_bone, export_settings):
        if NodeSources.active:
            node.extras = {**(node.extras or {}), SOURCE: [blender_bone.id_data.name, blender_bone.name]}


def run_exporter(path, options):
    """Blender's glTF exporter, with the options that this version of it has."""
    known = bpy.ops.export_scene.gltf.get_rna_type().properties.keys()
    wanted = {
        "export_format": "GLB", "use_selection": options.selection, "export_apply": True, "export_animations": False,
        "export_current_frame": True, "export_extras": False, "export_lights": True, "export_cameras": False,
        "export_colors": False, "export_morph": False, "export_def_bones": options.deform_only,
        "export_yup": True, "export_skins": True,
    }
    NodeSources.active = True
    try:
        bpy.ops.export_scene.gltf(filepath=path, **{k: v for k, v in wanted.items() if k in known})
    finally:
        NodeSources.active = False


class Resting:
    """All armatures in their rest pose, which is the pose that skins are bound in."""

    def __enter__(self):
        self.armatures = [(a, a.pose_position) for a in bpy.data.armatures if a.library is None]
        for armature, _ in self.armatures:
            armature.pose_position = "REST"
        bpy.context.view_layer.update()

    def __exit__(self, *_):
        for armature, position in self.armatures:
            armature.pose_position = position
        bpy.context.view_layer.update()


def matrix_of(node):
    if "matrix" in node:
        return Matrix([node["matrix"][i::4] for i in range(4)])
    x, y, z, w = node.get("rotation", (0, 0, 0, 1))
    return Matrix.LocRotScale(Vector(node.get("translation", (0, 0, 0))), Quaternion((w, x, y, z)),
                              Vector(node.get("scale", (1, 1, 1))))


class Tree:
    """The nodes of an exported scene, and the objects and bones that they follow."""

    def __init__(self, document):
        self.nodes = document.get("nodes", [])
        self.parents = {child: i for i, node in enumerate(self.nodes) for child in node.get("children", ())}
        self.locals = [matrix_of(node) for node in self.nodes]
        self.sources = {}
        self.offsets = {}  # of a node, from its source
        graph = bpy.context.evaluated_depsgraph_get()
        for i, node in enumerate(self.nodes):
            source = node.get("extras", {}).pop(SOURCE, None)
            if node.get("extras") == {}:
                del node["extras"]
            if not source or "skin" in node:
                continue
            world, at = self.rest(i), UPRIGHT @ self.evaluated(graph, source)
            # An instance of a collection stands elsewhere than the object that it is made of.
            if (world.translation - at.translation).length > 1e-3 * (1.0 + at.translation.length):
                continue
            self.sources[i] = source
            self.offsets[i] = at.inverted_safe() @ world

    @staticmethod
    def evaluated(graph, source):
        found = bpy.data.objects[source[0]].evaluated_get(graph)
        return found.matrix_world @ found.pose.bones[source[1]].matrix if len(source) > 1 else found.matrix_world

    def rest(self, i):
        return self.rest(self.parents[i]) @ self.locals[i] if i in self.parents else self.locals[i]

    def pose(self, names):
        """The local matrices of the nodes of these objects, as Blender evaluates them now."""
        graph, worlds = bpy.context.evaluated_depsgraph_get(), {}

        def world(i):
            if i not in worlds:
                if i in self.sources:
                    worlds[i] = UPRIGHT @ self.evaluated(graph, self.sources[i]) @ self.offsets[i]
                else:
                    worlds[i] = world(self.parents[i]) @ self.locals[i] if i in self.parents else self.locals[i]
            return worlds[i]

        return {i: world(self.parents[i]).inverted_safe() @ world(i) if i in self.parents else world(i)
                for i, source in self.sources.items() if source[0] in names}


def tracks_of(poses, rest):
    """The values of what moves: translation, rotation and scale, of the matrices of one node."""
    tracks = {"translation": [], "rotation": [], "scale": []}
    before = None
    for matrix in poses:
        at, turn, scale = matrix.decompose()
        if before and turn.dot(before) < 0.0:
            turn.negate()
        before = turn
        tracks["translation"].append(tuple(at))
        tracks["rotation"].append((turn.x, turn.y, turn.z, turn.w))
        tracks["scale"].append(tuple(scale))
    at, turn, scale = rest.decompose()
    if before and turn.dot(before) < 0.0:
        turn.negate()
    still = {"translation": tuple(at), "rotation": (turn.x, turn.y, turn.z, turn.w), "scale": tuple(scale)}
    return {path: values for path, values in tracks.items()
            if any(abs(a - b) > STILL for value in values for a, b in zip(value, still[path]))}


def add_clip(glb, tree, name, frames, rate):
    """An animation of these poses, one a frame. False when nothing moves in them."""
    animation = {"name": name, "channels": [], "samplers": []}
    times = None
    for node in frames[0]:
        for path, values in tracks_of([frame[node] for frame in frames], tree.locals[node]).items():
            if times is None:
                times = glb.accessor([i / rate for i in range(len(frames))], "SCALAR")
            output = glb.accessor([part for value in values for part in value], f"VEC{len(values[0])}")
            animation["channels"].append(
                {"sampler": len(animation["samplers"]), "target": {"node": node, "path": path}})
            animation["samplers"].append({"input": times, "output": output})
    if animation["channels"]:
        glb.add_animation(animation)
    return bool(animation["channels"])


def add_extras(document, tree):
    """What the panel holds of objects and materials."""
    for i, source in tree.sources.items():
        extras = bpy.data.objects[source[0]].keltra.extras() if len(source) == 1 else {}
        if extras:
            tree.nodes[i].setdefault("extras", {}).update(extras)
    for entry in document.get("materials", ()):
        material = bpy.data.materials.get(entry.get("name", ""))
        extras = material.keltra.extras() if material else {}
        if extras:
            entry.setdefault("extras", {}).update(extras)


def write(path, options, clips, rate):
    """Writes the scene. Returns the names of clips in which nothing moves."""
    with Resting():
        run_exporter(path, options)
        glb = Glb(path)
        tree = Tree(glb.json)
    add_extras(glb.json, tree)
    still = [clip.name for clip in clips if not add_clip(glb, tree, clip.name, clip.sample(tree), rate)]
    glb.save(path)
    return still
