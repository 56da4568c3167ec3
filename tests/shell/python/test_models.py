"""Models that a process of its own reads."""

import os
import signal
import tempfile
import unittest
import warnings
from pathlib import Path

import korl

SAIL = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"


class ModelTest(unittest.TestCase):
    def setUp(self):
        self.shell = korl.Shell()
        self.addCleanup(self.shell.close)
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def write(self, name, text):
        (self.folder / name).write_text(text)
        return self.folder / name

    def test_a_hostile_model_is_an_error_and_the_process_goes_on(self):
        with self.assertRaisesRegex(korl.Error, "line 3: expected a number of elements up to 4294967295"):
            self.shell.add_mesh(self.write("count.ply", "ply\nformat ascii 1.0\nelement vertex " + 300 * "9" + "\n"))
        os.mkfifo(self.folder / "pipe.obj")
        with self.assertRaisesRegex(korl.Error, "it is a FIFO"):
            self.shell.add_mesh(self.folder / "pipe.obj")
        self.shell.add_mesh(self.write("sail.obj", SAIL))
        self.assertEqual(len(self.shell.meshes), 1)

    def test_a_signal_ends_the_reading(self):
        model = self.write("large.obj", SAIL + 5_000_000 * "v 0 0 0\n")
        scene = self.write("scene.json", '{"korl": 1, "meshes": [{"file": "large.obj"}]}')
        usual = signal.signal(signal.SIGALRM, signal.default_int_handler)
        self.addCleanup(signal.signal, signal.SIGALRM, usual)
        for read, file in [(self.shell.add_mesh, model), (self.shell.load_scene, scene)]:
            signal.setitimer(signal.ITIMER_REAL, 0.02)
            with self.assertRaises(KeyboardInterrupt):
                read(file)
                self.fail("it was read to its end")
            self.assertEqual(self.shell.meshes, ())

    def test_limits_have_defaults_and_can_be_set(self):
        half = os.sysconf("SC_PHYS_PAGES") * os.sysconf("SC_PAGESIZE") // 2 >> 20
        limits = self.shell.model_timeout, self.shell.model_memory, self.shell.model_anywhere
        self.assertEqual(limits, (300, half, False))
        self.shell.model_timeout = 0.5
        self.shell.model_memory = 2000
        self.shell.model_anywhere = True
        limits = self.shell.model_timeout, self.shell.model_memory, self.shell.model_anywhere
        self.assertEqual(limits, (0.5, 2000, True))

    def test_limits_that_cannot_be_are_refused(self):
        for name, value, error in [
            ("model_timeout", 0, "model_timeout takes 0.001 to 1e9 seconds, found 0.0"),
            ("model_timeout", 1e10, "model_timeout takes 0.001 to 1e9 seconds, found 10000000000.0"),
            ("model_timeout", float("nan"), "model_timeout takes a number of seconds, and finite ones, found nan"),
            ("model_timeout", "5", "model_timeout takes a number of seconds, found '5'"),
            ("model_memory", 0, "model_memory takes a whole number of MiB, from 1 to 1000000000, found 0"),
            ("model_memory", 0.5, "model_memory takes a whole number of MiB, found 0.5"),
        ]:
            with self.subTest(name=name, value=value), self.assertRaises(korl.Error) as raised:
                setattr(self.shell, name, value)
            self.assertEqual(str(raised.exception), error)

    def test_the_limits_hold_for_models_and_for_scene_files(self):
        sail = self.write("sail.obj", SAIL)
        scene = self.write("scene.json", '{"korl": 1, "meshes": [{"file": "sail.obj"}]}')
        self.shell.model_memory = 1
        refusal = "reading it takes more than 1 MiB of memory"
        with self.assertRaisesRegex(korl.Error, refusal):
            self.shell.add_mesh(sail)
        with self.assertRaisesRegex(korl.Error, "/meshes/0/file: .*" + refusal):
            self.shell.load_scene(scene)

    def test_what_is_not_shown_is_a_warning(self):
        model = self.write("sail.obj", "mtllib nowhere.mtl\n" + SAIL + "p 1\n")
        with warnings.catch_warnings(record=True) as caught:
            warnings.simplefilter("always")
            self.shell.add_mesh(model)
        self.assertEqual(
            [(warning.category, str(warning.message)) for warning in caught],
            [
                (korl.Warning, f'the model {model}: the file "nowhere.mtl" that it names is not there and was left out'),
                (korl.Warning, f"the model {model}: some of it is not shown: points and lines"),
            ],
        )

    def test_a_material_library_may_lie_anywhere_where_that_is_allowed(self):
        self.write("red.mtl", "newmtl red\nKd 1 0 0\n")
        (self.folder / "inside").mkdir()
        model = self.write("inside/sail.obj", "mtllib ../red.mtl\n" + SAIL)
        with self.assertWarnsRegex(korl.Warning, "lies outside its folder and was left out"):
            self.shell.add_mesh(model)
        self.shell.model_anywhere = True
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            self.shell.add_mesh(model)

    def test_a_sequence_has_the_models_as_they_were_read(self):
        self.shell.create("Sun", "sun")
        first, second = self.write("first.obj", SAIL), self.write("second.obj", SAIL.replace("0 1 0", "0 3 0"))
        self.shell.add_mesh(first)
        self.shell.add_landscape()
        self.shell.add_mesh(second)
        first.unlink()
        second.write_text("no model any more")
        made = self.shell.animate(
            self.folder / "f_##.png", {"sun.timeofday": (11, 13)}, frames=2, width=16, height=12, jobs=2
        )
        self.assertEqual(made, 2)
        self.shell["sun"].timeofday = 11
        self.shell.render(16, 12).save(self.folder / "own.png")
        self.assertEqual(pixels(self.folder / "f_01.png"), pixels(self.folder / "own.png"))


def pixels(file):
    """The compressed pixels of a PNG file: all its IDAT chunks."""
    data, place, found = file.read_bytes(), 8, b""
    while place < len(data):
        length = int.from_bytes(data[place : place + 4], "big")
        if data[place + 4 : place + 8] == b"IDAT":
            found += data[place + 8 : place + 8 + length]
        place += 12 + length
    return found


if __name__ == "__main__":
    unittest.main()
