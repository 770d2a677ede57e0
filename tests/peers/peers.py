"""What mutagen and TagLib say of MP3 files, in the fields that are compared."""

import json
import subprocess

import mutagen
from mutagen import apev2, id3, mp3
from mutagen.id3._id3v1 import find_id3v1
from mutagen.mp3 import BitrateMode

TEXTS = ("artist", "title", "album", "year", "track", "genre", "comment", "composer", "copyright")
STREAM = ("seconds", "bitrate", "sample rate", "channel mode", "version", "layer", "vbr")

ID3_FRAMES = {"artist": "TPE1", "title": "TIT2", "album": "TALB", "year": "TDRC", "track": "TRCK",
              "genre": "TCON", "composer": "TCOM", "copyright": "TCOP"}
APE_KEYS = {"artist": "Artist", "title": "Title", "album": "Album", "year": "Year",
            "track": "Track", "genre": "Genre", "comment": "Comment", "composer": "Composer",
            "copyright": "Copyright"}


def loaded(load, *arguments, **options):
    try:
        return load(*arguments, **options)
    except (mutagen.MutagenError, EOFError, ValueError, OverflowError,
            KeyError):
        return None


def id3v1_tag(path):
    with open(path, "rb") as file:
        frames = find_id3v1(file)[0]
    tag = id3.ID3()
    for frame in (frames or {}).values():
        if frame.FrameID == "COMM":
            frame.desc = ""
        tag.add(frame)
    return None if frames is None else tag


def id3_texts(tag):
    texts = {}
    for field, name in ID3_FRAMES.items():
        frame = tag.get(name)
        if frame is not None:
            values = frame.genres if name == "TCON" else frame.text
            texts[field] = "; ".join(str(value) for value in values)
    comments = [frame for frame in tag.getall("COMM") if not frame.desc]
    if comments:
        texts["comment"] = "; ".join(comments[0].text)
    return texts


def ape_texts(tag):
    return {field: "; ".join(tag[key]) for field, key in APE_KEYS.items()
            if key in tag and tag[key].kind == apev2.TEXT}


def id3_picture(tag):
    pictures = [frame for frame in tag.getall("APIC") if frame.data]
    covers = [frame for frame in pictures if frame.type == id3.PictureType.COVER_FRONT]
    return len((covers + pictures)[0].data) if pictures else 0


def mutagen_stream(path):
    info = loaded(mp3.MP3, path)
    if info is None:
        return dict.fromkeys(STREAM, 0) | {"vbr": False}
    info = info.info
    modes = (BitrateMode.VBR, BitrateMode.ABR)
    return {"seconds": info.length, "bitrate": info.bitrate / 1000,
            "sample rate": info.sample_rate, "channel mode": info.mode,
            "version": {1: 1, 2: 2, 2.5: 25}[info.version], "layer": info.layer,
            "vbr": info.bitrate_mode in modes}


def mutagen_fields(path):
    v2 = loaded(id3.ID3, path, load_v1=False)
    ape = loaded(apev2.APEv2, path)
    v1 = id3v1_tag(path)
    fields = dict.fromkeys(TEXTS, "")
    for texts in (id3_texts(v1) if v1 else {}, ape_texts(ape) if ape else {},
                  id3_texts(v2) if v2 else {}):
        fields |= {field: text for field, text in texts.items() if text.strip()}
    cover = ape.get("Cover Art (front)") if ape else None
    picture = id3_picture(v2) if v2 else 0
    if cover is not None and not picture:
        picture = len(cover.value.partition(b"\0")[2])
    return fields | mutagen_stream(path) | {
        "v1": v1 is not None, "v2": v2 is not None, "ape": ape is not None, "picture": picture}


def taglib_fields(program, paths):
    lines = subprocess.run([program], input="\n".join(paths).encode(), stdout=subprocess.PIPE,
                           stderr=subprocess.DEVNULL, check=True).stdout.splitlines()
    for line in lines:
        fields = json.loads(line)
        if fields is None:
            yield None
            continue
        has_stream = fields["layer"] != 0
        fields["seconds"] = fields.pop("milliseconds") / 1000
        fields["version"] = (1, 2, 25)[fields["version"]] if has_stream else 0
        for mark in ("v1", "v2", "ape"):
            fields[mark] = bool(fields[mark])
        for number in ("year", "track"):
            fields[number] = str(fields[number] or "")
        yield fields
