# SPDX-License-Identifier: Zlib
"""The sidebar of the 3D view."""

import textwrap

import bpy
from bpy.app.handlers import persistent

from . import checks, costs, device, export, programs

DELAY = 0.5  # seconds from a change to new figures
WIDTH = 28  # letters of a line


class Figures:
    """Of the scene as it was counted last. Drawing must not take long, so that a timer counts."""

    costs = {}
    faults = []
    wanted = False

    @classmethod
    def count(cls):
        cls.wanted = False
        context = bpy.context
        options = context.scene.keltra
        objects = export.objects_of(context, options.selection)
        cls.costs = costs.of_objects(objects, int(options.max_texture))
        cls.faults = checks.faults(context, options)
        for window in context.window_manager.windows:
            for area in window.screen.areas:
                if area.type == "VIEW_3D":
                    area.tag_redraw()

    @classmethod
    def want(cls):
        if not cls.wanted:
            cls.wanted = True
            bpy.app.timers.register(cls.count, first_interval=DELAY)


@persistent
def on_change(scene, graph):
    # Counting evaluates meshes, which changes nothing that would count.
    if any(update.is_updated_geometry or update.is_updated_transform for update in graph.updates) or not Figures.costs:
        Figures.want()


@persistent
def on_load(*_):
    Figures.want()


class Part:
    bl_space_type = "VIEW_3D"
    bl_region_type = "UI"
    bl_category = "Keltra"


def switched(layout, switch, switch_name, label, owner, name):
    """A number with a switch before it."""
    row = layout.row()
    row.prop(switch, switch_name, text=label)
    field = row.row()
    field.active = getattr(switch, switch_name)
    field.prop(owner, name, text="")


class KELTRA_PT_object(Part, bpy.types.Panel):
    bl_label = "Object"

    @classmethod
    def poll(cls, context):
        return context.object is not None

    def draw(self, context):
        layout, obj = self.layout, context.object
        layout.prop(obj, "name")
        layout.prop(obj.keltra, "aux_id")
        row = layout.row()
        if obj.type == "MESH":
            row.prop(obj.keltra, "hidden")
        row.prop(obj.keltra, "helper")
        if obj.type == "LIGHT":
            layout.prop(obj.data, "type", text="Light")
            switched(layout, obj.data, "use_custom_distance", "Reach", obj.data, "cutoff_distance")


class KELTRA_PT_material(Part, bpy.types.Panel):
    bl_label = "Material"

    @classmethod
    def poll(cls, context):
        return context.object is not None and context.object.active_material is not None

    def draw(self, context):
        layout, material = self.layout, context.object.active_material
        own = material.keltra
        layout.prop(material, "name")
        switched(layout, own, "use_transparency", "Opacity", own, "transparency")
        layout.prop(own, "filter")


def amount(name, value):
    """A count of up to five characters and a letter: the panel has no room for more beside its limit."""
    count = (value + 1023) // 1024 if name == "textures" else value
    if count < 10000:
        return f"{count:,}"
    return f"{count // 100 / 10:.1f}k" if count < 100000 else f"{count // 1000:,}k"


class KELTRA_PT_budget(Part, bpy.types.Panel):
    bl_label = "Budget"

    def draw(self, context):
        layout, limits = self.layout, programs.limits()
        if not Figures.costs:
            Figures.want()
            return
        labels = {"triangles": "Triangles", "vertices": "Vertices", "bones": "Bones a mesh",
                  "textures": "Textures, KiB"}
        over = checks.over_budget(Figures.costs, limits) if limits else ()
        for name, label in labels.items():
            row = layout.split(factor=0.47)
            row.alert = name in over
            most = f" of {amount(name, limits['budget'][name])}" if limits else ""
            about = "~" if name == "vertices" else ""
            row.label(text=label)
            row.label(text=about + amount(name, Figures.costs[name]) + most)


class KELTRA_PT_checks(Part, bpy.types.Panel):
    bl_label = "Checks"

    def draw(self, context):
        if not Figures.faults:
            self.layout.label(text="Nothing to report", icon="CHECKMARK")
        for fault in Figures.faults:
            lines = self.layout.column(align=True)
            for i, line in enumerate(textwrap.wrap(fault, WIDTH)):
                lines.label(text=line, icon="BLANK1" if i else "ERROR")


class KELTRA_PT_export(Part, bpy.types.Panel):
    bl_label = "Export"

    def draw(self, context):
        layout, options = self.layout, context.scene.keltra
        for name in options.names:
            layout.prop(options, name)
        layout.operator(export.KELTRA_OT_export.bl_idname)
        layout.operator(device.KELTRA_OT_show.bl_idname, icon="PLAY")


classes = (KELTRA_PT_object, KELTRA_PT_material, KELTRA_PT_budget, KELTRA_PT_checks, KELTRA_PT_export)


def register():
    bpy.app.handlers.depsgraph_update_post.append(on_change)
    bpy.app.handlers.load_post.append(on_load)


def unregister():
    bpy.app.handlers.load_post.remove(on_load)
    bpy.app.handlers.depsgraph_update_post.remove(on_change)
    if bpy.app.timers.is_registered(Figures.count):
        bpy.app.timers.unregister(Figures.count)
