"""Checks scene files against their JSON Schema: those that are written pass, those that are refused do not.

Usage: scene_schema_test.py SCHEMA KORL FOLDER
"""

import json
import pathlib
import subprocess
import sys

import jsonschema

schema_file, korl, folder = sys.argv[1:]
folder = pathlib.Path(folder)
folder.mkdir(parents=True, exist_ok=True)
schema = json.loads(pathlib.Path(schema_file).read_text())
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)


def save(*options):
    target = folder / "written.json"
    subprocess.run([korl, "save", *options, "-o", target], check=True, stderr=subprocess.DEVNULL)
    return json.loads(target.read_text())


def is_read(scene):
    """Whether the program reads a scene."""
    file = folder / "read.json"
    file.write_text(json.dumps(scene))
    command = [korl, "save-rig", file, "-o", folder / "rig.json"]
    return subprocess.run(command, stderr=subprocess.DEVNULL, check=False).returncode == 0


rich = {
    "korl": 1,
    "plugins": ["tovek_light", "absent"],
    "background": "#10203040",
    "camera": {"position": "1 2 3", "target": "0 0 0", "up": "0 0 1", "fov": 45},
    "views": ["left"],
    "solo": "sun",
    "objects": [
        {"type": "Sun", "name": "sun", "muted": True, "parameters": {"latitude": "52"}},
        {"type": "Absent", "name": "a", "views": {"left": {"x": "1"}}},
        {"type": "Sun", "views": {"left": {"latitude": "-0"}},
         "connections": {"Intensity": {"object": "sun", "parameter": "Intensity"}}},
    ],
    "meshes": [
        {"builtin": "sphere"},
        {"name": "m", "positions": [0, 0, 0, 1, 0, 0, 0, 1, -0.0], "colors": [0, 0.5, 1] * 3, "triangles": [0, 1, 2]},
    ],
}
(folder / "rich.json").write_text(json.dumps(rich))

good = {
    "the least": {"korl": 1},
    "all of it": rich,
    "written by options": save("--light", "Sun:sun", "--light", "Torch", "--set", "sun.latitude=52", "--fov", "40"),
    "read and written": save(str(folder / "rich.json")),
    "numbers and lists": {
        "korl": 1,
        "background": [0, 0.5, 1],
        "camera": {"position": [1, 2e0, -3], "target": [0, 0, 0], "up": "0 0 1"},
        "objects": [{"type": "Torch", "parameters": {"location": [0, 1, 2], "intensity": 2, "elevation": "1"}}],
    },
}
bad = {
    "a list": [],
    "no version": {},
    "another version": {"korl": 2},
    "an unknown key": {"korl": 1, "object": []},
    "objects that are not a list": {"korl": 1, "objects": {}},
    "an object that is none": {"korl": 1, "objects": [7]},
    "no type": {"korl": 1, "objects": [{"name": "x"}]},
    "a type that is not a text": {"korl": 1, "objects": [{"type": 3}]},
    "an empty name": {"korl": 1, "objects": [{"type": "Sun", "name": ""}]},
    "an unknown key of an object": {"korl": 1, "objects": [{"type": "Sun", "mute": True}]},
    "muted that is not a truth value": {"korl": 1, "objects": [{"type": "Sun", "muted": 1}]},
    "a value that is none": {"korl": 1, "objects": [{"type": "Sun", "parameters": {"latitude": True}}]},
    "a list with a text in it": {"korl": 1, "objects": [{"type": "Torch", "parameters": {"location": [0, "1", 2]}}]},
    "an empty list": {"korl": 1, "objects": [{"type": "Torch", "parameters": {"location": []}}]},
    "a list that is too long": {"korl": 1, "objects": [{"type": "Torch", "parameters": {"location": [1, 2, 3, 4, 5]}}]},
    "a connection that is a text": {"korl": 1, "objects": [{"type": "Sun", "connections": {"latitude": "a.b"}}]},
    "half a connection": {"korl": 1, "objects": [{"type": "Sun", "connections": {"latitude": {"object": "a"}}}]},
    "values of a view that are none": {"korl": 1, "views": ["v"], "objects": [{"type": "Sun", "views": {"v": 1}}]},
    "a view twice": {"korl": 1, "views": ["left", "left"]},
    "a view without a name": {"korl": 1, "views": [""]},
    "too many views": {"korl": 1, "views": [str(i) for i in range(257)]},
    "a colour that is none": {"korl": 1, "background": "red"},
    "half a position": {"korl": 1, "camera": {"position": "1 2", "target": "0 0 0"}},
    "half a position in a list": {"korl": 1, "camera": {"position": [1, 2], "target": [0, 0, 0]}},
    "a colour of two numbers": {"korl": 1, "background": [0, 1]},
    "a camera without a target": {"korl": 1, "camera": {"position": "1 2 3"}},
    "an angle that is a text": {"korl": 1, "camera": {"position": "1 2 3", "target": "0 0 0", "fov": "wide"}},
    "too wide an angle": {"korl": 1, "camera": {"position": "1 2 3", "target": "0 0 0", "fov": 180}},
    "an axis that is none": {"korl": 1, "meshes": [{"file": "x.obj", "up": "w"}]},
    "an unknown built-in mesh": {"korl": 1, "meshes": [{"builtin": "cube"}]},
    "arrays without triangles": {"korl": 1, "meshes": [{"positions": [0, 0, 0]}]},
    "a position that is a text": {"korl": 1, "meshes": [{"positions": [0, "1", 0], "triangles": []}]},
    "a colour above 1": {"korl": 1, "meshes": [{"positions": [0, 0, 0], "colors": [0, 0, 2], "triangles": []}]},
    "a triangle with a fraction": {"korl": 1, "meshes": [{"positions": [0, 0, 0], "triangles": [0, 0, 0.5]}]},
}
# What only the scene's own meaning shows to be wrong, no schema can say: it is not in the table.

failed = 0
for what, scene in (good | bad).items():
    for who, accepts in (("the schema", validator.is_valid), ("the program", is_read)):
        if accepts(scene) != (what in good):
            failed += 1
            print(f"{what}: {who} {'refuses' if what in good else 'accepts'} it")
print(f"{len(good)} good and {len(bad)} bad scenes, {failed} wrong answers")
sys.exit(1 if failed else 0)
