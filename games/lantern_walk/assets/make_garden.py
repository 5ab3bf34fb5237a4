#!/usr/bin/env python3
# SPDX-License-Identifier: Zlib
"""Writes garden.gltf and garden.bin, the evening garden, beside this file. Sizes are in the units of the
figure, who is three high; x is to the right, z toward the viewer. The pictures are those of the examples."""

import math
import random

from gltf import Mesh, Model

FRONT = (-105, 105)  # what a viewer in the south sees of a round thing
# What is seen through is drawn from back to front, by the places of the nodes, and hides what is drawn behind it later. So
# what lies on the ground is drawn in the order of its height, wherever it lies: the nodes of the lanterns' pools are behind
# them, each by more than the garden is long, then come the lamp's pool and the boy's shadow.
BEHIND, APART = 40, 26


def along(points, steps):
    """Points and directions of a smooth curve through (x, z) points."""
    found = []
    for i in range(1, len(points) - 2):
        a, b, c, d = points[i - 1:i + 3]
        for k in range(steps):
            t = k / steps
            place, direction = [], []
            for j in range(2):
                p, q, r = c[j] - a[j], 2 * a[j] - 5 * b[j] + 4 * c[j] - d[j], 3 * b[j] - a[j] - 3 * c[j] + d[j]
                place.append(b[j] + 0.5 * (p * t + q * t * t + r * t ** 3))
                direction.append(0.5 * (p + 2 * q * t + 3 * r * t * t))
            found.append((place, direction))
    return found


def add_sky(model, root):
    sky = model.node("sky", parent=root)
    dome = Mesh(model.material("sky", picture="sky", unlit=True))
    # The half that is looked at, from inside, so the angles run the other way.
    rows = ((120, 0.62, 0.08), (120, 0.0, 0.86), (120, -0.12, 0.99))

    def place(column, row):
        angle = math.radians(270 - 36.0 * column)
        radius, height, _ = rows[row]
        flat = radius * math.sqrt(1 - height * height)
        return (flat * math.sin(angle), radius * height, flat * math.cos(angle))

    dome.grid(5, 2, lambda c, r: place(c, 2 - r), lambda c, r: (c / 5, rows[2 - r][2]))
    model.node("dome", dome, parent=sky)
    moon = Mesh(model.material("moon", picture="moon", alpha=0.999, unlit=True))
    moon.quad(4.3)
    model.node("moon", moon, (-0.4, 8.7, -84.0), root)  # behind the hills, before the dome
    hills = Mesh(model.material("hills", (0.40, 0.23, 0.43), unlit=True))
    tops = [8.0, 10.4, 5.8, 6.6, 11.4, 8.0]
    hills.grid(5, 1, lambda c, r: (-60 + 24 * c, (-1.0, tops[c])[r], -82), lambda c, r: (0, 0))
    model.node("hills", hills, parent=root)
    near = Mesh(model.material("nearHills", (0.23, 0.16, 0.34), unlit=True))
    tops = [4.4, 5.2, 2.4, 2.8, 5.0, 3.6]
    near.grid(5, 1, lambda c, r: (-55 + 22 * c, (-1.0, tops[c])[r], -66), lambda c, r: (0, 0))
    model.node("nearHills", near, parent=root)


def add_ground(model, root):
    lawn = model.material("lawn", (0.50, 0.62, 0.62), "meadow", ambient=(0.54, 0.68, 0.74))
    for row in range(2):
        for column in range(2):
            x, z = -16 + 16 * column, -20 + 19 * row
            tile = Mesh(lawn)
            tile.grid(1, 1, lambda c, r: (x + 16 * c, 0, z + 19 - 19 * r), lambda c, r: ((x + 16 * c) / 6, (z + 19 - 19 * r) / 6))
            model.node("lawn%d" % (2 * row + column + 1), tile, parent=root)
    field = Mesh(model.material("field", (0.16, 0.17, 0.29), unlit=True))
    for x0, x1, z0, z1 in ((-70, 70, -70, -20), (-70, -16, -20, 18), (16, 70, -20, 18)):
        field.face(((x0, 0, z1), (0, 0)), ((x1, 0, z1), (0, 0)), ((x1, 0, z0), (0, 0)), ((x0, 0, z0), (0, 0)))
    model.node("field", field, parent=root)


def add_path(model, root):
    paving = model.material("paving", (0.80, 0.78, 0.86), "paving", ambient=(0.86, 0.84, 0.94))
    bends = [(0.5, 26), (0.4, 18), (0, 11), (-2.0, 6), (-1.0, 1), (1.2, -4), (0.5, -9), (0, -14), (0, -19), (0, -24)]
    points = along(bends, 3)
    for part in range(0, len(points) - 1, 7):
        path = Mesh(paving)
        piece = points[part:part + 8]

        def place(column, row):
            (x, z), (dx, dz) = piece[row]
            length = math.hypot(dx, dz)
            side = (column - 0.5) * 2.3
            return (x - dz / length * side, 0.03, z + dx / length * side)

        if len(piece) > 1:
            path.grid(1, len(piece) - 1, place, lambda c, r: (c * 0.5, (part + r) * 0.37))
        model.node("path%d" % (part // 7 + 1), path, parent=root)


def add_well(model, root):
    stone = model.material("stone", (0.78, 0.74, 0.84), "masonry", ambient=(0.84, 0.80, 0.94))
    paved = Mesh(model.material("court", (0.72, 0.70, 0.80), "paving", ambient=(0.80, 0.78, 0.90)))
    around = [(3.1 * math.sin(math.radians(36 * i)), 3.1 * math.cos(math.radians(36 * i))) for i in range(10)]
    paved.face(*[((x, 0.05, z), (0.5 + x / 9, 0.5 + z / 9)) for x, z in around])
    well = model.node("well", paved, (4.9, 0, -1.6), root)
    basin = Mesh(stone)
    basin.turned(5, [(1.75, 0.0, 0.5), (1.7, 0.95, 0.14)], sweep=FRONT, across=2)
    basin.turned(6, [(1.75, 0.95, 0.12), (1.35, 1.0, 0.0)], across=3)
    basin.turned(3, [(1.35, 1.0, 0.0), (1.4, 0.6, 0.12)], sweep=(90, 270), across=2)
    model.node("basin", basin, parent=well)
    pillar = Mesh(stone)
    pillar.turned(3, [(0.34, 0.4, 0.5), (0.22, 1.6, 0.1), (0.62, 1.95, 0.0)], sweep=FRONT, across=1)
    model.node("pillar", pillar, parent=well)
    water = Mesh(model.material("water", (0.62, 0.74, 0.94), "water", ambient=(0.7, 0.8, 1.0)))
    water.face(*[((0.45 * x, 0.74, 0.45 * z), (0.5 + x / 8, 0.5 + z / 8)) for x, z in around])
    model.node("water", water, parent=well)


def add_gate(model, root):
    wall = model.material("wall", (0.72, 0.66, 0.80), "masonry", ambient=(0.80, 0.74, 0.92))
    ring = Mesh(wall)
    profile = ((3.4, -0.6), (3.46, 0.6), (4.7, 0.6))
    lengths = (0.0, 0.28, 0.62)

    def place(column, row):
        angle = math.radians(-150 + 300.0 * column / 11)
        radius, z = profile[2 - row]
        return (radius * math.sin(angle), 3.9 + radius * math.cos(angle), z)

    ring.grid(11, 2, lambda c, r: place(11 - c, r), lambda c, r: (c * 0.52, lengths[2 - r]))
    gate = model.node("gate", ring, (0, 0, -15), root)
    for side in (-1, 1):
        part = Mesh(wall)
        outline = ((0, 0.4, 0.9, 2.3), (2.5, 0.4, 0.1, 3.8), (2.9, 0.0, 0.0, 3.8))  # height, z, v, where it begins

        def across(column, row):
            return side * (outline[row][3], 13.0)[::side][column]

        part.grid(1, 2, lambda c, r: (across(c, r), outline[r][0], outline[r][1]), lambda c, r: (across(c, r) / 3.6, outline[r][2]))
        model.node("wall%s" % ("Left" if side < 0 else "Right"), part, parent=gate)


def add_green(model, root, chance):
    leaves = model.material("hedge", (0.62, 0.86, 0.66), "cypress", ambient=(0.78, 1.0, 0.92))
    for side in (-1, 1):
        for i in range(4):
            hedge = Mesh(leaves)
            z = [12 - 6.6 * i, 12 - 6.6 * i - 6.3]
            x = 9.4
            bumps = [chance.uniform(1.25, 1.75) for _ in z]

            def place(column, row):
                inner, height = ((x, 0.0), (x + 0.15, 0.8 * bumps[column]), (x + 0.7, bumps[column]), (x + 1.6, bumps[column] - 0.1))[row]
                return (side * inner, height, z[column])

            flip = (lambda c: c) if side > 0 else (lambda c: 1 - c)
            # Seen from the path: to the right of it the columns run away from the viewer, to the left toward it.
            hedge.grid(1, 3, lambda c, r: place(1 - flip(c), r), lambda c, r: (c * 3.2, 0.55 * r))
            ends = [place(0, r) for r in range(4)] + [(side * (x + 1.6), 0.0, z[0])]
            if i == 0:  # of the others the ends are hidden
                hedge.face(*[(p, (p[0] / 2, p[1] / 2)) for p in (reversed(ends) if side > 0 else ends)])
            model.node("hedge%d" % (4 * (side > 0) + i + 1), hedge, parent=root)
    tree = model.material("cypress", (0.46, 0.66, 0.60), "cypress", ambient=(0.66, 0.92, 0.94))
    places = [(-6.6, -18.5, 8.5), (6.9, -18.2, 9.4), (-10.5, -17.6, 7.2), (10.8, -17.8, 7.8), (-12.6, -9, 8.2), (12.4, -7.5, 9.0),
              (-12.8, 1.5, 7.4), (12.8, 3, 8.0)]
    for i, (x, z, height) in enumerate(places):
        cypress = Mesh(tree)
        profile = [(0.6, 0.0, 1.6), (1.1, 0.22 * height, 1.1), (0.0, height, 0.0)]
        cypress.turned(3, profile[1 if z < -15 else 0:], sweep=(-100, 100), across=1.5)  # the wall hides what is lower
        model.node("cypress%d" % (i + 1), cypress, (x, 0, z), root)
    rock = model.material("rock", (0.55, 0.52, 0.62), "paving", ambient=(0.62, 0.60, 0.74))
    for i, (x, z, size) in enumerate([(-5.6, 8.4, 0.8), (6.8, 5.2, 1.0), (-7.6, -2.2, 1.2), (8.0, -6.4, 0.9), (-4.4, -11.2, 1.0), (2.9, -6.6, 0.6)]):
        stone = Mesh(rock)
        stone.turned(3, [(size * 1.1, -0.1, 0.5), (size * chance.uniform(0.7, 0.9), size * 0.55, 0.3), (0.0, size * 0.8, 0.1)],
                     sweep=FRONT, across=1)
        model.node("stone%d" % (i + 1), stone, (x, 0, z), root)


PAPERS = [(0.96, 0.36, 0.22), (1.0, 0.66, 0.20), (0.96, 0.34, 0.48), (1.0, 0.80, 0.34), (0.52, 0.78, 0.42),
          (0.98, 0.50, 0.20), (0.66, 0.46, 0.92), (1.0, 0.72, 0.28), (0.36, 0.70, 0.90), (0.94, 0.32, 0.30)]


def lantern_shape(material, radius, height, sides=4):
    """What hangs: the front of a body of paper, ribbed by its picture, between two dark rims."""
    shape = Mesh(material)
    shape.turned(sides, [(0.40 * radius, -height, 0.80), (radius, -0.36 * height, 0.52), (radius, 0.36 * height, 0.24),
                         (0.40 * radius, height, -0.06)], sweep=FRONT, across=1.2)
    return shape


def add_lanterns(model, root):
    wood = model.material("wood", (0.42, 0.30, 0.26), ambient=(0.50, 0.38, 0.38))
    poles = []
    for side in (-1, 1):
        pole = Mesh(wood)
        pole.face(*[((0.9 * side + x, y, 0.0), (0, 0)) for x, y in ((-0.12, 0.0), (0.12, 0.0), (0.08, 3.75), (-0.08, 3.75))])
        arm = ((1.12 * side, 3.46), (-0.22 * side, 3.52), (-0.2 * side, 3.62), (1.12 * side, 3.6))
        pole.face(*[((x, y, 0.05), (0, 0)) for x, y in arm[::-side]])
        poles.append(model.mesh(pole))
    for i, color in enumerate(PAPERS):
        paper = model.material("paper%d" % (i + 1), color, "paper", ambient=[0.5 * c for c in color])
        halo = model.material("halo%d" % (i + 1), [0.4 + 0.6 * c for c in color], "glow", 0.9, True)
        pool = model.material("pool%d" % (i + 1), [0.5 + 0.5 * c for c in color], "glow", 0.4, True)
        stand = model.node("post%d" % (i + 1), parent=root)
        model.node("west%d" % (i + 1), poles[0], parent=stand)
        model.node("east%d" % (i + 1), poles[1], parent=stand)
        lantern = model.node("lantern%d" % (i + 1), lantern_shape(paper, 0.66, 0.72), (0, 2.75, 0), stand)
        quad = Mesh(halo)
        quad.quad(2.3)
        model.node("halo%d" % (i + 1), quad, parent=lantern, hidden=True, radius=0)
        quad = Mesh(pool)
        behind = BEHIND + APART * (len(PAPERS) - 1 - i)
        quad.quad(3.9, True, (0, 0, behind))
        model.node("pool%d" % (i + 1), quad, (0, 0.05 + 0.004 * i, 0.3 - behind), stand, hidden=True, radius=0)


def add_small(model, root):
    brass = model.material("brass", (1.0, 0.78, 0.36), "paper", ambient=(1.0, 0.8, 0.5))
    lamp = Mesh(brass)
    lamp.turned(4, [(0.10, -0.26, 0.80), (0.21, 0.0, 0.4), (0.10, 0.26, -0.06)], across=2)
    model.node("lamp", lamp, parent=root)
    glow = Mesh(model.material("lampGlow", (1.0, 0.82, 0.50), "glow", 0.85, True))
    glow.quad(0.75)
    model.node("lampGlow", glow, parent=root, radius=0)
    shadow = Mesh(model.material("shadow", (0.05, 0.03, 0.12), "glow", 0.75, True))
    shadow.quad(1.0, True, (0, 0, -1))
    model.node("shadow", shadow, (0, 0.11, 1), root, radius=0)
    pool = Mesh(model.material("lampPool", (1.0, 0.74, 0.42), "glow", 0.34, True))
    pool.quad(2.9, True, (0, 0, 3))
    model.node("lampPool", pool, (0, 0.10, -3), root, radius=0)
    marker = Mesh(model.material("marker", (1.0, 0.92, 0.66), "glow", 0.8, True))
    marker.quad(0.55, True)
    model.node("marker", marker, (0, 0.12, 0), root, radius=0)
    wing = model.material("wing", (0.94, 0.90, 0.92), "wing", 0.999, True)
    dust = model.material("dust", (0.70, 0.66, 1.0), "glow", 0.75, True)
    for i in range(3):
        glow = Mesh(dust)
        glow.quad(0.75)
        moth = model.node("moth%d" % (i + 1), glow, parent=root, radius=0)
        for side, name in ((-1, "Left"), (1, "Right")):
            half = Mesh(wing)
            outline = ((0.0, -0.36), (0.6, -0.36), (0.6, 0.36), (0.0, 0.36))
            corners = [((side * x, y, 0.02), (x / 0.6, 0.5 - y / 0.72)) for x, y in outline]
            half.face(*corners[::side])
            model.node("moth%d%s" % (i + 1, name), half, parent=moth)


def main():
    model = Model()
    chance = random.Random(7)
    root = model.node("stage")
    add_sky(model, root)
    add_ground(model, root)
    add_path(model, root)
    add_well(model, root)
    add_gate(model, root)
    add_green(model, root, chance)
    add_lanterns(model, root)
    add_small(model, root)
    moon = model.node("moonlight", parent=root)
    model.nodes[moon]["extensions"] = {"KHR_lights_punctual": {"light": 0}}
    model.nodes[moon]["rotation"] = [-0.40584058, 0.28988615, 0.0, 0.86675227]
    model.save("garden")
    print(sum(model.accessors[m["primitives"][0]["indices"]]["count"] // 3 for m in model.meshes), "triangles")


if __name__ == "__main__":
    main()
