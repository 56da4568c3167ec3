"""A day of sun at latitude 52 over a landscape, from 6 to 17 hours: korl run day_of_sun.py [DIRECTORY]"""

import sys
from pathlib import Path

import numpy as np
from shapes import surface

import korl


def height(x, y):
    """Hills, a ridge to the north and a lake where the land would lie lower than the water."""
    hills = 0.09 * np.sin(5 * x + 1) * np.cos(4 * y) + 0.05 * np.sin(9 * x - 7 * y) + 0.02 * np.sin(23 * x + 17 * y)
    ridge = 0.42 * np.exp(-((y + 0.75 + 0.1 * np.sin(6 * x)) ** 2) / 0.05) * (0.75 + 0.25 * np.sin(7 * x + 2))
    return np.maximum(hills + ridge, -0.03)


def land_color(heights):
    """Water, grass, rock and snow by height."""
    levels = [-0.03, -0.028, 0.0, 0.16, 0.28, 0.34]
    colors = [(0.1, 0.3, 0.45), (0.55, 0.5, 0.35), (0.3, 0.5, 0.16), (0.24, 0.4, 0.14), (0.45, 0.4, 0.36), (0.95, 0.95, 1)]
    return np.stack([np.interp(heights, levels, channel) for channel in zip(*colors)], -1).astype(np.float32)


def sky_color(hour):
    """From the grey of dawn to the blue of noon and back."""
    day = np.clip(1.6 * np.sin(np.pi * (hour - 6) / 12), 0, 1)
    return tuple(np.array([0.16, 0.15, 0.22]) * (1 - day) + np.array([0.5, 0.68, 0.9]) * day)


out = Path(sys.argv[1] if len(sys.argv) > 1 else "out/examples")
out.mkdir(parents=True, exist_ok=True)

with korl.Shell() as shell:
    vertices, triangles = surface(height, np.linspace(-1.6, 1.6, 240), np.linspace(-1.2, 1.2, 180))
    shell.add_mesh(vertices, triangles, colors=land_color(vertices[:, 2]), name="land")
    # At noon the sun stands to the south, on the +y side; the camera looks on from there.
    sun = shell.create("Sun", "sun", latitude=52, Intensity=1.0, Specular=0.05)
    shell.create("AmbientLight", "sky", Color=(0.16, 0.18, 0.24, 1))
    shell.camera.set(position=(1.3, 2.6, 1.25), target=(0, -0.25, 0.05), fov=38)

    hours = []
    for hour in range(6, 18):
        sun.timeofday = hour
        shell.background = sky_color(hour)
        hours.append(shell.render(480, 270))

hours[4].save(out / "day_at_10.png")
rows = [np.hstack(hours[first : first + 4]) for first in (0, 4, 8)]
korl.Image(np.vstack(rows)).save(out / "day_of_sun.png", {"Comment": "equinox, solar time, 6 to 17 hours"})
print("wrote", out / "day_of_sun.png", "and", out / "day_at_10.png")
