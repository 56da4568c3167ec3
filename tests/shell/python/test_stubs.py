"""The type stubs say what the module has."""

import contextlib
import io
import os
import re
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
    sun = shell.create("Sun", "sun", latitude=52, timeofday=numpy.float32(9))
    sun.latitude = 3
    sun["latitude"] = numpy.int64(3)
    sun.set("Intensity", numpy.float32(0.2), view=shell.add_view("left"))
    maximum: float | None = sun.parameters["latitude"].maximum
    sun.parameters["latitude"].value = numpy.float32(4)
    light = shell.create("DirectionalLight", "light", direction=numpy.array((0, 0, -1)))
    light.direction.follow(shell["other"].direction)
    light.enabled = False
    light.shine_from((1, 1, 2))
    light.aim_at(numpy.array([0, 0, 0.5]))
    shell.solo(light)
    picture: korl.Image = shell.render(numpy.int64(640), 480, path="both", view="left")
    picture.save("python-example.png", text={"Title": "a picture"})
    mean: float = float(picture[..., 0].mean())
    vertices, triangles, colors = numpy.zeros((3, 3)), [[0, 1, 2]], numpy.ones((3, 3))
    shell.add_mesh(vertices, triangles, colors=colors)
    shell.model_timeout, shell.model_memory = numpy.float32(9.5), numpy.int64(512)
    shell.camera.position = (1, 2, 3)
    shell.camera.target = numpy.array((1, 2, 3))
    shell.camera.up = [0, 0, 1]
    shell.camera.fov = numpy.float32(40)
    place: tuple[float, ...] = shell.camera.position
    shell.background = "#5c7fa8"
    shell.background = (0, 0.5, 1)
    shell.background = numpy.array((0, 0.5, 1))
    red: float = shell.background[0]
    ends = {"sun.timeofday": (6, 18)}
    shell.animate("day_##.png", ends, frames=numpy.int32(3), fps=numpy.float64(12.5))
    shell.animate("day_##.png", {sun.parameters["latitude"]: (1, 2), "light.direction": ((0, 0, 1), (0, 0, -1))})
    shell.animate("day.mp4", sun_time=(6, 18))
    print(shell.explain(pixel=(3, 4))["lights"], shell.explain().text, shell.types["Sun"].parameters[0].unit)
"""
MISUSE = """import korl

shell = korl.Shell()
shell.render(path="shadr")
shell.redner()
shell.camera.fov = "wide"
shell.background = 3
shell.camera.position = "here"
shell.meshes[0].vertexes
korl.Image()
"""


def readme_examples():
    return re.findall(r"```python\n(.*?)```", Path(os.environ["KORL_README"]).read_text(), re.DOTALL)


def script_of_a_scene():
    with korl.Shell() as shell:
        shell.add_landscape()
        shell.create("Sun", "sun", latitude=52)
        shell.create("DirectionalLight", "a").direction.follow(shell.create("DirectionalLight", "b").direction)
        shell.background = "#102030"
        return shell.script()


def problems():
    """What mypy says of scripts, by the names of their files."""
    scripts = {"use.py": USE, "misuse.py": MISUSE, "script.py": script_of_a_scene()}
    scripts |= {f"readme{i}.py": text for i, text in enumerate(readme_examples())}
    found = {name: [] for name in scripts}
    with tempfile.TemporaryDirectory() as folder:
        for name, text in scripts.items():
            (Path(folder) / name).write_text(text)
        files = [Path(folder) / name for name in scripts] + sorted(Path(os.environ["KORL_EXAMPLES"]).glob("*.py"))
        command = [sys.executable, "-m", "mypy", "--strict", "--config-file", str(HERE / "mypy.ini"), *map(str, files)]
        result = subprocess.run(command, capture_output=True, text=True, cwd=Path(korl.__file__).parents[1])
    for line in result.stdout.splitlines()[:-1]:
        file, _, rest = line.partition(":")
        found.setdefault(Path(file).name, []).append(rest)
    return found


class StubTest(unittest.TestCase):
    def test_stub_and_module_agree(self):
        output = io.StringIO()
        options = ["korl", "--concise", "--mypy-config-file", str(HERE / "mypy.ini")]
        options += ["--allowlist", str(HERE / "allowlist.txt"), "--ignore-unused-allowlist"]
        with contextlib.redirect_stdout(output), contextlib.chdir(Path(korl.__file__).parents[1]):
            code = stubtest.test_stubs(stubtest.parse_options(options))
        self.assertEqual((code, output.getvalue()), (0, ""))

    def test_good_use_passes_a_type_checker_and_bad_use_does_not(self):
        found = problems()
        misused = found.pop("misuse.py")
        self.assertEqual({name: said for name, said in found.items() if said}, {})
        self.assertGreaterEqual(len(found), 3)
        self.assertEqual([int(said.split(":")[0]) for said in misused if ": error" in said], list(range(4, 11)))


if __name__ == "__main__":
    unittest.main()
