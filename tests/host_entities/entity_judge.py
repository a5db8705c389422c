"""An independent look at entities.

entity_judge.py make FILE              writes a drawing with entities of every kind that is drawn
entity_judge.py image FILE             writes a drawing with pictures there.png, whole and clipped,
                                       and one that is missing
entity_judge.py stacked PLAIN TURNED   writes a drawing with four areas in colours 1 to 4, the last on
                                       top, and one with the first on top
entity_judge.py order FILE...          colours of entities as they are drawn, and what is wrong
entity_judge.py patterns FILE          writes a hatch of every pattern that the library has, turned and scaled,
                                       over a rim with an island; prints handle, name, the lines'
                                       length together and their first moments about x and y
entity_judge.py boxes FILE             handle, kind and extents of each whose extents need no font
entity_judge.py changed HOW OLD NEW    what another implementation of HOW (move, turn, scale, mirror) on
                                       OLD leaves different from NEW, one entity a line
entity_judge.py left OLD NEW           the kinds of entities of OLD that are still in NEW
entity_judge.py copies OLD NEW X Y     what differs between entities of OLD, moved, and the new ones
                                       of NEW, one a line; the number of those compared at the end
Exit 77 when the reading library is not there.
"""
import logging
import math
import sys

logging.disable(logging.CRITICAL)
try:
    import ezdxf
    import ezdxf.render.forms
    import ezdxf.render.mleader
    from ezdxf import bbox
    from ezdxf.math import Matrix44, Vec2
    from ezdxf.tools import pattern
    from ezdxf.lldxf.tagwriter import TagCollector
except ImportError:
    sys.exit(77)

CHANGES = {
    "move": lambda e: e.translate(1000.5, -200.25, 0),
    "turn": lambda e: e.rotate_z(math.radians(30)),
    "scale": lambda e: e.scale_uniform(2.5),
    "mirror": lambda e: e.transform(Matrix44.scale(-1, 1, 1)),
}


def add_curves(space):
    space.add_line((1, 2, 3), (4, 5, 6))
    space.add_arc((1, 2), 3, 10, 200, dxfattribs={"extrusion": (0, 0, -1)})
    space.add_ellipse((5, 5), (3, 1), 0.4, 0.3, 4)
    space.add_lwpolyline([(0, 0, 0.2, 0.4, 0.5), (5, 0, 0.4, 0.4, 0), (5, 5, 0.4, 0.1, -1)], close=True)
    space.add_polyline2d([(0, 0, 0.5), (1, 0, 0), (1, 1, 0)], format="xyb", close=True)
    space.add_polyline3d([(0, 0, 1), (1, 0, 2), (1, 1, 3)])
    spline = space.add_open_spline([(0, 0), (3, 6, 1), (6, -2), (9, 3), (12, 0)])
    spline.dxf.color = 3
    space.add_rational_spline([(0, 0), (3, 6), (6, -2), (9, 3)], [1, 2, 0.5, 1])
    space.add_spline([(0, 0), (2, 3), (5, 1), (7, 4)])
    for kind in (space.add_solid, space.add_trace):
        kind([(0, 0), (4, 0), (1, 3), (5, 4)], {"color": 1})
    space.add_solid([(0, 0), (4, 0), (1, 3)], {"extrusion": (0, 0, -1)})
    space.add_3dface([(0, 0), (1, 0, 5), (1, 1), (0, 1)], {"invisible": 2})


def add_hatches(space):
    solid = space.add_hatch(color=2)
    solid.paths.add_polyline_path([(0, 0, 0.3), (10, 0, 0), (10, 8, 0), (0, 8, 0)])
    solid.paths.add_polyline_path([(2, 2), (4, 2), (4, 4), (2, 4)], flags=16)
    edges = space.add_hatch(color=4, dxfattribs={"elevation": (0, 0, 2)})
    path = edges.paths.add_edge_path()
    path.add_arc((5, 5), 3, 0, 180)
    path.add_line((2, 5), (2, 0))
    path.add_ellipse((5, 0), (3, 0), 0.5, 180, 360)
    path.add_line((8, 0), (8, 5))
    rounded = space.add_hatch(color=5)
    path = rounded.paths.add_edge_path()
    path.add_spline(control_points=[(0, 0), (3, 6), (6, -2), (9, 0)], degree=3, knot_values=[0, 0, 0, 0, 1, 1, 1, 1])
    path.add_line((9, 0), (0, 0))
    lines = space.add_hatch(color=6)
    lines.set_pattern_fill("ANSI31", scale=0.5)
    lines.paths.add_polyline_path([(0, 0), (20, 0), (20, 10), (0, 10)])
    other = space.add_hatch(color=6)
    other.set_pattern_fill("DASH", scale=0.25, angle=20)
    other.paths.add_polyline_path([(0, 0), (20, 0), (20, 10), (0, 10)])


def add_texts(space):
    at = {"style": "WIDE", "height": 2.5}
    for horizontal, vertical in ((0, 0), (1, 0), (2, 0), (4, 0), (0, 3), (1, 2), (2, 1)):
        space.add_text("80%%d \u6d4b\u91cf", dxfattribs=dict(at, rotation=15, insert=(1, 2), align_point=(3, 4),
                                                             halign=horizontal, valign=vertical))
    space.add_text("fitted", dxfattribs=dict(at, insert=(0, 0), align_point=(30, 4), halign=5))
    note = space.add_mtext("one {\\C1;red} two\\Pthree \\S1/2; four five six", {"style": "WIDE"})
    note.dxf.char_height, note.dxf.width, note.dxf.attachment_point = 2, 15, 5
    note.dxf.insert = (7, 8)


def add_compound(doc, space):
    tree = doc.blocks.new("TREE", base_point=(1, 1))
    tree.add_circle((1, 1), 2)
    tree.add_lwpolyline([(0, 0, 0, 0, 1), (2, 0)])
    tree.add_attdef("NUMBER", (0, 0), dxfattribs={"height": 1})
    wood = doc.blocks.new("WOOD")
    wood.add_blockref("TREE", (0, 0))
    wood.add_blockref("TREE", (9, 0), {"xscale": -2, "yscale": 1, "rotation": 30})
    insert = space.add_blockref("TREE", (5, 5), {"xscale": 2, "yscale": 2, "rotation": 10})
    insert.add_attrib("NUMBER", "17", (5, 5)).dxf.height = 1
    space.add_blockref("WOOD", (50, 5), {"xscale": 2, "yscale": -2, "extrusion": (0, 0, -1)})
    space.add_blockref("TREE", (90, 5), {"row_count": 3, "column_count": 2, "row_spacing": 7, "column_spacing": 8})
    for dimension in (space.add_linear_dim((0, 5), (0, 0), (10, 0), angle=15),
                      space.add_aligned_dim((0, 0), (10, 3), 2),
                      space.add_radius_dim((0, 0), radius=5, angle=30),
                      space.add_arc_dim_cra((0, 0), 8, 20, 80, 2),
                      space.add_angular_dim_2l((0, 9), ((0, 0), (5, 5)), ((0, 0), (5, -5)))):
        dimension.render()
    space.add_leader([(0, 0), (10, 10), (15, 10)])
    definition = doc.add_image_def("there.png", (64, 32))
    space.add_image(definition, (40, 40), (32, 16), 20)


def add_more(doc, space):
    """Kinds that are not seen in every drawing."""
    space.add_ray((1, 2), (3, 4))
    space.add_xline((1, 2, 5), (0, 1))
    space.add_wipeout([(60, 60), (70, 60), (68, 66)])
    space.add_wipeout([(80, 60), (90, 70)])
    note = space.add_multileader_mtext("Standard")
    note.set_content("one\\Ptwo")
    note.add_leader_line(ezdxf.render.mleader.ConnectionSide.left, [(-20, 15), (-8, 12)])
    note.add_leader_line(ezdxf.render.mleader.ConnectionSide.right, [(40, 15)])
    note.build(insert=Vec2(5, 4))
    sign = doc.blocks.new("SIGN", base_point=(1, 0))
    sign.add_circle((0, 0), 2)
    note = space.add_multileader_block("Standard")
    note.set_content("SIGN", scale=1.5)
    note.add_leader_line(ezdxf.render.mleader.ConnectionSide.left, [(-20, -15)])
    note.build(insert=Vec2(5, -14))
    frame = space.new_entity("TOLERANCE", {"insert": (30, 30), "dimstyle": "Standard"})
    frame.dxf.content = "{\\Fgdt;j}%%v{\\Fgdt;n}0.1{\\Fgdt;m}%%vA"
    tree = space.add_blockref("TREE", (200, 5), {"row_count": 2, "column_count": 3, "row_spacing": 7,
                                                 "column_spacing": 8, "rotation": 20})
    tree.add_attrib("NUMBER", "4", (201, 6)).dxf.height = 1
    tree.add_attrib("SECRET", "5", (201, 6)).is_invisible = True
    grid = space.add_polymesh(size=(3, 4))
    places = grid.get_mesh_vertex_cache()
    for row in range(3):
        for column in range(4):
            places[row, column] = (row * 2, column, row * column)
    cube = ezdxf.render.forms.cube()
    cube.scale(3)
    cube.render_polyface(space)
    cube.render_mesh(space)
    for weight, clear in ((100, 0.5), (-3, 0), (0, 0.9)):
        line = space.add_line((0, weight), (9, weight))
        line.dxf.lineweight, line.transparency = weight, clear


def make(path):
    doc = ezdxf.new("R2010", setup=True)
    doc.styles.new("WIDE", dxfattribs={"font": "txt.shx", "bigfont": "hztxt.shx", "width": 0.8})
    doc.appids.new("SURVEY")
    space = doc.modelspace()
    add_curves(space)
    add_hatches(space)
    add_texts(space)
    add_compound(doc, space)
    add_more(doc, space)
    for number, entity in enumerate(space):
        entity.dxf.linetype = "DASHED"
        entity.set_xdata("SURVEY", [(1000, "parcel"), (1040, 1.5), (1070, number)])
    doc.saveas(path)


def image(path):
    doc = ezdxf.new("R2010")
    space = doc.modelspace()
    there = doc.add_image_def("C:\\Survey\\pictures\\there.png", (40, 20))
    space.add_image(there, (0, 0), (40, 20))
    space.add_image(there, (50, 0), (40, 20)).set_boundary_path([(10, 5), (30, 15)])
    space.add_image(doc.add_image_def("gone.png", (40, 20)), (0, 30), (40, 20))
    for place, name, value in ((0, "brightness", 100), (1, "fade", 100), (2, "contrast", 0)):
        space.add_image(there, (place * 10, -20), (10, 5)).dxf.set(name, value)
    doc.set_raster_variables(frame=0)
    doc.saveas(path)


def patterns(path):
    try:
        from ezdxf.render import hatching
    except ImportError:
        sys.exit(77)
    doc = ezdxf.new("R2010")
    space = doc.modelspace()
    for number, name in enumerate(sorted(pattern.load())):
        hatch = space.add_hatch(color=1)
        hatch.set_pattern_fill(name, scale=(1, 0.5, 2)[number % 3], angle=(0, 30, 75)[number % 3])
        # No line of a pattern runs along a rim.
        hatch.paths.add_polyline_path([(0.13, 0.17), (60.3, 0.29), (60.1, 40.37), (30.41, 50.43), (0.11, 40.53)])
        hatch.paths.add_polyline_path([(20.19, 10.23), (40.31, 12.37), (35.41, 30.47)], flags=16)
        try:
            lines = list(hatching.hatch_entity(hatch))
        except hatching.HatchingError:
            lines = []
        length, x, y = 0.0, 0.0, 0.0
        for start, end in lines:
            own = (end - start).magnitude
            length, x, y = length + own, x + own * (start.x + end.x) / 2, y + own * (start.y + end.y) / 2
        print(hatch.dxf.handle, name, length, x, y)
    doc.saveas(path)


def stacked(plain, turned):
    doc = ezdxf.new("R2010")
    space = doc.modelspace()
    for color in range(1, 5):
        corners = [(-color, 0), (10, 0), (-color, 10), (10, 10)]
        space.add_solid(corners, dxfattribs={"color": color})
    doc.saveas(plain)
    handles = [e.dxf.handle for e in space]
    space.set_redraw_order(zip(handles, reversed(handles)))
    doc.saveas(turned)


def order(path):
    doc = ezdxf.readfile(path)
    print(*(e.dxf.color for e in doc.modelspace().entities_in_redraw_order()))
    auditor = doc.audit()
    for error in auditor.errors + auditor.fixes:
        print(error.message)


NEED_FONTS = {"TEXT", "MTEXT", "DIMENSION", "ARC_DIMENSION", "TOLERANCE"}


def needs_fonts(entity):
    kind = entity.dxftype()
    if kind == "MULTILEADER":
        return entity.context.mtext is not None
    return kind in NEED_FONTS or (kind == "INSERT" and entity.attribs)


def boxes(path):
    for entity in ezdxf.readfile(path).modelspace():
        if needs_fonts(entity):
            continue
        box = bbox.extents([entity], flatten=0.001)
        if box.has_data:
            numbers = (box.extmin.x, box.extmin.y, box.extmax.x, box.extmax.y)
            print(entity.dxf.handle, entity.dxftype(), *(f"{n:.9g}" for n in numbers))


def near(a, b):
    if isinstance(a, (list, tuple)) and isinstance(b, (list, tuple)):
        return len(a) == len(b) and all(near(x, y) for x, y in zip(a, b))
    if hasattr(a, "xyz") and hasattr(b, "xyz"):
        return near(a.xyz, b.xyz)
    if isinstance(a, float) and isinstance(b, (float, int)):
        return abs(a - b) < 1e-6 * max(1, abs(a))
    return a == b


# A dimension that moves has its block at another place here, and a changed block there; there lines
# of patterns stay where they are, distances of columns and rows are not scaled, a leader gets the
# direction that it takes for granted, an attribute a point that it is not aligned to, and a dimension
# of an arc the end of a leader that it does not have.
LEFT_OUT = {"DIMENSION": {12, 22, 32, 42}, "HATCH": {41, 43, 44, 45, 46, 49, 52, 53},
            "ARC_DIMENSION": {12, 22, 32, 42, 17, 27, 37}, "INSERT": {11, 21, 31, 44, 45}, "ATTRIB": {11, 21, 31}, "LEADER": {211, 221, 231}}
# By how a drawing is written, not by what it says.
UNTOLD = {5, 330, 360, 102}


def told(entity, doc):
    tags = [(t.code, t.value) for t in TagCollector.dxftags(entity, dxfversion=doc.dxfversion)]
    if entity.dxftype() in ("HATCH", "ARC", "ELLIPSE", "INSERT", "DIMENSION", "ARC_DIMENSION", "TEXT"):
        # A turn more or less is the same angle.
        tags = [(c, math.sin(math.radians(v)) if c in (50, 51, 52, 53) else v) for c, v in tags]
    own = LEFT_OUT.get(entity.dxftype(), ())
    direction = math.hypot(*(v for c, v in tags if c in (11, 21, 31))) or 1.0
    if entity.dxftype() in ("MTEXT", "TOLERANCE"):
        tags = [(c, v / direction if c in (11, 21, 31) else v) for c, v in tags]
    tags = [(c, v) for c, v in tags if c not in UNTOLD and c not in own]
    parts = entity.vertices if entity.dxftype() == "POLYLINE" else []
    for part in list(getattr(entity, "attribs", [])) + list(parts):
        tags += told(part, doc)
    return tags


STANDARD = {41: 1.0, 42: 1.0, 43: 1.0, 44: 1.0, 230: 1.0, 11: 1.0, 100: None}


def said(values, usual):
    """Without what every reader takes for granted at the end."""
    while values and near(values[-1], usual):
        values = values[:-1]
    return values


def difference(one, other):
    """By group code."""
    values = [{}, {}]
    for side, tags in enumerate((one, other)):
        for code, value in tags:
            values[side].setdefault(code, []).append(value)
    for code in sorted(values[0].keys() | values[1].keys()):
        usual = STANDARD.get(code, 0.0)
        a, b = (said(side.get(code, []), usual) for side in values)
        if not near(a, b):
            return f"{code}: {a} and {b}"
    return ""


# In a mirror texts stay legible here, and what consists of texts and lines stays as it is.
NOT_MIRRORED = {"TEXT", "MTEXT", "TOLERANCE", "DIMENSION", "ARC_DIMENSION", "MULTILEADER"}


def changed(how, old, new):
    before, after = ezdxf.readfile(old), ezdxf.readfile(new)
    for entity in before.modelspace():
        if how == "mirror" and (entity.dxftype() in NOT_MIRRORED or getattr(entity, "attribs", ())):
            continue
        CHANGES[how](entity)
        other = after.entitydb.get(entity.dxf.handle)
        if how == "mirror" and entity.dxftype() == "INSERT" and other is not None:
            # Turned over there, with a width below 0 here; the place is the same.
            if entity.mcount > 1:
                continue  # rows go the other way there
            boxes = [bbox.extents([e]) for e in (entity, other)]
            if not all(a.isclose(b, abs_tol=1e-6) for a, b in zip(*((x.extmin, x.extmax) for x in boxes))):
                print("INSERT", entity.dxf.handle, *boxes)
            continue
        found = "gone" if other is None else difference(told(entity, before), told(other, after))
        if found:
            print(entity.dxftype(), entity.dxf.handle, found)


def copies(old, new, x, y):
    before, after = ezdxf.readfile(old), ezdxf.readfile(new)
    originals = list(before.modelspace())
    added = list(after.modelspace())[len(originals):]
    for entity, copy in zip(originals, added):
        entity.translate(x, y, 0)
        found = difference(told(entity, before), told(copy, after))
        if found:
            print(entity.dxftype(), entity.dxf.handle, found)
    auditor = after.audit()
    for error in auditor.errors + auditor.fixes:
        print(error.message)
    print(len(originals), len(added))


if sys.argv[1] == "make":
    make(sys.argv[2])
elif sys.argv[1] == "image":
    image(sys.argv[2])
elif sys.argv[1] == "stacked":
    stacked(*sys.argv[2:4])
elif sys.argv[1] == "order":
    for path in sys.argv[2:]:
        order(path)
elif sys.argv[1] == "patterns":
    patterns(sys.argv[2])
elif sys.argv[1] == "boxes":
    boxes(sys.argv[2])
elif sys.argv[1] == "left":
    print(*(e.dxftype() for e in ezdxf.readfile(sys.argv[3]).modelspace()))
elif sys.argv[1] == "changed":
    changed(*sys.argv[2:5])
else:
    copies(sys.argv[2], sys.argv[3], float(sys.argv[4]), float(sys.argv[5]))
