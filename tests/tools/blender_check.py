# SPDX-License-Identifier: MIT
"""Run inside Blender by blender_check: imports an FBX file and writes what came of it as JSON.

Arguments behind `--`: the JSON file, the FBX file, and the first and last frame if a range is wanted.

How matrices stay in the file's axes and units. By default Blender's importer turns a file to Z up and scales it to
metres, on the top objects. Here it is told to do neither: manual orientation with Blender's own axes is no turn, and a
global scale of 100 / UnitScaleFactor undoes its scale.

Bones. A limb node becomes a bone of an armature object (of the null above it, or of one that Blender adds). A bone's
axes can differ from the node's by a fixed turn; with `automatic_bone_orientation` off and the default axes, primary Y
and secondary X, that turn is the identity, so the matrix of a pose bone is that of the node. (`automatic` would turn
each bone until its Y axis runs along it, and its matrices could be compared no more.) Blender draws bones along Y
whatever the node's children are: that is how a bone is shown, not where it stands. Frames count from the file's time
0: the importer's own offset of one frame is off.
"""

import json
import sys

import addon_utils
import bpy


def rows(matrix):
    """The 16 numbers in the order of FBX files: row vectors, the translation last."""
    return [value for row in matrix.transposed() for value in row]


def unit_of(path):
    """UnitScaleFactor of the file: centimetres a unit."""
    from io_scene_fbx import parse_fbx

    root, _version = parse_fbx.parse(path)
    for element in root.elems:
        if element.id == b"GlobalSettings":
            for block in element.elems:
                for row in block.elems:
                    if row.props and row.props[0] == b"UnitScaleFactor":
                        return row.props[4]
    return 1.0


def hierarchy():
    """Objects and bones by name; a bone's parent is a bone or its armature."""
    found = {}
    for item in bpy.data.objects:
        found[item.name] = {"kind": item.type, "parent": item.parent.name if item.parent else None}
        if item.type == "ARMATURE":
            for bone in item.data.bones:
                found[bone.name] = {"kind": "BONE", "parent": bone.parent.name if bone.parent else item.name}
    return found


def world_matrices():
    """Of objects and pose bones at the present frame."""
    found = {}
    for item in bpy.data.objects:
        found[item.name] = rows(item.matrix_world)
        if item.type == "ARMATURE":
            for bone in item.pose.bones:
                found[bone.name] = rows(item.matrix_world @ bone.matrix)
    return found


def mesh_of(item):
    mesh = item.data
    groups = [group.name for group in item.vertex_groups]
    weights = {name: {} for name in groups}
    for vertex in mesh.vertices:
        for entry in vertex.groups:
            weights[groups[entry.group]][vertex.index] = entry.weight
    shapes = [key.name for key in mesh.shape_keys.key_blocks][1:] if mesh.shape_keys else []
    return {
        "points": [list(vertex.co) for vertex in mesh.vertices],
        "polygons": [list(polygon.vertices) for polygon in mesh.polygons],
        "sharp_edges": sum(1 for edge in mesh.edges if edge.use_edge_sharp),
        "uvs": {layer.name: [list(corner.uv) for corner in layer.data] for layer in mesh.uv_layers},
        "weights": weights,
        "shapes": shapes,
        "materials": [slot.material.name for slot in item.material_slots if slot.material],
        "material_of_polygon": [polygon.material_index for polygon in mesh.polygons],
        "armature": next((m.object.name for m in item.modifiers if m.type == "ARMATURE" and m.object), None),
    }


def deformed(item):
    """The mesh's points at the present frame, in the world, behind shapes and skin."""
    shown = item.evaluated_get(bpy.context.evaluated_depsgraph_get())
    mesh = shown.to_mesh()
    points = [list(shown.matrix_world @ vertex.co) for vertex in mesh.vertices]
    shown.to_mesh_clear()
    return points


def main(result, path, *span):
    bpy.ops.wm.read_factory_settings(use_empty=True)
    addon_utils.enable("io_scene_fbx")
    bpy.ops.import_scene.fbx(
        filepath=path,
        use_manual_orientation=True,
        axis_forward="Y",
        axis_up="Z",
        global_scale=100 / unit_of(path),
        anim_offset=0.0,
        automatic_bone_orientation=False,
        ignore_leaf_bones=False,
    )
    scene = bpy.context.scene
    first, last = (int(frame) for frame in span) if span else (scene.frame_start, scene.frame_end)
    found = {
        "centimetres": unit_of(path),
        "frames_a_second": scene.render.fps / scene.render.fps_base,
        "range": [scene.frame_start, scene.frame_end],
        "nodes": hierarchy(),
        "rest": {b.name: rows(a.matrix_world @ b.matrix_local)
                 for a in bpy.data.objects if a.type == "ARMATURE" for b in a.data.bones},
        "meshes": {item.name: mesh_of(item) for item in bpy.data.objects if item.type == "MESH"},
        "materials": {m.name: list(m.diffuse_color) for m in bpy.data.materials},
        "actions": [action.name for action in bpy.data.actions],
        "frames": [],
    }
    for frame in range(first, last + 1):
        scene.frame_set(frame)
        found["frames"].append({
            "frame": frame,
            "world": world_matrices(),
            "deformed": {item.name: deformed(item) for item in bpy.data.objects if item.type == "MESH"},
            "shapes": {item.name: {key.name: key.value for key in item.data.shape_keys.key_blocks[1:]}
                       for item in bpy.data.objects if item.type == "MESH" and item.data.shape_keys},
        })
    with open(result, "w", encoding="utf-8") as out:
        json.dump(found, out, indent=1)


main(*sys.argv[sys.argv.index("--") + 1:])
