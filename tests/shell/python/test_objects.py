"""Types, objects, parameters and their values."""

import os
import pickle
import subprocess
import unittest

import numpy as np

import korl


class ObjectTest(unittest.TestCase):
    def setUp(self):
        self.shell = korl.Shell()
        self.addCleanup(self.shell.close)

    def refused(self, kind, text, work):
        with self.assertRaises(kind) as caught:
            work()
        self.assertIsInstance(caught.exception, korl.Error)
        self.assertEqual(str(caught.exception), text)

    def test_types_say_all_that_is_known_of_their_parameters(self):
        types = self.shell.types
        listed = subprocess.run([os.environ["KORL_PROGRAM"], "types"], stdout=subprocess.PIPE, check=True).stdout
        names = [line.split()[0] for line in listed.decode().splitlines()[1:]]
        self.assertEqual(list(types), list(dict.fromkeys(names)))  # a type may be listed twice
        for name in types:
            self.assertEqual(
                [one.name for one in types[name].parameters], list(self.shell.create(name, "one").parameters)
            )
            del self.shell["one"]
        sun = types["Sun"]
        self.assertEqual((sun.name, sun.category), ("Sun", "Scenery"))
        self.assertIn("altitude and azimuth", sun.doc)
        self.assertEqual(
            sun.parameters,
            (
                ("Intensity", "double", 0.9, None, None, None, 0, "strength of the diffuse light"),
                ("Specular", "double", 0.1, None, None, None, 0, "strength of the highlights"),
                ("latitude", "double", 45.0, -90.0, 90.0, "degrees", 0, sun.parameters[2].doc),
                ("timeofday", "double", 12.0, None, 24.0, "hours", 0, sun.parameters[3].doc),
            ),
        )
        self.assertEqual(types["AmbientLight"].parameters[0].default, (1, 1, 1, 1))
        self.assertEqual(len(self.shell), 0)  # the samples that were asked are gone

    def test_objects_come_in_the_order_of_their_creation(self):
        names = ["z", "a", "m"]
        for name in names:
            self.shell.create("Sun", name)
        self.assertEqual([light.name for light in self.shell], names)
        del self.shell["a"]
        self.assertEqual([light.name for light in self.shell], ["z", "m"])
        self.assertNotIn("a", self.shell)
        self.assertIn("m", self.shell)
        self.assertEqual(self.shell["m"], list(self.shell)[1])
        self.assertEqual(self.shell.create("Torch").name, "Torch")
        self.assertEqual(self.shell.create("Torch").name, "Torch2")
        self.assertEqual(self.shell["Torch2"].type, "Torch")

    def test_keywords_of_a_creation_are_parameters(self):
        sun = self.shell.create("Sun", "sun", latitude=52, timeofday=9.5)
        self.assertEqual((sun.latitude, sun.timeofday), (52, 9.5))
        with self.assertRaises(AttributeError):
            self.shell.create("Sun", "other", lattitude=52)
        self.assertNotIn("other", self.shell)  # nothing half done is left

    def test_values_are_floats_and_tuples(self):
        light = self.shell.create("DirectionalLight")
        self.assertIsInstance(light.Intensity, float)
        self.assertIsInstance(light.direction, tuple)
        for value in [(1, 0, -2), [1, 0, -2], np.array([1, 0, -2]), np.float32([1, 0, -2])]:
            light.direction = (0, 0, 1)
            light.direction = value
            self.assertEqual(light.direction, (1, 0, -2))
        light["color"] = np.array([0.1, 0.2, 0.3, 1])
        self.assertEqual(light["color"], (0.1, 0.2, 0.3, 1))  # as it was given, though kept in single precision
        light.Intensity = np.float64(0.25)
        self.assertEqual(light.Intensity, 0.25)
        light.Intensity = np.array(0.5)
        self.assertEqual(light.Intensity, 0.5)

    def test_values_at_the_extremes_come_back_to_the_bit(self):
        light = self.shell.create("DirectionalLight")
        for value in [1e-300, 1e300, -0.0, 5e-324, 0.1, 2**53 + 1.0]:
            light.direction = (value, value, value)
            self.assertEqual([part.hex() for part in light.direction], [float(value).hex()] * 3)

    def test_values_of_the_wrong_kind_are_refused_with_what_is_taken(self):
        sun = self.shell.create("Sun", "sun")
        light = self.shell.create("DirectionalLight", "light")
        one, three = '"sun.latitude" takes a double, one number', '"light.direction" takes a vector, three numbers (x, y, z)'
        rows = [
            (sun, "latitude", "x", TypeError, f"{one}, found 'x'"),
            (sun, "latitude", None, TypeError, f"{one}, found None"),
            (sun, "latitude", (1, 2), TypeError, f"{one}, found (1, 2)"),
            (sun, "latitude", 1j, TypeError, f"{one}, found 1j"),
            (sun, "latitude", float("nan"), ValueError, f"{one}, and finite ones, found nan"),
            (sun, "latitude", -float("inf"), ValueError, f"{one}, and finite ones, found -inf"),
            (sun, "latitude", 10**400, ValueError, f"{one}, and finite ones, found {10**400}"),
            (light, "direction", 3, TypeError, f"{three}, found 3"),
            (light, "direction", "1 2 3", TypeError, f"{three}, found '1 2 3'"),
            (light, "direction", (1, 2), ValueError, f"{three}, found 2 numbers, (1, 2)"),
            (light, "direction", (1, "2", 3), TypeError, f"{three}, found (1, '2', 3)"),
            (light, "direction", (1, 2, float("nan")), ValueError, f"{three}, and finite ones, found (1, 2, nan)"),
        ]
        for owner, name, value, kind, text in rows:
            with self.subTest(value=value):
                self.refused(kind, text, lambda: setattr(owner, name, value))
        self.assertEqual((sun.latitude, light.direction), (45, (0, 0, -1)))
        with self.assertRaises(ValueError):
            light.color = (1e300, 0, 0, 1)  # more than single precision holds

    def test_unknown_names_suggest_the_near_one(self):
        sun = self.shell.create("Sun", "sun")
        names = 'did you mean "latitude"? There are: Intensity, Specular, latitude, timeofday.'
        unknown = f'unknown parameter "sun.lattitude": {names}'
        self.refused(AttributeError, unknown, lambda: sun.lattitude)
        self.refused(AttributeError, unknown, lambda: setattr(sun, "lattitude", 3))
        self.refused(KeyError, unknown, lambda: sun["lattitude"])
        self.refused(KeyError, 'unknown object "sum": did you mean "sun"? There are: sun.', lambda: self.shell["sum"])
        self.assertFalse(hasattr(sun, "lattitude"))
        for work, near in [
            (lambda: self.shell.create("Snu"), "Sun"),
            (lambda: self.shell.redner(), "render"),
            (lambda: setattr(self.shell, "backgruond", 1), "background"),
            (lambda: setattr(self.shell.camera, "positoin", 1), "position"),
            (lambda: sun.parameters["latitude"].vlaue, "value"),
        ]:
            with self.assertRaisesRegex(korl.UnknownNameError, f'did you mean "{near}"'):
                work()

    def test_parameters_know_their_defaults_and_ranges(self):
        sun = self.shell.create("Sun", "sun", latitude=52)
        self.assertEqual(list(sun.parameters), ["Intensity", "Specular", "latitude", "timeofday"])
        latitude = sun.parameters["latitude"]
        self.assertEqual(
            (latitude.value, latitude.default, latitude.minimum, latitude.maximum, latitude.unit, latitude.level),
            (52, 45, -90, 90, "degrees", 0),
        )
        self.assertEqual(latitude.doc, "where on Earth the scene is, north positive")
        latitude.value = 53
        self.assertEqual(sun.latitude, 53)
        latitude.reset()
        self.assertEqual(sun.latitude, 45)
        sun.latitude, sun.timeofday = 1, 2
        sun.reset("latitude")
        self.assertEqual((sun.latitude, sun.timeofday), (45, 2))
        sun.reset()
        self.assertEqual(sun.timeofday, 12)
        self.assertIn("latitude", dir(sun))

    def test_a_parameter_follows_another(self):
        a = self.shell.create("DirectionalLight", "a")
        b = self.shell.create("DirectionalLight", "b", direction=(1, 2, 3))
        a.direction.follow(b.direction)
        self.assertEqual(a.direction, (1, 2, 3))
        b.direction = (3, 2, 1)
        self.assertEqual(a.direction, (3, 2, 1))
        self.assertEqual(a.parameters["direction"].source, b.parameters["direction"])
        with self.assertRaises(korl.Error):
            b.direction.follow(a.direction)  # it would follow itself
        with self.assertRaisesRegex(TypeError, "stay unconnected"):
            a.direction.follow(b.Intensity)
        a.direction.unfollow()
        self.assertEqual(a.direction, (0, 0, -1))
        self.assertIsNone(a.parameters["direction"].source)
        a.direction.follow(b.parameters["direction"])
        del self.shell["b"]
        with self.assertRaisesRegex(korl.Error, "what it follows has gone"):
            a.direction
        a.parameters["direction"].unfollow()
        with korl.Shell() as other, self.assertRaisesRegex(ValueError, "of another shell"):
            a.direction.follow(other.create("DirectionalLight").direction)

    def test_views_have_values_of_their_own(self):
        sun = self.shell.create("Sun", "sun")
        left = self.shell.add_view("left")
        self.shell.add_view("right")
        sun.set("Intensity", 0.2, view=left)
        self.assertEqual(
            (sun.Intensity, sun.get("Intensity", left), sun.get("Intensity", "right")), (0.9, 0.2, 0.9)
        )
        sun.Intensity = 0.5
        self.assertEqual((sun.get("Intensity", "left"), sun.get("Intensity", "right")), (0.2, 0.5))
        sun.reset("Intensity", view="left")
        self.assertEqual(sun.get("Intensity", left), 0.5)
        self.assertEqual(list(self.shell.views), ["left", "right"])
        self.shell.remove_view(left)
        with self.assertRaisesRegex(KeyError, 'unknown view "left"'):
            sun.get("Intensity", left)
        with self.assertRaises(TypeError):
            sun.get("Intensity", 3)

    def test_lights_are_muted_and_shine_alone(self):
        sun, torch = self.shell.create("Sun"), self.shell.create("Torch")
        self.assertTrue(sun.enabled)
        sun.enabled = False
        self.assertFalse(sun.enabled)
        self.shell.solo(torch)
        self.assertEqual(self.shell.solo_light, torch)
        self.shell.solo()
        self.assertIsNone(self.shell.solo_light)
        self.shell.solo("Torch")
        self.assertEqual(self.shell.solo_light, torch)
        for wrong, kind in [(3, TypeError), ("Trch", KeyError)]:
            with self.assertRaises(kind):
                self.shell.solo(wrong)
        with self.assertRaises(TypeError):
            sun.enabled = 1

    def test_parallel_light_is_aimed_by_its_direction(self):
        light = self.shell.create("DirectionalLight", "light")
        light.aim_at((0, 3, 4))
        np.testing.assert_allclose(light.direction, (0, 0.6, 0.8))  # light travels towards the point
        light.shine_from((0, 0, 5))
        self.assertEqual(light.direction, (0, 0, -1))  # from the zenith, down
        light.shine_from((1e300, 0, 0))
        self.assertEqual(light.direction, (-1, 0, 0))

    def test_a_light_at_a_place_is_aimed_by_its_target(self):
        light = self.shell.create("DistanceLight", "light", lightposition=(0, 0, 2))
        light.aim_at((1, 1, 1))
        self.assertEqual((light.lightposition, light.shineat), ((0, 0, 2), (1, 1, 1)))
        light.shineat, light.lightposition = (1, 0, 0), (1, 0, 2)
        light.shine_from((-7, 0, 0))
        self.assertEqual((light.lightposition, light.shineat), ((-1, 0, 0), (1, 0, 0)))

    def test_lights_are_not_aimed_nowhere(self):
        parallel = self.shell.create("DirectionalLight", "parallel")
        placed = self.shell.create("DistanceLight", "placed")
        nan, inf = float("nan"), float("inf")
        for light in (parallel, placed):
            for direction in [(0, 0, 0), (nan, 0, 1), (inf, 0, 1)]:
                with self.subTest(light=light, direction=direction), self.assertRaises(ValueError):
                    light.shine_from(direction)
        for light, point in [(parallel, (0, 0, 0)), (placed, (0, 0, 1)), (placed, (nan, 0, 0))]:
            with self.subTest(light=light, point=point), self.assertRaises(ValueError):
                light.aim_at(point)
        for type_name, described in self.shell.types.items():
            if {"direction", "shineat"} & {one.name for one in described.parameters}:
                continue
            with self.assertRaisesRegex(TypeError, "has no direction to set"):
                self.shell.create(type_name).aim_at((1, 2, 3))
        self.assertEqual((parallel.direction, placed.lightposition), ((0, 0, -1), (0, 0, 1)))

    def test_values_are_pickled_as_plain_ones(self):
        light = self.shell.create("DirectionalLight")
        self.assertEqual(pickle.loads(pickle.dumps((light.Intensity, light.direction))), (0.9, (0, 0, -1)))

    def test_modules_are_listed_and_refused(self):
        self.assertEqual([plugin.name for plugin in self.shell.plugins], ["tovek_light"])
        with self.assertRaisesRegex(korl.Error, "loaded already"):
            self.shell.load(self.shell.plugins[0].file)
        with self.assertRaises(TypeError):
            self.shell.load(3)


if __name__ == "__main__":
    unittest.main()
