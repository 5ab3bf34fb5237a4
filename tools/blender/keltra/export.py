# SPDX-License-Identifier: Zlib
"""File > Export > Keltra: glTF for keltra-convert, which writes the engine's files."""

import os
import re
import tempfile

import bpy
from bpy_extras.io_utils import ExportHelper

from . import checks, clips, gltf, programs, properties

REPORT = "Keltra report"  # name of the text


def objects_of(context, selection):
    return list(context.view_layer.objects.selected if selection else context.scene.objects)


def frame_rate(scene):
    return scene.render.fps / scene.render.fps_base


def show_report(text):
    found = bpy.data.texts.get(REPORT) or bpy.data.texts.new(REPORT)
    found.clear()
    found.write(text)
    found.cursor_set(0)


def stem_of(path):
    """A name that keltra-convert takes."""
    stem = os.path.splitext(os.path.basename(path))[0]
    return re.sub(r"[^A-Za-z0-9._-]", "_", stem)[:64] or "scene"


def write(context, options, folder, stem):
    """Writes the engine's files. Returns the converter's report."""
    scene = context.scene
    active = context.view_layer.objects.active
    if active and active.mode != "OBJECT":
        bpy.ops.object.mode_set(mode="OBJECT")
    objects = objects_of(context, options.selection)
    if not objects:
        raise programs.Failure("nothing is selected" if options.selection else "the scene is empty")
    rate = frame_rate(scene)
    with tempfile.TemporaryDirectory(prefix="keltra-") as scratch:
        model = os.path.join(scratch, stem + ".glb")
        still = gltf.write(model, options, clips.of_scene(scene, objects, options.clips), rate)
        arguments = [model, "-o", folder, "--name", stem, "--fps", f"{rate:.9g}", "--max-texture", options.max_texture]
        if options.atlas:
            arguments.append("--atlas")
        if options.fit:
            arguments.append("--fit")
        if options.setup_code:
            arguments += ["--setup", os.path.join(folder, stem + "_setup.h")]
        report = programs.convert(arguments, scratch + os.sep)
    return report + "".join(f"\nnothing moves in the clip {name}: it is left out\n" for name in still)


class KELTRA_OT_export(properties.ExportOptions, bpy.types.Operator, ExportHelper):
    """Write a scene of the Keltra engine, with its clips and textures"""

    bl_idname = "export_scene.keltra"
    bl_label = "Export Keltra"
    bl_options = {"PRESET"}

    filename_ext = ".kte"
    filter_glob: bpy.props.StringProperty(default="*.kte", options={"HIDDEN"})

    def invoke(self, context, event):
        remembered = context.scene.keltra
        remembered.copy_to(self)
        if remembered.path:
            self.filepath = bpy.path.abspath(remembered.path)
        return super().invoke(context, event)

    def execute(self, context):
        path = bpy.path.ensure_ext(self.filepath, self.filename_ext)
        try:
            for fault in checks.faults(context, self):
                self.report({"WARNING"}, fault)
            report = write(context, self, os.path.dirname(path), stem_of(path))
        except (programs.Failure, OSError) as failure:
            self.report({"ERROR"}, str(failure))
            return {"CANCELLED"}
        self.copy_to(context.scene.keltra)
        context.scene.keltra.path = path
        show_report(report)
        self.report({"INFO"}, summary(report))
        return {"FINISHED"}


def summary(report):
    """The line of a report that counts what was lost."""
    totals = [line.split(None, 2)[2] for line in report.splitlines() if line.startswith("  in all")]
    return (totals[-1] if totals else "nothing was lost") + f'; see the text "{REPORT}"'


def add_to_menu(self, context):
    self.layout.operator(KELTRA_OT_export.bl_idname, text="Keltra (.kte)")


classes = (KELTRA_OT_export,)


def register():
    bpy.types.TOPBAR_MT_file_export.append(add_to_menu)


def unregister():
    bpy.types.TOPBAR_MT_file_export.remove(add_to_menu)
