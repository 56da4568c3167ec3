"""What the documentation shows runs as it stands there."""

import contextlib
import os
import re
import tempfile
import unittest
from pathlib import Path

import korl


def examples():
    """The Python blocks of the README."""
    return re.findall(r"```python\n(.*?)```", Path(os.environ["KORL_README"]).read_text(), re.DOTALL)


class ReadmeTest(unittest.TestCase):
    def test_the_examples_run_as_they_stand(self):
        self.assertTrue(examples())
        with tempfile.TemporaryDirectory() as folder, contextlib.chdir(folder):
            for example in examples():
                exec(compile(example, "README.md", "exec"), {})
            self.assertGreater(Path("python-example.png").stat().st_size, 10000)


def table_of(type_):
    """The table of a type's parameters as the page of the lights has it."""
    lines = ["| Parameter | Type | Default | Range | Unit | Level | What it is |", "|---|---|---|---|---|---|---|"]
    for one in type_.parameters:
        default = one.default if isinstance(one.default, tuple) else (one.default,)
        low, high = (None if end is None else f"{end:g}" for end in (one.minimum, one.maximum))
        range_ = f"{low} to {high}" if low and high else f"up to {high}" if high else f"from {low}" if low else "–"
        cells = [f"`{one.name}`", one.kind, " ".join(f"{number:g}" for number in default), range_]
        lines.append("| " + " | ".join([*cells, one.unit or "–", str(one.level), one.doc]) + " |")
    return "\n".join(lines) + "\n"


class LightsTest(unittest.TestCase):
    def test_each_section_of_a_light_has_its_parameters_and_a_picture(self):
        docs = Path(os.environ["KORL_README"]).parent / "docs"
        page = (docs / "lights.md").read_text()
        with korl.Shell() as shell:
            types = shell.types
        described = [name for name in re.findall("^## (.*)$", page, re.MULTILINE) if name in types]
        self.assertGreaterEqual(len(described), 6)  # a new light may come without a section
        for name in described:
            with self.subTest(name):
                section = page.split(f"\n## {name}\n")[1].split("\n## ")[0]
                self.assertIn(table_of(types[name]), section)
                picture = re.search(r"!\[.*\]\((.*)\)", section)[1]
                self.assertGreater((docs / picture).stat().st_size, 1000)


if __name__ == "__main__":
    unittest.main()
