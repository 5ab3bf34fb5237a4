# SPDX-License-Identifier: Zlib
"""Export to the Keltra engine, with its limits and its screen at hand while modelling."""

bl_info = {
    "name": "Keltra",
    "author": "Keltra developers",
    "version": (1, 6, 6),
    "blender": (3, 4, 0),
    "location": "File > Export > Keltra, and the sidebar of the 3D view",
    "description": "Scenes, characters and clips for the Keltra engine",
    "category": "Import-Export",
}

import bpy

from . import device, export, gltf, panel, preferences, properties

# The exporter of glTF looks here for what wants to know of its nodes.
glTF2ExportUserExtension = gltf.NodeSources

modules = (preferences, properties, export, device, panel)


def register():
    for module in modules:
        for cls in module.classes:
            bpy.utils.register_class(cls)
        module.register()


def unregister():
    for module in reversed(modules):
        module.unregister()
        for cls in reversed(module.classes):
            bpy.utils.unregister_class(cls)
