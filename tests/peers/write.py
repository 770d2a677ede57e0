#!/usr/bin/python3
"""Changes copies of MP3 files and asks mutagen and TagLib what became of them.

write.py PROGRAM TAGLIB_FIELDS FOLDER... (`./test --peers` calls it)
write.py PROGRAM TAGLIB_FIELDS --many COUNT: COUNT files of every kind of tag, in one run

The new values are read by both, the sound stays byte for byte, a second run finds nothing to do,
and what else mutagen can put into a tag is there after one field was changed.
"""

import json
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from mutagen import apev2, id3

from peers import ape_texts, id3_texts, id3v1_tag, loaded, taglib_fields

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "bench"))

SETTINGS = {
    "2.3": {},
    "2.3 alone": {"EnableID3v1Tags": 0},
    "2.3 in UTF-16": {"EnableID3v2Unicode": -1},
    "2.4": {"EnableID3v2.4": -1},
    "2.4 in UTF-16": {"EnableID3v2.4": -1, "EnableID3v2Unicode": -1},
    "2.3 and APEv2": {"EnableAPE2Tags": -1},
    "2.4 and APEv2 alone": {"EnableID3v2.4": -1, "EnableAPE2Tags": -1, "EnableID3v1Tags": 0},
}
OPTIONS = {"artist": "/a", "title": "/t", "mix": "/m", "album": "/l", "year": "/y",
           "track": "/tn", "genre": "/g"}
VALUES = [
    {"artist": "Zoë Größe", "title": "Déjà vu of a title beyond thirty characters", "mix": "Ñu",
     "album": "Ærø", "year": "1987", "track": "7/15", "genre": "Ambient"},
    {"artist": "Ёлка и Щегол", "title": "Объезд «Южный»", "mix": "Ночной", "album": "Эхо",
     "year": "2019", "track": "11/12", "genre": "Дворовый романс"},
]
FAILURES = []


def expect(condition, *words):
    if not condition:
        FAILURES.append(words)
        print(*words)


def change(program, folder, settings, *words):
    """The results by path; each file may have several."""
    with tempfile.TemporaryDirectory() as config:
        (Path(config) / "tavlo").mkdir()
        (Path(config) / "tavlo/settings.txt").write_text(
            "[HKEY_CURRENT_USER\\Software\\Tavlo\\Audio Desk\\4.0\\Settings]\n"
            + "".join(f'"{name}"={value}\n' for name, value in settings.items()))
        environment = os.environ | {"TAVLO_ANSI_CODE_PAGE": "1252", "XDG_CONFIG_HOME": config}
        done = subprocess.run([program, "/change", "/s", "/json", folder, *words],
                              env=environment, stdout=subprocess.PIPE, check=True)
    results = {}
    for line in done.stdout.splitlines():
        row = json.loads(line)
        results.setdefault(row["Path"], set()).add(row["Result"])
    return results


def sound(data):
    """What lies between the tags."""
    if data[:3] == b"ID3":
        data = data[10 + sum((byte & 127) << shift
                             for byte, shift in zip(data[6:10], (21, 14, 7, 0))):]
    while True:
        if data[-128:-125] == b"TAG":
            data = data[:-128]
        elif data[-9:] == b"LYRICS200":
            data = data[:-15 - int(data[-15:-9])]
        elif data[-32:-24] == b"APETAGEX":
            size = int.from_bytes(data[-20:-16], "little")
            data = data[:-size - 32 * (data[-9] >> 7)]
        else:
            return data


def brackets(texts):
    return texts | {"title": texts.get("title", "").replace("[", "(").replace("]", ")")}


def v1_values(values):
    def cut(text):
        return text.encode("cp1252", "replace")[:30].decode("cp1252")
    texts = {field: cut(values[field]) for field in ("artist", "title", "album")}
    texts |= {"year": values["year"], "track": values["track"].partition("/")[0]}
    return texts | ({"genre": values["genre"]} if values["genre"] in id3.TCON.GENRES else {})


def check_values(path, theirs, values, settings):
    wanted = values | {"title": f"{values['title']} ({values['mix']})"}
    del wanted["mix"]
    tags = {"ID3v2": (loaded(id3.ID3, path, load_v1=False), id3_texts, wanted)}
    # Neither of the two looks in front of a Lyrics3 block that has no ID3v1 block behind it.
    if "EnableAPE2Tags" in settings and not path.read_bytes().endswith(b"LYRICS200"):
        tags["APEv2"] = (loaded(apev2.APEv2, path), ape_texts, wanted)
    if "EnableID3v1Tags" not in settings:
        tags["ID3v1"] = (id3v1_tag(path), id3_texts, v1_values(values))
    for name, (tag, texts_of, texts) in tags.items():
        found = brackets(texts_of(tag)) if tag else {}
        expect(texts.items() <= found.items(), path, settings, name, found)
    version = tags["ID3v2"][0].version[1] if tags["ID3v2"][0] else 0
    expect(version == (4 if "EnableID3v2.4" in settings else 3), path, settings, version)
    numbers = {"track": wanted["track"].partition("/")[0]}
    expect((wanted | numbers).items() <= brackets(theirs).items(), path, settings, "TagLib", theirs)


def fresh(folder, work):
    shutil.rmtree(work, ignore_errors=True)
    shutil.copytree(folder, work)
    return sorted(work.rglob("*.mp3"))


def check_folder(program, taglib, folder, work, settings, values):
    paths = fresh(folder, work)
    words = [word for field, value in values.items() for word in (OPTIONS[field], value)]
    results = change(program, work, settings, *words)
    expect(sorted(results) == [str(path) for path in paths], folder, "not every file was changed")
    for path, result in results.items():
        expect(result == {"changed"}, path, settings, result)
    for path, theirs in zip(paths, taglib_fields(taglib, map(str, paths)), strict=True):
        original = folder / path.relative_to(work)
        expect(sound(path.read_bytes()) == sound(original.read_bytes()), path, settings, "sound")
        check_values(path, theirs, values, settings)
    again = change(program, work, settings, *words)
    expect(all(result == {"unchanged"} for result in again.values()), folder, settings, "again")
    return len(paths)


# --- What is not to be changed -------------------------------------------------------------------

SPECS = {
    "Latin1TextSpec": "latin", "SizedIntegerSpec": 5, "CTOCFlagsSpec": 3, "ByteSpec": 8,
    "Latin1TextListSpec": ["first", "second"], "EncodedTextSpec": "Текст и text",
    "BinaryDataSpec": b"\0\xff\xfe\0\xe0data", "KeyEventSpec": [(1, 2), (3, 400)],
    "SynchronizedTextSpec": [("один", 1), ("two", 2000)], "ChannelSpec": 1,
    "VolumeAdjustmentSpec": -1.5, "VolumePeakSpec": 0.5, "VolumeAdjustmentsSpec": [(1.0, 2.0)],
    "RVASpec": [1, 2, 3, 4], "PictureTypeSpec": 3, "IntegerSpec": 70000, "FrameIDSpec": "TIT2",
    "ASPIIndexSpec": [1, 2, 3, 4, 5],
}
FIELDS = "TIT2 TPE1 TALB TCOM TENC TOPE TCOP TSSE TCON".split()
SUB_FRAMES = [id3.TIT2(encoding=3, text="Глава"), id3.WXXX(encoding=3, desc="", url="http://a/b")]


def value_of(frame, spec):
    kind = type(spec).__name__
    if frame is id3.TCMP and kind == "MultiSpec":
        return ["1"]
    if kind == "EncodingSpec":
        return id3.Encoding.UTF8
    if kind == "StringSpec":
        return "20010203"[:spec.len] if spec.len == 8 else "rus"
    if kind == "ID3FramesSpec":
        return SUB_FRAMES
    if kind != "MultiSpec":
        return SPECS[kind]
    if len(spec.specs) > 1:
        return [["role", "имя"], ["part", "name"]]
    numeric = issubclass(frame, (id3.NumericTextFrame, id3.NumericPartTextFrame))
    if issubclass(frame, id3.TimeStampTextFrame):
        return ["2007-08-09"]
    return ["5/6" if frame is id3.TRCK else "5"] if numeric else ["Первый", "second"]


def frames_of_every_kind():
    for frame in id3.Frames.values():
        specs = [*frame._framespec, *frame._optionalspec]
        yield frame(**{spec.name: value_of(frame, spec) for spec in specs})
    for number, lang in enumerate(("eng", "deu")):
        yield id3.COMM(encoding=0, lang=lang, desc="", text=[f"plain {number}"])
        yield id3.COMM(encoding=1, lang=lang, desc="описание", text=["one", "два"])
        yield id3.USLT(encoding=2, lang=lang, desc="", text="line\nстрока")
        yield id3.TXXX(encoding=1, desc=f"Ключ {number}", text=["a", "б"])
        yield id3.WXXX(encoding=1, desc=f"Адрес {number}", url="http://example.org/é")
        yield id3.APIC(encoding=1, mime="image/png", type=4 + number, desc="Вид", data=b"\x89PNG\0")
        yield id3.WOAR(url=f"http://example.org/{number}")
        yield id3.UFID(owner=f"http://owner/{number}", data=b"\0\1\2")
        yield id3.PRIV(owner="owner", data=bytes([0, 255, number]))


def contents(tag):
    """All frames but the year's, without their texts' encodings."""
    def plain(name, value):
        if name == "sub_frames":
            return [values(frame) for frame in value.values()]
        return [str(text) for text in value] if name == "text" and type(value) is list else value

    def values(frame):
        return {spec.name: plain(spec.name, getattr(frame, spec.name, None))
                for spec in (*frame._framespec, *frame._optionalspec) if spec.name != "encoding"}
    return {key: values(frame) for key, frame in tag.items() if key not in ("TYER", "TDRC")}


def around_change(program, work, settings, bare, tag, read, **options):
    """What `read` says of a bare file with that tag, before and after we set its year."""
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir()
    path = work / "every kind.mp3"
    shutil.copy(bare, path)
    tag.save(path, **options)
    before = read(path)
    change(program, work, settings, "/y", "2001")
    return before, read(path)


def is_known(key, before, after, version, written):
    """Fields hold one text: several values are joined, and 2.3 has none behind a NUL."""
    if key.partition(":")[0] not in FIELDS or version == written:
        return False
    old, new = before["text"], after["text"]
    return new == (["; ".join(old)] if version == 4 else old[:1])


def check_kept_frames(program, bare, work):
    tag = id3.ID3()
    for frame in frames_of_every_kind():
        tag.add(frame)

    def read(path):
        return contents(id3.ID3(path, translate=False, load_v1=False))
    for version in (3, 4):
        for name, settings in SETTINGS.items():
            before, after = around_change(program, work, settings, bare, tag, read, v1=0,
                                          v2_version=version, v23_sep=None)
            written = 4 if "EnableID3v2.4" in settings else 3
            for key in sorted(before.keys() | after.keys()):
                old, new = before.get(key), after.get(key)
                expect(old == new or is_known(key, old, new, version, written),
                       f"2.{version} -> {name}", key, old, new)


def check_kept_items(program, bare, work):
    tag = apev2.APEv2()
    tag["Title"] = "T"
    tag["Artist"] = ["One", "Two"]
    tag["Own"] = "text"
    tag["Several"] = ["one", "два"]
    tag["Binary"] = apev2.APEValue(b"\0\xff" * 500, apev2.BINARY)
    tag["Link"] = apev2.APEValue("http://example.org/a", apev2.EXTERNAL)
    for place in ("front", "back"):
        data = place.encode() + b".png\0\x89PNG" + bytes(90)
        tag[f"Cover Art ({place})"] = apev2.APEValue(data, apev2.BINARY)

    def read(path):
        items = apev2.APEv2(path).items()
        return {key: (value.kind, value.value) for key, value in items if key != "Year"}
    for name, settings in SETTINGS.items():
        before, after = around_change(program, work, settings, bare, tag, read)
        expect(before == after, "APEv2", name, after)


def main():
    program, taglib, *folders = sys.argv[1:]
    with tempfile.TemporaryDirectory() as place:
        work, files = Path(place) / "work", 0
        if folders[0] == "--many":
            import make_corpus
            made = Path(place) / "made"
            make_corpus.make_music(made, int(folders[1]))
            files = check_folder(program, taglib, made, work, SETTINGS["2.3 and APEv2"], VALUES[0])
        else:
            for folder in map(Path, folders):
                for settings in SETTINGS.values():
                    for values in VALUES:
                        files += check_folder(program, taglib, folder, work, settings, values)
            bare = next(Path(folders[0]).glob("*no tag*"))
            check_kept_frames(program, bare, work)
            check_kept_items(program, bare, work)
    print(f"{files} files changed, {len(FAILURES)} failures")
    return 1 if FAILURES or not files else 0


if __name__ == "__main__":
    sys.exit(main())
