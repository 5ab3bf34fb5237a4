# SPDX-License-Identifier: Zlib
"""Binary glTF files: their JSON, and data that is added to their buffer."""

import json
import struct

MAGIC, JSON_CHUNK, BINARY_CHUNK = 0x46546C67, 0x4E4F534A, 0x004E4942
FLOAT = 5126
PARTS = {"SCALAR": 1, "VEC3": 3, "VEC4": 4}


class Glb:
    def __init__(self, path):
        with open(path, "rb") as file:
            data = file.read()
        size, = struct.unpack_from("<I", data, 12)
        self.json = json.loads(data[20:20 + size])
        self.binary = bytearray(data[28 + size:])

    def accessor(self, values, kind):
        """Index of an accessor of these floats; `kind` is a key of PARTS."""
        parts = PARTS[kind]
        self.binary += bytes(-len(self.binary) % 4)
        view = {"buffer": 0, "byteOffset": len(self.binary), "byteLength": 4 * len(values)}
        accessor = {"bufferView": self._add("bufferViews", view), "componentType": FLOAT, "type": kind,
                    "count": len(values) // parts, "min": [min(values[i::parts]) for i in range(parts)],
                    "max": [max(values[i::parts]) for i in range(parts)]}
        self.binary += struct.pack(f"<{len(values)}f", *values)
        return self._add("accessors", accessor)

    def _add(self, name, value):
        entries = self.json.setdefault(name, [])
        entries.append(value)
        return len(entries) - 1

    def add_animation(self, animation):
        return self._add("animations", animation)

    def save(self, path):
        self.binary += bytes(-len(self.binary) % 4)
        if self.binary:
            self.json.setdefault("buffers", [{}])[0]["byteLength"] = len(self.binary)
        text = json.dumps(self.json, separators=(",", ":")).encode()
        text += b" " * (-len(text) % 4)
        chunks = struct.pack("<2I", len(text), JSON_CHUNK) + text
        if self.binary:
            chunks += struct.pack("<2I", len(self.binary), BINARY_CHUNK) + self.binary
        with open(path, "wb") as file:
            file.write(struct.pack("<3I", MAGIC, 2, 12 + len(chunks)) + chunks)
