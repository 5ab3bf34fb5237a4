# SPDX-License-Identifier: Zlib
"""The engine's programs, and its limits as they print them."""

import functools
import json
import shutil
import subprocess

import bpy

NAMES = ("keltra-convert", "keltra-info", "keltra-view")


class Failure(Exception):
    """What went wrong, in a sentence for the user."""


def preferences():
    return bpy.context.preferences.addons[__package__].preferences


def find(name):
    """Path of a program, or None."""
    folder = preferences().folder
    return shutil.which(name, path=bpy.path.abspath(folder)) if folder else shutil.which(name)


def require(name):
    path = find(name)
    if not path:
        raise Failure(f"{name} is not there: install keltra-tools, or name its folder in the preferences")
    return path


def convert(arguments, folder):
    """The report of keltra-convert, without the name of the scratch folder."""
    run = subprocess.run([require("keltra-convert"), *arguments], capture_output=True, text=True,
                         encoding="utf-8", errors="replace", stdin=subprocess.DEVNULL)
    if run.returncode != 0:
        raise Failure(run.stderr.strip().replace(folder, "") or f"keltra-convert ended with {run.returncode}")
    return run.stdout.replace(folder, "")


@functools.lru_cache(maxsize=None)
def limits():
    """What the engine's files can hold, as keltra-info says it; None without that program."""
    path = find("keltra-info")
    if not path:
        return None
    run = subprocess.run([path, "--limits"], capture_output=True, text=True, stdin=subprocess.DEVNULL)
    return json.loads(run.stdout) if run.returncode == 0 else None


def forget():
    limits.cache_clear()


def viewer(scene):
    """The command that shows a scene file."""
    command = [require("keltra-view"), scene]
    if not preferences().device_depth:
        return command
    if not shutil.which("Xephyr"):
        raise Failure("a screen of 16 bits needs Xephyr")
    return [require("keltra-screen"), "-w", "16", *command]

