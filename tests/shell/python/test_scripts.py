"""`korl script` prints a script that makes the picture that `korl render` makes of the same scene."""

import json
import os
import pathlib
import subprocess
import tempfile
import unittest

KORL = os.environ["KORL_PROGRAM"]

SCENE = {
    "korl": 1,
    "background": "0.1 0.2 0.3 1",
    "camera": {"position": "0.3 2 0.9", "target": "0 0 0", "up": "0.1 0 1", "fov": 35},
    "views": ["left one"],
    "objects": [
        {"type": "Sun", "name": "the sun", "parameters": {"latitude": "52", "Specular": "-0"},
         "views": {"left one": {"Intensity": "0.2"}}},
        {"type": "DirectionalLight", "name": "class", "parameters": {"direction": "1 0.5 -0.25", "color": "0.1 0.7 1 1"},
         "connections": {"Intensity": {"object": "the sun", "parameter": "Intensity"}}},
        {"type": "AmbientLight", "muted": True},
    ],
    "meshes": [
        {"builtin": "landscape"}, {"builtin": "column"}, {"builtin": "sphere"},
        {"name": "sheet", "positions": [-0.5, -0.5, 0.3, 0.5, -0.5, 0.3, 0, 0.1, 0.4], "colors": [1, 0, 0] * 3,
         "triangles": [0, 1, 2]},
    ],
}


class Scripts(unittest.TestCase):
    def picture_of_script(self, *scene):
        with tempfile.TemporaryDirectory() as folder:
            place = pathlib.Path(folder)
            script = subprocess.run([KORL, "script", *scene], check=True, capture_output=True, text=True).stdout
            (place / "scene.py").write_text(script)
            result = subprocess.run([KORL, "run", "scene.py"], cwd=place, capture_output=True, text=True, check=False)
            self.assertEqual(result.returncode, 0, result.stderr + script)
            return (place / "scene.png").read_bytes()

    def picture_of_scene(self, *scene):
        command = [KORL, "render", *scene, "--size", "640x480", "-o", "-"]
        return subprocess.run(command, check=True, capture_output=True).stdout

    def expect_same(self, *scene):
        self.assertTrue(self.picture_of_script(*scene) == self.picture_of_scene(*scene), "the pictures differ")

    def test_a_scene_of_everything(self):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "scene.json"
            file.write_text(json.dumps(SCENE))
            self.expect_same(str(file))
            file.write_text(json.dumps(SCENE | {"solo": "class"}))
            self.expect_same(str(file))

    def test_what_options_say(self):
        self.expect_same("--light", "Torch:t", "--light", "Headlight", "--set", "t.intensity=3", "--background", "#123456")


if __name__ == "__main__":
    unittest.main()
