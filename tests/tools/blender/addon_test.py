# SPDX-License-Identifier: Zlib
"""Run by Blender without a window: installs the add-on's zip and tries it.

addon_test.py ZIP PROGRAMS POSES: the zip, the folder of the engine's programs, and blender_poses_test.
"""

import json
import os
import re
import subprocess
import sys
import tempfile
import time
import unittest

import bpy

sys.path.insert(0, os.path.dirname(__file__))
import scenes  # noqa: E402

ZIP, PROGRAMS, POSES = sys.argv[sys.argv.index("--") + 1:]
FRAMES = 10
ROOT = os.path.join(os.path.dirname(__file__), "../../..")


def upright(at):
    return [round(at.x, 6), round(at.z, 6), round(-at.y, 6)]


def vertices_now(objects):
    """Of the meshes as Blender evaluates them, with Y up."""
    graph = bpy.context.evaluated_depsgraph_get()
    found = []
    for obj in objects:
        evaluated = obj.evaluated_get(graph)
        for vertex in evaluated.data.vertices:
            found += upright(evaluated.matrix_world @ vertex.co)
    return found


class Exported:
    """The files of one export, and what Blender says of them."""

    def __init__(self, folder, name, **options):
        self.folder, self.name, self.clips = folder, name, []
        self.path = os.path.join(folder, name + ".kte")
        result = bpy.ops.export_scene.keltra(filepath=self.path, **options)
        assert result == {"FINISHED"}, result
        self.report = bpy.data.texts["Keltra report"].as_string()

    def add(self, file, first, last, objects, play):
        """Ten frames of a clip, the first and the last among them; `play` sets what Blender evaluates."""
        play()
        frames = [(last - first) * i // (FRAMES - 1) for i in range(FRAMES)]
        moments = []
        for frame in frames:
            bpy.context.scene.frame_set(first + frame)
            moments.append(vertices_now(objects))
        self.clips.append({"file": file, "frames": frames, "vertices": moments})

    def compare(self, test):
        with open(os.path.join(self.folder, "reference.json"), "w", encoding="ascii") as file:
            json.dump({"clips": self.clips}, file)
        run = subprocess.run([POSES], env={**os.environ, "KELTRA_EXPORTED": self.folder, "KELTRA_SCENE": self.name},
                             capture_output=True, text=True)
        print("".join(line + "\n" for line in run.stdout.splitlines() if " frames, " in line), end="")
        test.assertEqual(run.returncode, 0, run.stdout + run.stderr)


class AddonTest(unittest.TestCase):
    def setUp(self):
        scenes.empty()
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = scratch.name
        bpy.context.preferences.addons["keltra"].preferences.folder = PROGRAMS

    def info(self, file, *options):
        run = subprocess.run([os.path.join(PROGRAMS, "keltra-info"), *options, os.path.join(self.folder, file)],
                             capture_output=True, text=True)
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)
        return run.stdout

    def contents(self, file):
        return json.loads(self.info(file, "--json"))["files"][0]["contents"]


class ExportTest(AddonTest):
    def test_actions_of_a_character(self):
        rig, body = scenes.figure()
        rig.location, rig.rotation_euler = (0.5, 1.0, 0.25), (0.0, 0.0, 0.6)
        exported = Exported(self.folder, "figure")
        self.assertEqual(sorted(f for f in os.listdir(self.folder) if f.endswith(".kta")),
                         ["figure_walk.kta", "figure_wave.kta"])

        def play(name):
            for bone in rig.pose.bones:
                bone.matrix_basis.identity()
            rig.animation_data.action = bpy.data.actions[name]

        exported.add("figure_walk.kta", 1, 41, [body], lambda: play("walk"))
        exported.add("figure_wave.kta", 1, 31, [body], lambda: play("wave"))
        exported.compare(self)
        self.assertNotIn("foot_control", self.info("figure.kte"))

    def test_tracks_of_several_strips_and_a_constraint(self):
        base, jib, eye, ball = scenes.machine()
        exported = Exported(self.folder, "machine", clips="TRACKS")
        self.assertTrue(os.path.exists(os.path.join(self.folder, "machine_work.kta")))
        # The eye is moved by a constraint, not by a track: that takes the markers' way.
        meshes = [base, bpy.data.objects["pillar"], jib, ball]
        hidden = Exported(self.folder, "still", clips="NONE")
        self.assertEqual([f for f in os.listdir(self.folder) if f.startswith("still_") and f.endswith(".kta")], [])
        self.assertIn("in all", hidden.report)
        bpy.data.objects.remove(eye)
        exported = Exported(self.folder, "machine", clips="TRACKS")
        exported.add("machine_work.kta", 1, 46, meshes, lambda: None)
        exported.compare(self)

    def test_the_timeline_with_a_constraint(self):
        meshes = [*scenes.machine(), bpy.data.objects["pillar"]]
        bpy.context.scene.frame_start, bpy.context.scene.frame_end = 5, 44
        exported = Exported(self.folder, "machine", clips="MARKERS")
        exported.add("machine_timeline.kta", 5, 44, meshes, lambda: None)
        exported.compare(self)

    def test_markers(self):
        meshes = scenes.stage()
        exported = Exported(self.folder, "stage", clips="MARKERS")
        exported.add("stage_open.kta", 11, 31, meshes, lambda: None)
        exported.add("stage_close.kta", 31, 61, meshes, lambda: None)
        exported.compare(self)

    def test_nothing_of_the_scene_changes(self):
        rig, _ = scenes.figure()
        bpy.context.scene.frame_set(7)
        rig.pose.bones["head"].rotation_euler.z = 0.25  # not keyed
        before = (rig.animation_data.action, rig.data.pose_position, bpy.context.scene.frame_current,
                  [bone.matrix_basis.copy() for bone in rig.pose.bones], len(bpy.data.actions), len(bpy.data.objects))
        Exported(self.folder, "figure")
        after = (rig.animation_data.action, rig.data.pose_position, bpy.context.scene.frame_current,
                 [bone.matrix_basis.copy() for bone in rig.pose.bones], len(bpy.data.actions), len(bpy.data.objects))
        self.assertEqual(before[:3] + before[4:], after[:3] + after[4:])
        for old, new in zip(before[3], after[3]):
            for a, b in zip(old, new):
                self.assertLess((a - b).length, 1e-5)

    def test_the_selection_alone(self):
        scenes.stage()
        for obj in bpy.data.objects:
            obj.select_set(obj.name == "floor")
        Exported(self.folder, "floor", selection=True, clips="NONE")
        tree = self.info("floor.kte")
        self.assertIn("floor", tree)
        self.assertNotIn("door", tree)

    def test_options_are_remembered(self):
        scenes.stage()
        Exported(self.folder, "stage", clips="MARKERS", max_texture="64")
        self.assertEqual(bpy.context.scene.keltra.clips, "MARKERS")
        self.assertEqual(bpy.context.scene.keltra.max_texture, "64")
        self.assertEqual(bpy.context.scene.keltra.path, os.path.join(self.folder, "stage.kte"))
        self.assertIn("width: 64", self.info("stage_boards_d.tga"))

    def test_textures_can_be_shared(self):
        scenes.figure()
        scenes.stage()
        Exported(self.folder, "all", atlas=True)
        textures = [file for file in os.listdir(self.folder) if file.endswith(".tga")]
        self.assertEqual(textures, ["all_atlas_d.tga"])
        self.assertTrue(bpy.context.scene.keltra.atlas)

    def test_files_pass_the_engines_own_check(self):
        scenes.figure()
        scenes.stage()
        Exported(self.folder, "all")
        for file in os.listdir(self.folder):
            if not file.endswith(".h"):
                self.assertIn("good", self.info(file, "--check", "--strict"))


class FailureTest(AddonTest):
    def export(self):
        with self.assertRaises(RuntimeError) as caught:
            bpy.ops.export_scene.keltra(filepath=os.path.join(self.folder, "scene.kte"))
        self.assertEqual(os.listdir(self.folder), [])
        return str(caught.exception)

    def test_an_empty_scene(self):
        self.assertIn("the scene is empty", self.export())

    def test_nothing_that_could_be_drawn(self):
        scenes.linked("nothing", None)
        self.assertIn("keltra-convert: scene.glb: it has no geometry and no animation", self.export())

    def test_missing_programs(self):
        scenes.stage()
        bpy.context.preferences.addons["keltra"].preferences.folder = self.folder
        self.assertIn("keltra-convert is not there", self.export())
        from keltra import programs
        self.assertIsNone(programs.limits())


class PanelTest(AddonTest):
    def test_the_budget_is_what_the_converter_counts(self):
        from keltra import costs
        scenes.figure()
        scenes.stage()
        expected = costs.of_objects(list(bpy.context.scene.objects), 512)
        report = Exported(self.folder, "all", clips="NONE").report
        vertices, triangles = re.search(r"([\d,]+) vertices, ([\d,]+) triangles", report).groups()
        self.assertEqual(expected["triangles"], int(triangles.replace(",", "")))
        share = expected["vertices"] / int(vertices.replace(",", ""))
        self.assertTrue(0.7 < share <= 1.0, share)
        self.assertEqual(expected["bones"], 9)
        self.assertEqual(expected["textures"], 4 * (64 * 64 + 128 * 64))

    def test_limits_are_the_engines(self):
        from keltra import checks, programs
        limits = programs.limits()
        self.assertEqual(limits["skinBones"], 100)
        over = checks.over_budget({"triangles": limits["budget"]["triangles"] + 1, "vertices": 1, "bones": 1}, limits)
        self.assertEqual(over, ["triangles"])

    def test_checks_name_what_exceeds_the_limits(self):
        from keltra import checks
        _, body = scenes.figure(scenes.material("large", (1024, 16)))
        body.vertex_groups.active_index = 0
        for group in body.vertex_groups:
            group.add([0], 0.1, "ADD")
        body.vertex_groups["hip"].remove(range(8, 12))
        for group in body.vertex_groups:
            group.remove([20])
        body.shape_key_add(name="Basis")
        scenes.linked("panel of light", bpy.data.lights.new("panel", "AREA"))
        scenes.linked("n" * 63, None)
        scenes.action(bpy.data.objects["rig"], "long", {"head": (0, 0.1)}, 1, 1201)
        found = "\n".join(checks.faults(bpy.context, bpy.context.scene.keltra))
        for part in ("panel of light is an area", "has shape keys", "follow 9 bones; the 4 heaviest",
                     "follow no bone", "clip long has 1201 frames; a file holds 1024", "larger than 512 pixels"):
            self.assertIn(part, found)

    def test_properties_of_scene_files(self):
        scenes.stage()
        Exported(self.folder, "stage", clips="NONE")
        tree = {node["name"]: node for node in self.contents("stage.kte")["nodes"]}
        self.assertTrue(tree["secret"]["hidden"])
        self.assertFalse(tree["floor"]["hidden"])
        self.assertEqual(tree["spawn"]["auxId"], 3)
        glass = next(m for m in self.contents("stage.kte")["materials"] if m["name"] == "stage.glass")
        self.assertEqual(glass["transparency"], 0.5)

    def test_what_scene_files_cannot_hold_is_code(self):
        scenes.stage()
        boards = bpy.data.materials["boards"].keltra
        boards.filter = "LINEAR"
        report = Exported(self.folder, "stage", clips="NONE").report
        for line in ("door: setAuxId(7u)", "lamp: setAttenuation(1.0f, 0.0f, 0.4166667f)", "(helper) spawn: setMin",
                     "stage_boards_d.tga: setFilter(true, false, false)"):
            self.assertIn(line, report)
        with open(os.path.join(self.folder, "stage_setup.h"), encoding="utf-8") as file:
            self.assertIn("inline void setup_stage(KTNODE *root)", file.read())
        os.remove(os.path.join(self.folder, "stage_setup.h"))
        report = Exported(self.folder, "stage", clips="NONE", setup_code=False).report
        self.assertIn("auxiliary ids (1)", report)
        self.assertNotIn("stage_setup.h", os.listdir(self.folder))

    def test_large_figures_are_short_enough_for_the_panel(self):
        from keltra import panel
        for count, text in ((0, "0"), (9999, "9,999"), (10000, "10.0k"), (42207, "42.2k"), (99999, "99.9k"),
                            (100000, "100k"), (1234567, "1,234k")):
            self.assertEqual(panel.amount("vertices", count), text)
        self.assertEqual(panel.amount("textures", 1), "1")
        self.assertEqual(panel.amount("textures", 8388608), "8,192")

    def test_figures_are_counted_after_a_change(self):
        from keltra import panel
        scenes.stage()
        panel.Figures.count()
        before = panel.Figures.costs["triangles"]
        scenes.box("more", (1, 1, 1))
        panel.Figures.count()
        self.assertEqual(panel.Figures.costs["triangles"], before + 12)


class DeviceTest(AddonTest):
    def test_the_screen_is_updated_at_each_save(self):
        from keltra import device
        stand_in = os.path.join(self.folder, "keltra-view")
        os.mkdir(os.path.join(self.folder, "saved"))
        for name in ("keltra-convert", "keltra-info"):
            os.symlink(os.path.join(PROGRAMS, name), os.path.join(self.folder, name))
        with open(stand_in, "w", encoding="ascii") as file:
            file.write(f'#!/bin/sh\necho "$1" >"{self.folder}/shown"\nexec sleep 60\n')
        os.chmod(stand_in, 0o755)
        bpy.context.preferences.addons["keltra"].preferences.folder = self.folder
        self.addCleanup(device.Screen.close)
        scenes.stage()
        blend = os.path.join(self.folder, "saved", "my stage.blend")
        bpy.ops.wm.save_as_mainfile(filepath=blend)
        self.assertEqual(bpy.ops.keltra.show(), {"FINISHED"})
        for _ in range(100):
            if os.path.exists(os.path.join(self.folder, "shown")):
                break
            time.sleep(0.1)
        with open(os.path.join(self.folder, "shown"), encoding="ascii") as file:
            shown = file.read().strip()
        self.assertEqual(os.path.basename(shown), "my_stage.kte")
        first = os.stat(shown)
        scenes.box("more", (1, 1, 1), (0, 0, 2))
        bpy.ops.wm.save_mainfile()
        self.assertGreater(os.stat(shown).st_size, first.st_size)
        process = device.Screen.process
        self.assertEqual(bpy.ops.keltra.show(), {"FINISHED"})
        self.assertIs(device.Screen.process, process)
        device.Screen.close()
        self.assertFalse(os.path.exists(shown))
        self.assertIsNotNone(process.poll())
        bpy.ops.wm.save_mainfile()  # nothing to show it on
        self.assertFalse(os.path.exists(shown))


class HouseTest(unittest.TestCase):
    def test_the_version_is_the_projects(self):
        import keltra
        with open(os.path.join(ROOT, "include/keltra/version.h"), encoding="utf-8") as file:
            version = re.search(r'KELTRA_VERSION_STRING "(.*)"', file.read()).group(1)
        self.assertEqual(".".join(map(str, keltra.bl_info["version"])), version)

    def test_it_can_be_switched_off_and_on(self):
        bpy.ops.preferences.addon_disable(module="keltra")
        self.assertFalse(hasattr(bpy.types.Object, "keltra"))
        self.assertFalse(hasattr(bpy.types, "EXPORT_SCENE_OT_keltra"))
        bpy.ops.preferences.addon_enable(module="keltra")
        self.assertTrue(hasattr(bpy.types.Object, "keltra"))


bpy.ops.preferences.addon_install(filepath=ZIP, overwrite=True)
bpy.ops.preferences.addon_enable(module="keltra")
result = unittest.main(argv=["addon_test"], verbosity=2, exit=False).result
sys.exit(0 if result.wasSuccessful() and result.testsRun > 0 else 1)
