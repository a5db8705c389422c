#!/usr/bin/env python3
"""usage: make_drawing.py OUT.dxf [ENTITIES]

A drawing as a surveyor's day leaves it, the same at every call: parcels, roads, contour lines, points with their
numbers, over the 3000 x 1000 units east of 40500000 and south of 3512600.
"""
import math
import random
import sys

import ezdxf

WEST, NORTH, WIDE, HIGH = 40500000.0, 3512600.0, 3000.0, 1000.0
PARTS = (("line", 45), ("polyline", 22), ("text", 14), ("circle", 8), ("arc", 5), ("insert", 6))


def main():
    out, wanted = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 20000
    pick = random.Random(20)
    drawing = ezdxf.new("R2010")
    for number in range(20):
        drawing.layers.add(f"LAYER{number}", color=1 + number % 7)
    tree = drawing.blocks.new("TREE")
    tree.add_circle((0, 0), 1)
    tree.add_line((-1, 0), (1, 0))
    tree.add_line((0, -1), (0, 1))
    space = drawing.modelspace()

    def place():
        return WEST + pick.random() * WIDE, NORTH - pick.random() * HIGH

    def polyline(x, y, attributes):
        angle, points = pick.random() * 7, []
        for _ in range(pick.randint(4, 40)):
            points.append((x, y))
            angle += pick.uniform(-0.6, 0.6)
            x, y = x + 6 * math.cos(angle), y + 6 * math.sin(angle)
        space.add_lwpolyline(points, close=pick.random() < 0.3, dxfattribs=attributes)

    kinds = pick.choices([name for name, _ in PARTS], [share for _, share in PARTS], k=wanted)
    for kind in kinds:
        x, y = place()
        attributes = {"layer": f"LAYER{pick.randrange(20)}"}
        if kind == "line":
            angle, length = pick.random() * 7, pick.uniform(2, 60)
            space.add_line((x, y), (x + length * math.cos(angle), y + length * math.sin(angle)), attributes)
        elif kind == "polyline":
            polyline(x, y, attributes)
        elif kind == "text":
            space.add_text(f"{pick.randrange(10000)}/{pick.randrange(99)}", height=1.8, rotation=pick.randrange(90),
                           dxfattribs=attributes).set_pos((x, y))
        elif kind == "circle":
            space.add_circle((x, y), pick.uniform(0.5, 6), attributes)
        elif kind == "arc":
            space.add_arc((x, y), pick.uniform(2, 20), pick.randrange(180), 180 + pick.randrange(170),
                          dxfattribs=attributes)
        else:
            space.add_blockref("TREE", (x, y), {**attributes, "xscale": 2, "yscale": 2})
    drawing.saveas(out)


main()
