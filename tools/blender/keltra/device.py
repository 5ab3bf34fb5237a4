# SPDX-License-Identifier: Zlib
"""Show on Device Screen: keltra-view shows the export, and shows it anew at each save."""

import os
import subprocess
import tempfile

import bpy
from bpy.app.handlers import persistent

from . import export, programs


class Screen:
    """The viewer that runs, and the folder that it looks at."""

    folder = None
    process = None

    @classmethod
    def is_open(cls):
        return cls.process is not None and cls.process.poll() is None

    @classmethod
    def update(cls, context):
        """Exports into the folder; the viewer loads a scene again that has changed."""
        if not cls.folder:
            cls.folder = tempfile.TemporaryDirectory(prefix="keltra-screen-")
        stem = export.stem_of(bpy.data.filepath or "untitled")
        export.show_report(export.write(context, context.scene.keltra, cls.folder.name, stem))
        return os.path.join(cls.folder.name, stem + ".kte")

    @classmethod
    def open(cls, scene):
        cls.process = subprocess.Popen(programs.viewer(scene), stdin=subprocess.DEVNULL)

    @classmethod
    def close(cls):
        if cls.is_open():
            cls.process.terminate()
            cls.process.wait()
        if cls.folder:
            cls.folder.cleanup()
        cls.process = cls.folder = None


class KELTRA_OT_show(bpy.types.Operator):
    """Show the scene as the device does, and again at each save"""

    bl_idname = "keltra.show"
    bl_label = "Show on Device Screen"

    def execute(self, context):
        try:
            scene = Screen.update(context)
            if not Screen.is_open():
                Screen.open(scene)
        except (programs.Failure, OSError) as failure:
            self.report({"ERROR"}, str(failure))
            return {"CANCELLED"}
        return {"FINISHED"}


@persistent
def on_save(*_):
    if not Screen.is_open():
        return
    try:
        Screen.update(bpy.context)
    except (programs.Failure, OSError) as failure:
        print(f"Keltra: {failure}")


classes = (KELTRA_OT_show,)


def register():
    bpy.app.handlers.save_post.append(on_save)


def unregister():
    bpy.app.handlers.save_post.remove(on_save)
    Screen.close()
