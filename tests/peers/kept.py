#!/usr/bin/python3
"""Proves that a change keeps what was not edited: frame by frame, item by item, byte by byte.

kept.py --program PATH [--count N] [--first N] [--kind NAME]... [--sample] [--show N]
kept.py --program PATH --one KIND:NUMBER [--keep FOLDER]

Files with tags of every kind, right, odd and broken, and COUNT mutations of each kind, have one
field changed by `tavlo /change` under several settings. What mutagen saw before it has to see after,
in the same order; where the tag's version stays each frame keeps its bytes. The sound and every tag
that the change is none of are the same bytes, a refused file is the same file, and a second run finds
nothing to do. A number names one file for ever: --one makes it again, shows it and checks it.
"""

import argparse
import json
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
from collections import Counter
from multiprocessing import Pool
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "fuzz")]

import outside_view as outside  # noqa: E402
import tag_bytes as made  # noqa: E402

SETTINGS = [
    {}, {"EnableID3v2.4": -1}, {"EnableID3v2Unicode": -1}, {"EnableAPE2Tags": -1},
    {"EnableID3v2.4": -1, "EnableID3v2Unicode": -1, "EnableAPE2Tags": -1},
]
# Options and new values by field; the frames, keys and fields of ID3v1 that show them.
EDITS = {
    "artist": ("/a", ("New Player", "Новый игрок")), "title": ("/t", ("Other Song", "Другая")),
    "mix": ("/m", ("Dub", "Даб")), "album": ("/l", ("Later Work", "Поздний труд")),
    "year": ("/y", ("2019", "2019")), "track": ("/tn", ("7", "7")),
    "genre": ("/g", ("Ambient", "Своя музыка")),
}
FRAMES = {"artist": {"TPE1"}, "title": {"TIT2"}, "mix": {"TIT2"}, "album": {"TALB"},
          "year": {"TYER", "TDRC"}, "track": {"TRCK"}, "genre": {"TCON"}}
KEYS = {"artist": "artist", "title": "title", "mix": "title", "album": "album", "year": "year",
        "track": "track", "genre": "genre"}
V1_FIELDS = {"artist": {"artist"}, "title": {"title"}, "mix": set(), "album": {"album"},
             "year": {"year"}, "track": {"comment"}, "genre": {"genre"}}
DATES = {"TYER", "TDRC", "TDAT", "TIME"}
NEWER = {"TORY": "TDOR", "IPLS": "TIPL"}
MEMORY = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
SOUND = b"".join(b"\xff\xf3\x44\xc4" + number.to_bytes(2, "big") * 46 for number in range(1, 41))


# --- Files ---------------------------------------------------------------------------------------

class Made:
    """A file of a kind and a number, and what is to be done with it."""

    def __init__(self, kind, number):
        self.kind, self.number = kind, number
        self.random = random.Random(f"{kind}/{number}")
        plain = number < 0
        self.seed = -number - 1 if plain else self.random.randrange(10**6)
        head, tail, self.what = KINDS[kind](self)
        if not plain:
            for _ in range(0 if kind == "crossing" else self.random.choice((0, 1, 1, 2, 3))):
                if head and (not tail or self.random.random() < HEAD_SHARE[kind]):
                    head = self.mutated(head)
                else:
                    tail = self.mutated(tail)
        self.head, self.tail = head, tail
        self.data = head + SOUND + tail
        self.ending = "mp3" if kind not in OTHER_TYPES else ("mpc", "wv", "ape")[self.seed % 3]
        pick = self.seed // len(SEED_TABLES[kind]) if plain else self.random.randrange(10**6)
        self.field = list(EDITS)[pick % len(EDITS)]
        self.settings = pick // len(EDITS) % len(SETTINGS)
        self.option, values = EDITS[self.field]
        self.value = values[pick // 3 % 2]

    def pick(self, table):
        return table[self.seed % len(table)]

    def mutated(self, data):
        name, change = self.random.choice(MUTATIONS)
        self.what += f", {name}"
        return bytes(change(self.random, bytearray(data)))


def span(random_, data):
    begin = random_.randrange(len(data)) if data else 0
    return begin, min(len(data), begin + random_.choice((1, 2, 4, 10, 11, 40, 128)))


def flipped(random_, data):
    for _ in range(random_.choice((1, 1, 2, 4))):
        if data:
            data[random_.randrange(len(data))] ^= 1 << random_.randrange(8)
    return data


def cut(random_, data):
    begin, end = span(random_, data)
    del data[begin:end]
    return data


def doubled(random_, data):
    begin, end = span(random_, data)
    return data[:end] + data[begin:]


def resized(random_, data):
    """Another number where a size stands: of a tag, a frame, an item, a block."""
    places = [6, *(found.end() for found in re.finditer(rb"[A-Z][A-Z0-9]{2,3}", data))]
    place = random_.choice(places)
    if place + 4 <= len(data):
        old = int.from_bytes(data[place:place + 4], "big")
        new = random_.choice((0, 1, 5, old + 1, max(old, 1) - 1, old * 2, 127, 128, 2**28, 2**31,
                              2**32 - 1, random_.randrange(2**16)))
        data[place:place + 4] = (new % 2**32).to_bytes(4, "big")
    return data


def zeroed(random_, data):
    begin, end = span(random_, data)
    data[begin:end] = bytes(end - begin)
    return data


def spread(random_, data):
    begin, _ = span(random_, data)
    return data[:begin] + random_.choice((b"\0", b"\xff", b"\xff\xfe", b"\0" * 12, b"TAG", b"ID3",
                                          b"APETAGEX", b"LYRICS200")) + data[begin:]


MUTATIONS = [("flipped", flipped), ("cut", cut), ("doubled", doubled), ("resized", resized),
             ("zeroed", zeroed), ("spread", spread)]
TAILS = [("", b""), (", ID3v1", made.V1), (", APEv2 and ID3v1", made.ape(made.APE_ITEMS[:6]) + made.V1),
         (", Lyrics3 and ID3v1", made.LYRICS + made.V1),
         (", APEv2, Lyrics3 and ID3v1", made.ape(made.APE_ITEMS[:3]) + made.LYRICS + made.V1),
         (", APEv2", made.ape(made.APE_ITEMS[:2]))]
TAGS = {version: made.made_tags(version) for version in (2, 3, 4)}
APES = made.made_apes()


def shuffled_tag(random_, version):
    """Frames of several encodings in an order of their own."""
    pool = [frame for encoding in ((0, 1) if version == 2 else (0, 1, 2, 3) if version == 4 else (0, 1))
            for frame in made.usual(version, encoding)]
    frames = random_.sample(pool, random_.randrange(1, 20))
    return "frames shuffled", made.id3v2(version, frames, padding=random_.choice((0, 10, 300)))


def with_id3v2(version):
    def make(file):
        what, head = (file.pick(TAGS[version]) if file.number < 0 or file.random.random() < 0.6
                      else shuffled_tag(file.random, version))
        more, tail = TAILS[(file.seed // len(TAGS[version]) + file.seed) % len(TAILS)]
        return head, tail, f"2.{version} {what}{more}"
    return make


def with_apev2(file):
    what, tail = file.pick(APES)
    block = file.seed // len(APES) % 3
    what += ("", ", ID3v1", ", Lyrics3 and ID3v1")[block]
    return b"", tail + (b"", made.V1, made.LYRICS + made.V1)[block], f"APEv2 {what}"


def with_id3v1(file):
    what, block = file.pick(made.ODD_V1)
    head = b"" if file.seed // len(made.ODD_V1) % 2 else made.id3v2(3, made.usual(3, 1))
    return head, block, f"ID3v1 {what}" + (", ID3v2" if head else "")


def with_lyrics3(file):
    what, block = file.pick(made.ODD_V1)
    block = (block, block, b"")[file.seed // len(made.ODD_V1) % 3]
    tag = (b"", made.ape(made.APE_ITEMS[:4]))[file.seed // 2 // len(made.ODD_V1) % 2]
    return b"", tag + made.LYRICS + block, f"Lyrics3, ID3v1 {what if block else 'none'}" + (
        ", APEv2" if tag else "")


def of_others(file):
    """Musepack, WavPack and Monkey's Audio, with APEv2."""
    what, tail = file.pick(APES)
    return b"", tail + (b"", made.V1)[file.seed // len(APES) % 2], f"other type, APEv2 {what}"


def crossing(file):
    """The same with an ID3v2 tag, whose fields have to go over into the APEv2 tag."""
    version = 2 + file.seed % 3
    encoding = file.seed // 3 % (2 if version == 2 else 2 if version == 3 else 4)
    head = made.id3v2(version, made.usual(version, encoding), padding=40)
    own = made.ape([(b"Own", b"kept", 0), (b"Link", b"http://a", 4)])
    return head, (own, b"", made.V1)[file.seed // 12 % 3], f"other type, 2.{version} in {encoding}"


KINDS = {"id3v2.2": with_id3v2(2), "id3v2.3": with_id3v2(3), "id3v2.4": with_id3v2(4),
         "apev2": with_apev2, "id3v1": with_id3v1, "lyrics3": with_lyrics3, "others": of_others,
         "crossing": crossing}
OTHER_TYPES = ("others", "crossing")
# What the frames of `usual_frames` are called in APEv2, by name or name and description.
CROSSINGS = {
    "TIT2": ("title",), "TPE1": ("artist",), "TALB": ("album",), "TYER": ("year",),
    "TDRC": ("year",), "TRCK": ("track",), "TCON": ("genre",), "TCOM": ("composer",),
    "TENC": ("encodedby", "encoded by"), "TPE2": ("album artist", "albumartist"),
    "TPOS": ("disc", "discnumber"), "TBPM": ("bpm",), "TCMP": ("compilation",),
    "TSSE": ("encodersettings", "encoder settings", "encoder"), "TOPE": ("originalartist",
                                                                        "original artist"),
    "TCOP": ("copyright",), "TIT1": ("grouping",), "TPE3": ("conductor",), "COMM": ("comment",),
    "USLT": ("lyrics",), "UFID": ("musicbrainz_trackid",), "POPM": ("rating",),
    "APIC 3": ("cover art (front)",), "APIC 4": ("cover art (back)",),
}
HEAD_SHARE = {"id3v2.2": 0.8, "id3v2.3": 0.8, "id3v2.4": 0.8, "id3v1": 0.3}
SEED_TABLES = {"id3v2.2": TAGS[2], "id3v2.3": TAGS[3], "id3v2.4": TAGS[4], "apev2": APES,
               "id3v1": made.ODD_V1, "lyrics3": made.ODD_V1, "others": APES,
               "crossing": range(36)}


def plain_numbers(kind, sample):
    """Each made tag with every field and every choice of settings, in a sample with one of them;
    numbers below zero are unmutated."""
    table, rounds = len(SEED_TABLES[kind]), len(EDITS) * len(SETTINGS)
    steps = [(seed % rounds,) if sample else range(rounds) for seed in range(table)]
    return [-1 - (seed + table * step) for seed in range(table) for step in steps[seed]]


# --- Running the program -------------------------------------------------------------------------

def settings_text(settings):
    return ("[HKEY_CURRENT_USER\\Software\\Tavlo\\Audio Desk\\4.0\\Settings]\n"
            + "".join(f'"{name}"={value}\n' for name, value in settings.items()))


class Program:
    def __init__(self, path, place):
        self.path, self.place = path, Path(place)

    def config(self, settings):
        folder = self.place / f"config{settings}"
        file = folder / "tavlo/settings.txt"
        if not file.exists():
            file.parent.mkdir(parents=True)
            file.write_text(settings_text(SETTINGS[settings]))
        return folder

    def change(self, folder, settings, *words, timeout=60):
        """The rows of each path; None where the program crashed or hung."""
        environment = os.environ | {"TAVLO_ANSI_CODE_PAGE": "1252",
                                    "XDG_CONFIG_HOME": str(self.config(settings))}
        try:
            done = subprocess.run([self.path, "/change", "/s", "/json", str(folder), *words],
                                  env=environment, stdout=subprocess.PIPE,
                                  stderr=subprocess.DEVNULL, timeout=timeout, check=False)
        except subprocess.TimeoutExpired:
            return None
        if done.returncode not in (0, 1):
            return None
        rows = {}
        for line in done.stdout.splitlines():
            row = json.loads(line)
            rows.setdefault(Path(row["Path"]).name, []).append(row)
        return rows


# --- Comparing -----------------------------------------------------------------------------------

class Verdicts:
    def __init__(self, show):
        self.counts, self.shown, self.show = Counter(), Counter(), show
        self.files, self.lines = Counter(), []

    def add(self, other):
        self.counts += other.counts
        self.files.update(other.files)
        self.lines += other.lines

    def fail(self, file, kind, *words):
        """Each kind of failure is shown a few times and counted always."""
        key = f"{file.kind}: {kind}"
        self.counts[key] += 1
        if self.shown[key] < self.show:
            self.shown[key] += 1
            self.lines.append(" ".join([
                f"{file.kind}:{file.number} [{file.what}] {file.option} {file.value!r} "
                f"{SETTINGS[file.settings]}: {kind}", *map(clipped, words)]))


def clipped(value):
    text = str(value)
    return text if len(text) < 260 else text[:260] + "..."


def results(rows):
    return {row["Result"] for row in rows or []}


def check_file(file, rows, after, verdicts):
    before = file.data
    result = results(rows)
    if result != {"changed"}:
        verdicts.files[f"{file.kind} {'/'.join(sorted(result)) or 'not listed'}"] += 1
        if after != before:
            return verdicts.fail(file, "not changed, they say, and yet other bytes", result)
        if not result & {"failed", "unchanged"}:
            return verdicts.fail(file, "no word about the file", result)
        if result == {"failed"} and not any(row.get("Message") for row in rows):
            verdicts.fail(file, "failed without a reason", rows)
        if file.number < 0 and "failed" in result and not file.what.endswith(MAY_BE_REFUSED):
            verdicts.fail(file, "refused", rows)
        return None
    verdicts.files[f"{file.kind} changed"] += 1
    if SOUND not in after:
        return verdicts.fail(file, "sound changed", f"tag {len(file.head)}", before[:10].hex(" "))
    check_id3v1(file, before, after, verdicts)
    if file.kind == "crossing":
        check_crossing(file, rows, before, after, verdicts)
    check_id3v2(file, before, after, verdicts)
    check_apev2(file, before, after, verdicts)
    check_lyrics3(file, before, after, verdicts)
    return None


MAY_BE_REFUSED = ("no ending of a name",)


def check_id3v1(file, before, after, verdicts):
    old, new = outside.id3v1(before), outside.id3v1(after)
    if old is None or file.kind in OTHER_TYPES:
        return
    if new is None:
        verdicts.fail(file, "ID3v1 lost", after[-140:])
        return
    for field in old:
        if old[field] != new[field] and field not in V1_FIELDS[file.field]:
            verdicts.fail(file, f"ID3v1 {field} changed", old[field], new[field])


# Frames that only one of the versions has; they may pass whole in a private frame.
def has_passed_whole(frame, tag):
    return any(other.name == "PRIV" and frame.raw in other.raw for other in tag.frames)


def alike(frame, changed):
    """A frame's content under the name that both versions can have."""
    return NEWER.get(frame.name, frame.name) if changed else frame.name, frame.content, frame.unicode


def joined(frame):
    """Several values of 2.4 as the one text that they are in 2.3."""
    values = dict(frame.content or ()).get("text")
    if not frame.name.startswith("T") or not isinstance(values, tuple) or len(values) < 2:
        return None
    parts = tuple((name, ("; ".join(values),) if name == "text" else value)
                  for name, value in frame.content)
    return frame._replace(content=parts)


def check_id3v2(file, before, after, verdicts):
    old, new = outside.id3v2(before), outside.id3v2(after)
    if old is None:
        verdicts.files[f"{file.kind} ID3v2 not read before"] += before[:3] == b"ID3"
        if before[:3] == b"ID3":
            return
    if file.kind in OTHER_TYPES:
        return
    if new is None:
        verdicts.fail(file, "ID3v2 lost" if old else "no ID3v2 made", after[:40])
        return
    written = 4 if "EnableID3v2.4" in SETTINGS[file.settings] else 3
    if new.version != written:
        verdicts.fail(file, f"version {new.version}")
    check_value(file, old, new, after, verdicts)
    if old is None:
        return
    changed = old.version != new.version
    edited = FRAMES[file.field] | (DATES if changed else set())
    kept = [frame for frame in old.frames if frame.name not in edited]
    found = [frame for frame in new.frames if frame.name not in edited]
    if changed:
        kept = [frame for frame in kept if frame.content is not None]
        date = outside.date(before)
        if file.field != "year" and date and date != outside.date(after):
            verdicts.fail(file, "date changed", date, outside.date(after))
    check_frames(file, kept, found, new, changed, verdicts)
    if old.rest and old.rest not in after[:new.size]:
        verdicts.fail(file, "bytes behind the frames lost", old.rest)


def check_frames(file, kept, found, new, changed, verdicts):
    """Takes each old frame's counterpart out of the new ones; what is left was added."""
    left = list(found)
    places = []
    for frame in kept:
        wanted = [alike(frame, changed)]
        if changed and joined(frame):
            wanted.append(alike(joined(frame), changed))
        match = next((i for i, other in enumerate(left) if other is not None
                      and alike(other, changed) in wanted
                      and (frame.content is not None or frame.raw == other.raw)), None)
        if match is None:
            name_twin = next((other for other in left if other and other.name == frame.name), None)
            if changed and has_passed_whole(frame, new) and not readable_text(frame):
                continue
            kind = "frame changed" if name_twin else "frame lost"
            if name_twin and name_twin.content == frame.content:
                kind = "encoding changed"
            verdicts.fail(file, f"{kind}", frame.name, frame.raw, "->",
                          name_twin and name_twin.raw)
            continue
        twin, left[match] = left[match], None
        places.append(match)
        unflagged = file.data[5] & 0x80 and not changed
        if not changed and (frame.raw, frame.flags) != (twin.raw, twin.flags) and not unflagged:
            verdicts.fail(file, "frame's bytes changed", frame.name, frame.raw, "->", twin.raw)
    if places != sorted(places):
        verdicts.fail(file, "order changed", [frame.name for frame in kept], "->",
                      [frame.name for frame in found])
    names = {frame.name for frame in kept} | {"PRIV"}
    added = [frame for frame in left if frame and frame.name not in names]
    if added and not file.tail:
        verdicts.fail(file, "frame added", added)


def readable_text(frame):
    return frame.name[0] == "T" or frame.name in ("COMM", "USLT", "APIC", "WXXX", "UFID", "POPM")


def shows(file, text):
    """Whether an edited field says what it was given."""
    text = text.strip("\0 ")
    if file.field == "mix":
        return file.value in text
    return text.startswith(file.value) if file.field in ("title", "track", "year") else (
        text == file.value)


def check_value(file, old, new, after, verdicts):
    names = FRAMES[file.field]
    if file.field == "year":
        texts = [outside.date(after) or ""]
    else:
        texts = [dict(frame.content or ()).get("text", ("",)) for frame in new.frames
                 if frame.name in names]
        texts = [each[0] if each else "" for each in texts]
    if file.field == "genre" and texts:
        texts = [re.sub(r"^\(26\)(Ambient)?$|^26$", "Ambient", texts[0])]
    if not texts or not any(shows(file, text) for text in texts[:1]):
        verdicts.fail(file, "value not shown", names, texts)


def check_apev2(file, before, after, verdicts):
    old, new = outside.apev2_items(before), outside.apev2_items(after)
    writes = "EnableAPE2Tags" in SETTINGS[file.settings] or file.kind in OTHER_TYPES
    if old is None:
        if b"APETAGEX" in before:
            verdicts.files[f"{file.kind} APEv2 not read before"] += 1
        elif writes and new is None and b"LYRICS200" not in before:
            verdicts.fail(file, "no APEv2 made")
        return
    if not writes:
        if before[old.begin:old.end] not in after:
            verdicts.fail(file, "APEv2 changed unasked")
        return
    if new is None:
        verdicts.fail(file, "APEv2 lost", after[-200:])
        return
    edited = KEYS[file.field]
    values = [value.decode("utf-8", "replace") for key, _, value in new.items
              if key.lower() == edited]
    if len(values) != 1 or not shows(file, values[0]):
        verdicts.fail(file, "value not shown in APEv2", edited, values)
    kept = [entry for entry in old.items if entry[0].lower() != edited]
    found = [entry for entry in new.items if entry[0].lower() != edited]
    if kept == found:
        return
    for entry in kept:
        if entry not in found:
            twin = [other for other in found if other[0].lower() == entry[0].lower()]
            verdicts.fail(file, "item changed" if twin else "item lost", entry, "->", twin)
    keys = [entry for entry in found if entry in kept]
    if keys != [entry for entry in kept if entry in found]:
        verdicts.fail(file, "order of items changed", [entry[0] for entry in kept], "->",
                      [entry[0] for entry in found])
    if file.kind in ("others", "apev2") and len(found) > len(kept) and not file.head:
        if outside.id3v1(before) is None and b"LYRICS" not in before:
            verdicts.fail(file, "item added", [entry for entry in found if entry not in kept])


def crossing_name(frame):
    """The frame's keys, and the bytes that its item has to hold."""
    values = dict(frame.content)
    key, value = frame.name, values.get("text", values.get("data", ""))
    if frame.name == "APIC":
        key += f" {int(values['type'])}" if values["type"].isdigit() else (
            " 3" if "FRONT" in values["type"] else " 4")
    keys = CROSSINGS.get(key, ())
    if frame.name == "TXXX":
        keys = (values["desc"].lower(),)
    if frame.name == "COMM" and values["desc"]:
        keys = (values["desc"].lower(), f"comment:{values['desc'].lower()}")
    if isinstance(value, tuple):
        value = value[0]
    return keys, value if isinstance(value, bytes) else value.encode()


def check_crossing(file, rows, before, after, verdicts):
    """Each frame is an item or is named."""
    old, new = outside.id3v2(before), outside.apev2_items(after)
    named = " ".join(row.get("Message", "") for row in rows)
    for frame in old.frames:
        if frame.name in FRAMES[file.field]:
            continue
        keys, value = crossing_name(frame)
        if frame.name == "TCON":
            value = value.removeprefix(b"(17)")
        if frame.name == "TIT2":
            value = value.partition(b" (")[0]
        held = [data for key, _, data in (new.items if new else []) if key.lower() in keys]
        if not any(value in data for data in held) and frame.name not in named:
            verdicts.fail(file, f"{frame.name} neither an item nor named", frame.raw, "->", held)


def check_lyrics3(file, before, after, verdicts):
    found = re.search(rb"LYRICSBEGIN.*LYRICS200", file.tail, re.DOTALL)
    if found and found[0] not in after:
        verdicts.fail(file, "Lyrics3 changed")


# --- Runs ----------------------------------------------------------------------------------------

def check_batch(program, files, place, verdicts):
    """Files that have settings, option and value in common."""
    place.mkdir(parents=True)
    for file in files:
        (place / f"{file.number}.{file.ending}").write_bytes(file.data)
    first = files[0]
    words = (first.option, first.value)
    rows = program.change(place, first.settings, *words)
    if rows is None:
        if len(files) > 1:
            for number, file in enumerate(files):
                check_batch(program, [file], place.parent / f"{place.name}-{number}", verdicts)
        else:
            verdicts.fail(first, "crash or hang")
        return
    after = {}
    for file in files:
        name = f"{file.number}.{file.ending}"
        after[name] = (place / name).read_bytes()
        check_file(file, rows.get(name), after[name], verdicts)
    again = program.change(place, first.settings, *words)
    for file in files:
        name = f"{file.number}.{file.ending}"
        same = (place / name).read_bytes() == after[name]
        if again is None or not same or results(again.get(name)) & {"changed"}:
            verdicts.fail(file, "second run changes it", results(again and again.get(name)), same)


def check_numbers(kind, numbers, asked):
    verdicts, batches = Verdicts(asked.show), {}
    for number in numbers:
        file = Made(kind, number)
        batches.setdefault((file.settings, file.option, file.value), []).append(file)
    with tempfile.TemporaryDirectory(dir=MEMORY) as place:
        program = Program(os.path.abspath(asked.program), place)
        for step, files in enumerate(batches.values()):
            folder = Path(place) / f"{kind}-{step}"
            check_batch(program, files, folder, verdicts)
            shutil.rmtree(folder)
    return verdicts


def parts(asked):
    """Kind and numbers, in pieces of a size that keeps every processor busy."""
    count, piece = asked.count // 100 if asked.sample else asked.count, 1000
    for kind in asked.kind or KINDS:
        numbers = [*plain_numbers(kind, asked.sample), *range(asked.first, asked.first + count)]
        for begin in range(0, len(numbers), piece):
            yield kind, numbers[begin:begin + piece], asked


def show_one(program, name, place, keep, verdicts):
    kind, _, number = name.partition(":")
    file = Made(kind, int(number))
    check_batch(program, [file], place / "one", verdicts)
    after = next((place / "one").iterdir()).read_bytes()
    for title, data in (("before", file.data), ("after", after)):
        tag, items = outside.id3v2(data), outside.apev2_items(data)
        print(f"--- {title}, {len(data)} bytes", data[:10].hex(" "))
        for frame in tag.frames if tag else []:
            print("   ", frame.name, hex(frame.flags), clipped(frame.raw))
        print("    rest", clipped(tag and tag.rest))
        for entry in items.items if items else []:
            print("    item", clipped(entry))
        print("    ID3v1", outside.id3v1(data))
        if keep:
            Path(keep).mkdir(parents=True, exist_ok=True)
            (Path(keep) / f"{kind}{number}-{title}.{file.ending}").write_bytes(data)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--count", type=int, default=5000)
    parser.add_argument("--first", type=int, default=0)
    parser.add_argument("--kind", action="append", choices=list(KINDS))
    parser.add_argument("--sample", action="store_true")
    parser.add_argument("--show", type=int, default=2)
    parser.add_argument("--one")
    parser.add_argument("--keep")
    asked = parser.parse_args()
    verdicts = Verdicts(asked.show)
    if asked.one:
        with tempfile.TemporaryDirectory(dir=MEMORY) as place:
            program = Program(os.path.abspath(asked.program), place)
            show_one(program, asked.one, Path(place), asked.keep, verdicts)
    else:
        with Pool() as pool:
            for found in pool.starmap(check_numbers, parts(asked), chunksize=1):
                verdicts.add(found)
    print(*verdicts.lines, sep="\n")
    for what, count in sorted(verdicts.files.items()):
        print(f"{count:6} {what}")
    for what, count in verdicts.counts.most_common():
        print(f"FAILED {count:6} {what}")
    return 1 if verdicts.counts else 0


if __name__ == "__main__":
    sys.exit(main())
