"""Shells, objects and images that go in any order, on any thread, and by the thousand."""

import gc
import itertools
import os
import threading
import time
import unittest

import numpy as np

import korl


def resident_bytes():
    with open("/proc/self/statm") as sizes:
        return int(sizes.read().split()[1]) * os.sysconf("SC_PAGESIZE")


def lit_shell():
    shell = korl.Shell()
    shell.add_mesh([(-1, -1, 0), (1, -1, 0), (0, 1, 0)], [(0, 1, 2)])
    shell.create("Sun", "sun")
    return shell


class LifetimeTest(unittest.TestCase):
    def test_all_may_be_released_in_any_order(self):
        for order in itertools.permutations(["shell", "object", "parameter", "value", "view"]):
            shell = korl.Shell()
            light = shell.create("DirectionalLight")
            held = {
                "shell": shell,
                "object": light,
                "parameter": light.parameters["direction"],
                "value": light.direction,
                "view": shell.add_view("left"),
            }
            del shell, light
            for name in order:
                del held[name]

    def test_an_image_outlives_its_shell(self):
        with lit_shell() as shell:
            shell.background = "#204060"
            image = shell.render(8, 8)
            before = image.copy()
        del shell
        gc.collect()
        np.testing.assert_array_equal(image, before)
        self.assertEqual(image.png()[:4], b"\x89PNG")

    def test_use_after_close_raises(self):
        shell = lit_shell()
        sun, camera, view = shell["sun"], shell.camera, shell.add_view("left")
        latitude = sun.latitude
        shell.close()
        shell.close()
        self.assertTrue(shell.closed)
        works = [
            lambda: shell.render(8, 8),
            lambda: shell.create("Sun"),
            lambda: shell["sun"],
            lambda: len(shell),
            lambda: shell.types,
            lambda: shell.add_landscape(),
            lambda: shell.__enter__().views,
            lambda: sun.latitude,
            lambda: setattr(sun, "latitude", 3),
            lambda: latitude.follow(latitude),
            lambda: camera.fit(),
            lambda: sun.set("latitude", 3, view=view),
        ]
        for work in works:
            with self.assertRaisesRegex(korl.ClosedError, "the shell is closed; make another one"):
                work()
        self.assertEqual(latitude, 45)  # what was read stays read
        self.assertEqual(repr(shell), "<korl.Shell, closed>")

    def test_a_deleted_object_is_not_mistaken_for_the_next_of_its_name(self):
        with korl.Shell() as shell:
            former = shell.create("Sun", "sun")
            del shell["sun"]
            latter = shell.create("Sun", "sun", latitude=1)
            self.assertNotEqual(former, latter)
            for work in (lambda: former.latitude, lambda: former.reset(), lambda: setattr(former, "enabled", False)):
                with self.assertRaisesRegex(korl.Error, 'the object "sun" has been deleted'):
                    work()
            self.assertEqual(latter.latitude, 1)

    def test_two_shells_share_a_process(self):
        first, second = lit_shell(), lit_shell()
        second["sun"].latitude = 10
        self.assertEqual((first["sun"].latitude, second["sun"].latitude), (45, 10))
        alone = second.render(16, 16)
        np.testing.assert_array_equal(first.render(16, 16).shape, alone.shape)
        np.testing.assert_array_equal(second.render(16, 16), alone)
        first.close()  # the module stays for the other one
        np.testing.assert_array_equal(second.render(16, 16), alone)
        self.assertEqual(second.create("Torch").name, "Torch")
        second.close()
        with lit_shell() as third:
            self.assertEqual(len(third.types), 6)

    def test_threads_take_turns(self):
        with lit_shell() as shell, lit_shell() as other:
            for used in (shell, other):
                used.solo("sun")
            expected = shell.render(16, 16)
            problems = []

            def work(used, number):
                try:
                    for turn in range(20):
                        if not np.array_equal(used.render(16, 16), expected):
                            problems.append("another picture")
                        name = f"light{number}-{turn}"
                        used.create("Torch", name)
                        used[name].elevation = turn
                        del used[name]
                except Exception as error:
                    problems.append(error)

            threads = [threading.Thread(target=work, args=((shell, other)[i % 2], i)) for i in range(6)]
            for thread in threads:
                thread.start()
            for thread in threads:
                thread.join()
            self.assertEqual(problems, [])
            self.assertEqual(len(shell), 1)

    def test_a_shell_goes_on_another_thread(self):
        held = [lit_shell() for _ in range(4)]
        for shell in held:
            shell.render(8, 8)
        del shell
        thread = threading.Thread(target=held.clear)
        thread.start()
        thread.join()
        made = []
        thread = threading.Thread(target=lambda: made.append(lit_shell()))
        thread.start()
        thread.join()
        self.assertEqual(made[0].render(8, 8).shape, (8, 8, 4))

    def test_a_shell_may_be_closed_while_others_use_it(self):
        shell = lit_shell()
        ends = []

        def work():
            try:
                while True:
                    shell.render(32, 32)
            except korl.ClosedError:
                ends.append(True)

        threads = [threading.Thread(target=work) for _ in range(3)]
        for thread in threads:
            thread.start()
        time.sleep(0.1)
        shell.close()
        for thread in threads:
            thread.join()
        self.assertEqual(ends, [True] * 3)

    def test_rendering_lets_other_threads_go_on(self):
        with korl.Shell() as shell:
            shell.add_landscape()
            shell.create("Sun")
            shell.render(8, 8)
            done = threading.Event()
            thread = threading.Thread(target=lambda: (shell.render(1600, 1200), done.set()))
            thread.start()
            counted = 0
            while not done.is_set():
                counted += 1
            thread.join()
            self.assertGreater(counted, 1000)

    @unittest.skipIf("KORL_SANITIZED" in os.environ, "the sanitizer keeps what is freed; a C++ test looks for leaks")
    def test_a_thousand_shells_leave_nothing_behind(self):
        def use(count, draw):
            for _ in range(count):
                with lit_shell() as shell:
                    shell["sun"].latitude = 3
                    if draw:
                        shell.render(8, 8)
            gc.collect()

        for count, draw in ((1000, False), (20, True)):
            use(max(count // 10, 10), draw)  # what is made once and kept
            before = resident_bytes()
            use(count, draw)
            with self.subTest(draw=draw):
                # A shell's objects alone would take some 20 kB each, its OpenGL context megabytes.
                self.assertLess(resident_bytes() - before, 4e6 if not draw else 2e7)


if __name__ == "__main__":
    unittest.main()
