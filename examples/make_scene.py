#!/usr/bin/env python3
# SPDX-License-Identifier: BSL-1.0
"""Writes scene.json, the sample document, to standard output: ./make_scene.py > scene.json"""

import json
import math


def vector(x, y, z):
    return {"x": round(x, 4), "y": round(y, 4), "z": round(z, 4)}


def ring(count, radius, height):
    angles = [2 * math.pi * step / count for step in range(count)]
    return [[round(radius * math.cos(a), 4), height, round(radius * math.sin(a), 4)] for a in angles]


def light(name, kind, power, position, color):
    return {"name": name, "kind": kind, "power": power, "position": position, "color": color, "shadows": power > 100}


def item(number, name, tags, children):
    return {
        "id": number,
        "name": name,
        "visible": number % 3 != 0,
        "transform": {
            "position": vector(number * 1.5, 0.25, -number * 0.75),
            "rotation": vector(0.0, 22.5 * number, 0.0),
            "scale": 1.0 + number / 8,
        },
        "tags": tags,
        "material": None if number % 4 == 0 else {"ref": f"m{number % 3}", "layers": [number, -number, number * 1000]},
        "children": children,
    }


SCENE = {
    "scene": {
        "title": "Harbour at dusk",
        "titles": {"de": "Hafen in der Dämmerung", "ja": "夕暮れの港", "el": "Λιμάνι το σούρουπο", "icon": "⚓🌅"},
        "author": 'Zoë "Kit" O\'Neil',
        "notes": "First line\nSecond line\twith a tab and a back\\slash",
        "version": 3,
        "created": 1793456789,
        "budget": -2147483648,
        "checksum": 4294967295,
        "seed": 2147483648,
        "unit": 0.001,
        "far": 1.5e10,
        "near": 2.5e-7,
        "background": [0.05, 0.07, 0.16],
        "fog": None,
        "camera": {
            "position": vector(12.0, 4.5, -30.25),
            "target": vector(0.0, 1.0, 0.0),
            "lens": {"fov": 47.5, "focus": 31.75, "aperture": 2.8},
        },
        "lights": [
            light("sun", "directional", 1200, vector(-0.3, -0.8, 0.5), [1.0, 0.62, 0.38]),
            light("lantern", "point", 40, vector(2.0, 3.1, -6.0), [1.0, 0.85, 0.6]),
            light("beacon", "spot", 900, vector(48.0, 21.0, 60.5), [0.9, 0.95, 1.0]),
        ],
        "materials": [
            {"name": "m0", "shader": "lambert", "map": "textures/wood.png", "gloss": 0.125},
            {"name": "m1", "shader": "phong", "map": "textures/steel.png", "gloss": 0.875},
            {"name": "m2", "shader": "water", "map": "", "gloss": 0.99},
        ],
        "items": [
            item(1, "quay", ["static", "stone"], []),
            item(
                2,
                "boat",
                ["floats", "wood"],
                [item(3, "mast", [], [item(4, "pennant", ["cloth"], [])]), item(5, "rudder", ["steel"], [])],
            ),
            item(6, "crane", ["steel"], [item(7, "hook", [], [])]),
        ],
        "meshes": [
            {
                "name": "buoy",
                "points": ring(8, 0.6, 0.0) + ring(8, 0.4, 0.9),
                "faces": [[i, (i + 1) % 8, 8 + (i + 1) % 8, 8 + i] for i in range(8)],
                "empty": [],
            }
        ],
        "paths": {"swell": [[0, 0], [1, 0.2], [2, -0.15], [3, 0.05]], "nested": [[[1], [2, [3]]], {}]},
        "stats": {"items": 7, "largest": 2147483647, "smallest": -2147483647, "ratio": -0.333333343, "done": True},
    }
}

print(json.dumps(SCENE, indent=2, ensure_ascii=False))
