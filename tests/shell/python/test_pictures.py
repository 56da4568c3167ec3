"""Meshes, cameras and images."""

import tempfile
import unittest
import warnings
from pathlib import Path

import numpy as np

import korl

CORNERS = np.float32([(-1, -1, 0), (1, -1, 0), (1, 1, 0), (-1, 1, 0)])
HALVES = np.uint32([(0, 1, 2), (0, 2, 3)])


class PictureTest(unittest.TestCase):
    def setUp(self):
        self.shell = korl.Shell()
        self.addCleanup(self.shell.close)

    def look_down(self):
        self.shell.camera.set(position=(0, 0, 3), target=(0, 0, 0), up=(0, 1, 0), fov=20)

    def test_arrays_become_a_mesh_that_is_seen(self):
        self.shell.create("AmbientLight")
        self.look_down()
        self.shell.add_mesh(CORNERS, HALVES, colors=np.broadcast_to(np.float32([1, 0.5, 0]), (4, 3)), name="square")
        self.assertEqual(self.shell.meshes, (("square", 4, 2),))
        picture = self.shell.render(16, 8)
        self.assertEqual((picture.shape, picture.dtype), ((8, 16, 4), np.uint8))
        self.assertEqual((picture.width, picture.height), (16, 8))
        np.testing.assert_array_equal(picture[4, 8], (255, 128, 0, 255))

    def test_any_layout_of_numbers_is_taken(self):
        for vertices in [CORNERS.tolist(), CORNERS.astype(float), np.asfortranarray(CORNERS), CORNERS.astype(int)]:
            for triangles in [HALVES.tolist(), HALVES.astype(np.int64), HALVES[::-1]]:
                self.shell.add_mesh(vertices, triangles)
        self.assertEqual(len(self.shell.meshes), 12)

    def test_normals_are_made_or_brought_to_unit_length(self):
        self.shell.create("DirectionalLight", Intensity=1, Specular=0, color=(1, 1, 1, 1))
        self.look_down()
        self.shell.add_mesh(CORNERS, HALVES)
        made = self.shell.render(8, 8)
        with korl.Shell() as other:
            other.create("DirectionalLight", Intensity=1, Specular=0, color=(1, 1, 1, 1))
            other.camera.set(position=(0, 0, 3), target=(0, 0, 0), up=(0, 1, 0), fov=20)
            other.add_mesh(CORNERS, HALVES, normals=np.tile((0, 0, 7), (4, 1)))
            np.testing.assert_array_equal(made, other.render(8, 8))
        self.assertEqual(made[4, 4, 0], 255)

    def test_damaged_arrays_are_refused(self):
        nan = np.float32([(0, 0, np.nan)] * 4)
        rows = [
            ((CORNERS[:, :2], HALVES), ValueError, r"vertices takes an array of N x 3 numbers, found the shape \(4, 2\)"),
            ((CORNERS, HALVES[:, :2]), ValueError, r"triangles .* found the shape \(2, 2\)"),
            ((CORNERS, HALVES.astype(float)), TypeError, "triangles takes an array of whole numbers, found one of float64"),
            ((CORNERS > 0, HALVES), TypeError, "vertices takes an array of numbers, found one of bool"),
            ((CORNERS * 1j, HALVES), TypeError, "found one of complex"),
            ((CORNERS, [(0, 1, -1)]), ValueError, "takes indices from 0, found -1"),
            ((CORNERS, [(0, 1, 4)]), ValueError, "triangle 0 leads to position 4, but there are 4"),
            ((CORNERS, [(0, 1, 2**32)]), ValueError, "takes indices from 0"),
            ((nan, HALVES), ValueError, "position 0 is .* expected finite numbers"),
            ((CORNERS.astype(float) * 1e300, HALVES), ValueError, "expected finite numbers"),
            ((CORNERS, HALVES, CORNERS[:3]), ValueError, "normals takes one row for each of the 4 vertices, found 3"),
            ((CORNERS, HALVES, CORNERS * 0), ValueError, "normal 0 is .* expected unit length"),
            ((CORNERS, HALVES, None, CORNERS), ValueError, "color 0 is .* expected components from 0 to 1"),
            ((np.empty((0, 3)), HALVES), ValueError, "leads to position 0, but there are 0"),
            ((CORNERS, None, CORNERS), TypeError, "vertices without triangles"),
        ]
        for arguments, kind, text in rows:
            with self.subTest(text=text), self.assertRaisesRegex(kind, text):
                self.shell.add_mesh(*arguments)
        self.assertEqual(self.shell.meshes, ())

    def test_a_model_is_read_from_a_file(self):
        with tempfile.TemporaryDirectory() as folder:
            model = Path(folder) / "corner.obj"
            model.write_text("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n")
            self.shell.add_mesh(model, up="z")
            self.shell.add_mesh(str(model))
            with self.assertRaisesRegex(korl.Error, "no such file"):
                self.shell.add_mesh(Path(folder) / "none.obj")
        self.assertEqual([mesh.triangles for mesh in self.shell.meshes], [1, 1])

    def test_the_camera_fits_until_it_is_set(self):
        camera = self.shell.camera
        self.shell.add_mesh(CORNERS, HALVES)
        near = camera.position
        self.shell.add_mesh(CORNERS * 2, HALVES)
        far = camera.position
        self.assertGreater(np.linalg.norm(far), np.linalg.norm(near))
        camera.fov = 10  # goes back so far that all is seen still
        self.assertGreater(np.linalg.norm(camera.position), np.linalg.norm(far))
        camera.set(position=(0, 0, 4), up=(0, 1, 0))
        camera.position = (0, 0, 5)
        self.shell.add_mesh(CORNERS * 4, HALVES)
        self.assertEqual((camera.position, camera.fov), ((0, 0, 5), 10))
        camera.fit(2)
        self.assertEqual(camera.fov, 10)
        self.assertGreater(np.linalg.norm(camera.position), 5)
        for name, value in [("fov", 180), ("up", (0, 0, 0)), ("target", camera.position), ("position", (0, float("nan"), 0))]:
            with self.subTest(name=name), self.assertRaises(ValueError):
                setattr(camera, name, value)
        for aspect in (0, -1, float("inf")):
            with self.assertRaises(ValueError):
                camera.fit(aspect)

    def test_the_background_is_a_colour(self):
        self.shell.background = "#ff8000"
        np.testing.assert_array_equal(self.shell.render(4, 4)[0, 0], (255, 128, 0, 255))
        self.shell.background = (0, 0.5, 1)
        self.assertEqual(self.shell.background, (0, 0.5, 1, 1))
        for wrong, kind in [(3, TypeError), ((1, 2), ValueError), ("red", korl.Error), ((0, float("nan"), 0), ValueError)]:
            with self.subTest(wrong=wrong), self.assertRaises(kind):
                self.shell.background = wrong

    def test_both_paths_stand_side_by_side(self):
        self.shell.add_landscape()
        self.shell.create("AmbientLight")
        both = self.shell.render(32, 24, path="both")
        self.assertEqual((both.width, both.height), (64, 24))
        np.testing.assert_array_equal(both[:, :32], self.shell.render(32, 24, "shader"))
        np.testing.assert_array_equal(both[:, 32:], self.shell.render(32, 24, "fixed"))

    def test_views_and_mutes_show_in_pictures(self):
        self.look_down()
        self.shell.add_mesh(CORNERS, HALVES)
        light = self.shell.create("AmbientLight")
        dim = self.shell.add_view("dim")
        light.set("Color", (0.2, 0.2, 0.2, 1), view=dim)
        self.assertEqual(self.shell.render(8, 8)[4, 4, 0], 255)
        self.assertEqual(self.shell.render(8, 8, view=dim)[4, 4, 0], 51)
        light.enabled = False
        self.assertEqual(self.shell.render(8, 8, view="dim")[4, 4, 0], 0)

    def test_what_cannot_be_drawn_is_refused(self):
        rows = [
            (dict(width=0), ValueError, "whole pixels, from 1 to 2147483647, found 0"),
            (dict(height=-3), ValueError, "whole pixels, from 1 to 2147483647, found -3"),
            (dict(width=2.5), TypeError, "whole pixels, found 2.5"),
            (dict(width=10**12), ValueError, "pixel"),
            (dict(width=10**9), korl.Error, ""),
            (dict(path="shadr"), ValueError, 'did you mean "shader"'),
            (dict(view="left"), KeyError, 'unknown view "left"'),
        ]
        for arguments, kind, text in rows:
            with self.subTest(arguments=arguments), self.assertRaisesRegex(kind, text):
                self.shell.render(**arguments)

    def test_what_a_picture_lacks_comes_as_a_warning(self):
        self.shell.add_mesh(CORNERS, HALVES)
        self.shell.create("Torch", "torch")
        with self.assertWarnsRegex(korl.Warning, "torch"):
            self.shell.render(8, 8, path="fixed")
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            self.shell.render(8, 8, path="fixed")  # told once

    def warnings_of(self, work):
        with warnings.catch_warnings(record=True) as caught:
            warnings.simplefilter("always")
            work()
        self.assertEqual({warning.filename for warning in caught} - {__file__}, set())
        return [str(warning.message) for warning in caught]

    def test_a_scene_without_lights_or_meshes_is_told_once_until_it_has_them(self):
        no_light = "the scene has no light and stays dark; create one, such as a Headlight"
        no_mesh = "the scene has no mesh, so that only its background is seen; add a model, arrays or the landscape"
        draw = lambda: self.shell.render(8, 8)
        self.assertEqual(self.warnings_of(draw), [no_light, no_mesh])
        self.assertEqual(self.warnings_of(draw), [])
        self.shell.add_mesh(CORNERS, HALVES)
        self.shell.create("Headlight", "lamp")
        self.assertEqual(self.warnings_of(draw), [])
        del self.shell["lamp"]
        self.assertEqual(self.warnings_of(draw), [no_light])
        with tempfile.TemporaryDirectory() as folder:
            animate = lambda: self.shell.animate(Path(folder) / "a_#.png", frames=1, width=8, height=8)
            self.assertEqual(self.warnings_of(animate), [])
            self.shell.create("Headlight", "lamp").enabled = False  # muted on purpose
            self.assertEqual(self.warnings_of(animate), [])
            del self.shell["lamp"]
            self.assertEqual(self.warnings_of(animate), [no_light])

    def test_see_through_pictures_have_straight_alpha(self):
        self.shell.create("AmbientLight", Color=(0.9, 0.4, 0.1, 1))
        self.shell.camera.set(position=(2, -5, 3), target=(0, 0, 0), fov=40)
        self.shell.add_mesh(CORNERS, HALVES)
        for path in ("shader", "fixed"):
            for alpha in (0, 0.1, 0.5):
                self.shell.background = (0.2, 0.7, 0.4, alpha)
                picture = self.shell.render(48, 48, path).astype(float)
                self.assertGreater(np.sum((picture[..., 3] > alpha * 255 + 1) & (picture[..., 3] < 255)), 20)
                for behind in (0, 1):
                    share = picture[..., 3:] / 255
                    composed = share * picture[..., :3] + (1 - share) * 255 * behind
                    self.shell.background = [alpha * value + (1 - alpha) * behind for value in (0.2, 0.7, 0.4)]
                    drawn = self.shell.render(48, 48, path)[..., :3].astype(float)
                    self.assertLessEqual(np.abs(composed - drawn).max(), 2)

    def test_images_are_arrays_that_show_themselves(self):
        self.shell.background = "#102030"
        picture = self.shell.render(5, 3)
        self.assertIsInstance(picture, korl.Image)
        self.assertTrue(np.shares_memory(picture, np.asarray(picture)))
        png = picture._repr_png_()
        self.assertEqual(png[:8], b"\x89PNG\r\n\x1a\n")
        self.assertEqual(int.from_bytes(png[16:20], "big"), 5)
        self.assertIn(b"Title", picture.png({"Title": "a test"}))
        left = picture[:, :2]
        self.assertEqual((left.width, left.height), (2, 3))
        self.assertEqual(int.from_bytes(left.png()[16:20], "big"), 2)
        self.assertIsNone(picture[..., 0]._repr_png_())
        for work in (lambda: picture[..., 0].png(), lambda: korl.Image(np.zeros((2, 2, 3), np.uint8))):
            with self.assertRaisesRegex(ValueError, "height x width x 4 bytes"):
                work()
        with tempfile.TemporaryDirectory() as folder:
            picture.save(Path(folder) / "a.png")
            self.assertEqual((Path(folder) / "a.png").read_bytes(), png)
            with self.assertRaises(korl.Error):
                picture.save(Path(folder) / "none" / "a.png")

    def test_an_array_becomes_an_image_without_a_copy(self):
        pixels = np.zeros((2, 3, 4), np.uint8)
        image = korl.Image(pixels)
        pixels[0, 0, 0] = 9
        self.assertEqual(image[0, 0, 0], 9)


if __name__ == "__main__":
    unittest.main()
