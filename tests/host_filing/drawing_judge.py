"""An independent look at drawings.

drawing_judge.py audit FILE...         errors that the audit finds, one a line
drawing_judge.py differences OLD NEW [OLD NEW]...
                                       what differs between two drawings, one object a line; a pair
                                       of which the library cannot read the old one is left out
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


def read(path):
    return recover.readfile(path)


def tags_of(entity, version):
    try:
        return [(t.code, t.value) for t in TagCollector.dxftags(entity, dxfversion=version)]
    except Exception as fault:  # what cannot be exported counts with its attributes
        return [str(type(fault)), sorted(map(str, entity.dxfattribs().items()))]


def objects_of(doc):
    """What stands in the model and among the objects; the library makes up tables and ends itself."""
    found = {}
    for entity in list(doc.modelspace()) + list(doc.objects):
        found[entity.dxf.handle] = (entity.dxftype(), tags_of(entity, doc.dxfversion))
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


if sys.argv[1] == "audit":
    audit(sys.argv[2:])
else:
    for old, new in zip(sys.argv[2::2], sys.argv[3::2]):
        differences(old, new)
