"""What mutagen sees in a file's bytes, frame by frame and item by item, in their order."""

from collections import namedtuple
from io import BytesIO

from mutagen import apev2, id3
from mutagen.id3 import _frames
from mutagen.id3._util import ID3JunkFrameError

# `content` is None where the frame could not be read; `unicode` where it holds no text.
Seen = namedtuple("Seen", "name flags raw content unicode")
Tag = namedtuple("Tag", "version flags size frames rest")
Items = namedtuple("Items", "begin end items")

IMAGES = {"PNG": "image/png", "JPG": "image/jpeg"}


class EveryName(dict):
    """The frames by their names; one that is not known holds bytes."""

    def __missing__(self, name):
        if not (name.isalnum() and name.upper() == name):
            raise KeyError(name)
        return type(name, (_frames.BinaryFrame,), {})


KNOWN = EveryName({**id3.Frames, **id3.Frames_2_2})
LOG = []
from_data = _frames.Frame.__dict__["_fromData"].__func__


def logged(cls, header, flags, data):
    name = cls.__name__
    if len(name) == 3 and cls.__base__ not in (_frames.Frame, _frames.BinaryFrame):
        name = cls.__base__.__name__
    try:
        frame = from_data(cls, header, flags, data)
    except Exception:
        LOG.append(Seen(name, flags, bytes(data), None, None))
        raise ID3JunkFrameError("seen") from None
    encoding = getattr(frame, "encoding", None)
    LOG.append(Seen(name, flags, bytes(data), content(frame),
                    None if encoding is None else encoding != 0))
    return frame


_frames.Frame._fromData = classmethod(logged)
# Text that is no UTF-8 is to be seen too.
apev2._APEUtf8Value._parse = lambda value, data: setattr(
    value, "value", data.decode("utf-8", "surrogateescape"))
apev2._APEUtf8Value._write = lambda value: value.value.encode("utf-8", "surrogateescape")


def plain(value):
    if isinstance(value, id3.ID3TimeStamp):
        return str(value)
    if isinstance(value, (list, tuple)):
        return tuple(plain(each) for each in value)
    if hasattr(value, "values"):
        return tuple(content(frame) for frame in value.values())
    return bytes(value) if isinstance(value, (bytes, bytearray)) else str(value)


def content(frame):
    parts = [(spec.name, plain(getattr(frame, spec.name, None)))
             for spec in (*frame._framespec, *frame._optionalspec) if spec.name != "encoding"]
    return tuple((name, IMAGES.get(value, value) if name == "mime" else value)
                 for name, value in parts)


def id3v2(data):
    """None where there is no tag or mutagen cannot read it."""
    LOG.clear()
    try:
        tag = id3.ID3(BytesIO(data), known_frames=KNOWN, translate=False, load_v1=False)
    except Exception:
        return None
    frames = list(LOG)
    rest = data[tag._header.size - tag._padding:tag._header.size]
    return Tag(tag.version[1], tag._header._flags, tag._header.size, frames, rest.strip(b"\0"))


def date(data):
    """The date that all frames of a tag make together."""
    try:
        found = id3.ID3(BytesIO(data), load_v1=False).get("TDRC")
    except Exception:
        return None
    return str(found.text[0]) if found and found.text else ""


def apev2_items(data):
    """The items with their keys as they are written; None as above."""
    try:
        place = apev2._APEv2Data(BytesIO(data))
        tag = apev2.APEv2(BytesIO(data))
    except Exception:
        return None
    is_old = place.version == (1000).to_bytes(4, "little")
    items = [(key, tag[key].kind, as_utf8(tag[key]._write()) if is_old else tag[key]._write())
             for key in tag.keys()]
    return Items(place.start, place.end, items)


def as_utf8(value):
    """The first version's text is 8 bits wide; what is written of it is UTF-8."""
    try:
        value.decode("utf-8")
        return value
    except UnicodeDecodeError:
        return value.decode("cp1252", "replace").encode()


def id3v1(data):
    """The block's fields as bytes; a track number is the comment's end."""
    block = data[-128:]
    if len(block) < 128 or block[:3] != b"TAG":
        return None
    return {"title": block[3:33], "artist": block[33:63], "album": block[63:93],
            "year": block[93:97], "comment": block[97:127], "genre": block[127:]}
