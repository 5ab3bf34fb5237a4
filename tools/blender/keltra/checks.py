# SPDX-License-Identifier: Zlib
"""What of a scene exceeds the engine's limits, before it is exported."""

from . import clips, costs, export, programs


def faults(context, options):
    """Sentences, the worst first; none without keltra-info, which knows the limits."""
    limits = programs.limits()
    if not limits:
        return ["the engine's limits are not known: keltra-info is not there"]
    objects = export.objects_of(context, options.selection)
    found = []
    for obj in objects:
        found += of_object(obj, limits)
    found += of_frame(objects, limits)
    for clip in clips.of_scene(context.scene, objects, options.clips):
        frames = clip.last - clip.first + 1
        if frames > limits["clipFrames"]:
            found.append(f"clip {clip.name} has {frames} frames; a file holds {limits['clipFrames']}, it is split")
    for image in costs.images_of(objects):
        if max(image.size) > limits["textureSize"]:
            found.append(f"picture {image.name} is larger than {limits['textureSize']} pixels and is made smaller")
        if not image.has_data and not image.packed_file and 0 in image.size:
            found.append(f"picture {image.name} is missing")
    return found


def of_object(obj, limits):
    found = []
    if len(obj.name.encode()) > limits["nameBytes"]:
        found.append(f"the name {obj.name[:20]}... has more than {limits['nameBytes']} bytes")
    if obj.type == "LIGHT" and obj.data.type == "AREA":
        found.append(f"light {obj.name} is an area: the engine has point, sun and spot lights only")
    if obj.type != "MESH" or obj.keltra.helper:
        return found
    if obj.data.shape_keys:
        found.append(f"{obj.name} has shape keys: the engine moves vertices by bones only")
    bones = len(costs.bones_of(obj))
    if bones > limits["skinBones"]:
        found.append(f"{obj.name} follows {bones} bones; a mesh has {limits['skinBones']}, it is split")
    if costs.armature_of(obj):
        most = max((sum(g.weight > 0.0 for g in v.groups) for v in obj.data.vertices), default=0)
        if most > limits["influences"]:
            found.append(f"vertices of {obj.name} follow {most} bones; the {limits['influences']} heaviest are kept")
        lost = sum(not any(g.weight > 0.0 for g in v.groups) for v in obj.data.vertices)
        if lost:
            found.append(f"{lost} vertices of {obj.name} follow no bone and stand still")
    return found


def of_frame(objects, limits):
    meshes = costs.shapes(objects)
    skins = sum(max(len(obj.material_slots), 1) for obj in meshes if costs.armature_of(obj))
    elements = len(meshes) + sum(obj.type == "LIGHT" for obj in objects)
    found = []
    if skins > limits["skins"]:
        found.append(f"{skins} skins; a frame draws {limits['skins']}: join meshes and materials")
    if elements > limits["elements"]:
        found.append(f"{elements} meshes and lights; a frame draws {limits['elements']}")
    return found


def over_budget(figures, limits):
    """Names of the figures that exceed the converter's budget."""
    return [name for name, value in figures.items() if value > limits["budget"].get(name, value)]
