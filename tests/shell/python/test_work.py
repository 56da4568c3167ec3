"""Scene files, rigs, scripts, sequences and explanations, as Python calls them."""

import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import numpy as np

import korl


class WorkTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.shell = korl.Shell()
        self.addCleanup(self.shell.close)
        self.shell.add_landscape()
        self.shell.add_mesh([(-1, -1, 0), (1, -1, 0), (0, 1, 0)], [(0, 1, 2)], colors=[(0.1, 0.2, 0.3)] * 3, name="sheet")
        self.sun = self.shell.create("Sun", "the sun", latitude=52, timeofday=9)
        light = self.shell.create("DirectionalLight", "a", Intensity=0.3, direction=(0.1, -0.2, -1e-300))
        self.shell.create("DirectionalLight", "b").direction.follow(light.direction)
        self.shell.create("Torch", "torch").enabled = False
        self.sun.set("Intensity", 0.2, view=self.shell.add_view("dim"))
        self.shell.background = "#203040"
        self.shell.camera.set(position=(1, 2, 1), target=(0, 0, 0), fov=40)
        self.picture = self.shell.render(64, 48)

    def test_a_saved_scene_comes_back_to_the_pixel(self):
        self.shell.save(self.folder / "scene.json")
        with korl.Shell() as other:
            other.load_scene(self.folder / "scene.json")
            np.testing.assert_array_equal(other.render(64, 48), self.picture)
            np.testing.assert_array_equal(other.render(64, 48, view="dim"), self.shell.render(64, 48, view="dim"))
            other.save(self.folder / "again.json")
        self.assertEqual((self.folder / "again.json").read_bytes(), (self.folder / "scene.json").read_bytes())
        with self.assertRaisesRegex(korl.Error, "there is no such file"):
            self.shell.load_scene(self.folder / "none.json")

    def test_a_rig_brings_lights_alone(self):
        self.shell.save_rig(self.folder / "rig.json")
        with korl.Shell() as other:
            other.create("Headlight", "own")
            other.load_rig(self.folder / "rig.json")
            self.assertEqual([light.name for light in other], ["own", "the sun", "a", "b", "torch"])
            self.assertEqual((other["the sun"].latitude, other.meshes), (52, ()))
            other.load_rig(self.folder / "rig.json", replace=True)
            self.assertEqual([light.name for light in other], ["the sun", "a", "b", "torch"])

    def test_a_script_builds_the_scene(self):
        script = self.shell.script()
        self.assertIn("image = shell.render(640, 480)", script)
        found = {}
        os.chdir(self.folder)
        exec(script.replace("640, 480", "64, 48"), found)
        np.testing.assert_array_equal(found["image"], self.picture)

    def test_a_sequence_varies_parameters(self):
        heard = []
        made = self.shell.animate(
            self.folder / "day_##.png",
            {"the sun.timeofday": (6, 18), self.shell["a"].parameters["direction"]: ((0, 0, -1), (1, 0, -1))},
            frames=3,
            width=32,
            height=24,
            jobs=2,
            progress=lambda done, frames: heard.append((done, frames)),
        )
        self.assertEqual(made, 3)
        self.assertEqual(heard[-1], (3, 3))
        self.assertEqual(sorted(file.name for file in self.folder.iterdir()), ["day_01.png", "day_02.png", "day_03.png"])
        self.sun.timeofday = 12
        self.shell["a"].direction = (0.5, 0, -1)
        again = self.shell.animate(self.folder / "one_#.png", sun_time=(12, 12), frames=1, width=32, height=24)
        self.assertEqual(again, 1)
        self.assertEqual(self.shell.animate(self.folder / "one_#.png", sun_time=(12, 12), frames=1, width=32, height=24, resume=True), 0)

    def test_a_sequence_ends_with_what_its_listener_raises(self):
        def stop(done, frames):
            raise LookupError("enough")

        with self.assertRaisesRegex(LookupError, "enough"):
            self.shell.animate(self.folder / "a_#.png", sun_time=(6, 18), frames=3, width=32, height=24, progress=stop)

        def use(done, frames):
            self.shell.render()

        with self.assertRaisesRegex(korl.Error, "at work on this thread"):
            self.shell.animate(self.folder / "b_#.png", sun_time=(6, 18), frames=3, width=32, height=24, progress=use)
        for vary, kind in [({"the sun.timeofdya": (1, 2)}, KeyError), ({"the sun.timeofday": 3}, TypeError), ({3: (1, 2)}, TypeError)]:
            with self.assertRaises(kind):
                self.shell.animate(self.folder / "c_#.png", vary)

    def test_one_process_makes_a_sequence_at_a_time(self):
        program = "import korl, sys; korl.Shell().animate(sys.argv[1], frames=1, width=8, height=8)"
        told = []

        def run_another(done, frames):
            if not told:
                other = subprocess.run([sys.executable, "-c", program, self.folder / "a_#.png"], capture_output=True, text=True)
                told.append((other.returncode, other.stderr.splitlines()[-1]))

        self.shell.animate(self.folder / "a_#.png", sun_time=(6, 18), frames=1, width=8, height=8, progress=run_another)
        code, text = told[0]
        self.assertEqual(code, 1)
        self.assertRegex(text, rf"Error: cannot make .*a_#\.png: it is being made by process {os.getpid()} on .+ since .+; wait for its end")

    def test_a_sequence_is_made_with_closed_standard_streams(self):
        program = (
            "import korl, sys; shell = korl.Shell(); shell.create('Sun', 'sun');"
            "shell.animate(sys.argv[1], sun_time=(6, 18), frames=2, width=8, height=8)"
        )
        for closed in ["<&-", "2>&-", "<&- >&- 2>&-"]:
            command = f'exec "$0" -c "$1" "$2" {closed}'
            done = subprocess.run(["/bin/sh", "-c", command, sys.executable, program, self.folder / "a_#.png"], timeout=300)
            self.assertEqual(done.returncode, 0, closed)
            self.assertEqual(sorted(file.name for file in self.folder.iterdir()), ["a_1.png", "a_2.png"])

    def test_an_explanation_names_the_cause(self):
        self.shell.solo("torch")
        self.shell["torch"].intensity = 0
        self.shell["torch"].specular = 0
        found = self.shell.explain(64, 48, pixel=(32, 24))
        self.assertIn("torch", str(found))
        self.assertTrue(found)
        with self.assertRaises(korl.Error):
            self.shell.explain(64, 48, pixel=(64, 0))


if __name__ == "__main__":
    unittest.main()
