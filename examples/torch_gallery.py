"""A gallery of columns, lit by torches on both sides: korl run torch_gallery.py [DIRECTORY]"""

import sys
from pathlib import Path

import numpy as np
from shapes import painted, smooth, sphere, surface, turned

import korl

stone = (0.72, 0.62, 0.5)
column = smooth(
    [(0.2, 0), (0.2, 0.08), (0.16, 0.1), (0.15, 0.2), (0.13, 1.2), (0.13, 1.3), (0.18, 1.38), (0.22, 1.4), (0.22, 1.5)], 90
)
bowl = [(0, 0), (0.03, 0), (0.02, 0.5), (0.02, 0.55), (0.09, 0.64), (0.07, 0.64), (0, 0.58)]

out = Path(sys.argv[1] if len(sys.argv) > 1 else "out/examples")
out.mkdir(parents=True, exist_ok=True)

with korl.Shell() as shell:
    # A torch's light is followed from point to point: floor, walls and ceiling have many.
    across, along = np.linspace(-1.15, 1.15, 70), np.linspace(-6, 1.2, 220)
    floor, triangles = surface(lambda x, y: 0 * x, across, along)
    tiles = (np.floor(floor[:, 0] / 0.3) + np.floor(floor[:, 1] / 0.3)) % 2
    shell.add_mesh(floor, triangles, colors=np.where(tiles[:, None] > 0, (0.55, 0.5, 0.45), (0.3, 0.27, 0.25)), name="floor")
    vault, triangles = surface(lambda x, y: 1.5 + 0.45 * np.sqrt(np.maximum(0, 1 - (x / 1.15) ** 2)), across, along)
    shell.add_mesh(vault, triangles[:, ::-1], colors=painted(vault, stone), name="vault")
    for side in (-1, 1):
        wall, triangles = surface(lambda y, z: 0 * y + side * 1.15, along, np.linspace(0, 1.55, 50))
        wall = wall[:, [2, 0, 1]]  # y and z lead along the wall
        shell.add_mesh(wall, triangles[:, ::-side], colors=painted(wall, stone), name="wall")

    end, triangles = surface(lambda x, z: 0 * x - 6, across, np.linspace(0, 1.95, 60))
    end = end[:, [0, 2, 1]]
    shell.add_mesh(end, triangles[:, ::-1], colors=painted(end, stone), name="end")

    for row in range(5):
        for side in (-1, 1):
            place = np.array([side * 0.8, -0.75 - 1.1 * row, 0])
            vertices, triangles = turned(column, place)
            shell.add_mesh(vertices, triangles, colors=painted(vertices, stone), name="column")
            # Between two columns stands a torch: a bowl, a flame and the light that comes from it.
            place = place + (-side * 0.12, 0.55, 0)
            vertices, triangles = turned(bowl, place, 24)
            shell.add_mesh(vertices, triangles, colors=painted(vertices, (0.35, 0.25, 0.15)), name="bowl")
            vertices, triangles = sphere(place + (0, 0, 0.67), 0.045)
            shell.add_mesh(vertices, triangles, colors=painted(vertices, (1, 0.9, 0.6)), name="flame")
            shell.create("Torch", location=place, elevation=0.85, scaleDistance=0.42, intensity=1.5, specular=0.1)
    shell.create("AmbientLight", Color=(0.14, 0.1, 0.09, 1))

    shell.background = (0.01, 0.01, 0.02)
    shell.camera.set(position=(0.1, 0.75, 0.9), target=(0, -3, 0.72), fov=62)
    shell.render(960, 640).save(out / "torch_gallery.png")
print("wrote", out / "torch_gallery.png")
