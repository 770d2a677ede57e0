"""The known differences between our list and the other programs' words, as rules."""

import re
from pathlib import Path

from mutagen import apev2, id3

from peers import STREAM, TEXTS, ape_texts, loaded


def ape_size(tag):
    """Header, footer and items."""
    return 64 + sum(9 + len(key) + len(value.value if isinstance(value.value, bytes)
                                       else value.value.encode()) for key, value in tag.items())


class Facts:
    """What the rules look up in the file itself."""

    def __init__(self, path, ours, row):
        data = Path(path).read_bytes()
        self.ours, self.rate = ours, row["SampleRate"]
        size = data[6] << 21 | data[7] << 14 | data[8] << 7 | data[9] if len(data) > 9 else 0
        self.v2 = data[3] if data[:3] == b"ID3" and len(data) > 9 else 0
        self.tag = data[:size + 10] if self.v2 else b""
        self.is_cut = self.v2 != 0 and size + 10 > len(data)
        self.has_inner_tag = b"ID3" in data
        self.has_info = b"Info" in data
        self.v1 = data[-128:]
        self.lyrics = self.lyrics_fields(data) if row["IsLyricsPresent"] else {}
        ape = loaded(apev2.APEv2, path)
        self.ape = ape_texts(ape) if ape else {}
        self.behind_audio = 128 * row["IsID3v1Present"] + (ape_size(ape) if ape else 0)

    @staticmethod
    def lyrics_fields(data):
        at = data.rindex(b"LYRICSBEGIN") + 11
        fields = {}
        while match := re.match(rb"([A-Z]{3})(\d{5})", data[at:at + 8]):
            fields[match[1]] = data[at + 8:at + 8 + int(match[2])].decode("cp1252").strip()
            at += 8 + int(match[2])
        return {"title": fields.get(b"ETT", ""), "artist": fields.get(b"EAR", "")}


# --- Known differences ---------------------------------------------------------------------------
# Each rule turns the other program's value into the one that we show, or gives it back as it is.

def blanks(value, facts, ours):
    return re.sub(" +", " ", value).strip(" ")


def mix(value, facts, ours):
    match = re.fullmatch(r"(.*)([(])(.*)\)|(.*)(\[)(.*)\]", value, re.S)
    if not match:
        return value
    title, _, inner = (group for group in match.groups() if group is not None)
    return f"{title.strip(' ')} ({inner.strip(' ')})".strip()


def code_page(value, facts, ours):
    try:
        return value.encode("latin-1").decode("cp1252")
    except (UnicodeEncodeError, UnicodeDecodeError):
        return value


def year_alone(value, facts, ours):
    return value[:4] if facts.v2 else value


def leading_number(value, facts, ours):
    match = re.match(r"0*(\d+)", ours)
    return ours if match and match[1] == value else value


def plain_number(value, facts, ours):
    return str(int(value) or "") if value.isdecimal() else value


def joined_values(value, facts, ours):
    return ours if ours.replace("; ", " ") == value else value


def short_genre_list(value, facts, ours):
    beyond = [*id3.TCON.GENRES[148:], "Unknown"]
    if value not in beyond:
        return value
    return ""


def genre_spelling(value, facts, ours):
    return SPELLINGS.get(value, value)


def genre_refinement(value, facts, ours):
    return ours if re.fullmatch(rf"[\w -]+;? {re.escape(ours)}", value) and \
        f"){ours}".encode() in facts.tag else value


def from_lyrics(value, facts, ours):
    return ours if ours in facts.lyrics.values() else value


def from_ape(value, facts, ours):
    """TagLib does not look for an APEv2 tag in front of a Lyrics3 block."""
    return ours if facts.lyrics and ours in ({True} | set(facts.ape.values())) else value


def exact_keys(value, facts, ours):
    return ours if value in facts.ape.values() else value


def no_old_copyright(value, facts, ours):
    return "" if facts.v2 == 2 else value


def described_comment(value, facts, ours):
    return "" if re.search(rb"COMM", facts.tag) else value


def id3v1_track(value, facts, ours):
    """No zero byte in front of it: the byte belongs to the comment."""
    return "" if facts.v1[:3] == b"TAG" and facts.v1[125] else value


def id3v1_comment(value, facts, ours):
    return facts.v1[97:127].decode("cp1252", "replace").strip(" ") if facts.v1[125] else value


def cut_tag(value, facts, ours):
    return ours if facts.is_cut and not value else value


def extended_header(value, facts, ours):
    return ours if facts.tag and facts.tag[5] & 0x40 and not value else value


def leading_garbage(value, facts, ours):
    return ours if not facts.v2 and facts.has_inner_tag and not ours else value


def shorter_than_told(value, facts, ours):
    return 0 if b"\0\x80" == facts.tag[18:20] else value


def stopped_at_packed(value, facts, ours):
    return ours if b"\0\x80" == facts.tag[18:20] and not value else value


def bad_utf8(value, facts, ours):
    return ours if not value and b"\3" + ours.encode("cp1252", "replace") in facts.tag else value


def picture_link(value, facts, ours):
    return 0 if b"-->\0" in facts.tag else value


def free_format(value, facts, ours):
    return ours if facts.ours["bitrate"] == 0 and facts.ours["layer"] and not value else value


def seconds(value, facts, ours):
    return int(value * FRAME_LENGTH + 0.0005)


def seconds_with_delay(value, facts, ours):
    """mutagen takes the silence off that the encoder put around the music."""
    most = 3 * 1152 / facts.rate if facts.rate else 0
    return ours if int(value) <= ours <= int((value + most) * FRAME_LENGTH) else value


def tags_are_no_audio(value, facts, ours):
    rate = max(facts.ours["bitrate"], 1) * 125
    return ours if int(value - facts.behind_audio / rate) == ours else value


def rounded(value, facts, ours):
    return round(value) if not facts.ours["vbr"] else value


def constant_rate(value, facts, ours):
    return ours if facts.has_info and not facts.ours["vbr"] else value


def average_rate(value, facts, ours):
    """mutagen leaves the frame with the header out; the rest is rounding."""
    frame = 1441 * 8 / 1000 / max(facts.ours["seconds"], 1)
    return ours if facts.ours["vbr"] and -0.6 <= ours - value <= frame + 0.6 else value


FRAME_LENGTH = 26.125 / (1152 / 44.1)
# How the others spell the genres of the list, where it is another way than ours.
SPELLINGS = {
    "Jazz-Funk": "Jazz+Funk", "Alt. Rock": "AlternRock", "Alternative Rock": "AlternRock",
    "Gangsta Rap": "Gangsta", "Psychedelic": "Psychadelic", "Folk-Rock": "Folk/Rock",
    "Folk Rock": "Folk/Rock", "Fast Fusion": "Fast-Fusion", "Bebop": "Bebob",
    "Avant-garde": "Avantgarde", "A Cappella": "A capella", "Dancehall": "Dance Hall",
    "Club-House": "Club House", "Hardcore Techno": "Hardcore", "Britpop": "BritPop",
    "Afro-Punk": "NegerPunk", "Worldbeat": "NegerPunk",
    "Christian Gangsta Rap": "Christian Gangsta", "Contemporary Christian": "Contemporary C",
    "Jpop": "JPop", "Synthpop": "SynthPop", "RX": "Remix", "CR": "Cover",
}
NUMBERS = ("year", "track")
BOTH, MUTAGEN, TAGLIB = "mutagen TagLib", "mutagen", "TagLib"

RULES = [
    ("outer blanks are cut", TEXTS, BOTH, blanks),
    ("mix apart from the title", ("title",), BOTH, mix),
    ("8-bit text is in the ANSI code page", TEXTS, BOTH, code_page),
    ("year without the rest of the date", ("year",), MUTAGEN, year_alone),
    ("year and track as they are written", NUMBERS, TAGLIB, leading_number),
    ("track without leading zeros", ("track",), BOTH, plain_number),
    ("several values with '; ' between", TEXTS, TAGLIB, joined_values),
    ("genres end at 147", ("genre",), BOTH, short_genre_list),
    ("spelling of a genre", ("genre",), BOTH, genre_spelling),
    ("a genre's refinement alone", ("genre",), BOTH, genre_refinement),
    ("Lyrics3 is read", ("artist", "title"), BOTH, from_lyrics),
    ("APEv2 in front of Lyrics3 is read", ("ape",) + TEXTS, TAGLIB, from_ape),
    ("APEv2 keys are compared exactly", TEXTS, BOTH, exact_keys),
    ("ID3v2.2 has no copyright here", ("copyright",), BOTH, no_old_copyright),
    ("a comment with a description is no comment", ("comment",), TAGLIB, described_comment),
    ("ID3v1.0 comment of 30 characters", ("track",), BOTH, id3v1_track),
    ("ID3v1.0 comment of 30 characters", ("comment",), BOTH, id3v1_comment),
    ("a tag cut by the file's end is read", ("v2", "picture") + TEXTS, MUTAGEN, cut_tag),
    ("an extended header is skipped", ("v2",) + TEXTS, BOTH, extended_header),
    ("a tag stands at the file's start", ("v2",) + TEXTS, TAGLIB, leading_garbage),
    ("a broken compressed frame is left out", ("picture",), TAGLIB, shorter_than_told),
    ("a broken compressed frame is left out", TEXTS, TAGLIB, stopped_at_packed),
    ("broken UTF-8 is taken as 8-bit text", TEXTS, TAGLIB, bad_utf8),
    ("a picture's address is no picture", ("picture",), BOTH, picture_link),
    ("free format is recognised", STREAM, BOTH, free_format),
    ("whole seconds, 26.125 ms a frame", ("seconds",), BOTH, seconds),
    ("the encoder's silence counts", ("seconds",), MUTAGEN, seconds_with_delay),
    ("tags behind the audio are no audio", ("seconds",), MUTAGEN, tags_are_no_audio),
    ("whole kbit/s", ("bitrate",), MUTAGEN, rounded),
    ("constant bit rate from the header", ("bitrate",), TAGLIB, constant_rate),
    ("average bit rate with the first frame", ("bitrate",), MUTAGEN, average_rate),
]
