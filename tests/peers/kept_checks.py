"""What has to be seen again after a change, and the count of what is not."""

import re
from collections import Counter

import outside_view as outside
from changed_files import OTHER_TYPES, SETTINGS

FRAMES = {"artist": {"TPE1"}, "title": {"TIT2"}, "mix": {"TIT2"}, "album": {"TALB"},
          "year": {"TYER", "TDRC"}, "track": {"TRCK"}, "genre": {"TCON"}}
KEYS = {"artist": "artist", "title": "title", "mix": "title", "album": "album", "year": "year",
        "track": "track", "genre": "genre"}
V1_FIELDS = {"artist": {"artist"}, "title": {"title"}, "mix": set(), "album": {"album"},
             "year": {"year"}, "track": {"comment"}, "genre": {"genre"}}
DATES = {"TYER", "TDRC", "TDAT", "TIME"}
NEWER = {"TORY": "TDOR", "IPLS": "TIPL"}
# What the frames of `usual_frames` are called in APEv2, by name or name and description.
CROSSINGS = {
    "TIT2": ("title",), "TPE1": ("artist",), "TALB": ("album",), "TYER": ("year",),
    "TDRC": ("year",), "TRCK": ("track",), "TCON": ("genre",), "TCOM": ("composer",),
    "TENC": ("encodedby", "encoded by"), "TPE2": ("album artist", "albumartist"),
    "TPOS": ("disknumber",), "TBPM": ("bpm",), "TCMP": ("compilation",),
    "TSSE": ("encodersettings", "encoder settings", "encoder"), "TOPE": ("originalartist",
                                                                        "original artist"),
    "TCOP": ("copyright",), "TIT1": ("grouping",), "TPE3": ("conductor",), "COMM": ("comment",),
    "USLT": ("lyrics", "lyrics:d"), "PCNT": ("play counter",), "UFID": ("musicbrainz_trackid",), "POPM": ("rating",),
    "APIC 3": ("cover art (front)",), "APIC 4": ("cover art (back)",),
}

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


    def tell(self):
        """Whether nothing failed."""
        print(*self.lines, sep="\n")
        for what, count in sorted(self.files.items()):
            print(f"{count:6} {what}")
        for what, count in self.counts.most_common():
            print(f"FAILED {count:6} {what}")
        return not self.counts


def clipped(value):
    text = str(value)
    return text if len(text) < 260 else text[:260] + "..."


def results(rows):
    return {row["Result"] for row in rows or []}


def check_plan(file, planned, rows, data, verdicts):
    """A dry run says what is going to happen, and does nothing."""
    if data != file.data:
        verdicts.fail(file, "the dry run changed it")
    told = [{**row, "Result": row["Result"].replace("planned", "changed")} for row in planned or []]
    if told != rows:
        verdicts.fail(file, "the dry run said something else", told, rows)


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
        if file.is_plain and "failed" in result and "extended header" not in file.what:
            verdicts.fail(file, "refused", rows)
        if result == {"unchanged"}:
            check_shown(file, after, verdicts)
        return None
    verdicts.files[f"{file.kind} changed"] += 1
    if not file.has_sound(after):
        return verdicts.fail(file, "sound changed", before[:10].hex(" "))
    check_id3v1(file, before, after, verdicts)
    if file.kind in ("crossing", "found, other types"):
        check_crossing(file, rows, before, after, verdicts)
    check_id3v2(file, before, after, verdicts)
    check_apev2(file, before, after, verdicts)
    check_lyrics3(file, before, after, verdicts)
    return None


def check_shown(file, data, verdicts):
    """Whoever says that nothing had to be changed has to be right."""
    if file.kind in OTHER_TYPES:
        check_apev2(file, data, data, verdicts)
    elif outside.id3v2(data):
        check_value(file, outside.id3v2(data), data, verdicts)
    elif data[:3] != b"ID3" and "EnableID3v2Tags" not in SETTINGS[file.settings]:
        verdicts.fail(file, "no ID3v2 made")


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
        if old or "EnableID3v2Tags" not in SETTINGS[file.settings]:
            verdicts.fail(file, "ID3v2 lost" if old else "no ID3v2 made", after[:40])
        return
    written = 4 if "EnableID3v2.4" in SETTINGS[file.settings] else 3
    if new.version != written:
        verdicts.fail(file, f"version {new.version}")
    check_value(file, new, after, verdicts)
    if old is None:
        return
    changed = old.version != new.version
    names = {alike(frame, changed)[0] for frame in old.frames}
    edited = FRAMES[file.field] | (DATES if changed else set())
    kept = [frame for frame in old.frames if frame.name not in edited]
    found = [frame for frame in new.frames if frame.name not in edited]
    if changed:
        kept = [frame for frame in kept if frame.content is not None]
        date = outside.date(before)
        if file.field != "year" and date and not outside.date(after).startswith(date):
            verdicts.fail(file, "date changed", date, outside.date(after))
    left = check_frames(file, kept, found, new, changed, verdicts)
    added = [frame for frame in left if alike(frame, changed)[0] not in {"PRIV", *names}]
    if added and not file.tail:
        verdicts.fail(file, "frame added", added)
    # Where another reading finds frames, or sound, there is no rest.
    is_rest = "extended header" not in file.what and old.rest[:1] != b"\xff"
    if old.rest and is_rest and old.rest not in after:
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
            is_cut = not file.is_plain
            if changed and has_passed_whole(frame, new) and (is_cut or not readable_text(frame)):
                continue
            # The other version has no place for a length; a wrong header hides what flags say.
            if changed and name_twin and frame.raw.endswith(name_twin.raw[1:]):
                continue
            if "extended header" in file.what and "unsynchronised" in file.what:
                continue
            if "sizes of 2.3" in file.what:  # which of two readings is right is anybody's guess
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
    return [frame for frame in left if frame]


def readable_text(frame):
    return frame.name[0] == "T" or frame.name in ("COMM", "USLT", "APIC", "WXXX", "UFID", "POPM")


def shows(file, text):
    """Whether an edited field says what it was given."""
    text = text.strip("\0 ")
    if file.field == "mix":
        return file.value in text
    return text.startswith(file.value) if file.field in ("title", "track", "year") else (
        text == file.value)


def check_value(file, new, after, verdicts):
    names = FRAMES[file.field]
    if file.field == "year":
        texts = [outside.date(after) or ""]
    else:
        texts = [dict(frame.content or ()).get("text", ("",)) for frame in new.frames
                 if frame.name in names and frame.content]
        texts = [each[0] if each else "" for each in texts]
    if file.field == "genre" and texts:
        texts = [re.sub(r"^\(26\)(Ambient)?$|^26$", "Ambient", texts[0])]
    # Real files have chapters, whose titles are listed too.
    seen = texts if file.kind.startswith("found") else texts[:1]
    if not texts or not any(shows(file, text) for text in seen):
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
    value = value or values.get("url", "")
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
    if old is None:
        return
    named = " ".join(row.get("Message", "") for row in rows)
    for frame in old.frames:
        if frame.name in FRAMES[file.field] or not frame.content:
            continue
        keys, value = crossing_name(frame)
        if frame.name == "TCON":
            value = value.removeprefix(b"(17)")
        if frame.name == "TIT2":
            value = value.partition(b" (")[0]
        if frame.name == "TPOS":
            value = value.partition(b"/")[0]  # the count is an item of its own
        held = [data for key, _, data in (new.items if new else []) if key.lower() in keys or
                (not keys and value)]
        if not any(value in data for data in held) and frame.name not in named:
            verdicts.fail(file, f"{frame.name} neither an item nor named", frame.raw, "->", held)


def check_lyrics3(file, before, after, verdicts):
    found = re.search(rb"LYRICSBEGIN(?:(?!LYRICSBEGIN).)*LYRICS200", file.tail, re.DOTALL)
    if found and found[0] not in after and "ID3v1 marks" not in file.what:
        verdicts.fail(file, "Lyrics3 changed")
