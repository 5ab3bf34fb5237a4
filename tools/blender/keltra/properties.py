# SPDX-License-Identifier: Zlib
"""What the engine knows of objects and materials, and Blender has no field for."""

import bpy

PREFIX = "keltra_"


class KeltraObject(bpy.types.PropertyGroup):
    aux_id: bpy.props.IntProperty(
        name="Auxiliary ID", min=0, description="The application's own number; picking answers it. 0 for none")
    hidden: bpy.props.BoolProperty(
        name="Hidden", description="Loaded, but not drawn until the application shows it")
    helper: bpy.props.BoolProperty(
        name="Helper", description="Marks a place or a volume for the application; its shape is not drawn")

    def extras(self):
        obj = self.id_data
        extras = {PREFIX + "aux_id": self.aux_id} if self.aux_id else {}
        if self.hidden and obj.type == "MESH":
            extras[PREFIX + "hidden"] = True
        if self.helper:  # a number is half the width of its box
            extras[PREFIX + "helper"] = obj.empty_display_size if obj.type == "EMPTY" else True
        return extras


class KeltraMaterial(bpy.types.PropertyGroup):
    use_transparency: bpy.props.BoolProperty(
        name="Opacity", description="In place of what follows from the material's nodes")
    transparency: bpy.props.FloatProperty(
        min=0.0, max=1.0, default=1.0, description="The engine's transparency: 1 is opaque")
    filter: bpy.props.EnumProperty(
        name="Filter",
        description="How the texture is drawn when it is larger or smaller than its pixels",
        items=(("ENGINE", "Engine's", "As textures are when they are loaded"),
               ("NEAREST", "Nearest", "Pixels as they are"),
               ("LINEAR", "Linear", "Smooth, without mipmaps"),
               ("MIPMAPPED", "Mipmapped", "Smooth, with mipmaps, which are charged four times")),
    )

    def extras(self):
        extras = {}
        if self.use_transparency:
            extras[PREFIX + "transparency"] = self.transparency
        if self.filter != "ENGINE":
            extras[PREFIX + "filter"] = self.filter.lower()
        return extras


class ExportOptions:
    """Of the exporter, and of the scene, which remembers them."""

    selection: bpy.props.BoolProperty(name="Selected Only", description="Leave out what is not selected")
    clips: bpy.props.EnumProperty(
        name="Clips",
        items=(("ACTIONS", "Actions", "One clip for each action of the exported objects"),
               ("TRACKS", "NLA Tracks", "One clip for each name of a track, with all strips of it"),
               ("MARKERS", "Markers", "A clip from each marker of the timeline to the next one"),
               ("NONE", "None", "The scene without animation")),
    )
    deform_only: bpy.props.BoolProperty(
        name="Deforming Bones Only", default=True, description="Control bones cost time and move nothing")
    max_texture: bpy.props.EnumProperty(
        name="Size", default="512", description="The longest side of a texture",
        items=tuple((str(size), f"{size} pixels", "") for size in (64, 128, 256, 512)))
    atlas: bpy.props.BoolProperty(
        name="Share Textures", description="Pack pictures together, and join materials that are equal then")
    fit: bpy.props.BoolProperty(name="Fit the Budget", description="Reduce triangles and pictures to the budget")

    setup_code: bpy.props.BoolProperty(
        name="Setup Code", default=True,
        description="Also write a C++ header with ids, helpers, reaches and filters, which scene files cannot hold")

    names = ("selection", "clips", "deform_only", "max_texture", "atlas", "fit", "setup_code")

    def copy_to(self, other):
        for name in ExportOptions.names:
            setattr(other, name, getattr(self, name))


class KeltraScene(ExportOptions, bpy.types.PropertyGroup):
    path: bpy.props.StringProperty(name="Scene File", subtype="FILE_PATH", description="Of the last export")


classes = (KeltraObject, KeltraMaterial, KeltraScene)


def register():
    bpy.types.Object.keltra = bpy.props.PointerProperty(type=KeltraObject)
    bpy.types.Material.keltra = bpy.props.PointerProperty(type=KeltraMaterial)
    bpy.types.Scene.keltra = bpy.props.PointerProperty(type=KeltraScene)


def unregister():
    for cls in (bpy.types.Object, bpy.types.Material, bpy.types.Scene):
        del cls.keltra
