#!/usr/bin/python3
"""Time grows with bytes: growth.py [--program PATH] [NAME...], the program of $TAVLO without it.

Each input is doubled until it takes a while or is large; twice the bytes may then take 2.6 times the
processor's time at most, the least of several runs. A run of 20 s counts as a hang.
"""

import argparse
import os
import subprocess
import sys
import tempfile
import time
import zlib
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "fuzz"))

from make_corpus import ADTS, ALAC, FLAC, FORMAT, FRAME, OGG, atom, chunk, mp4, page, wave  # noqa: E402
from tag_bytes import V1, ape, frame, id3v2, lyrics, syncsafe  # noqa: E402

MOST_RATIO, RUNS, HANG = 2.6, 3, 20
SMALLEST, LARGEST, WHILE = 1 << 15, 1 << 25, 0.2  # bytes, bytes, seconds


def tag(*frames):
    return id3v2(4, frames, padding=0) + FRAME * 4


def old_tag(version, *frames):
    return id3v2(version, frames, padding=0) + FRAME * 4


def filled(piece, size):
    return piece * (size // len(piece))


def text(name, piece):
    return lambda size: tag(frame(4, name, piece[:1] + filled(piece[1:], size)))


def frames(piece):
    return lambda size: tag(filled(piece, size))


def nested(size):
    """Chapters in chapters: each holds the rest."""
    body, head = b"", b"c\0" + bytes(16)
    for _ in range(min(size // 28, 3000)):
        body = frame(4, b"CHAP", head + body)
    return tag(body)


def packed(size):
    """Frames that unpack to 16 MB each."""
    body = zlib.compress(b"\0" + b"a" * (16 << 20))
    one = frame(4, b"TIT2", syncsafe(16 << 20) + body, b"\0\x09")
    return tag(filled(one, max(size // 4, len(one))))


def nested_atoms(size):
    body = b""
    for _ in range(min(size // 8, 20000)):
        body = atom(b"moov", body)
    return atom(b"ftyp", b"M4A ") + body


def several_tags(size):
    return filled(old_tag(3)[:10], size) + FRAME * 4


# Name, ending, bytes of about a size, whether a change of tags is timed as well.
INPUTS = [
    ("NULs", "mp3", text(b"TPE1", b"\3\0"), True),
    ("values", "mp3", text(b"TPE1", b"\3a\0"), True),
    ("values in UTF-16", "mp3", text(b"TPE1", b"\2\0a\0\0"), True),
    ("values of a title", "mp3", text(b"TIT2", b"\3(\0"), True),
    ("brackets", "mp3", text(b"TIT2", b"\0(a) "), True),
    ("open brackets", "mp3", text(b"TIT2", b"\0("), True),
    ("genres", "mp3", text(b"TCON", b"\0(17)"), True),
    ("blanks", "mp3", text(b"TALB", b"\0 "), True),
    ("bad UTF-8", "mp3", text(b"TALB", b"\3\xe2\x82"), True),
    ("description", "mp3", text(b"COMM", b"\0engd"), True),
    ("wide description", "mp3", text(b"COMM", b"\1eng\xff\xfea\0"), True),
    ("comments", "mp3", frames(frame(4, b"COMM", b"\0engd\0x")), True),
    ("user texts", "mp3", frames(frame(4, b"TXXX", b"\3k\0v")), True),
    ("tiny frames", "mp3", frames(frame(4, b"TPE1", b"\0")), True),
    ("unknown frames", "mp3", frames(frame(4, b"XXXX", b"")), True),
    ("pictures", "mp3", frames(frame(4, b"APIC", b"\0image/\0\4\0x")), True),
    ("timed text", "mp3", text(b"SYLT", b"\1eng\2\1\0\0a\0\0\0\0\0\0\0"), True),
    ("frames of 2.2", "mp3", lambda size: old_tag(2, filled(frame(2, b"TT2", b"\0"), size)), True),
    ("pictures of 2.2", "mp3",
     lambda size: old_tag(2, filled(frame(2, b"PIC", b"\0JPG\4\0x"), size)), True),
    ("unsynchronised", "mp3",
     lambda size: id3v2(3, [frame(3, b"TPE1", b"\0" + filled(b"\xff\0", size))], 0x80) + FRAME * 4,
     True),
    ("chapters", "mp3", nested, True), ("packed", "mp3", packed, True),
    ("tags", "mp3", several_tags, True),
    ("tags in front of Musepack", "mpc", several_tags, True),
    ("items", "mp3", lambda size: FRAME * 4 + ape([(b"ab", b"", 0)] * (size // 11)), True),
    ("items of Musepack", "mpc", lambda size: ape([(b"ab", b"", 0)] * (size // 11)), True),
    ("different items", "mpc",
     lambda size: ape([(b"k%08d" % n, b"v", 0) for n in range(size // 19)]), True),
    ("values of an item", "mpc", lambda size: ape([(b"Artist", filled(b"a\0", size), 0)]), True),
    ("NULs of an item", "mpc", lambda size: ape([(b"Title", bytes(size), 0)]), True),
    ("Lyrics3 marks", "mp3",
     lambda size: FRAME * 4 + filled(b"LYRICSBEGIN000001LYRICS200", size) + V1, True),
    ("Lyrics3 fields", "mp3",
     lambda size: FRAME * 4 + lyrics([(b"INF", b"")] * (min(size, 900000) // 8)) + V1, True),
    ("marks of APEv2", "mp3", lambda size: FRAME * 4 + filled(b"APETAGEX", size), True),
    ("marks of sound", "mp3", lambda size: filled(b"\xff\xfb\x90\0", size), False),
    ("half marks of sound", "mp3", lambda size: filled(b"\xff", size), False),
    ("pages", "ogg", lambda size: OGG[:200] + filled(page(0, 0, b""), size), False),
    ("marks of pages", "ogg", lambda size: OGG + filled(b"OggS", size), False),
    ("blocks", "flac", lambda size: FLAC[:42] + filled(b"\1\0\0\0", size) + FLAC[42:], False),
    ("marks of frames", "flac", lambda size: FLAC + filled(b"\xff\xf8\xc4\x18", size), False),
    ("atoms", "m4a", lambda size: filled(atom(b"free"), size) + mp4(b"alac", ALAC), False),
    ("nested atoms", "m4a", nested_atoms, False),
    ("tracks", "m4a", lambda size: atom(b"mdat") + atom(b"moov", filled(atom(b"trak"), size)),
     False),
    ("frames of AAC", "aac", lambda size: filled(ADTS, size), False),
    ("marks of blocks", "wv", lambda size: filled(b"wvpk", size), False),
    ("packets", "mpc", lambda size: b"MPCK" + filled(b"AP\3", size), False),
    ("chunks", "wav", lambda size: wave(filled(chunk(b"abcd", b""), size), FORMAT), False),
    ("lines", "m3u", lambda size: filled(b"a.mp3\n", size), False),
    ("different lines", "m3u",
     lambda size: b"".join(b"f%07d.mp3\n" % n for n in range(size // 13)), False),
    ("one line", "m3u", lambda size: filled(b"../", size), False),
]


class Hang(Exception):
    pass


class Program:
    def __init__(self, path, place):
        self.path, self.place = path, place

    def seconds(self, words):
        """Processor time of one run."""
        child = subprocess.Popen([self.path, *words], stdout=subprocess.DEVNULL,
                                 stderr=subprocess.DEVNULL, cwd=self.place,
                                 env=os.environ | {"XDG_CONFIG_HOME": str(self.place)})
        end = time.monotonic() + 3 * HANG
        while True:
            done, status, used = os.wait4(child.pid, os.WNOHANG)
            if done:
                break
            if time.monotonic() > end:
                child.kill()
                os.wait4(child.pid, 0)
                raise Hang
            time.sleep(0.002)
        child.returncode = status
        if os.WIFSIGNALED(status) or used.ru_utime + used.ru_stime > HANG:
            raise Hang
        return used.ru_utime + used.ru_stime

    def least(self, ending, data, words):
        times = []
        for _ in range(RUNS):
            path = self.place / f"input.{ending}"
            path.write_bytes(data)
            times.append(self.seconds([*words, str(path)]))
        return min(times)


def growth(program, ending, make, words, idle):
    """What is wrong, or nothing."""
    size, before = SMALLEST, 0
    while size <= LARGEST:
        try:
            used = max(program.least(ending, make(size), words) - idle, 0)
        except Hang:
            return f"{size} bytes: hang or crash; half of it {before:.2f} s"
        if before > WHILE:
            ratio = used / before
            return f"{size} bytes: {used:.2f} s, half of it {before:.2f} s" if (
                ratio > MOST_RATIO) else None
        size, before = size * 2, used
    return None


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", default=os.environ.get("TAVLO"))
    parser.add_argument("names", nargs="*")
    asked = parser.parse_args()
    failures = 0
    with tempfile.TemporaryDirectory() as place:
        program = Program(os.path.abspath(asked.program), Path(place))
        idle = program.least("mp3", FRAME * 4, ["/scan", "/json"])
        for name, ending, make, changes in INPUTS:
            if asked.names and name not in asked.names:
                continue
            jobs = [["/scan", "/json"]] + ([["/change", "/json", "/y", "2019"]] if changes else [])
            for words in jobs:
                fault = growth(program, ending, make, words, idle)
                if fault:
                    failures += 1
                    print(f"FAILED {name}, {words[0]}: {fault}", flush=True)
    print(f"{len(INPUTS)} inputs, {failures} grow faster than their bytes")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
