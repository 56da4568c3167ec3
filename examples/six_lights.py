"""The six lights of the module, each alone over the same landscape: korl run six_lights.py [DIRECTORY]"""

import sys
from pathlib import Path
from typing import Any

import numpy as np

import korl

lights: dict[str, dict[str, Any]] = {
    "AmbientLight": {"Color": (0.8, 0.8, 0.8, 1)},
    "DirectionalLight": {"direction": (-0.6, -1, -0.8), "color": (1, 0.95, 0.85, 1)},
    "DistanceLight": {"lightposition": (0.6, 1, 1)},
    "Sun": {"latitude": 52, "timeofday": 10},
    "Torch": {"location": (0.2, 0.55, 0), "elevation": 0.5, "scaleDistance": 0.6, "intensity": 2},
    "Headlight": {"specular": 0.5},
}

out = Path(sys.argv[1] if len(sys.argv) > 1 else "out/examples")
out.mkdir(parents=True, exist_ok=True)

with korl.Shell() as shell:
    shell.add_landscape()
    for type_name, parameters in lights.items():
        shell.create(type_name, **parameters)
    pictures = []
    for light in shell:
        shell.solo(light)
        pictures.append(shell.render(400, 300))

# Images are arrays: three above, three below.
sheet = korl.Image(np.vstack([np.hstack(pictures[:3]), np.hstack(pictures[3:])]))
sheet.save(out / "six_lights.png", {"Title": ", ".join(lights)})
print("wrote", out / "six_lights.png")
