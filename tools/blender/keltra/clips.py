# SPDX-License-Identifier: Zlib
"""The clips of a scene: actions, NLA tracks, or what lies between markers."""

import math
import re

import bpy

BONE = re.compile(r'^pose\.bones\["((?:[^"\\]|\\.)*)"\]')


class State:
    """What a clip changes of objects and of the scene, for the time that it is played."""

    def __init__(self, objects):
        self.objects = objects

    def __enter__(self):
        self.frame = bpy.context.scene.frame_current
        self.saved = []
        for obj in self.objects:
            data = obj.animation_data
            bones = [(bone, bone.matrix_basis.copy()) for bone in obj.pose.bones] if obj.pose else []
            tracks = [(track, track.is_solo, track.mute) for track in data.nla_tracks] if data else []
            self.saved.append((obj, obj.matrix_basis.copy(), bones, data and (data.action, data.use_nla), tracks))
            if data and data.use_tweak_mode:
                data.use_tweak_mode = False
        return self

    def __exit__(self, *_):
        for obj, basis, bones, data, tracks in self.saved:
            for track, solo, mute in tracks:
                if track.is_solo != solo:
                    track.is_solo = solo
                track.mute = mute
            if data:
                obj.animation_data.action, obj.animation_data.use_nla = data
            obj.matrix_basis = basis
            for bone, matrix in bones:
                bone.matrix_basis = matrix
        bpy.context.scene.frame_set(self.frame)


class Clip:
    """Frames of the scene, as some objects move in them after `prepare` was called for each."""

    def __init__(self, name, first, last, objects, prepare=None):
        self.name, self.first, self.last = name, math.floor(first), math.ceil(last)
        self.objects, self.prepare = objects, prepare

    def sample(self, tree):
        names = {obj.name for obj in self.objects}
        with State(self.objects):
            for obj in self.objects if self.prepare else ():
                # What an action does not key stays as the one before it left it.
                for bone in obj.pose.bones if obj.pose else ():
                    bone.matrix_basis.identity()
                self.prepare(obj)
            poses = []
            for frame in range(self.first, self.last + 1):
                bpy.context.scene.frame_set(frame)
                poses.append(tree.pose(names))
            return poses


def paths_of(action):
    """The data paths of an action's curves; Blender 5 has them in layers only."""
    if hasattr(action, "fcurves"):
        return [curve.data_path for curve in action.fcurves]
    return [curve.data_path for layer in action.layers for strip in layer.strips for bag in strip.channelbags
            for curve in bag.fcurves]


def moves_bones_of(action, armature):
    bones = (BONE.match(path) for path in paths_of(action))
    return any(match and match.group(1) in armature.pose.bones for match in bones)


def actions_of(obj, alone):
    """Those that are linked to the object; of the only armature also those that are linked to nothing."""
    found = []
    data = obj.animation_data
    if data:
        found = [data.action] + [strip.action for track in data.nla_tracks for strip in track.strips]
    if obj.type == "ARMATURE" and alone:
        found += [action for action in bpy.data.actions if moves_bones_of(action, obj)]
    return [action for action in dict.fromkeys(found) if action and paths_of(action)]


def play_action(action):
    def prepare(obj):
        data = obj.animation_data or obj.animation_data_create()
        data.use_nla = False
        data.action = action

    return prepare


def from_actions(objects):
    users = {}
    armatures = [obj for obj in objects if obj.type == "ARMATURE"]
    for obj in objects:
        for action in actions_of(obj, len(armatures) == 1):
            users.setdefault(action, []).append(obj)
    return [Clip(action.name, *action.frame_range, users[action], play_action(action))
            for action in sorted(users, key=lambda action: action.name.lower())]


def play_track(name):
    def prepare(obj):
        data = obj.animation_data
        data.action, data.use_nla = None, True
        track = data.nla_tracks[name]
        track.mute, track.is_solo = False, True

    return prepare


def from_tracks(objects):
    users, ranges = {}, {}
    for obj in objects:
        for track in obj.animation_data.nla_tracks if obj.animation_data else ():
            strips = [strip for strip in track.strips if strip.action and not strip.mute]
            if not strips:
                continue
            users.setdefault(track.name, []).append(obj)
            low, high = ranges.get(track.name, (math.inf, -math.inf))
            ranges[track.name] = (min(low, *(s.frame_start for s in strips)), max(high, *(s.frame_end for s in strips)))
    return [Clip(name, *ranges[name], users[name], play_track(name)) for name in sorted(users, key=str.lower)]


def from_markers(objects, scene):
    """Without markers one clip, of the whole timeline."""
    markers = sorted((m for m in scene.timeline_markers if m.frame < scene.frame_end), key=lambda m: m.frame)
    if not markers:
        return [Clip("timeline", scene.frame_start, scene.frame_end, objects)]
    ends = [marker.frame for marker in markers[1:]] + [scene.frame_end]
    return [Clip(marker.name, marker.frame, end, objects) for marker, end in zip(markers, ends) if end > marker.frame]


def of_scene(scene, objects, kind):
    if kind == "ACTIONS":
        return from_actions(objects)
    if kind == "TRACKS":
        return from_tracks(objects)
    return from_markers(objects, scene) if kind == "MARKERS" else []
