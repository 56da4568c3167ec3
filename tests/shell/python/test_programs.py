"""korl run and the interactive prompt."""

import os
import pty
import select
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

KORL = os.environ["KORL_PROGRAM"]
# What the program sets up itself must not come from the test.
ENVIRONMENT = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}


def run(*arguments, **options):
    return subprocess.run([KORL, *arguments], capture_output=True, text=True, env=ENVIRONMENT, **options)


class RunTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.script = Path(folder.name) / "script.py"

    def test_a_script_gets_the_module_its_arguments_and_its_exit_code(self):
        self.script.write_text("import korl, sys\nprint(len(korl.Shell().types), sys.argv[1:])\nsys.exit(7)\n")
        result = run("run", self.script, "--size", "3", "--help", "--", "-x")
        self.assertEqual((result.returncode, result.stderr), (7, ""))
        self.assertEqual(result.stdout, "6 ['--size', '3', '--help', '--', '-x']\n")

    def test_an_exception_of_a_script_shows_as_python_shows_it(self):
        self.script.write_text("import korl\nkorl.Shell().create('Snu')\n")
        result = run("run", self.script)
        self.assertEqual(result.returncode, 1)
        self.assertIn('UnknownNameError: unknown type "Snu": did you mean "Sun"?', result.stderr)
        self.assertIn("line 2", result.stderr)

    def test_a_wrong_call_says_what_is_wrong(self):
        rows = [
            (["run"], 2, "run takes the file of a Python script"),
            (["run", "none.py"], 1, "cannot run none.py: there is no such file"),
            (["--verbose", "1", "run", "none.py"], 2, "--plugin and --verbose do not reach Python"),
        ]
        for arguments, code, text in rows:
            with self.subTest(arguments=arguments):
                result = run(*arguments)
                self.assertEqual(result.returncode, code)
                self.assertIn(text, result.stderr)

    def test_without_a_terminal_a_command_is_asked_for(self):
        result = run(stdin=subprocess.DEVNULL)
        self.assertEqual(result.returncode, 2)
        self.assertIn("no command was given", result.stderr)


class PromptTest(unittest.TestCase):
    def test_on_a_terminal_a_prompt_has_a_shell_ready(self):
        screen, terminal = pty.openpty()
        program = subprocess.Popen(
            [KORL], stdin=terminal, stdout=terminal, stderr=terminal, env=ENVIRONMENT, start_new_session=True
        )
        os.close(terminal)
        shown = ""
        try:
            self.assertIn("shell ready", shown := self.read_until(screen, shown, ">>> "))
            os.write(screen, b"shell.create('Sun').latitude\n")
            self.assertIn("45.0", shown := self.read_until(screen, shown, "45.0"))
            os.write(screen, b"exit(5)\n")
            self.assertEqual(program.wait(60), 5)
        finally:
            program.kill()
            program.wait()
            os.close(screen)

    def read_until(self, screen, shown, wanted, seconds=60):
        end = time.monotonic() + seconds
        while wanted not in shown and time.monotonic() < end:
            if select.select([screen], [], [], 1)[0]:
                shown += os.read(screen, 4096).decode()
        return shown


if __name__ == "__main__":
    unittest.main()
