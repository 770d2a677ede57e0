#!/usr/bin/python3
"""Makes the trees to measure with: bench/make_corpus.py FOLDER

FOLDER/music gets 10,000 MP3 files with every kind of tag around the audio of samples/: one in
twelve with a picture of 200 KB, up to 4 KB of padding, eight texts of another program in a quarter
of the ID3v2 tags. FOLDER/empty gets 200,000 empty files in 2,000 folders. FOLDER/room and
FOLDER/tight get 1,000 files each of some 200 KB with an ID3v2.3 tag in UTF-16 alone, with 1 KB of
padding and with none. FOLDER/rename gets 2,000 files like those of FOLDER/music in one folder, all
with tags and each with a title of its own.
"""

import io
import random
import sys
from pathlib import Path

from mutagen import apev2, id3

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "samples"))
import make  # noqa: E402

LATIN = "Silver River Night Golden Café Winter Paper Moon Crystal Ocean Velvet Harbour".split()
CYRILLIC = "Ночь Река Город Зимний Поезд Осень Море Звезда Снег Ветер Трамвай Весна".split()
PICTURE = b"\xff\xd8\xff\xe0\0\x10JFIF\0" + bytes(range(256)) * 800

# kind of tag: how many of 100 files have it
KINDS = {"none": 5, "v1": 8, "latin1": 15, "utf16": 22, "v24": 15, "v23 v1": 15, "ape v1": 6,
         "picture": 8, "v22": 4, "lyrics": 2}


def bare_audio():
    """The samples without their tags."""
    for path in sorted((ROOT / "samples").rglob("*.mp3")):
        data = io.BytesIO(path.read_bytes())
        for delete in (apev2.delete, id3.delete):
            data.seek(0)
            delete(data)
        if b"LYRICSBEGIN" not in data.getvalue():
            yield data.getvalue()


def texts(rng, words):
    def some(count):
        return " ".join(rng.choice(words) for _ in range(rng.randint(1, count)))
    values = {"TIT2": some(5), "TPE1": some(2), "TALB": some(3), "TRCK": f"{rng.randint(1, 99)}/99",
              "TCON": rng.choice(["Rock", "(17)", "Ambient"]), "comment": some(8)}
    if rng.random() < 0.5:
        values |= {"TPE2": values["TPE1"], "TPOS": "1/2", "TENC": "LAME", "TCOM": some(2)}
    return values


def id3v2(rng, version, encoding, values, *others, padding=None):
    tag = id3.ID3()
    for name, text in values.items():
        if name != "comment":
            tag.add(getattr(id3, name)(encoding=encoding, text=text))
    tag.add(make.comment(encoding, values["comment"]))
    tag.add((id3.TDRC if version == 4 else id3.TYER)(encoding=0, text="2001"))
    if rng.random() < 0.25:
        others = (*others, *(id3.TXXX(encoding=encoding, desc=f"Catalogue {i}", text=values["TALB"])
                             for i in range(8)))
    for frame in others:
        tag.add(frame)
    out = io.BytesIO()
    if padding is None:
        padding = rng.choice((0, 256, 1024, 2048, 4096))
    tag.save(out, v1=0, v2_version=version, padding=lambda info: padding)
    return out.getvalue()


def ape(values):
    tag = apev2.APEv2()
    for key, name in (("Title", "TIT2"), ("Artist", "TPE1"), ("Album", "TALB"), ("Track", "TRCK"),
                      ("Genre", "TCON"), ("Comment", "comment")):
        tag[key] = values[name]
    out = io.BytesIO()
    tag.save(out)
    return out.getvalue()


def v1(values):
    return make.id3v1(*(text.encode("cp1251", "replace").decode("latin-1") for text in (
        values["TIT2"], values["TPE1"], values["TALB"], "2001", values["comment"])), 7, 17)


def dressed(kind, audio, rng, mark=""):
    values = texts(rng, LATIN if kind == "latin1" or rng.random() < 0.6 else CYRILLIC)
    values["TIT2"] = mark + values["TIT2"]
    utf16 = id3v2(rng, 3, id3.Encoding.UTF16, values) if kind in ("v23 v1", "utf16", "lyrics") \
        else b""
    if kind == "v22":
        return make.id3v22([(b"TT2", 1, values["TIT2"].encode("utf-16")),
                            (b"TCO", 0, b"(17)"), (b"TRK", 0, b"3/12")]) + audio
    return {
        "none": lambda: audio,
        "v1": lambda: audio + v1(values),
        "latin1": lambda: id3v2(rng, 3, id3.Encoding.LATIN1, values) + audio,
        "utf16": lambda: utf16 + audio,
        "v24": lambda: id3v2(rng, 4, id3.Encoding.UTF8, values) + audio,
        "v23 v1": lambda: utf16 + audio + v1(values),
        "ape v1": lambda: audio + ape(values) + v1(values),
        "picture": lambda: id3v2(rng, 3, id3.Encoding.UTF16, values, id3.APIC(
            encoding=0, mime="image/jpeg", type=3, desc="", data=PICTURE)) + audio,
        "lyrics": lambda: utf16 + audio + make.lyrics3v2(
            [(b"IND", b"00"), (b"ETT", b"Title"), (b"EAR", b"Artist")]) + v1(values),
    }[kind]()


def make_music(folder, count=10000):
    rng = random.Random(1)
    sounds = list(bare_audio())
    # One file in ten lacks the header frame that tells its length.
    counted = [sound for sound in sounds if b"Info" in sound[:100] or b"Xing" in sound[:100]]
    uncounted = [sound for sound in sounds if sound not in counted]
    deck = [kind for kind, share in KINDS.items() for _ in range(share)]
    for number in range(count):
        album = folder / f"Artist {number // 400}" / f"Album {number // 100 % 4}"
        if number % 100 == 0:
            album.mkdir(parents=True)
            rng.shuffle(deck)
        data = dressed(deck[number % 100], rng.choice(uncounted if number % 10 == 0 else counted),
                       rng)
        (album / f"{number % 100:02d} - {deck[number % 100]}.mp3").write_bytes(data)


def make_renaming(folder, count=2000):
    rng = random.Random(3)
    sounds = list(bare_audio())
    deck = [kind for kind, share in KINDS.items() for _ in range(share) if kind != "none"]
    folder.mkdir(parents=True)
    for number in range(count):
        data = dressed(deck[number % len(deck)], rng.choice(sounds), rng, f"{number} ")
        (folder / f"track{number:04d}.mp3").write_bytes(data)


def make_writing(folder, padding, count=1000, size=200000):
    rng = random.Random(2)
    sound = max(bare_audio(), key=len)
    folder.mkdir(parents=True)
    for number in range(count):
        values = texts(rng, LATIN if rng.random() < 0.6 else CYRILLIC)
        tag = id3v2(rng, 3, id3.Encoding.UTF16, values, padding=padding)
        audio = sound * rng.randint(size // 2 // len(sound), size * 3 // 2 // len(sound))
        (folder / f"{number:03d}.mp3").write_bytes(tag + audio)


def make_empty(folder, folders=2000, files=100):
    for number in range(folders):
        place = folder / f"Artist {number // 20}" / f"Album {number % 20}"
        place.mkdir(parents=True)
        for track in range(files):
            (place / f"{track:02d} - A song with a usual name {number}.mp3").touch()


if __name__ == "__main__":
    make_music(Path(sys.argv[1]) / "music")
    make_empty(Path(sys.argv[1]) / "empty")
    make_writing(Path(sys.argv[1]) / "room", 1024)
    make_writing(Path(sys.argv[1]) / "tight", 0)
    make_renaming(Path(sys.argv[1]) / "rename")
