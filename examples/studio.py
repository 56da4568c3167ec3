"""A vase in a studio: a key light, a fill light and a rim light, each alone and all together.

korl run studio.py [DIRECTORY]
"""

import sys
from pathlib import Path

import numpy as np
from shapes import painted, smooth, surface, turned

import korl

out = Path(sys.argv[1] if len(sys.argv) > 1 else "out/examples")
out.mkdir(parents=True, exist_ok=True)

with korl.Shell() as shell:
    # The vase: outside from bottom to top, over the lip and down again inside.
    outside = [(0, 0), (0.16, 0), (0.17, 0.02), (0.3, 0.25), (0.27, 0.45), (0.12, 0.62), (0.1, 0.7), (0.17, 0.8)]
    inside = [(0.15, 0.8), (0.08, 0.7), (0.1, 0.6), (0, 0.5)]
    vase, triangles = turned(smooth(outside + inside, 160), steps=96)
    shell.add_mesh(vase, triangles, colors=painted(vase, (0.25, 0.5, 0.62)), name="vase")

    # The backdrop: a sheet of paper that lies in front and hangs behind.
    paper, triangles = surface(
        lambda x, y: np.where(y < -0.5, (y + 0.5) ** 2 * 2.2, 0), np.linspace(-2.4, 2.4, 60), np.linspace(-1.8, 1.6, 90)
    )
    shell.add_mesh(paper, triangles, colors=painted(paper, (0.78, 0.74, 0.7)), name="paper")

    # A direction says where light comes from: x is to the left of the picture, y towards the camera, z up.
    key = shell.create("DirectionalLight", "key", Intensity=0.95, Specular=0.8, color=(1, 0.93, 0.82, 1))
    key.shine_from((1, 1, 1.2))
    fill = shell.create("DirectionalLight", "fill", Intensity=0.25, Specular=0, color=(0.75, 0.85, 1, 1))
    fill.shine_from((-1.5, 1, 0.4))
    rim = shell.create("DirectionalLight", "rim", Intensity=0.7, Specular=0.9, color=(1, 1, 1, 1))
    rim.shine_from((-1, -0.8, 0.5))

    shell.background = "#1c1d20"
    shell.camera.set(position=(0.3, 3, 0.9), target=(0, 0, 0.36), fov=24)

    shell.render(960, 720).save(out / "studio.png")
    alone = []
    for light in (key, fill, rim):
        shell.solo(light)
        alone.append(shell.render(320, 240))
    korl.Image(np.hstack(alone)).save(out / "studio_lights.png")
print("wrote", out / "studio.png", "and", out / "studio_lights.png")
