"""Whatever is wrong with what is given, a korl.Error says so."""

import copy
import pickle
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

    def test_control_characters_of_names_are_escaped(self):
        self.shell.create("Sun", "a\x1b[31m\nb\x9b\x7f")
        with self.assertRaises(korl.Error) as caught:
            self.shell.solo("no\nlight")
        self.assertEqual(str(caught.exception), 'unknown object "no\\nlight": there are: sun, light, a\\x1b[31m\\nb\\u009b\\x7f.')

    def test_arguments_of_the_wrong_kind_or_range(self):
        shell, image = self.shell, korl.Image(np.zeros((2, 2, 4), np.uint8))
        pair, two, maximum = "pixel takes a pair of whole numbers (x, y)", "pixel takes two whole numbers (x, y)", 2**31 - 1
        array = "vertices takes an array of N x 3 numbers"
        rows = [
            (lambda: shell.explain(pixel=5), TypeError, f"{pair}, found 5"),
            (lambda: shell.explain(pixel=(1.5, 2)), TypeError, f"{two}, found 1.5"),
            (lambda: shell.explain(pixel=(1, 2, 3)), TypeError, f"{pair}, found (1, 2, 3)"),
            (lambda: shell.explain(pixel=(10**20, 2)), ValueError, f"{two}, from 0 to {maximum}, found {10**20}"),
            (lambda: shell.explain(pixel=(-1, 2)), ValueError, f"{two}, from 0 to {maximum}, found -1"),
            (lambda: shell.animate("a_#.png", frames="a"), TypeError, "frames takes a whole number, found 'a'"),
            (lambda: shell.animate("a_#.png", frames=2.5), TypeError, "frames takes a whole number, found 2.5"),
            (lambda: shell.animate("a_#.png", frames=0), ValueError, f"frames takes a whole number, from 1 to {maximum}, found 0"),
            (lambda: shell.animate("a_#.png", jobs=True), TypeError, "jobs takes a whole number, found True"),
            (lambda: shell.animate("a_#.png", jobs=-1), ValueError, f"jobs takes a whole number, from 0 to {maximum}, found -1"),
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

    def test_constructors_of_what_shells_give(self):
        latitude = self.sun.parameters["latitude"]
        rows = [
            (lambda: korl.Object(1, 2), TypeError, "an Object comes from a shell: shell.create(TYPE) or shell[NAME], found 1"),
            (lambda: korl.View(1, "a"), TypeError, "a View comes from a shell: shell.add_view(NAME) or shell.views[NAME], found 1"),
            (lambda: korl.Camera(None), TypeError, "a Camera comes from a shell: shell.camera, found None"),
            (lambda: korl.Parameter(1, 2), TypeError, "a Parameter comes from an object: light.parameters[NAME], found 1"),
            (lambda: korl.Parameter(self.sun, 2), TypeError, "a Parameter has a ParameterType, found 2"),
            (lambda: korl.Parameters(3), TypeError, "Parameters come from an object: light.parameters, found 3"),
            (lambda: korl.Number("a", latitude), ValueError, "a Number takes a number, found 'a'"),
            (lambda: korl.Number([], latitude), TypeError, "a Number takes a number, found []"),
            (lambda: korl.Number(1, 3), TypeError, "a Number knows the parameter that it was read from, found 3"),
            (lambda: korl.Numbers(3, latitude), TypeError, "Numbers takes numbers, found 3"),
            (lambda: korl.Numbers((3, 4), 5), TypeError, "Numbers knows the parameter that it was read from, found 5"),
            (lambda: korl.Text(3, latitude), TypeError, "the text form of a value is a text, found 3"),
            (lambda: korl.Text("a", 3), TypeError, "a Text knows the parameter that it was read from, found 3"),
            (lambda: korl.Explanation(1, "{}"), TypeError, "the text of an explanation is a text, found 1"),
            (lambda: korl.Explanation("", "3"), ValueError, "what was found is a JSON object: 'int' object is not iterable"),
            (lambda: korl.Explanation("", "{"), ValueError, "what was found is a JSON object: Expecting property name enclosed in double quotes: line 1 column 2 (char 1)"),
        ]
        for work, kind, text in rows:
            self.refused(kind, text, work)
        self.assertEqual((korl.Number(1, latitude), korl.Numbers([1, 2], latitude)), (1, (1, 2)))

    def test_arguments_too_few_too_many_and_unknown(self):
        shell, sun, latitude = self.shell, self.sun, self.sun.parameters["latitude"]
        image, view = korl.Image(np.zeros((2, 2, 4), np.uint8)), self.shell.add_view("left")
        works = [
            lambda: korl.Shell(1, 2),
            lambda: korl.Shell(plugin=[]),
            korl.Object,
            korl.View,
            korl.Camera,
            korl.Parameter,
            korl.Parameters,
            korl.Number,
            korl.Numbers,
            korl.Text,
            korl.Image,
            korl.Explanation,
            korl.Plugin,
            korl.MeshInfo,
            korl.ParameterType,
            lambda: korl.Type(1),
            lambda: korl.Plugin("a", "b", "c"),
            korl.set_verbosity,
            shell.create,
            shell.add_mesh,
            lambda: shell.render(1, 2, "fixed", None, 5),
            lambda: shell.render(widht=3),
            lambda: shell.explain(pixle=(1, 2)),
            shell.animate,
            lambda: shell.camera.set(field=3),
            lambda: shell.__exit__(key=3),
            sun.set,
            lambda: sun.get(),
            sun.aim_at,
            latitude.set,
            lambda: latitude.get("left", 3),
            sun.latitude.follow,
            lambda: self.light.direction.reset(1, 2),
            image.save,
            lambda: image.png({}, 3),
            view.__eq__,
        ]
        for work in works:
            with self.assertRaisesRegex(korl.WrongTypeError, "argument"):
                work()
        # What goes wrong further inside stays what it is.
        odd = type("Odd", (), {"__str__": lambda self: int([])})()
        with self.assertRaises(TypeError) as caught:
            image.png({"Title": odd})
        self.assertNotIsInstance(caught.exception, korl.Error)

    def test_attributes_of_tuples_and_values(self):
        shell = self.shell
        shell.add_mesh(CORNERS, TRIANGLE)
        rows = [
            (shell.types["Sun"], "Type", "nmae"),
            (shell.types["Sun"].parameters[0], "ParameterType", "maximun"),
            (shell.plugins[0], "Plugin", "flie"),
            (shell.meshes[0], "MeshInfo", "vertexes"),
            (self.sun.latitude, "Number", "unfolow"),
            (self.light.direction, "Numbers", "folow"),
            (shell.explain(8, 8), "Explanation", "txt"),
            (self.sun.parameters, "Parameters", "kyes"),
            (korl.Image(np.zeros((2, 2, 4), np.uint8)), "Image", "widht"),
        ]
        for owner, kind, name in rows:
            with self.assertRaisesRegex(korl.UnknownNameError, f'{kind} has no attribute "{name}": did you mean'):
                getattr(owner, name)
            self.assertFalse(hasattr(owner, "_repr_html_"))
        for owner, kind, _ in rows[:4]:
            name = owner._fields[0]
            self.refused(AttributeError, f'the attribute "{name}" of {kind} can be read, but not set', lambda: setattr(owner, name, 3))
            self.refused(AttributeError, f'the attribute "{name}" of {kind} cannot be deleted', lambda: delattr(owner, name))

    def test_names_that_are_looked_for(self):
        shell, sun = self.shell, self.sun
        rows = [
            (lambda: shell.types["Sum"], KeyError, 'unknown type "Sum": did you mean "Sun"?'),
            (lambda: shell.views["left"], KeyError, 'unknown view "left": there is no view'),
            (lambda: shell.types[3], TypeError, "expected the name of a type, found 3"),
            (lambda: shell.views[[]], TypeError, "expected the name of a view, found []"),
            (lambda: shell.explain(8, 8)["lihgts"], KeyError, 'unknown part of an explanation "lihgts": did you mean "lights"?'),
            (lambda: sun.parameters[3], TypeError, "expected the name of a parameter, found 3"),
        ]
        for work, kind, text in rows:
            with self.subTest(text=text), self.assertRaises(kind) as caught:
                work()
            self.assertIsInstance(caught.exception, korl.Error)
            self.assertEqual(str(caught.exception)[: len(text)], text)
        for sought in (3, None, [], {}, "left", LONE, float("nan")):
            for holder in (shell, shell.types, shell.views, sun, shell.explain(8, 8)):
                self.assertNotIn(sought, holder)
        self.assertEqual((shell.types.get("Sum"), shell.types.get([], 3), shell.types.get("Sun").name), (None, 3, "Sun"))
        self.assertIn("latitude", sun)
        self.assertIn("latitude", sun.parameters)
        shell.close()
        for work in (lambda: "sun" in shell, lambda: sun in shell, lambda: "latitude" in sun, lambda: "latitude" in sun.parameters):
            with self.assertRaises(korl.ClosedError):
                work()

    def test_items_that_cannot_be_set_or_deleted(self):
        parameters, camera = self.sun.parameters, self.shell.camera
        for owner, kind in [(self.shell, "Shell"), (parameters, "Parameters"), (camera, "Camera")]:
            self.refused(TypeError, f"{kind} takes no items: ['latitude'] cannot be set", lambda: owner.__setitem__("latitude", 3))
        for owner, kind in [(self.sun, "Object"), (parameters, "Parameters")]:
            self.refused(TypeError, f"{kind} gives no items away: ['latitude'] cannot be deleted", lambda: owner.__delitem__("latitude"))

    def test_what_belongs_to_a_shell_is_neither_pickled_nor_copied(self):
        shell, sun = self.shell, self.sun
        found = [shell, sun, sun.parameters, sun.parameters["latitude"], shell.add_view("left"), shell.camera]
        for one in found:
            text = (
                f"{type(one).__name__} cannot be pickled or copied: it belongs to a shell of this process; "
                "save the scene, and load it elsewhere"
            )
            for work in (pickle.dumps, copy.copy, copy.deepcopy):
                self.refused(TypeError, text, lambda: work(one))
        for kept in (sun.latitude, self.light.direction, shell.types["Sun"], shell.plugins[0], shell.explain(8, 8)):
            for work in (lambda one: pickle.loads(pickle.dumps(one)), copy.copy, copy.deepcopy):
                self.assertEqual(work(kept), kept)
        self.assertEqual(pickle.loads(pickle.dumps(shell.explain(8, 8))).text, shell.explain(8, 8).text)

    def test_pictures_of_other_formats(self):
        image = korl.Image(np.zeros((2, 2, 4), np.uint8))
        with tempfile.TemporaryDirectory() as folder:
            for name in ("x.jpg", "x.TIFF", "x.exr"):
                file = Path(folder) / name
                text = f'cannot write {file}: a picture is written as PNG alone, to a name that ends in .png or has no suffix, found "{file.suffix}"'
                self.refused(ValueError, text, lambda: image.save(file))
                self.assertFalse(file.exists())
            for name in ("x", "x.png", "x.PNG"):
                image.save(Path(folder) / name)
            with self.assertRaisesRegex(korl.Error, "pictures such as .* found"):
                self.shell.animate(Path(folder) / "x_#.jpg")

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
