"""One scene in two views that have intensities of their own: by day and by torchlight.

korl run two_views.py [DIRECTORY]
"""

import sys
from pathlib import Path

import numpy as np

import korl

out = Path(sys.argv[1] if len(sys.argv) > 1 else "out/examples")
out.mkdir(parents=True, exist_ok=True)

with korl.Shell() as shell:
    shell.add_landscape()
    sun = shell.create("Sun", "sun", latitude=40, timeofday=10)
    torch = shell.create("Torch", "torch", location=(0.1, 0.4, -0.1), elevation=0.35, scaleDistance=0.45)
    sky = shell.create("AmbientLight", "sky", Color=(0.15, 0.17, 0.2, 1))

    # Without a view, a value holds in all of them. By day the torch is out, at night the sun is.
    day, night = shell.add_view("day"), shell.add_view("night")
    torch.set("intensity", 0, view=day)
    torch.set("intensity", 2.5, view=night)
    sun.set("Intensity", 0.05, view=night)
    sun.set("Specular", 0, view=night)
    sky.set("Color", (0.03, 0.04, 0.08, 1), view="night")  # a view goes by its name too

    pictures = []
    for view, background in ((day, "#8fb3d9"), (night, "#0b0d16")):
        shell.background = background
        pictures.append(shell.render(560, 420, view=view))
        pictures[-1].save(out / f"view_{view.name}.png")

korl.Image(np.hstack(pictures)).save(out / "two_views.png")
print("wrote", out / "two_views.png")
