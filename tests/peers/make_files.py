"""Makes MP3 files of every kind of stream and tag: make_files.py FOLDER"""

import sys
from pathlib import Path

from mutagen import apev2, id3

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "samples"))
import make  # noqa: E402

LATIN1, UTF16, UTF16BE, UTF8 = (id3.Encoding.LATIN1, id3.Encoding.UTF16, id3.Encoding.UTF16BE,
                                id3.Encoding.UTF8)
CYRILLIC = "Северный трамвай"
LONG = "A long text that does not end soon; " * 40

# name: sample rate, channels, LAME's options
STREAMS = {
    "cbr 32": (32000, 2, "-b 32"), "cbr 128": (44100, 2, "-b 128"),
    "cbr 320": (48000, 2, "-b 320"), "cbr no info": (44100, 2, "-b 96 -t"),
    "vbr 0": (44100, 2, "-V 0"), "vbr 5": (48000, 2, "-V 5"), "vbr 9 mono": (32000, 1, "-V 9"),
    "vbr no info": (44100, 2, "-V 4 -t"), "abr 100": (44100, 2, "--abr 100"),
    "mono": (44100, 1, "-b 64"), "stereo": (44100, 2, "-b 128 -m s"),
    "dual": (44100, 2, "-b 128 -m d"), "forced joint": (44100, 2, "-b 128 -m f"),
    "freeformat": (44100, 2, "--freeformat -b 200"), "crc": (44100, 2, "-b 112 -p"),
    "mpeg2 16": (16000, 2, "-b 40"), "mpeg2 22 vbr": (22050, 2, "-V 4"),
    "mpeg2 24 mono": (24000, 1, "-b 48"), "mpeg2 no info": (22050, 1, "-b 56 -t"),
    "mpeg25 8": (8000, 1, "-b 16"), "mpeg25 11 vbr": (11025, 2, "-V 4"),
    "mpeg25 12": (12000, 2, "-b 32"),
}


def text_frames(encoding, **texts):
    return [getattr(id3, name)(encoding=encoding, text=text if isinstance(text, list) else [text])
            for name, text in texts.items()]


def comm(encoding, desc, text, lang="eng"):
    return id3.COMM(encoding=encoding, lang=lang, desc=desc, text=[text])


def picture(kind, size, mime="image/jpeg", encoding=LATIN1, desc=""):
    return id3.APIC(encoding=encoding, mime=mime, type=kind, desc=desc,
                    data=b"\xff\xd8\xff\xe0" + bytes(range(256)) * (size // 256))


# name: version, padding and frames of an ID3v2 tag
TAGS = {
    "v23 latin1": (3, 128, text_frames(
        LATIN1, TIT2="Café [Live]", TPE1="Ana Solé", TALB="Una Tarde", TYER="2007", TRCK="3/12",
        TCON="(17)", TCOM="Solé", TCOP="2007 Tarde", TPOS="1/2", TBPM="96")
        + [comm(LATIN1, "", "plain")]),
    "v23 utf16": (3, 0, text_frames(
        UTF16, TIT2=CYRILLIC, TPE1=CYRILLIC, TALB="日本語 😀", TYER="2010", TRCK="5",
        TCON="Дворовый романс") + [comm(UTF16, "", CYRILLIC, "rus")]),
    "v23 described comments": (3, 64, text_frames(LATIN1, TIT2="T") + [
        comm(LATIN1, "iTunNORM", " 0000"), comm(LATIN1, "", "the comment"),
        comm(LATIN1, "other", "another")]),
    "v23 only described comment": (3, 64, [comm(UTF16, "ID3v1 Comment", "described")]),
    "v23 genres": (3, 64, text_frames(LATIN1, TCON="(4)Eurodisco")),
    "v23 genre number and name": (3, 64, text_frames(LATIN1, TCON="(17)Rock")),
    "v23 genre refinements": (3, 64, text_frames(LATIN1, TCON="(51)(39)")),
    "v23 genre beyond the list": (3, 64, text_frames(LATIN1, TCON="(191)")),
    "v23 genre remix": (3, 64, text_frames(LATIN1, TCON="(RX)")),
    "v23 blanks": (3, 64, text_frames(LATIN1, TIT2="  blanks  ", TPE1=" ", TALB="", TYER="1999",
                                      TRCK="0")),
    "v23 long": (3, 64, text_frames(UTF16, TIT2=LONG, TPE1=LONG) + [comm(LATIN1, "", LONG)]),
    "v23 large tag": (3, 200000, text_frames(LATIN1, TIT2="behind 200 KB")
                      + [picture(3, 150000)]),
    "v23 pictures": (3, 64, [picture(4, 5000, desc="back"),
                             picture(3, 3000, "image/png", desc="front"),
                             picture(0, 700, "image/gif", desc="x")]),
    "v23 picture link": (3, 64, [id3.APIC(encoding=LATIN1, mime="-->", type=3, desc="",
                                          data=b"http://example.org/a.jpg")]),
    "v23 utf16 picture": (3, 64, [picture(3, 2000, encoding=UTF16, desc=CYRILLIC)]),
    "v23 lines": (3, 64, text_frames(LATIN1, TIT2="one\ntwo") + [comm(LATIN1, "", "a\r\nb\tc")]),
    "v24 utf8": (4, 128, text_frames(
        UTF8, TIT2=CYRILLIC + " (Mix)", TPE1="日本語", TALB="Ünï", TDRC="2015-04-12",
        TRCK="2/9", TCON="Electronic") + [comm(UTF8, "", CYRILLIC)]),
    "v24 utf16be": (4, 16, text_frames(UTF16BE, TIT2=CYRILLIC, TPE1="😀", TDRC="1999")),
    "v24 values": (4, 64, text_frames(
        UTF8, TPE1=["One", "Two"], TCOM=["Three", "Four"], TCON=["17", "Ambient"],
        TIT2=["Title", "Second"])),
    "v24 genre number": (4, 64, text_frames(LATIN1, TCON="17")),
    "v24 original date": (4, 64, text_frames(UTF8, TDOR="1970", TDRL="1980")),
    "v24 large frame": (4, 64, text_frames(UTF8, TIT2=LONG * 3, TALB="behind it")
                        + [picture(3, 40000)]),
    "v24 lone latin1": (4, 64, text_frames(LATIN1, TIT2="naïve – “quoted”".encode(
        "cp1252").decode("latin-1"))),
    "v24 title in brackets": (4, 64, text_frames(UTF8, TIT2="(Intro)", TPE1="[Unknown]")),
    "v24 two brackets": (4, 64, text_frames(UTF8, TIT2="Song (feat. Ann) [Live]")),
}

APE_TAGS = {
    "ape": {"Title": "Слово (Remix)", "Artist": "Glass Metro", "Album": "Перегон", "Year": "2018",
            "Track": "6/10", "Genre": "Trip-Hop", "Comment": "APEv2", "Composer": CYRILLIC,
            "Copyright": "2018"},
    "ape values": {"Artist": ["One", "Two"], "Title": "T", "Genre": ["Rock", "Pop"]},
    "ape other case": {"TITLE": "Shouted", "artist": "whispered"},
    "ape date": {"Title": "T", "Year": "2018-05-06", "Track": "06"},
}


def write_id3v2(path, version, padding, frames):
    tag = id3.ID3()
    for frame in frames:
        tag.add(frame)
    tag.save(path, v1=0, v2_version=version, v23_sep=None, padding=lambda info: padding)


def write_ape(path, items, cover=False):
    tag = apev2.APEv2()
    for key, value in items.items():
        tag[key] = value
    if cover:
        tag["Cover Art (front)"] = apev2.APEValue(b"cover.png\0\x89PNG" + bytes(3000),
                                                  apev2.BINARY)
    tag.save(path)


def v1(title="ID3v1 title", track=9, genre=8):
    return make.id3v1(title, "ID3v1 artist", "ID3v1 album", "1991", "ID3v1 comment", track, genre)


def lyrics():
    return make.lyrics3v2([(b"IND", b"00"), (b"EAL", b"L3 album"), (b"EAR", b"L3 artist"),
                           (b"ETT", b"L3 title (L3 mix)")])


def old_tag():
    return make.id3v22([
        (b"TT2", 0, b"Old (Club Mix)"), (b"TP1", 1, CYRILLIC.encode("utf-16")),
        (b"TAL", 0, b"Old album"), (b"TYE", 0, b"1999"), (b"TRK", 0, b"3/12"), (b"TCO", 0, b"(18)"),
        (b"TCM", 0, b"Composer"), (b"COM", 0, b"eng\0old comment"), (b"TCR", 0, b"1999 Copy"),
        (b"PIC", 0, b"JPG\3\0\xff\xd8" + bytes(500))])


def long_v1():
    return (b"TAG" + b"T" * 30 + b"A" * 30 + b"L" * 30 + b"2001" + b"C" * 30 + b"\xff")


def make_all(folder):
    make.HERE = folder
    streams = list(STREAMS.items())

    def encode(name, index=0):
        rate, channels, options = streams[index % len(streams)][1]
        return make.encode(name + ".mp3", options.split(), rate=rate, channels=channels,
                           seconds=1.5)

    for index, (name, _) in enumerate(streams):
        encode("stream " + name, index)
    for index, (name, (version, padding, frames)) in enumerate(TAGS.items()):
        write_id3v2(encode(name, index), version, padding, frames)
    for index, (name, items) in enumerate(APE_TAGS.items()):
        write_ape(encode(name, index), items)
    write_ape(encode("ape cover"), {"Title": "T"}, cover=True)

    tails = {"v1": v1(), "v1 no track": long_v1(), "v1 genre none": v1(genre=255),
             "v1 cp1251": v1().replace(b"ID3v1 artist", "Ранний снег!".encode("cp1251")),
             "v1 padded by blanks": v1().replace(b"\0\0", b"  "),
             "lyrics3 v1": lyrics() + v1(), "lyrics3": lyrics()}
    for index, (name, data) in enumerate(tails.items()):
        make.append(encode(name, index), data)
    make.prepend(encode("v22", 4), old_tag())

    tone = encode("genre 000", 0).read_bytes()
    for genre in range(193):
        (folder / f"genre {genre:03d}.mp3").write_bytes(tone + v1(genre=genre))

    path = encode("v2 v1")
    write_id3v2(path, 3, 64, text_frames(LATIN1, TIT2="ID3v2 title", TPE1="ID3v2 artist"))
    make.append(path, v1())
    path = encode("everything", 4)
    write_id3v2(path, 3, 64, text_frames(LATIN1, TIT2="ID3v2 title"))
    write_ape(path, {"Artist": "APE artist", "Title": "APE title", "Composer": "APE composer"})
    make.append(path, lyrics() + v1())


if __name__ == "__main__":
    make_all(Path(sys.argv[1]).resolve())
