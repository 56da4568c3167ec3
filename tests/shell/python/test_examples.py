"""Each example runs and makes pictures that show something."""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

EXAMPLES = Path(os.environ["KORL_EXAMPLES"])
PICTURES = {
    "six_lights": {"six_lights.png": (1200, 600)},
    "studio": {"studio.png": (960, 720), "studio_lights.png": (960, 240)},
    "day_of_sun": {"day_of_sun.png": (1920, 810), "day_at_10.png": (480, 270)},
    "torch_gallery": {"torch_gallery.png": (960, 640)},
    "two_views": {"two_views.png": (1120, 420), "view_day.png": (560, 420), "view_night.png": (560, 420)},
}


def size_of(png):
    return int.from_bytes(png[16:20], "big"), int.from_bytes(png[20:24], "big")


class ExampleTest(unittest.TestCase):
    def test_every_script_is_listed(self):
        scripts = {file.stem for file in EXAMPLES.glob("*.py")}
        self.assertEqual(scripts - {"shapes"}, set(PICTURES))

    def test_each_makes_its_pictures(self):
        for name, expected in PICTURES.items():
            with self.subTest(name), tempfile.TemporaryDirectory() as folder:
                command = [os.environ["KORL_PROGRAM"], "run", EXAMPLES / f"{name}.py", folder]
                result = subprocess.run(command, capture_output=True, text=True, timeout=250)
                self.assertEqual((result.returncode, result.stderr), (0, ""))
                made = {file.name: file.read_bytes() for file in Path(folder).iterdir()}
                self.assertEqual({name: size_of(png) for name, png in made.items()}, expected)
                for png in made.values():
                    # A picture of one colour would pack to next to nothing.
                    self.assertGreater(len(png), 10000)


if __name__ == "__main__":
    unittest.main()
