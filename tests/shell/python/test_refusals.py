"""Whatever is wrong with what is given, a korl.Error says so."""

import tempfile
import unittest
from pathlib import Path

import numpy as np

import korl

CORNERS, TRIANGLE = [(0, 0, 0), (1, 0, 0), (0, 1, 0)], [(0, 1, 2)]
LONE = "\udcff"  # half a character


class RefusalTest(unittest.TestCase):
    def setUp(self):
        self.shell = korl.Shell()
        self.addCleanup(self.shell.close)
        self.sun = self.shell.create("Sun", "sun")
        self.light = self.shell.create("DirectionalLight", "light")

    def refused(self, kind, text, work):
        with self.subTest(text=text):
            with self.assertRaises(kind) as caught:
                work()
            self.assertIsInstance(caught.exception, korl.Error)
            self.assertEqual(str(caught.exception), text)

    def test_arguments_of_the_wrong_kind_or_range(self):
        shell, image = self.shell, korl.Image(np.zeros((2, 2, 4), np.uint8))
        pair, two, most = "pixel takes a pair of whole numbers (x, y)", "pixel takes two whole numbers (x, y)", 2**31 - 1
        array = "vertices takes an array of N x 3 numbers"
        rows = [
            (lambda: shell.explain(pixel=5), TypeError, f"{pair}, found 5"),
            (lambda: shell.explain(pixel=(1.5, 2)), TypeError, f"{two}, found 1.5"),
            (lambda: shell.explain(pixel=(1, 2, 3)), TypeError, f"{pair}, found (1, 2, 3)"),
            (lambda: shell.explain(pixel=(10**20, 2)), ValueError, f"{two}, from 0 to {most}, found {10**20}"),
            (lambda: shell.explain(pixel=(-1, 2)), ValueError, f"{two}, from 0 to {most}, found -1"),
            (lambda: shell.animate("a_#.png", frames="a"), TypeError, "frames takes a whole number, found 'a'"),
            (lambda: shell.animate("a_#.png", frames=2.5), TypeError, "frames takes a whole number, found 2.5"),
            (lambda: shell.animate("a_#.png", frames=0), ValueError, f"frames takes a whole number, from 1 to {most}, found 0"),
            (lambda: shell.animate("a_#.png", jobs=True), TypeError, "jobs takes a whole number, found True"),
            (lambda: shell.animate("a_#.png", jobs=-1), ValueError, f"jobs takes a whole number, from 0 to {most}, found -1"),
            (lambda: shell.animate("a_#.png", fps="a"), TypeError, "fps takes a number of frames per second, found 'a'"),
            (lambda: shell.animate("a_#.png", vary=[1]), TypeError, "vary takes a dict from parameters to pairs of values, found [1]"),
            (lambda: shell.animate("a_#.png", {"sun.latitude": tuple}), TypeError, '"sun.latitude" varies over a pair of values, found <class \'tuple\'>'),
            (lambda: shell.animate("a_#.png", sun_time=6), TypeError, "sun_time takes two numbers, the first and the last hour, found 6"),
            (lambda: shell.animate("a_#.png", progress=5), TypeError, "progress takes a function of two numbers, found 5"),
            (lambda: shell.render(path=[]), TypeError, "a path is a text, found []"),
            (lambda: shell.render(width=np.array([1, 2])), TypeError, "a picture's size is in whole pixels, found array([1, 2])"),
            (lambda: korl.Shell(5), TypeError, "plugins takes a list of files, found 5"),
            (lambda: shell.add_mesh(CORNERS, TRIANGLE, name=5), TypeError, "a mesh's name is a text, found 5"),
            (lambda: shell.add_mesh("x.obj", up=5), TypeError, "the model's axis that is up is a text, found 5"),
            (lambda: shell.add_mesh([(1, 2), (1, 2, 3)], TRIANGLE), ValueError, f"{array}, found rows of different lengths"),
            (lambda: korl.Image([[1], [1, 2]]), ValueError, "an image takes height x width x 4 bytes, found rows of different lengths"),
            (lambda: image.save(None), TypeError, "expected the path of a file, found None"),
            (lambda: image.save("a.png", text=5), TypeError, "text takes a dict of texts by keyword, found 5"),
            (lambda: korl.set_verbosity("a"), TypeError, "the verbosity is a whole number, found 'a'"),
        ]
        for work, kind, text in rows:
            self.refused(kind, text, work)
        for background in (list, np.array(3.0)):
            with self.assertRaises(korl.WrongTypeError):
                shell.background = background

    def test_paths_that_no_file_can_have(self):
        image = korl.Image(np.zeros((2, 2, 4), np.uint8))
        works = [
            image.save,
            self.shell.save,
            self.shell.save_rig,
            self.shell.load,
            self.shell.load_scene,
            self.shell.load_rig,
            self.shell.add_mesh,
            self.shell.animate,
            lambda path: korl.Shell([path]),
        ]
        for work in works:
            self.refused(ValueError, "the path of a file has no zero byte, found 'i\\x00.png'", lambda: work("i\0.png"))
            self.refused(ValueError, "the path of a file is a text of characters, found '\\ud800'", lambda: work("\ud800"))
        self.refused(
            korl.Error, self.text_of(lambda: self.shell.load("none")).replace("none", "\\xff"), lambda: self.shell.load(b"\xff")
        )
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / LONE  # a file's name of any bytes is fine
            image.save(path)
            self.assertTrue(path.exists())

    def text_of(self, work):
        with self.assertRaises(korl.Error) as caught:
            work()
        return str(caught.exception)

    def test_names_that_are_no_text(self):
        shell, sun = self.shell, self.sun
        characters = f"is a text of characters alone, found {LONE!r}"
        rows = [
            (lambda: shell.create(LONE), f"an object's type {characters}"),
            (lambda: shell.create("Sun", LONE), f"an object's name {characters}"),
            (lambda: shell[LONE], f"an object's name {characters}"),
            (lambda: shell.__delitem__(LONE), f"an object's name {characters}"),
            (lambda: shell.solo(LONE), f"an object's name {characters}"),
            (lambda: shell.add_view(LONE), f"a view's name {characters}"),
            (lambda: shell.remove_view(LONE), f"a view's name {characters}"),
            (lambda: shell.render(view=LONE), f"a view's name {characters}"),
            (lambda: shell.render(path=LONE), f"a path {characters}"),
            (lambda: shell.add_mesh(CORNERS, TRIANGLE, name=LONE), f"a mesh's name {characters}"),
            (lambda: setattr(shell, "background", LONE), f"the background's colour {characters}"),
            (lambda: korl.Image(np.zeros((2, 2, 4), np.uint8)).png({"Title": LONE}), f"what a picture says beside it {characters}"),
        ]
        for work, text in rows:
            self.refused(ValueError, text, work)
        self.assertNotIn(LONE, shell)
        self.assertFalse(hasattr(sun, LONE))
        self.assertFalse(hasattr(shell, LONE))
        for work in (lambda: sun[LONE], lambda: setattr(sun, LONE, 3), lambda: shell.create("Sun", **{LONE: 3})):
            with self.assertRaisesRegex(korl.UnknownNameError, r'unknown parameter "\w+.\\udcff"'):
                work()

    def test_what_is_only_read(self):
        rows = [(self.sun, "Object", "name"), (self.shell, "Shell", "types"), (self.shell.camera, "Camera", "fit")]
        rows += [(self.sun.parameters["latitude"], "Parameter", "unit"), (self.shell.add_view("left"), "View", "name")]
        for owner, kind, name in rows:
            text = f'the attribute "{name}" of {kind} can'
            self.refused(AttributeError, f"{text} be read, but not set", lambda: setattr(owner, name, "q"))
            self.refused(AttributeError, f"{text}not be deleted", lambda: delattr(owner, name))
        self.sun.parameters["latitude"].value = 3
        self.assertEqual((self.sun.name, self.sun.latitude), ("sun", 3))

    def test_what_belongs_to_another_shell(self):
        with korl.Shell() as other:
            view, sun = other.add_view("left"), other.create("Sun", "sun")
            self.shell.add_view("left")
            text = "<korl.View 'left'> belongs to another shell"
            works = [
                lambda: self.sun.set("Intensity", 0.2, view=view),
                lambda: self.sun.get("Intensity", view),
                lambda: self.sun.reset("Intensity", view),
                lambda: self.shell.render(8, 8, view=view),
                lambda: self.shell.explain(8, 8, view=view),
                lambda: self.shell.animate("a_#.png", view=view),
                lambda: self.shell.remove_view(view),
            ]
            for work in works:
                self.refused(ValueError, text, work)
            text = '<korl.Parameter "sun.timeofday", a double> belongs to no object of this shell'
            time = sun.parameters["timeofday"]
            self.refused(ValueError, text, lambda: self.shell.animate("a_#.png", {time: (6, 18)}))
            self.assertNotIn(sun, self.shell)
            self.assertIn(sun, other)
        self.assertIn("left", self.shell.views)
        self.assertEqual(self.sun.get("Intensity", "left"), 0.9)
        former = self.sun.parameters["timeofday"]
        del self.shell["sun"]
        self.assertNotIn(self.sun, self.shell)
        self.shell.create("Sun", "sun")
        self.refused(ValueError, text, lambda: self.shell.animate("a_#.png", {former: (6, 18)}))

    def test_a_field_of_view_is_named_where_it_is_wrong(self):
        for fov in (0, -1, 180):
            text = f"the camera's field of view is {fov} degrees, expected more than 0 and less than 180"
            self.refused(ValueError, text, lambda: setattr(self.shell.camera, "fov", fov))

    def test_a_follower_of_what_has_gone_can_be_led_back(self):
        follower = self.shell.create("DirectionalLight", "a", direction=(1, 2, 3))
        for leave in (lambda p: p.unfollow(), lambda p: (p.follow(self.light.direction), p.unfollow())):
            gone = self.shell.create("DirectionalLight", "gone")
            follower.direction.follow(gone.direction)
            del self.shell["gone"]
            way_out = 'shell["a"].parameters["direction"].unfollow()'
            text = f'"a.direction" cannot be read: what it follows has gone; {way_out} ends that'
            self.refused(korl.Error, text, lambda: follower.direction)
            self.assertIn("direction: (what it follows has gone), ", repr(follower.parameters) + ", ")
            leave(follower.parameters["direction"])
            self.assertEqual(follower.direction, (1, 2, 3))
        self.assertIn("direction: (1.0, 2.0, 3.0)", repr(follower.parameters))

    def test_shells_that_are_none(self):
        closed = korl.Shell()
        closed.close()
        with self.assertRaisesRegex(korl.ClosedError, "make another one"):
            with closed:
                self.fail("it was entered")
        with self.assertRaises(korl.Error):
            korl.Shell.__new__(korl.Shell).types
        with self.assertRaises(TypeError):
            korl._korl.Session.__new__(korl._korl.Session)
        with self.assertRaises(TypeError):
            korl._korl.Session()


if __name__ == "__main__":
    unittest.main()
