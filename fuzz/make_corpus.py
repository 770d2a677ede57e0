#!/usr/bin/env python3
"""Makes the kept inputs of the fuzz targets again: fuzz/make_corpus.py"""

import zlib
from pathlib import Path

HERE = Path(__file__).resolve().parent / "corpus"


def syncsafe(size):
    return bytes(size >> shift & 0x7F for shift in (21, 14, 7, 0))


def frame(version, name, body, flags=b"\0\0"):
    if version == 2:
        return name + len(body).to_bytes(3, "big") + body
    size = syncsafe(len(body)) if version == 4 else len(body).to_bytes(4, "big")
    return name + size + flags + body


def id3v2(version, frames, flags=0, padding=16):
    body = b"".join(frames) + bytes(padding)
    return b"ID3" + bytes([version, 0, flags]) + syncsafe(len(body)) + body


def id3v1(title, track):
    return (b"TAG" + title.ljust(30, b"\0") + b"artist".ljust(30) + b"album".ljust(30, b"\0")
            + b"2001" + b"comment".ljust(28, b"\0") + bytes([0, track, 17]))


def ape(items, version=2000, header=True):
    body = b"".join(len(value).to_bytes(4, "little") + flags.to_bytes(4, "little") + key + b"\0"
                    + value for key, value, flags in items)

    def block(flags):
        numbers = (version, len(body) + 32, len(items), flags)
        return b"APETAGEX" + b"".join(n.to_bytes(4, "little") for n in numbers) + bytes(8)

    return block(0xA0000000) + body + block(0x80000000) if header else body + block(0)


def lyrics(fields):
    body = b"LYRICSBEGIN" + b"".join(name + b"%05d" % len(data) + data for name, data in fields)
    return body + b"%06d" % len(body) + b"LYRICS200"


def utf16(text):
    return b"\1" + text.encode("utf-16")


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

# A picture that reaches beyond the file's first window; its middle is what the target puts back.
GAP = 80 * 64
LARGE = id3v2(3, [frame(3, b"APIC", PICTURE + bytes(GAP)), frame(3, b"TIT2", b"\0behind it")])
LARGE = bytes([5, 80]) + LARGE[:80] + LARGE[80 + GAP:] + FRAME * 3

SEEDS = {
    "id3v1": [V1, id3v1(b"\xc8\xec\xff", 0), b"x" * 40 + V1 + b"behind it", V1[:127]],
    "id3v2": [TAG2, TAG3, TAG4, FLAGGED, FLAGGED4, UNSYNC, EXTENDED],
    "apev2": [APE, APE + V1, ape([(b"Title", b"\xc8\xec\xff", 0)], 1000, False)],
    "lyrics3": [LYRICS + V1, LYRICS, b"\0" * 200 + LYRICS + V1],
    "mpeg": [FRAME * 4, XING + FRAME * 2, VBRI.ljust(96, b"\0") + FRAME * 2, FRAME * 3 + V1,
             TAG3 + FRAME * 3 + LYRICS + V1, TAG4 + b"\xff\xfb" + FRAME * 3 + APE + V1],
    "fileview": [bytes([2, 80]) + TAG3 + FRAME * 3 + V1, bytes([33, 80]) + XING + APE + V1,
                bytes([8, 255]) + TAG4 + FRAME * 3 + LYRICS + V1, bytes([0, 70]) + FRAME + APE,
                LARGE],
    "update": [bytes([settings]) + tag + FRAME * 2 + end for settings, tag, end in (
        (0x03, b"", b""), (0x07, TAG3, V1), (0x1B, TAG4, APE + LYRICS + V1), (0x13, TAG2, LYRICS),
        (0x0F, FLAGGED, APE + V1 + b"behind it"), (0x17, FLAGGED4, APE), (0x01, UNSYNC, V1),
        (0x10, b"", V1), (0x23, EXTENDED, APE + LYRICS + V1))],
    "playlist": [b"#EXTM3U\r\n#EXTINF:10,a\r\n..\\a\\b.mp3\r\n\r\n./c.mp3 \n/d//e.mp3\n",
                 b"C:\\a/b.mp3\n\\\\server\\share\\c.mp3\n\\d.mp3\n\xcf\xee.mp3",
                 b"\xef\xbb\xbf" + "Ночь.mp3".encode(), b"#a\na.mp3\r \nb.mp3 \t\r\n#\xd0\x96"],
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


def main():
    for target, inputs in SEEDS.items():
        folder = HERE / target
        folder.mkdir(parents=True, exist_ok=True)
        for number, data in enumerate(inputs, 1):
            (folder / f"{number:02d}").write_bytes(data)


if __name__ == "__main__":
    main()
