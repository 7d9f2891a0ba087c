# SPDX-License-Identifier: MIT
"""Compares two results of blender_check: see compare_fbx, which calls this.

Matrices are those of bones and objects that carry no mesh: a mesh's node may stand elsewhere as long as its points do
not, and those are compared in the world, behind shapes and skin.
"""

import json
import math
import os
import sys

BOUNDS = {"LENGTH": 0.01, "ANGLE": 0.01, "SCALE": 1e-4, "UV": 1e-4, "WEIGHT": 1e-4}


class Comparison:
    def __init__(self):
        self.bounds = {kind: float(os.environ.get(kind, bound)) for kind, bound in BOUNDS.items()}
        self.worst = {kind: (0.0, "") for kind in BOUNDS}
        self.faults = []

    def add(self, kind, difference, where):
        # Written so that what is no number is the worst of all.
        if not difference <= self.worst[kind][0]:
            self.worst[kind] = (difference, where)

    def equal(self, what, a, b):
        if a != b:
            self.faults.append(f"{what}: {a} and {b}")

    def common(self, what, a, b):
        """Names of both; the others are faults."""
        for name in sorted(set(a) ^ set(b)):
            self.faults.append(f"{what} '{name}' is only in the {'first' if name in a else 'second'} file")
        return [name for name in a if name in b]

    def report(self):
        for kind, (difference, where) in self.worst.items():
            excess = not difference <= self.bounds[kind]
            print(f"{kind.lower():7} {difference:.7f} of {self.bounds[kind]:g}"
                  f"{' TOO MUCH' if excess else ''}{' at ' + where if where else ''}")
            if excess:
                self.faults.append(kind)
        for fault in self.faults:
            if fault not in BOUNDS:
                print(fault)
        return 1 if self.faults else 0


def length(v):
    return math.sqrt(sum(x * x for x in v))


def distance(a, b):
    return length([x - y for x, y in zip(a, b)])


def compare_matrices(found, a, b, units, where):
    found.add("LENGTH", distance([x * units[0] for x in a[12:15]], [x * units[1] for x in b[12:15]]), where)
    for i in (0, 4, 8):
        u, v = a[i:i + 3], b[i:i + 3]
        cross = [u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]]
        found.add("ANGLE", math.degrees(math.atan2(length(cross), sum(x * y for x, y in zip(u, v)))), where)
        found.add("SCALE", abs(length(u) - length(v)) / max(length(u), 1e-30), where)


def compare_meshes(found, name, a, b):
    found.equal(f"points of mesh '{name}'", len(a["points"]), len(b["points"]))
    found.equal(f"polygons of mesh '{name}'", len(a["polygons"]), len(b["polygons"]))
    if a["polygons"] != b["polygons"]:
        found.faults.append(f"mesh '{name}' has other polygons")
        return
    for what in ("shapes", "materials", "material_of_polygon"):
        if a[what] != b[what]:
            found.faults.append(f"mesh '{name}' has other {what}")
    # Blender keeps the layers in their order and may name them anew.
    found.equal(f"UV layers of mesh '{name}'", len(a["uvs"]), len(b["uvs"]))
    for (layer, ours), theirs in zip(a["uvs"].items(), b["uvs"].values()):
        for corner, (u, v) in enumerate(zip(ours, theirs)):
            found.add("UV", distance(u, v), f"corner {corner} of '{name}' on '{layer}'")
    for bone in set(a["weights"]) | set(b["weights"]):
        ours, theirs = a["weights"].get(bone, {}), b["weights"].get(bone, {})
        for point in set(ours) | set(theirs):
            found.add("WEIGHT", abs(ours.get(point, 0) - theirs.get(point, 0)), f"point {point} of '{name}', '{bone}'")


def compare_frames(found, a, b, units, meshes):
    where = f"frame {a['frame']}"
    for name in a["world"]:
        if name in b["world"] and name not in meshes:
            compare_matrices(found, a["world"][name], b["world"][name], units, f"'{name}', {where}")
    for name, points in a["deformed"].items():
        for i, (p, q) in enumerate(zip(points, b["deformed"].get(name, []))):
            found.add("LENGTH", distance([x * units[0] for x in p], [x * units[1] for x in q]),
                      f"point {i} of '{name}', {where}")
    for name, shapes in a["shapes"].items():
        for shape, value in shapes.items():
            other = b["shapes"].get(name, {}).get(shape)
            if other is not None:
                found.add("WEIGHT", abs(value - other), f"shape '{shape}' of '{name}', {where}")


def main(first, second):
    a, b = (json.load(open(path, encoding="utf-8")) for path in (first, second))
    found = Comparison()
    units = a["centimetres"], b["centimetres"]
    found.equal("frames a second", a["frames_a_second"], b["frames_a_second"])
    # An armature is Blender's own node above bones that have none.
    own = {name for side in (a, b) for name, node in side["nodes"].items() if node["kind"] == "ARMATURE"}
    for name in found.common("node", *({n: v for n, v in s["nodes"].items() if n not in own} for s in (a, b))):
        parents = [side["nodes"][name]["parent"] for side in (a, b)]
        if not all(parent is None or parent in own for parent in parents):
            found.equal(f"parent of '{name}'", *parents)
    found.common("material", a["materials"], b["materials"])
    for name in found.common("mesh", a["meshes"], b["meshes"]):
        compare_meshes(found, name, a["meshes"][name], b["meshes"][name])
    for ours, theirs in zip(a["frames"], b["frames"]):
        compare_frames(found, ours, theirs, units, set(a["meshes"]) | own)
    sys.exit(found.report())


main(*sys.argv[1:])
