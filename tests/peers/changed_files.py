"""The files of kept.py: tags of every kind around sound of our own, and mutations of them. A kind and
a number name one file for ever; numbers below zero are unmutated."""

import random
import re
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "fuzz"))

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
SOUND = b"".join(b"\xff\xf3\x44\xc4" + number.to_bytes(2, "big") * 46 for number in range(1, 41))

class Made:
    """A file of a kind and a number, and what is to be done with it."""

    def __init__(self, kind, number):
        self.kind, self.number, self.is_plain = kind, number, number < 0
        self.random = random.Random(f"{kind}/{number}")
        plain = self.is_plain
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
        self.name = f"{kind}.{number}.{self.ending}"
        pick = self.seed // len(SEED_TABLES[kind]) if plain else self.random.randrange(10**6)
        self.field = list(EDITS)[pick % len(EDITS)]
        self.settings = pick // len(EDITS) % len(SETTINGS)
        self.option, values = EDITS[self.field]
        self.value = values[pick // 3 % 2]

    def has_sound(self, data):
        return SOUND in data

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
        what, head = (file.pick(TAGS[version]) if file.is_plain or file.random.random() < 0.6
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
OTHER_TYPES = ("others", "crossing", "found, other types")
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
