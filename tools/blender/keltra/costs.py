# SPDX-License-Identifier: Zlib
"""What the exported objects take: triangles, vertices, bones of a mesh, bytes of textures."""

import bpy
import numpy

CLOSE = 1e-4  # normals that count as one


def shapes(objects):
    return [obj for obj in objects if obj.type == "MESH" and not obj.keltra.helper]


def vertex_count(mesh):
    """About: a vertex of the engine has one normal, one pair of texture coordinates and one material.

    Exporters split some more, whose normals differ by rounding.
    """
    loops = len(mesh.loops)
    columns = numpy.zeros((loops, 7))
    values = numpy.empty(loops, dtype=numpy.int32)
    mesh.loops.foreach_get("vertex_index", values)
    columns[:, 0] = values
    if hasattr(mesh, "calc_normals_split"):  # until Blender 4.1
        mesh.calc_normals_split()
        normals = numpy.empty(loops * 3, dtype=numpy.float32)
        mesh.loops.foreach_get("normal", normals)
    else:
        normals = numpy.empty(loops * 3, dtype=numpy.float32)
        mesh.corner_normals.foreach_get("vector", normals)
    columns[:, 1:4] = numpy.round(normals.reshape(-1, 3) / CLOSE)
    if mesh.uv_layers.active:
        uvs = numpy.empty(loops * 2, dtype=numpy.float32)
        mesh.uv_layers.active.data.foreach_get("uv", uvs)
        columns[:, 4:6] = uvs.reshape(-1, 2)
    corners = numpy.empty(len(mesh.polygons), dtype=numpy.int32)
    materials = numpy.empty(len(mesh.polygons), dtype=numpy.int32)
    mesh.polygons.foreach_get("loop_total", corners)
    mesh.polygons.foreach_get("material_index", materials)
    columns[:, 6] = numpy.repeat(materials, corners)
    return len(numpy.unique(columns, axis=0))


def armature_of(obj):
    found = [m.object for m in obj.modifiers if m.type == "ARMATURE" and m.object]
    return found[0] if found else None


def bones_of(obj):
    """Names of the bones that its vertices follow."""
    armature = armature_of(obj)
    if not armature:
        return set()
    bones = armature.data.bones
    names = [g.name if g.name in bones and bones[g.name].use_deform else None for g in obj.vertex_groups]
    used = {g.group for v in obj.data.vertices for g in v.groups if g.weight > 0.0 and g.group < len(names)}
    return {names[g] for g in used if names[g]}


def image_of(material):
    """The picture of its base colour, or None."""
    if not material or not material.use_nodes:
        return None
    for node in material.node_tree.nodes:
        socket = node.inputs.get("Base Color") or (node.inputs.get("Color") if node.type == "EMISSION" else None)
        if socket and socket.is_linked and socket.links[0].from_node.type == "TEX_IMAGE":
            return socket.links[0].from_node.image
    return None


def images_of(objects):
    materials = dict.fromkeys(slot.material for obj in shapes(objects) for slot in obj.material_slots)
    return [image for image in dict.fromkeys(map(image_of, materials)) if image]


def side(pixels, most):
    """The nearest power of two."""
    power = 1
    while power * 2 <= most and pixels * pixels > power * power * 2:
        power *= 2
    return power


def of_objects(objects, max_texture):
    graph = bpy.context.evaluated_depsgraph_get()
    result = {"triangles": 0, "vertices": 0, "bones": 0, "textures": 0}
    for obj in shapes(objects):
        # A skin is exported in its rest pose, in which flat parts are flat.
        posed_only = all(modifier.type == "ARMATURE" for modifier in obj.modifiers)
        source = obj if posed_only else obj.evaluated_get(graph)
        mesh = source.to_mesh()
        mesh.calc_loop_triangles()
        result["triangles"] += len(mesh.loop_triangles)
        result["vertices"] += vertex_count(mesh)
        result["bones"] = max(result["bones"], len(bones_of(obj)))
        source.to_mesh_clear()
    for image in images_of(objects):
        result["textures"] += 4 * side(image.size[0], max_texture) * side(image.size[1], max_texture)
    return result
