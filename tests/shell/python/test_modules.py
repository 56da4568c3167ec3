"""Modules that are odd, and two that have the same type."""

import os
import subprocess
import sys
import tempfile
import unittest
import warnings
from pathlib import Path

import korl

BROKEN = Path(os.environ["KORL_BROKEN_PLUGINS"])
MENDED = "; report it to the author of the module"


def run(script, **environment):
    """How a script of its own process ended: its exit status and all that it wrote."""
    done = subprocess.run(
        [sys.executable, "-c", script],
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        timeout=100,
        env={**os.environ, **environment},
    )
    return done.returncode, done.stdout.decode()


class OddModuleTest(unittest.TestCase):
    def test_a_static_initialiser_that_throws_is_an_error_and_ends_nothing(self):
        file = BROKEN / "throwing_initializer.so"
        with korl.Shell() as shell:
            for _ in range(2):
                with self.assertRaises(korl.Error) as caught:
                    shell.load(file)
                self.assertEqual(
                    str(caught.exception),
                    f'cannot load the plug-in "{file}": expected a module that can be loaded and unloaded, found one '
                    'that throws the exception "the initialiser failed" while it is loaded.\nFix the plug-in; if it '
                    "worked before, build it or copy it again.",
                )
            shell.load(BROKEN / "odd_lights.so")
            self.assertEqual(shell.create("OddLight").name, "OddLight")
        with self.assertRaisesRegex(korl.Error, "the initialiser failed"):
            korl.Shell(plugins=[file])

    def test_a_light_that_throws_is_an_error_that_names_it(self):
        script = f"""
import korl
shell = korl.Shell(plugins=[{str(BROKEN / "odd_lights.so")!r}])
shell.create("OddLight", "lamp")
try:
    shell.render(8, 8)
except korl.Error as error:
    print(error)
print(shell.create("Sun").latitude)
"""
        message = 'update of "lamp" in the module "odd_lights" threw the exception "this light\\nis odd"'
        self.assertEqual(
            run(script, KORL_TEST_OPERATION="update", KORL_TEST_END="throw"), (0, f"{message}{MENDED}\n45.0\n")
        )

    def test_a_light_that_exits_or_aborts_is_told_and_a_script_may_exit(self):
        script = f"""
import korl, sys
shell = korl.Shell(plugins=[{str(BROKEN / "odd_lights.so")!r}])
shell.add_landscape()
shell.create("OddLight", "lamp")
shell.render(8, 8)
sys.exit(4)
"""
        message = 'korl: illuminate of "lamp" in the module "odd_lights" called exit; the program ends with its work undone\n'
        self.assertEqual(run(script, KORL_TEST_OPERATION="illuminate", KORL_TEST_END="exit"), (1, message))
        self.assertEqual(run(script), (4, ""))
        message = 'korl: illuminate of "lamp" in the module "odd_lights" ended with signal 6 (Aborted)'
        self.assertEqual(
            run(script, KORL_TEST_OPERATION="illuminate", KORL_TEST_END="abort"), (-6, f"{message}{MENDED}\n")
        )


class ShadowedTypeTest(unittest.TestCase):
    TOLD = (
        'two modules have the type "Sun": the name stands for that of "rival_sun", "tovek_light/Sun" for the other'
    )

    def setUp(self):
        with warnings.catch_warnings(record=True) as told:
            warnings.simplefilter("always")
            self.shell = korl.Shell(plugins=[BROKEN / "rival_sun.so"])
            self.shell.load(BROKEN / "odd_lights.so")
        self.addCleanup(self.shell.close)
        self.assertEqual([(str(one.message), one.category) for one in told], [(self.TOLD, korl.Warning)])
        self.assertEqual([one.filename for one in told], [__file__])

    def test_is_reached_by_its_module(self):
        self.assertEqual(self.shell.create("Sun", "a").warmth, 1)
        low = self.shell.create("tovek_light/Sun", latitude=60)
        self.assertEqual((low.name, low.type, low.latitude), ("Sun", "tovek_light/Sun", 60))
        self.assertEqual([one.type for one in self.shell], ["Sun", "tovek_light/Sun"])

    def test_is_a_type_of_its_own(self):
        types = self.shell.types
        self.assertEqual([one.name for one in types["Sun"].parameters], ["warmth"])
        self.assertIn("latitude", [one.name for one in types["tovek_light/Sun"].parameters])
        self.assertEqual(types["tovek_light/Sun"].name, "tovek_light/Sun")
        self.assertIn("Torch", types)

    def test_is_saved_and_loaded(self):
        self.shell.create("tovek_light/Sun", "low", latitude=60)
        with tempfile.TemporaryDirectory() as folder:
            self.shell.save(f"{folder}/scene.json")
            del self.shell["low"]
            self.shell.load_scene(f"{folder}/scene.json")
        self.assertEqual((self.shell["low"].type, self.shell["low"].latitude), ("tovek_light/Sun", 60))


if __name__ == "__main__":
    unittest.main()
