"""The type stubs say what the module has."""

import contextlib
import io
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import korl
from mypy import stubtest

HERE = Path(__file__).parent

USE = """
import korl
import numpy

with korl.Shell(plugins=[]) as shell:
    sun = shell.create("Sun", "sun", latitude=52)
    sun.latitude = 3
    sun.direction.follow(shell["a"].direction)
    picture: korl.Image = shell.render(640, 480, path="both", view=shell.add_view("left"))
    mean: float = float(picture[..., 0].mean())
    shell.add_mesh(numpy.zeros((3, 3)), [[0, 1, 2]], colors=numpy.ones((3, 3)))
    shell.camera.position = (1, 2, 3)
"""
MISUSE = """
import korl

shell = korl.Shell()
shell.render(path="shadr")
shell.redner()
shell.camera.fov = "wide"
"""


def problems(text):
    """What mypy says of a script."""
    with tempfile.TemporaryDirectory() as folder:
        script = Path(folder) / "script.py"
        script.write_text(text)
        command = [sys.executable, "-m", "mypy", "--strict", "--config-file", str(HERE / "mypy.ini"), str(script)]
        result = subprocess.run(command, capture_output=True, text=True, cwd=Path(korl.__file__).parents[1])
    return result.stdout


class StubTest(unittest.TestCase):
    def test_stub_and_module_agree(self):
        output = io.StringIO()
        options = ["korl", "--concise", "--mypy-config-file", str(HERE / "mypy.ini")]
        options += ["--allowlist", str(HERE / "allowlist.txt"), "--ignore-unused-allowlist"]
        with contextlib.redirect_stdout(output), contextlib.chdir(Path(korl.__file__).parents[1]):
            code = stubtest.test_stubs(stubtest.parse_options(options))
        self.assertEqual((code, output.getvalue()), (0, ""))

    def test_good_use_passes_a_type_checker_and_bad_use_does_not(self):
        self.assertIn("Success", problems(USE))
        found = problems(MISUSE)
        for line in (5, 6, 7):
            self.assertIn(f"script.py:{line}: error", found)


if __name__ == "__main__":
    unittest.main()
