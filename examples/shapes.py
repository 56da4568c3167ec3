"""Meshes by formula for the examples: arrays of vertices, triangles and colours for Shell.add_mesh."""

import numpy as np


def grid(rows, columns, first=0):
    """The triangles of a grid of vertices that lie row by row, counter-clockwise where rows go up and columns right."""
    corner = first + np.arange(rows - 1)[:, None] * columns + np.arange(columns - 1)
    right, above = corner + 1, corner + columns
    halves = np.stack([np.stack([corner, right, above], -1), np.stack([right, above + 1, above], -1)])
    return halves.reshape(-1, 3).astype(np.uint32)


def turned(profile, center=(0, 0, 0), steps=64):
    """A body of revolution about z: its profile, rows of (radius, height) from bottom to top, turned around."""
    profile = np.asarray(profile, float)
    angle = np.linspace(0, 2 * np.pi, steps + 1)
    radius, height = profile[:, :1], profile[:, 1:]
    x, y = radius * np.cos(angle), radius * np.sin(angle)
    vertices = np.stack([x, y, np.broadcast_to(height, x.shape)], -1).reshape(-1, 3) + center
    return vertices.astype(np.float32), grid(len(profile), steps + 1)


def smooth(profile, count=60):
    """A profile through the given rows, rounded: straight lines between them, averaged with their neighbours."""
    profile = np.asarray(profile, float)
    along = np.linspace(0, len(profile) - 1, count)
    fine = np.stack([np.interp(along, range(len(profile)), column) for column in profile.T], -1)
    for _ in range(count // 4):
        fine[1:-1] = (fine[:-2] + 2 * fine[1:-1] + fine[2:]) / 4
    return fine


def sphere(center, radius, steps=48):
    """A ball."""
    angle = np.linspace(-np.pi / 2, np.pi / 2, steps // 2)
    return turned(np.stack([np.cos(angle) * radius, np.sin(angle) * radius], -1), center, steps)


def surface(height, x, y):
    """A surface over a rectangle: `height` of arrays x and y, at the places where the two ranges cross."""
    x, y = np.meshgrid(x, y)
    vertices = np.stack([x, y, height(x, y)], -1).reshape(-1, 3)
    return vertices.astype(np.float32), grid(*x.shape)


def painted(vertices, color):
    """One colour for all vertices, as an array for `colors`."""
    return np.broadcast_to(np.float32(color), vertices.shape)
