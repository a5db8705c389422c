"""An independent look at drawings.

drawing_judge.py audit FILE...         errors that the audit finds, one a line
drawing_judge.py differences OLD NEW [OLD NEW]...
                                       what differs between two drawings, one object a line; a pair
                                       of which the library cannot read the old one is left out
drawing_judge.py converted OLD NEW [OLD NEW]...
                                       what differs between drawings of R12 and what was made of
                                       them, and errors in the latter, one a line
drawing_judge.py forms OLD NEW [OLD NEW]...
                                       what differs between drawings and the same in another version,
                                       as far as both can say it, and errors in the latter only
drawing_judge.py old FILE              writes a drawing of R12 with every kind of entity
Exit 77 when the reading library is not there.
"""
import logging
import sys

logging.disable(logging.CRITICAL)
try:
    import ezdxf
    from ezdxf import recover
    from ezdxf.lldxf.tagwriter import TagCollector
except ImportError:
    sys.exit(77)


def is_binary(path):
    with open(path, "rb") as file:
        return file.read(18) == b"AutoCAD Binary DXF"


def strict(path):
    doc = ezdxf.readfile(path)
    return doc, doc.audit()


def read(path):
    return strict(path) if is_binary(path) else recover.readfile(path)


def tags_of(entity, version):
    try:
        return [(t.code, t.value) for t in TagCollector.dxftags(entity, dxfversion=version)]
    except Exception as fault:  # what cannot be exported counts with its attributes
        return [str(type(fault)), sorted(map(str, entity.dxfattribs().items()))]


def objects_of(doc, version=None):
    """What stands in the model and among the objects; the library makes up tables and ends itself."""
    found = {}
    for entity in list(doc.modelspace()) + list(doc.objects):
        found[entity.dxf.handle] = (entity.dxftype(), tags_of(entity, version or doc.dxfversion))
    return found


def audit(paths):
    for path in paths:
        doc, auditor = read(path)
        auditor = doc.audit()
        for error in auditor.errors + auditor.fixes:
            print(f"{path}: {error.message}")


def differences(old, new):
    try:
        before = objects_of(read(old)[0])
    except Exception:
        return
    after = objects_of(read(new)[0])
    for handle in sorted(before.keys() | after.keys(), key=lambda h: int(h, 16)):
        if handle not in after:
            print(f"gone {before[handle][0]} {handle}")
        elif handle not in before:
            print(f"new {after[handle][0]} {handle}")
        elif before[handle] != after[handle]:
            print(f"changed {after[handle][0]} {handle}")


def errors_of(doc, mended):
    found = doc.audit()
    return {e.code for e in mended.errors + mended.fixes + found.errors + found.fixes}


# The library makes up other objects that it misses.
KEPT_OBJECTS = {"XRECORD", "IMAGEDEF", "GROUP", "DICTIONARYVAR"}


def forms(old, new):
    try:
        # Nobody mends what is in a binary drawing.
        before, mended = strict(old) if is_binary(new) else read(old)
        known = errors_of(before, mended)
    except Exception:
        return
    after, mended = read(new)
    for error in errors_of(after, mended) - known:
        print(f"{old}: {error}")
    try:
        strict(old)
    except Exception:
        return  # what is mended on the way need not be mended in the same way
    strict(new)
    if known:
        return
    version = min(before.dxfversion, after.dxfversion)
    graphic = [{e.dxf.handle for e in d.modelspace()} for d in (before, after)]
    one, other = ({h: o for h, o in objects_of(d, version).items() if h in g or o[0] in KEPT_OBJECTS}
                  for d, g in zip((before, after), graphic))
    # The library gives entities of R12 handles of its own.
    if before.dxfversion < "AC1012":
        one, other = ([(kind, [t for t in tags if not isinstance(t, tuple) or t[0] not in (5, 105, 330)])
                       for kind, tags in found.values()] for found in (one, other))
    if one != other:
        for key in one.keys() | other.keys() if isinstance(one, dict) else []:
            if one.get(key) != other.get(key):
                print(f"{old}: {one.get(key)}\n  became {other.get(key)}")
                return
        print(f"{old}: differs in {new}")


# What R12 does not know, or what another version says otherwise.
NOT_COMPARED = {"handle", "owner", "paperspace", "geometry", "count", "plotstyle_handle", "dimtad",
                "dimblk", "dimblk1", "dimblk2", "dimblk_handle", "dimblk1_handle", "dimblk2_handle"}


def values_of(entity):
    values = [entity.dxftype()]
    # Drawings of R12 have all points and angles in all dimensions, newer ones those of their kind.
    unused = ("0.0", "(0.0, 0.0, 0.0)") if entity.dxftype() == "DIMENSION" else ()
    values += sorted((k, str(v)) for k, v in entity.dxfattribs().items()
                     if k not in NOT_COMPARED and str(v) not in unused)
    values += [entity.has_xdata("ACAD") and [tuple(t) for t in entity.get_xdata("ACAD")]]
    parts = list(entity.vertices) if entity.dxftype() == "POLYLINE" else []
    for part in parts + list(getattr(entity, "attribs", [])):
        values.append(values_of(part))
    return values


def converted(old, new):
    try:
        before, mended = read(old)
        found = before.audit()
        before_errors = {e.code for e in mended.errors + mended.fixes + found.errors + found.fixes}
    except Exception:
        return
    after = read(new)[0]
    print(end="" if after.dxfversion == "AC1015" else f"version {after.dxfversion}\n")
    for table in ("layers", "linetypes", "styles", "appids", "dimstyles", "ucs", "views"):
        names = [{r.dxf.name.lower() for r in getattr(d, table)} for d in (before, after)]
        for name in names[0] - names[1]:
            print(f"{old}: gone {table} {name}")
    spaces = [(before.modelspace(), after.modelspace())]
    if [e for e in before.layout("Layout1")]:
        spaces.append((before.layout("Layout1"), after.layout("Layout1")))
    for block in before.blocks:
        if not block.is_any_layout:
            spaces.append((block, after.blocks.get(block.name)))
    if any("Removed invalid" in e.message for e in mended.fixes):
        spaces = []  # the reader has thrown entities of the old drawing away
    for a, b in spaces:
        # Kinds that R12 does not have are read without their values there.
        one, other = ([values_of(e) if e.dxftype() != "SPLINE" else e.dxftype() for e in space or []]
                      for space in (a, b))
        for x, y in zip(one, other):
            if x != y:
                print(f"{old}: {x}\n  became {y}")
        if len(one) != len(other):
            print(f"{old}: {len(one)} entities became {len(other)}")
    # What the reader does not take without mending, though it took the old drawing so, is a fault.
    try:
        doc = ezdxf.readfile(new)
    except Exception as fault:
        try:
            ezdxf.readfile(old)
            print(f"{old}: {fault}")
        except Exception:
            pass
        return
    auditor = doc.audit()
    for error in auditor.errors + auditor.fixes:
        if error.code not in before_errors:
            print(f"{old}: {error.message}")


def write_old(path):
    doc = ezdxf.new("R12", setup=True)
    doc.layers.add("WALLS", color=3, linetype="DASHED")
    for space in (doc.modelspace(), doc.blocks.new("TREE"), doc.layout("Layout1")):
        at = {"layer": "WALLS", "color": 1, "linetype": "DASHED"}
        space.add_line((40500123.456, 1), (2, 3, 4), at)
        space.add_point((1, 2), dict(at, thickness=2))
        space.add_circle((1, 2), 3, dict(at, extrusion=(0, 0, -1)))
        space.add_arc((1, 2), 3, 10, 200, at)
        space.add_text("m\u00fcller %%d", dxfattribs=dict(at, height=2, rotation=30, halign=1, valign=2, insert=(1, 2),
                                                         align_point=(3, 2)))
        space.add_polyline2d([(0, 0, 0.5), (1, 0, 0), (1, 1, 0)], format="xyb", close=True)
        space.add_polyline3d([(0, 0, 1), (1, 0, 2), (1, 1, 3)])
        space.add_polymesh((3, 3))
        space.add_solid([(0, 0), (1, 0), (0, 1), (1, 1)], at)
        space.add_trace([(0, 0), (1, 0), (0, 1), (1, 1)], at)
        space.add_3dface([(0, 0), (1, 0, 5), (0, 1), (1, 1)], at)
        face = space.add_polyface()
        face.append_faces([[(0, 0, 0), (1, 0, 0), (1, 1, 0)]])
        line = space.add_line((0, 0), (1, 1))
        doc.appids.add("SURVEY") if "SURVEY" not in doc.appids else None
        line.set_xdata("SURVEY", [(1000, "text"), (1040, 1.5), (1070, 7)])
    doc.blocks.get("TREE").add_attdef("NUMBER", (0, 0), dxfattribs={"height": 1})
    insert = doc.modelspace().add_blockref("TREE", (5, 5), {"row_count": 2, "row_spacing": 3.0})
    insert.add_attrib("NUMBER", "17", (5, 5))
    doc.modelspace().add_blockref("TREE", (9, 5)).add_attrib("NUMBER", "18", (9, 5))
    for rotated in (
            doc.modelspace().add_linear_dim((0, 5), (0, 0), (10, 0), angle=15),
            doc.modelspace().add_aligned_dim((0, 0), (10, 3), 2),
            doc.modelspace().add_radius_dim((0, 0), radius=5, angle=30),
            doc.modelspace().add_diameter_dim((0, 0), radius=5, angle=30),
            doc.modelspace().add_angular_dim_2l((0, 9), ((0, 0), (5, 5)), ((0, 0), (5, -5)))):
        rotated.render()
    doc.saveas(path)


if sys.argv[1] == "audit":
    audit(sys.argv[2:])
elif sys.argv[1] == "old":
    write_old(sys.argv[2])
else:
    compare = {"differences": differences, "converted": converted, "forms": forms}[sys.argv[1]]
    for old, new in zip(sys.argv[2::2], sys.argv[3::2]):
        compare(old, new)
