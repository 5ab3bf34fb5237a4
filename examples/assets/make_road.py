#!/usr/bin/env python3
# SPDX-License-Identifier: Zlib
"""Writes roadarch, roadlamps and roadtrees (.gltf and .bin), three pieces of a road that fit together in any order, beside this
file. A piece is eight units long, from z = 0 to z = -8."""

import math
import os
import random
import sys

FOLDER = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(FOLDER, "../../games/lantern_walk/assets"))

import gltf  # noqa: E402
from gltf import Mesh, Model  # noqa: E402

LENGTH = 8


def box(mesh, center, size, repeat=1.0):
    (cx, cy, cz), (sx, sy, sz) = center, [s / 2 for s in size]

    def side(origin, right, up, across, high):
        corners = ((0, 0), (1, 0), (1, 1), (0, 1))
        mesh.face(*[(tuple(o + r * u + t * v for o, r, t in zip(origin, right, up)),
                     (u * across * repeat, (1 - v) * high * repeat)) for u, v in corners])

    x, y, z = 2 * sx, 2 * sy, 2 * sz
    side((cx - sx, cy - sy, cz + sz), (x, 0, 0), (0, y, 0), x, y)
    side((cx + sx, cy - sy, cz - sz), (-x, 0, 0), (0, y, 0), x, y)
    side((cx - sx, cy - sy, cz - sz), (0, 0, z), (0, y, 0), z, y)
    side((cx + sx, cy - sy, cz + sz), (0, 0, -z), (0, y, 0), z, y)
    side((cx - sx, cy + sy, cz + sz), (x, 0, 0), (0, 0, -z), x, z)


def add_ground(model, root):
    lawn = Mesh(model.material("lawn", (0.72, 0.78, 0.66), "meadow"))
    lawn.grid(8, 2, lambda c, r: (-24 + 6 * c, 0, -4 * r), lambda c, r: (c * 1.5, r))
    model.node("lawn", lawn, (0, 0, 0), root)
    road = Mesh(model.material("road", (0.86, 0.80, 0.84), "paving"))
    road.grid(1, 4, lambda c, r: (-1.3 + 2.6 * c, 0.03, -2 * r), lambda c, r: (c, r * 0.75))
    model.node("road", road, (0, 0, 0), root)


def add_arch(model, root):
    wall = model.material("wall", (0.94, 0.84, 0.88), "masonry")
    arch = Mesh(wall)
    for side in (-1, 1):
        box(arch, (2.1 * side, 1.3, -4), (0.9, 2.6, 1.2), 0.35)
    radii, steps = (1.65, 2.55), 8

    def around(step, radius, z):
        angle = math.pi * step / steps
        return (-radius * math.cos(angle), 2.6 + radius * math.sin(angle), z)

    for z, turn in ((-3.4, 1), (-4.6, -1)):
        for step in range(steps):
            pair = (step, step + 1)[::turn]
            arch.face(*[(around(s, r, z), (s * 0.25, 0.4 * (2.55 - r))) for s, r in
                        ((pair[0], radii[0]), (pair[0], radii[1]), (pair[1], radii[1]), (pair[1], radii[0]))])
    for step in range(steps):  # the vault from below, and the back from above
        for radius, turn in ((radii[0], 1), (radii[1], -1)):
            a, b = (step, step + 1)[::turn]
            arch.face(*[(around(s, radius, z), (s * 0.25, v)) for s, z, v in
                        ((a, -3.4, 0), (b, -3.4, 0), (b, -4.6, 0.5), (a, -4.6, 0.5))])
    model.node("arch", arch, (0, 0, 0), root)
    for side in (-1, 1):
        part = Mesh(wall)
        box(part, (5.6 * side, 0.7, -4), (6.2, 1.4, 0.8), 0.35)
        model.node("wall%d" % (1.5 + side / 2), part, (0, 0, 0), root)


def add_lamps(model, root):
    wood = model.material("wood", (0.42, 0.30, 0.26))
    colors = ((1.0, 0.56, 0.22), (0.96, 0.40, 0.30))
    for i, (side, z) in enumerate(((-1, -2), (1, -6))):
        pole = Mesh(wood)
        box(pole, (1.9 * side, 1.5, z), (0.14, 3.0, 0.14))
        box(pole, (1.6 * side, 2.94, z), (0.8, 0.1, 0.1))
        model.node("pole%d" % (i + 1), pole, (0, 0, 0), root)
        paper = Mesh(model.material("paper%d" % (i + 1), colors[i], "paper", unlit=True))
        paper.turned(8, [(0.2, -0.42, 0.8), (0.36, -0.16, 0.52), (0.36, 0.16, 0.24), (0.2, 0.42, -0.06)], across=3)
        lantern = model.node("lantern%d" % (i + 1), paper, (1.3 * side, 2.4, z), root)
        glow = Mesh(model.material("halo%d" % (i + 1), colors[i], "glow", 0.9, True))
        glow.quad(1.5)
        model.node("halo%d" % (i + 1), glow, (0, 0, 0.1), lantern, radius=0)
        pool = Mesh(model.material("pool%d" % (i + 1), colors[i], "glow", 0.5, True))
        pool.quad(2.2, True)
        model.node("pool%d" % (i + 1), pool, (1.3 * side, 0.06, z), root, radius=0)
    hedge = Mesh(model.material("hedge", (0.70, 0.86, 0.66), "cypress"))
    for side in (-1, 1):
        box(hedge, (4.6 * side, 0.55, -4), (1.2, 1.1, 7.6), 0.8)
    model.node("hedge", hedge, (0, 0, 0), root)


def add_trees(model, root):
    chance = random.Random(3)
    leaves = model.material("leaves", (0.70, 0.90, 0.72), "cypress")
    for i in range(6):
        x = (2.8 + 2.4 * (i // 2) + chance.uniform(-0.5, 0.5)) * (1 if i % 2 else -1)
        tree = Mesh(leaves)
        height = chance.uniform(4.2, 6.4)
        tree.turned(8, [(0.5, 0.0, 1.6), (1.0, 0.25 * height, 1.1), (0.0, height, 0.0)], across=3)
        model.node("tree%d" % (i + 1), tree, (x, 0, -1.3 * (i + 0.6)), root)
    rock = model.material("rock", (0.72, 0.68, 0.76), "column")
    for i, (x, z, size) in enumerate(((2.0, -3.2, 0.5), (-2.3, -6.2, 0.7))):
        stone = Mesh(rock)
        stone.turned(6, [(size * 1.1, -0.1, 0.5), (0.8 * size, 0.5 * size, 0.3), (0.0, 0.75 * size, 0.1)], across=2)
        model.node("stone%d" % (i + 1), stone, (x, 0, z), root)


def main():
    gltf.FOLDER = FOLDER
    for name, fill in (("roadarch", add_arch), ("roadlamps", add_lamps), ("roadtrees", add_trees)):
        model = Model()
        root = model.node(name)
        add_ground(model, root)
        fill(model, root)
        model.save(name)


if __name__ == "__main__":
    main()
