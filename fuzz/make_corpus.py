#!/usr/bin/env python3
"""Makes the kept inputs of the fuzz targets again: fuzz/make_corpus.py

make_corpus.py --seeds OUT [FOLDER]: further inputs that are not kept, into OUT/small/<target> and
OUT/large/<target>: tags of every kind, large inputs, and the files of FOLDER where it is there.
"""

import sys
import zlib
from pathlib import Path

import tag_bytes
from tag_bytes import ape, frame, id3v1, id3v2, lyrics, syncsafe, utf16

HERE = Path(__file__).resolve().parent / "corpus"


# 32 kbit/s, MPEG-2 at 24 kHz, mono: frames of 96 bytes; the first may hold a VBR header.
FRAME = bytes([0xFF, 0xF3, 0x44, 0xC4]) + bytes(92)
PLACED = FRAME[:13] + b"%s\0\0\0\3" + (40).to_bytes(4, "big") + (3840).to_bytes(4, "big")
XING = (PLACED % b"Xing").ljust(96, b"\0") + b"\0" * 37 + b"LAME3.100" + bytes(50)
VBRI = FRAME[:36] + b"VBRI" + bytes(6) + (3840).to_bytes(4, "big") + (40).to_bytes(4, "big")
PICTURE = b"\0image/png\0\3front\0" + b"\x89PNG" + bytes(40)
TEXTS = [(b"TIT2", b"\0Title (Mix)"), (b"TPE1", utf16("Имя")), (b"TRCK", b"\0003/12"),
         (b"TCON", b"\0(17)Rock"), (b"COMM", b"\0eng\0note"), (b"APIC", PICTURE),
         (b"WXXX", b"\0\0http://a"), (b"TXXX", b"\0key\0value"), (b"TDRC", b"\0002001-02-03")]
TAG3 = id3v2(3, [frame(3, *text) for text in TEXTS])
TAG4 = id3v2(4, [frame(4, *text) for text in TEXTS[:1] + TEXTS[3:]]
             + [frame(4, b"TALB", b"\3one\0two"), frame(4, b"TPE1", b"\2\0A\0B")])
TAG2 = id3v2(2, [frame(2, b"TT2", b"\0Old"), frame(2, b"TCO", b"\0(8)"),
                 frame(2, b"COM", utf16("x")[:1] + b"eng\xff\xfe\0\0\xff\xfey\0"),
                 frame(2, b"PIC", b"\0JPG\3\0" + b"\xff\xd8" + bytes(20))])
PACKED = zlib.compress(b"\0packed")
FLAGGED = id3v2(3, [frame(3, b"TIT2", (7).to_bytes(4, "big") + PACKED, b"\0\x80"),
                    frame(3, b"TPE1", b"\1\0grouped", b"\0\x20")])
FLAGGED4 = id3v2(4, [frame(4, b"TIT2", syncsafe(7) + PACKED, b"\0\x09"),
                     frame(4, b"TPE1", syncsafe(4) + b"\0\xff\0x", b"\0\x03")])
UNSYNC = id3v2(3, [frame(3, b"TIT2", b"\1\xff\0\xfea\0")], flags=0x80)
EXTENDED = id3v2(3, [b"\0\0\0\6" + bytes(6), frame(3, b"TIT2", b"\0x")], flags=0x40)
APE = ape([(b"Title", "Имя [Mix]".encode(), 0), (b"Track", b"3/12", 0), (b"Artist", b"a\0b", 0),
           (b"Cover Art (front)", b"a.jpg\0\xff\xd8" + bytes(20), 2), (b"Other", b"kept", 0)])
LYRICS = lyrics([(b"IND", b"00"), (b"ETT", b"Title"), (b"EAR", b"Artist")])
V1 = id3v1(b"Title", 4)


def little(*numbers):
    return b"".join(number.to_bytes(size, "little") for number, size in numbers)


def big(*numbers):
    return b"".join(number.to_bytes(size, "big") for number, size in numbers)


def page(flags, granule, data):
    sizes = bytes([255] * (len(data) // 255) + [len(data) % 255])
    return (b"OggS\0" + little((flags, 1), (granule, 8), (7, 4)) + bytes(8) + bytes([len(sizes)])
            + sizes + data)


def block(total, index, flags, data=b""):
    numbers = (24 + len(data), 4), (0x410, 4), (total, 4), (index, 4), (500, 4), (flags, 4), (0, 4)
    return b"wvpk" + little(*numbers) + data


def atom(name, *parts):
    return big((8 + sum(map(len, parts)), 4)) + name + b"".join(parts)


def mp4(coding, description):
    entry = atom(coding, bytes(16) + big((2, 2), (16, 2), (0, 4), (8000 << 16, 4)), description)
    media = (atom(b"mdhd", bytes(12) + big((8000, 4), (9000, 4))), atom(b"hdlr", bytes(8) + b"soun"),
             atom(b"minf", atom(b"stbl", atom(b"stsd", bytes(8), entry))))
    return (atom(b"ftyp", b"M4A ") + atom(b"mdat", bytes(20))
            + atom(b"moov", atom(b"mvhd", bytes(20)), atom(b"trak", atom(b"mdia", *media))))


OGG = (page(2, 0, b"\1vorbis" + little((0, 4), (2, 1), (8000, 4), (0, 4), (64000, 4), (0, 4))
            + b"\xb8\1") + page(0, 0, b"\3vorbis" + little((5, 4)) + b"Maker" + bytes(300))
       + page(0, 0, b"\5vorbis") + page(0, 9000, bytes(99)) + page(4, 2**64 - 1, b""))
FLAC = (b"fLaC" + big((34, 4), (4096, 2), (4096, 2), (0, 6), (8000 << 44 | 1 << 41 | 15 << 36, 8))
        + bytes(16) + big((0x84000004, 4)) + bytes(4) + b"\xff\xf8\xc4\x18\0\x53" + bytes(30)
        + b"\xff\xf8\xc4\x18\1\x54" + bytes(30))
MPC7 = b"MP+\x17" + little((9, 4), (0x10000, 4), (0, 8), (1 << 31 | 576 << 20, 4)) + bytes(60)
MPC8 = (b"MPCKSH\x0e" + bytes(4) + b"\x08\x82\x91\0\0\x20\x13SO\4\x0cAP\x08abcdeST\3SE\3")
WV = (block(2**32 - 1, 0, 0x800 | 15 << 23, b"\x27\2" + little((8000, 4)) + bytes(9))
      + block(0, 0, 0x1004) + block(0, 500, 0x1809))
DSD = block(900, 0, 0x80001800 | 9 << 23, b"\x0e\1\3\0")
APE4 = (b"MAC " + little((3990, 4), (52, 4), (24, 4), (4, 4), (4, 4), (30, 8)) + bytes(20)
        + little((0, 4), (900, 4), (200, 4), (3, 4), (24, 2), (2, 2), (8000, 4)) + bytes(38))
APE3 = (b"MAC " + little((3950, 2), (2000, 2), (52, 2), (2, 2), (8000, 4), (4, 4), (0, 4), (2, 4),
                         (900, 4), (0, 4), (2, 4), (0, 4), (60, 4)) + bytes(60))
AAC_HEAD = b"\3\x19\0\0\0\4\x11" + bytes(13) + b"\5\5\x15\x88\x56\xe5\xc0"
ALAC = atom(b"alac", bytes(9) + b"\x18" + bytes(3) + b"\2" + bytes(10) + big((8000, 4)))
ADTS = (b"\xff\xf1\x6c\x40\x01\x3f\xfc" + bytes(2)) * 4
ASF_END = bytes.fromhex("a6d900aa0062ce6c")
ASF_FILE = (bytes.fromhex("a1dcab8c47a9cf118ee400c00c205365") + little((104, 8)) + bytes(40)
            + little((45000000, 8), (0, 8), (2000, 8), (2, 4)) + bytes(12))
ASF_SOUND = (bytes.fromhex("9107dcb7b7a9cf118ee600c00c205365") + little((94, 8))
             + bytes.fromhex("409e69f84d5bcf11a8fd00805f5c442b") + bytes(38)
             + little((0x163, 2), (2, 2), (8000, 4), (4000, 4), (0, 2), (16, 2)))
ASF = (bytes.fromhex("3026b2758e66cf11") + ASF_END + little((30 + 104 + 94, 8)) + bytes(6)
       + ASF_FILE + ASF_SOUND + bytes.fromhex("3626b2758e66cf11") + ASF_END
       + little((80, 8)) + bytes(56))
STREAMS = [(0, OGG), (1, FLAC), (1, TAG4 + FLAC), (2, MPC7), (2, MPC8), (3, WV), (3, DSD), (4, APE4),
           (4, APE3), (5, mp4(b"alac", ALAC)), (5, mp4(b"mp4a", atom(b"esds", bytes(4), AAC_HEAD))),
           (6, ADTS), (7, ASF)]

# A picture that reaches beyond the file's first window; its middle is what the target puts back.
GAP = 80 * 64
LARGE = id3v2(3, [frame(3, b"APIC", PICTURE + bytes(GAP)), frame(3, b"TIT2", b"\0behind it")])
LARGE = bytes([5, 80]) + LARGE[:80] + LARGE[80 + GAP:] + FRAME * 3

def packs(kind, *places):
    """CD-TEXT; each place is (track, position, 12 bytes)."""
    out = b""
    for number, (track, position, text) in enumerate(places):
        pack = bytes([kind, track, number, position]) + text
        rest = 0
        for byte in pack:
            rest ^= byte << 8
            for _ in range(8):
                rest = (rest << 1 ^ (0x1021 if rest & 0x8000 else 0)) & 0xFFFF
        out += pack + (rest ^ 0xFFFF).to_bytes(2, "big")
    return out


TOC = bytes([0, 26, 1, 2]) + bytes([0, 0x10, 1, 0, 0, 0, 2, 0, 0, 0x14, 2, 0, 0, 4, 5, 6,
                                    0, 0x10, 0xAA, 0, 0, 40, 1, 74])
CD_TEXT = packs(0x80, (0, 0, b"Album\0One\0\t\0"), (3, 0, b"A long title")) + packs(
    0x81, (0, 0, b"Band\0\0\0\0\0\0\0\0"), (1, 0x80, b"\x83\x65\0\0\t\t\0\0\0\0\0\0")) + packs(
    0x8F, (0, 0, b"\x80\1\2" + bytes(9)))

def chunk(name, data):
    return name + little((len(data), 4)) + data + bytes(len(data) % 2)


def wave(*chunks):
    body = b"WAVE" + b"".join(chunks)
    return b"RIFF" + little((len(body), 4)) + body


FORMAT = chunk(b"fmt ", little((1, 2), (2, 2), (8000, 4), (32000, 4), (4, 2), (16, 2)))
BATCH = (b"batch\tnow\nfile\t12\t34\t/a/b\\t.mp3\t/a/c.mp3\nfolder\t/a\nroot\t/a\n"
         b"list\t/a/x.m3u\tb\\t.mp3\\n\n")

SEEDS = {
    "wave": [wave(FORMAT, chunk(b"data", bytes(64))),
             wave(chunk(b"LIST", b"INFO" + chunk(b"ISFT", b"Maker\0")), FORMAT,
                  chunk(b"fact", bytes(4)), chunk(b"data", bytes(33)), chunk(b"id3 ", TAG3)),
             wave(FORMAT, b"data" + little((0, 4)) + bytes(20)),
             wave(FORMAT, b"data" + little((2**32 - 1, 4)) + bytes(20))],
    "journal": [BATCH, BATCH + b"moved\ndone\n", BATCH[:-9], b"file\t\t\t\t\nfile\t-1\t9\n\n"],
    "id3v1": [V1, id3v1(b"\xc8\xec\xff", 0), b"x" * 40 + V1 + b"behind it", V1[:127]],
    "id3v2": [TAG2, TAG3, TAG4, FLAGGED, FLAGGED4, UNSYNC, EXTENDED],
    "apev2": [APE, APE + V1, ape([(b"Title", b"\xc8\xec\xff", 0)], 1000, False),
              ape([(b"Own", b"\x88\xb9\xff" * 50, 0)], 1000, False)],
    "lyrics3": [LYRICS + V1, LYRICS, b"\0" * 200 + LYRICS + V1],
    "mpeg": [FRAME * 4, XING + FRAME * 2, VBRI.ljust(96, b"\0") + FRAME * 2, FRAME * 3 + V1,
             TAG3 + FRAME * 3 + LYRICS + V1, TAG4 + b"\xff\xfb" + FRAME * 3 + APE + V1],
    "stream": [bytes([kind]) + data for kind, data in STREAMS],
    "fileview": [bytes([2, 80]) + TAG3 + FRAME * 3 + V1, bytes([33, 80]) + XING + APE + V1,
                bytes([8, 255]) + TAG4 + FRAME * 3 + LYRICS + V1, bytes([0, 70]) + FRAME + APE,
                LARGE],
    "update": [bytes([settings]) + tag + FRAME * 2 + end for settings, tag, end in (
        (0x03, b"", b""), (0x07, TAG3, V1), (0x1B, TAG4, APE + LYRICS + V1), (0x13, TAG2, LYRICS),
        (0x0F, FLAGGED, APE + V1 + b"behind it"), (0x17, FLAGGED4, APE), (0x01, UNSYNC, V1),
        (0x10, b"", V1), (0x23, EXTENDED, APE + LYRICS + V1))],
    "layers": [TAG3 + FRAME * 2 + APE + LYRICS + V1, TAG4 + V1, FLAGGED4 + APE, UNSYNC + V1,
               b"\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\2\0\0\0\3",
               b"\xff\xd8\xff\xe0\0\4\0\0\xff\xc0\0\x11\x08\0\2\0\3"],
    "playlist": [b"#EXTM3U\r\n#EXTINF:10,a\r\n..\\a\\b.mp3\r\n\r\n./c.mp3 \n/d//e.mp3\n",
                 b"C:\\a/b.mp3\n\\\\server\\share\\c.mp3\n\\d.mp3\n\xcf\xee.mp3",
                 b"\xef\xbb\xbf" + "Ночь.mp3".encode(), b"#a\na.mp3\r \nb.mp3 \t\r\n#\xd0\x96"],
    "disc": [b"\0" + TOC, b"\1" + (len(CD_TEXT) + 2).to_bytes(2, "big") + b"\0\0" + CD_TEXT],
    "commandline": [b'/scan "C:\\My Music" /s /json', b"-rename --template \"%A - %T\" /to /mnt/p",
                    b"/e mp3 vbr2 /f5 /norm_level 90 *.wav", b'/a "" /t\t"x y" /zxx 1 2 /lng'],
    "settings": [b"Name\0text \"\\\n\0[HKEY_CURRENT_USER\\Software\\Tavlo]\n\"name\"=-1\n"
                 b"\"Text\"=\"a\\n\\x01\\\"\"\nbroken\n\n[HKEY_CURRENT_USER\\Software\\Other]\r\n",
                 b"N\0\0\"stray\"=1\n[no end\n\"N\"=2\n[HKEY_CURRENT_USER\\Software\\Tavlo\\Sub]\n"],
    "language": [b"\xef\xbb\xbf1006=No file: %1\r\n2001=%1%1\nx\n99=y\n2001\n", b"2001=\n1008=a=b"],
    "unicode": ["Aя€😀".encode(), "Aя€😀".encode("utf-16"), b"\xed\xa0\x80\xc0\xaf\xf4\x90\x80\x80",
                b"\x98\x81\x8d\x83\x5c\xff", "İıſßǅΣς".encode()],
    "order": [b"track 2\0track 10\0Track 02", "ё2\0Ё2\0е".encode(), b"007\0" b"7\0" b"07a"],
    "mask": [b"*.mp3\0Song.MP3", b"[!a-c]?#[x]*z\0dq1x..z", b"[abc\0[abc", b"*a*a*a*b\0aaaaaaaac"],
    "template": [b"%A\\%L\\%N3 - %T (%M) %BS\0AC\\DC\0%A %N\0Mix\0con.\0"
                 b"1999\0" b"3/12\0/m/a/07 - b.mp3",
                 "%Y%R %Z\0Щука\0../é\0\0a\0\0\0C:\\Щ\\x.mp3".encode(),
                 "%N%% - %0 - %A%Z %W\0日本\0"
                 "[]\t😀\0\0\0\0" "7\0\\\\s\\t\\7% - b - c".encode()],
    "json": ["/a/Имя \xff.mp3\0Title\0Artist\0Al\tbum\0".encode("latin-1", "replace")
             + b"2001\0Rock\0003/12\0Mix\0LAME\0image/png\0comment \"\\\n",
             b"/\xff\xed\xa0\x80.mp3\0\0\0\0\0\0" b"7\0", "/a/é.mp3\0日本 é́".encode()],
}


# What a target has in front of the file: its choice of settings, of a format, of a gap.
FILE_TARGETS = {"id3v1": b"", "id3v2": b"", "apev2": b"", "lyrics3": b"", "mpeg": b"", "layers": b"",
                "update": b"\x0b", "fileview": b"\0\0"}
STREAM_KINDS = {".ogg": 0, ".oga": 0, ".flac": 1, ".mpc": 2, ".wv": 3, ".ape": 4, ".m4a": 5,
                ".mp4": 5, ".m4v": 5, ".aac": 6, ".wma": 7}
LARGE, LARGEST = 1 << 16, 1 << 20  # bytes; the large ones are for long runs
SETTINGS = range(32)  # of the target `update`; one more bit makes the file a Musepack one


def made_files():
    """Every tag of tests/peers/kept.py, around a little sound."""
    ends = (b"", V1, tag_bytes.LYRICS + V1, APE + V1)
    number = 0
    for version in (2, 3, 4):
        for _, tag in tag_bytes.made_tags(version):
            number += 1
            yield tag + FRAME * 2 + ends[number % len(ends)]
    for _, tag in tag_bytes.made_apes():
        yield FRAME * 2 + tag + V1
    for _, block in tag_bytes.ODD_V1:
        yield FRAME * 2 + tag_bytes.LYRICS + block


def large_files():
    """As many as possible of what a reader goes through one by one."""
    def around(*frames):
        return id3v2(4, frames, padding=0) + FRAME
    room = LARGEST - 4096
    yield around(frame(4, b"TPE1", b"\3" + bytes(room)))
    yield around(frame(4, b"TPE1", b"\3" + b"a\0" * (room // 2)))
    yield around(frame(4, b"TIT2", b"\1\xff\xfe" + b"(\0[\0" * (room // 4)))
    yield around(frame(4, b"TCON", b"\0" + b"(1)" * (room // 3)))
    yield around(*[frame(4, b"TXXX", b"\3\0")] * (room // 12))
    yield around(*[frame(4, b"COMM", b"\0eng\0")] * (room // 15))
    yield around(*[frame(4, b"APIC", b"\0image/\0\4\0")] * (room // 20))
    yield id3v2(2, [frame(2, b"TT2", b"\0")] * (room // 7), padding=0) + FRAME
    yield id3v2(4, [], padding=0) * (room // 10) + FRAME
    for name, content in ((b"APIC", b"\0image/png\0\4\0"), (b"TXXX", b"\3k\0")):
        packed = zlib.compress(content + b"a" * ((16 << 20) - len(content)))
        one = frame(4, name, syncsafe(16 << 20) + packed, b"\0\x09")
        yield around(*[one] * (room // len(one)))
    yield FRAME + ape([(b"Artist", bytes(room), 0)])
    yield FRAME + ape([(b"ab", b"", 0)] * (room // 11))
    yield FRAME + b"LYRICSBEGIN" * (room // 30) + b"LYRICS200" * (room // 30) + V1
    yield FRAME + lyrics([(b"INF", b"")] * 100000) + V1
    yield b"\xff\xfb\x90" * (room // 3)


def corpus_files(folder):
    for path in sorted(folder.rglob("*")) if folder.is_dir() else []:
        if path.is_file() and path.stat().st_size < LARGEST:
            yield path.suffix.lower(), path.read_bytes()


def seeds(folder):
    """(target, input)"""
    for number, data in enumerate([*made_files(), *large_files()]):
        for target, head in FILE_TARGETS.items():
            if target == "update":
                head = bytes([SETTINGS[number * 7 % 32] | (0x20 if number % 5 == 0 else 0)])
            yield target, head + data
    for ending, data in corpus_files(folder):
        if ending in (".mp3", ".id3", ".ape", ".mpc", ".wv"):
            for target, head in FILE_TARGETS.items():
                yield target, head + data
        if ending in STREAM_KINDS:
            yield "stream", bytes([STREAM_KINDS[ending]]) + data
        if ending == ".wav":
            yield "wave", data
    yield "playlist", b"a\n" * 50000
    yield "journal", b"file\t1\t2\ta\tb\n" * 20000


def write_seeds(out, folder):
    for number, (target, data) in enumerate(seeds(folder)):
        place = out / ("large" if len(data) > LARGE else "small") / target
        place.mkdir(parents=True, exist_ok=True)
        (place / f"{number:05d}").write_bytes(data)


def main():
    if sys.argv[1:2] == ["--seeds"]:
        write_seeds(Path(sys.argv[2]), Path(sys.argv[3] if len(sys.argv) > 3 else "none"))
        return
    for target, inputs in SEEDS.items():
        folder = HERE / target
        folder.mkdir(parents=True, exist_ok=True)
        for number, data in enumerate(inputs, 1):
            (folder / f"{number:02d}").write_bytes(data)


if __name__ == "__main__":
    main()
