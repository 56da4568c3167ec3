"""What the documentation shows runs as it stands there."""

import contextlib
import os
import re
import tempfile
import unittest
from pathlib import Path


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


if __name__ == "__main__":
    unittest.main()
