"""How processes end that use shells: on any thread, in any state, and forked ones."""

import subprocess
import sys
import unittest


def run(script):
    """How a script of its own process ended: its exit status and all that it wrote."""
    done = subprocess.run([sys.executable, "-c", script], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60)
    return done.returncode, done.stdout.decode()


IN_A_DAEMON = """
import korl, threading, time
shell = korl.Shell()
shell.add_landscape()
shell.create("Sun", "sun")
def work():
    while True:
        {work}
threading.Thread(target=work, daemon=True).start()
time.sleep(0.1)
"""
WORKS = [
    'shell["sun"].latitude = 3',
    "shell.render(8, 8)",
    "korl.Shell().create('Torch')",
    "shell.add_mesh([(0, 0, 0), (1, 0, 0), (0, 1, 0)], [(0, 1, 2)])",
    "shell.render(8, 8).png()",
]
FORKED = """
import korl, os, sys
shell = korl.Shell()
shell.create("Sun")
shell.add_landscape()
shell.render(8, 8)
child = os.fork()
if child == 0:
    for work in (korl.Shell, lambda: shell.render(8, 8), lambda: shell["Sun"]):
        try:
            work()
        except korl.Error as error:
            print(error, flush=True)
    shell.close()
    sys.exit(3)
print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]), len(shell))
shell.render(8, 8)
"""
FORKED_BEFORE_USE = """
import korl, os, sys
child = os.fork()
with korl.Shell() as shell:
    shell.create("Sun", "sun")
    shell.add_landscape()
    shell.render(8, 8)
if child:
    print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
"""
AT_EXIT = """
import atexit
atexit.register(lambda: late())
import korl
shell = korl.Shell()
atexit.register(lambda: print(len(shell)))
def late():
    print(shell.closed, repr(shell))
    for work in (korl.Shell, lambda: len(shell)):
        try:
            work()
        except korl.ClosedError as error:
            print(error)
"""
DAEMON_ANIMATES = """
import korl, tempfile, threading
shell = korl.Shell()
shell.add_landscape()
shell.create("Sun", "sun")
begun = threading.Event()
folder = tempfile.TemporaryDirectory()
def work():
    shell.animate(folder.name + "/a_####.png", sun_time=(6, 18), frames=5000, width=8, height=8,
                  progress=lambda done, frames: begun.set())
threading.Thread(target=work, daemon=True).start()
begun.wait()
"""


class EndingTest(unittest.TestCase):
    def test_python_ends_while_a_daemon_thread_uses_a_shell(self):
        for work in WORKS:
            for turn in range(10 if work is WORKS[0] else 2):
                with self.subTest(work=work, turn=turn):
                    self.assertEqual(run(IN_A_DAEMON.format(work=work)), (0, ""))

    def test_a_sequence_of_a_daemon_thread_stops_when_python_ends(self):
        self.assertEqual(run(DAEMON_ANIMATES), (0, ""))

    def test_shells_are_closed_when_python_ends(self):
        closed = "the shell is closed; make another one"
        none = "a shell cannot be made any more, since the program is ending"
        self.assertEqual(run(AT_EXIT), (0, f"0\nTrue <korl.Shell, closed>\n{none}\n{closed}\n"))

    def test_a_forked_process_is_told_to_be_started_otherwise(self):
        text = 'korl cannot be used in a forked process; start it with the "spawn" method\n'
        self.assertEqual(run(FORKED), (0, 3 * text + "3 1\n"))

    def test_a_process_forked_before_the_first_use_has_its_own(self):
        self.assertEqual(run(FORKED_BEFORE_USE), (0, "0\n"))


if __name__ == "__main__":
    unittest.main()
