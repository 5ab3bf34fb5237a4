# SPDX-License-Identifier: Zlib
"""Where the engine's programs are."""

import bpy

from . import programs


class KeltraPreferences(bpy.types.AddonPreferences):
    bl_idname = __package__

    folder: bpy.props.StringProperty(
        name="Programs",
        description="Folder of keltra-convert, keltra-info and keltra-view; empty for those that are installed",
        subtype="DIR_PATH",
        update=lambda self, context: programs.forget(),
    )
    device_depth: bpy.props.BoolProperty(
        name="Screen of 16 bits",
        description="Show on a screen of 16 bits as the device has, in a window of its own; needs Xephyr",
    )

    def draw(self, context):
        self.layout.prop(self, "folder")
        self.layout.prop(self, "device_depth")
        for name in programs.NAMES:
            path = programs.find(name)
            self.layout.label(text=path or f"{name} is not there", icon="CHECKMARK" if path else "ERROR")


classes = (KeltraPreferences,)


def register():
    programs.forget()


def unregister():
    pass
