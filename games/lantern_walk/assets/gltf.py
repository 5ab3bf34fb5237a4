# SPDX-License-Identifier: Zlib
"""Meshes and glTF 2 files for make_garden.py."""

import json
import math
import os
import struct

FOLDER = os.path.dirname(os.path.abspath(__file__))


def linear(color):
    return [round(c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4, 5) for c in color]


class Mesh:
    """Triangles with texture coordinates; corners are shared where they are equal, so that edges are round."""

    def __init__(self, material):
        self.material, self.corners, self.index, self.triangles = material, [], {}, []

    def corner(self, place, uv):
        key = tuple(round(v, 4) for v in (*place, *uv))
        if key not in self.index:
            self.index[key] = len(self.corners)
            self.corners.append(key)
        return self.index[key]

    def face(self, *corners):
        """A convex face, counterclockwise from outside, of (place, uv) pairs."""
        numbers = [self.corner(*c) for c in corners]
        for i in range(1, len(numbers) - 1):
            triangle = (numbers[0], numbers[i], numbers[i + 1])
            if len({self.corners[n][:3] for n in triangle}) == 3:  # not at the tip of a cone
                self.triangles.append(triangle)

    def recenter(self):
        center = [round((min(c[i] for c in self.corners) + max(c[i] for c in self.corners)) / 2, 2) for i in range(3)]
        self.corners = [tuple(v - m for v, m in zip(c, center)) + c[3:] for c in self.corners]
        return center

    def grid(self, columns, rows, place, uv):
        """Faces between `columns` x `rows` cells; place and uv are functions of (column, row)."""
        for row in range(rows):
            for column in range(columns):
                around = ((column, row), (column + 1, row), (column + 1, row + 1), (column, row + 1))
                self.face(*[(place(*c), uv(*c)) for c in around])

    def turned(self, sides, profile, center=(0, 0, 0), sweep=(0, 360), across=1.0):
        """A profile of (radius, height, v) from below, turned about y."""

        def place(column, row):
            angle = math.radians(sweep[0] + (sweep[1] - sweep[0]) * column / sides)
            radius, height, _ = profile[row]
            return (center[0] + radius * math.sin(angle), center[1] + height, center[2] + radius * math.cos(angle))

        self.grid(sides, len(profile) - 1, place, lambda c, r: (across * c / sides, profile[r][2]))

    def quad(self, size, flat=False, center=(0, 0, 0)):
        """A square that faces +z, or lies on the ground."""
        for_corner = ((-1, -1), (1, -1), (1, 1), (-1, 1))
        self.face(*[((center[0] + x * size, center[1] + (0 if flat else y * size), center[2] - (y * size if flat else 0)),
                     ((x + 1) / 2, (1 - y) / 2)) for x, y in for_corner])


class Model:
    def __init__(self):
        self.nodes, self.meshes, self.materials, self.pictures = [], [], [], []
        self.accessors, self.views, self.data = [], [], b""

    def material(self, name, color=(1, 1, 1), picture=None, alpha=1.0, unlit=False, ambient=None):
        base = {"baseColorFactor": linear(color) + [alpha], "metallicFactor": 0}
        if picture:
            if picture not in self.pictures:
                self.pictures.append(picture)
            base["baseColorTexture"] = {"index": self.pictures.index(picture)}
        entry = {"name": name, "pbrMetallicRoughness": base}
        if alpha < 1.0:
            entry["alphaMode"] = "BLEND"
            entry["extras"] = {"keltra_transparency": alpha}
        if unlit:
            entry["extensions"] = {"KHR_materials_unlit": {}}
        else:
            entry.setdefault("extras", {})["keltra_ambient"] = list(ambient or color)
        self.materials.append(entry)
        return len(self.materials) - 1

    def append(self, values, form, kind, target, bounds=False):
        block = struct.pack("<%d%s" % (len(values), form), *values)
        width = {"SCALAR": 1, "VEC2": 2, "VEC3": 3}[kind]
        accessor = {"bufferView": len(self.views), "componentType": 5126 if form == "f" else 5123,
                    "count": len(values) // width, "type": kind}
        if bounds:
            accessor["min"] = [min(values[i::width]) for i in range(width)]
            accessor["max"] = [max(values[i::width]) for i in range(width)]
        self.views.append({"buffer": 0, "byteOffset": len(self.data), "byteLength": len(block), "target": target})
        self.accessors.append(accessor)
        self.data += block + b"\0" * (-len(block) % 4)
        return len(self.accessors) - 1

    def mesh(self, mesh):
        places = [v for c in mesh.corners for v in c[:3]]
        uvs = [v for c in mesh.corners for v in c[3:]]
        self.meshes.append({"primitives": [{"attributes": {
            "POSITION": self.append(places, "f", "VEC3", 34962, True),
            "TEXCOORD_0": self.append(uvs, "f", "VEC2", 34962)},
            "indices": self.append([i for t in mesh.triangles for i in t], "H", "SCALAR", 34963),
            "material": mesh.material}]})
        return len(self.meshes) - 1

    def node(self, name, mesh=None, at=None, parent=None, **extras):
        entry = {"name": name}
        if isinstance(mesh, Mesh) and not at and parent == 0:
            at = mesh.recenter()  # the bounding sphere, by which the game leaves things out, is about the node
        if at:
            entry["translation"] = list(at)
        if mesh is not None:
            entry["mesh"] = mesh if isinstance(mesh, int) else self.mesh(mesh)
        if extras:
            entry["extras"] = {"keltra_" + key: value for key, value in extras.items()}
        self.nodes.append(entry)
        if parent is not None:
            self.nodes[parent].setdefault("children", []).append(len(self.nodes) - 1)
        return len(self.nodes) - 1

    def save(self, name):
        used = ["KHR_materials_unlit", "KHR_lights_punctual"]
        text = {"asset": {"version": "2.0", "copyright": "The Keltra project; zlib licence"}, "extensionsUsed": used,
                "scene": 0, "scenes": [{"nodes": [0]}], "nodes": self.nodes, "materials": self.materials,
                "meshes": self.meshes, "accessors": self.accessors, "bufferViews": self.views,
                "textures": [{"source": i} for i in range(len(self.pictures))],
                "images": [{"uri": p + ".png"} for p in self.pictures],
                "buffers": [{"uri": name + ".bin", "byteLength": len(self.data)}],
                "extensions": {"KHR_lights_punctual": {"lights": [{"type": "directional", "color": [0.30, 0.32, 0.50]}]}}}
        with open(os.path.join(FOLDER, name + ".gltf"), "w", encoding="ascii") as file:
            json.dump(text, file, separators=(",", ":"))
            file.write("\n")
        with open(os.path.join(FOLDER, name + ".bin"), "wb") as file:
            file.write(self.data)
