"""Tags as bytes: the parts from which the fuzz targets' kept inputs and the files of
tests/peers/kept.py are made, and a table of tags of every kind, right and wrong."""

import zlib


def syncsafe(size):
    return bytes(size >> shift & 0x7F for shift in (21, 14, 7, 0))


def frame(version, name, body, flags=b"\0\0"):
    if version == 2:
        return name + len(body).to_bytes(3, "big") + body
    size = syncsafe(len(body)) if version == 4 else len(body).to_bytes(4, "big")
    return name + size + flags + body


def id3v2(version, frames, flags=0, padding=16, behind=b""):
    body = b"".join(frames) + bytes(padding) + behind
    return b"ID3" + bytes([version, 0, flags]) + syncsafe(len(body)) + body


def with_footer(tag):
    return tag + b"3DI" + tag[3:10]


def id3v1(title, track):
    return (b"TAG" + title.ljust(30, b"\0") + b"artist".ljust(30) + b"album".ljust(30, b"\0")
            + b"2001" + b"comment".ljust(28, b"\0") + bytes([0, track, 17]))


def item(key, value, flags=0):
    return (len(value).to_bytes(4, "little") + flags.to_bytes(4, "little") + key + b"\0" + value)


def ape(items, version=2000, header=True, count=None):
    body = b"".join(item(*each) for each in items)

    def block(flags):
        numbers = (version, len(body) + 32, len(items) if count is None else count, flags)
        return b"APETAGEX" + b"".join(n.to_bytes(4, "little") for n in numbers) + bytes(8)

    return block(0xA0000000) + body + block(0x80000000) if header else body + block(0)


def lyrics(fields):
    body = b"LYRICSBEGIN" + b"".join(name + b"%05d" % len(data) + data for name, data in fields)
    return body + b"%06d" % len(body) + b"LYRICS200"


def utf16(text):
    return b"\1" + text.encode("utf-16")


def unsynchronised(data):
    out = bytearray()
    for place, byte in enumerate(data):
        out.append(byte)
        follows = data[place + 1] if place + 1 < len(data) else 0
        if byte == 0xFF and (follows == 0 or follows >= 0xE0):
            out.append(0)
    return bytes(out)


# --- Frames --------------------------------------------------------------------------------------

CODECS = ("latin-1", "utf-16", "utf-16-be", "utf-8")
PICTURE_DATA = b"\x89PNG\r\n\x1a\n\0\xff\xfe\xff\xe0" + bytes(range(64))
LONG_NAMES = {b"TT2": b"TIT2", b"TP1": b"TPE1", b"TAL": b"TALB", b"TYE": b"TYER", b"TRK": b"TRCK",
              b"TCO": b"TCON", b"TCM": b"TCOM", b"TEN": b"TENC", b"TP2": b"TPE2", b"TPA": b"TPOS",
              b"TBP": b"TBPM", b"TCP": b"TCMP", b"TSS": b"TSSE", b"TOA": b"TOPE", b"TCR": b"TCOP",
              b"COM": b"COMM", b"ULT": b"USLT", b"TXX": b"TXXX", b"WXX": b"WXXX", b"PIC": b"APIC",
              b"UFI": b"UFID", b"POP": b"POPM", b"CNT": b"PCNT", b"GEO": b"GEOB", b"WAR": b"WOAR",
              b"TP3": b"TPE3", b"TDA": b"TDAT", b"IPL": b"IPLS", b"TT1": b"TIT1", b"TOR": b"TORY"}


def named(version, name):
    """By its name in version 2.2; a year of 2.4 is a date."""
    if version == 2:
        return name
    if version == 4 and name in (b"TYE", b"TOR"):
        return {b"TYE": b"TDRC", b"TOR": b"TDOR"}[name]
    return LONG_NAMES.get(name, name + b"X" if len(name) == 3 else name)


def text(encoding, *values):
    return bytes([encoding]) + b"\0".join(values_of(encoding, *values))


def values_of(encoding, *values):
    coded = [value.encode(CODECS[encoding], "replace") for value in values]
    return coded if encoding in (0, 3) else [value + b"\0" for value in coded[:-1]] + coded[-1:]


def described(encoding, head, description, rest):
    """A description that ends in its own NUL."""
    end = b"\0" if encoding in (0, 3) else b"\0\0"
    return bytes([encoding]) + head + description.encode(CODECS[encoding], "replace") + end + rest


def words(encoding, plain, unicode):
    return plain if encoding == 0 else unicode


def comment(encoding, language, description, words_):
    return described(encoding, language, description,
                     words_.encode(CODECS[encoding], "replace"))


def picture(version, encoding, kind, description="front"):
    mime = b"PNG" if version == 2 else b"image/png\0"
    return described(encoding, mime + bytes([kind]), description, PICTURE_DATA)


def usual_frames(version, encoding):
    """A frame of every kind that a collection holds, as (name of 2.2, body)."""
    e = encoding
    fields = [(b"TT2", "Song (Remix)", "Песня (Ремикс)"), (b"TP1", "Zo\xeb", "Ёлка"),
              (b"TAL", "Album", "Ærø — эхо"), (b"TYE", "1999", "1999"), (b"TRK", "3/12", "3/12"),
              (b"TCO", "(17)Rock", "Дворовый романс"), (b"TCM", "Gr\xf6\xdfe", "Größe"),
              (b"TEN", "Coder", "Кодер"), (b"TP2", "Band", "日本"), (b"TPA", "1/2", "1/2"),
              (b"TBP", "128", "128"), (b"TCP", "1", "1"), (b"TSS", "LAME", "LAME"),
              (b"TOA", "First", "Первый"), (b"TCR", "2001 Me", "2001 Я"), (b"TT1", "Set", "Набор"),
              (b"TP3", "Lead", "Вождь")]
    return [(name, text(e, words(e, plain, wide))) for name, plain, wide in fields] + [
        (b"COM", comment(e, b"eng", "", words(e, "plain note", "заметка"))),
        (b"COM", comment(e, b"deu", "", "Notiz")),
        (b"COM", comment(e, b"eng", "iTunNORM", " 00000A2C 00000A2C")),
        (b"ULT", comment(e, b"rus", words(e, "d", "д"), words(e, "la\nla", "строка\nдве"))),
        (b"TXX", described(e, b"", "replaygain_track_gain", text(e, "-6.5 dB")[1:])),
        (b"TXX", described(e, b"", words(e, "key", "ключ"), text(e, words(e, "v", "знач"))[1:])),
        (b"WXX", described(e, b"", words(e, "d", "дом"), b"http://example.org/a")),
        (b"WXX", described(e, b"", "second", b"http://example.org/b")),
        (b"WAR", b"http://example.org/w"),
        (b"PIC", picture(version, e, 3)), (b"PIC", picture(version, e, 4, words(e, "b", "зад"))),
        (b"UFI", b"http://musicbrainz.org\0" + b"0123-4567"),
        (b"POP", b"me@example.org\0\xc4\0\0\0\x07"), (b"CNT", b"\0\0\1\0"),
        (b"GEO", described(e, b"text/plain\0", "f.txt", described(e, b"", "d", b"\0\1\xff")[1:]))]


def usual(version, encoding):
    return [frame(version, named(version, name), body)
            for name, body in usual_frames(version, encoding)]


# Texts that give no value, more than one value, or a value that is not all of the text.
ODD_TEXTS = [
    (b"TPA", "A"), (b"TBP", "fast"), (b"TBP", "127.98"), (b"TCP", "true"), (b"TT2", "[]"),
    (b"TT2", "()"), (b"TT2", "Song (Remix (2009 Edit))"), (b"TT2", "Song (live) :)"),
    (b"TT2", "  Song  "), (b"TT2", "Song [a] [b]"), (b"TT2", "Song (a)(b)"), (b"TRK", "A1"),
    (b"TRK", "03/012"), (b"TRK", "0"), (b"TRK", "/9"), (b"TRK", "3/"), (b"TPA", "01/02"),
    (b"TYE", "99"), (b"TYE", "circa 1999"), (b"TYE", "19990102"), (b"TCO", "(RX)(CR)"),
    (b"TCO", "(4)(5)Two"), (b"TCO", "((sharp)"), (b"TCO", "255"), (b"TCO", "rock"),
    (b"TCP", "0"), (b"TCP", ""), (b"TBP", "0"), (b"TP1", "A\0B"), (b"TP1", "A; B"),
    (b"TT2", "Song\r\nline"), (b"TSS", " "), (b"TOA", "\0"), (b"TCR", "x\0\0"), (b"TEN", "#")]


def odd_texts(version):
    return [(f"{name.decode()} {value!r} in {encoding}",
             [frame(version, named(version, name), text(encoding, value)),
              frame(version, named(version, b"TP2"), b"\0Band")])
            for number, (name, value) in enumerate(ODD_TEXTS)
            for encoding in ((0, 1) if version == 2 or number % 2 else (1, 0))[:1]]


def empty_years(version):
    name = named(version, b"TYE")
    bodies = [b"\1\xff\xfe", b"\1\xfe\xff", b"\1", b"\0", b"", b"\1\xff\xfe\0\0", b"\0\0\0\0\0",
              b"\1\xff\xfe2\x000\x000\x001\0\0\0\xff\xfe", b"\0    "]
    return [(f"year {body!r}", [frame(version, name, body), frame(version, named(version, b"TT2"),
                                                                  b"\0Title")])
            for body in bodies]


def doubles(version):
    def one(name, body):
        return frame(version, named(version, name), body)
    title, artist = one(b"TT2", b"\0First"), one(b"TP1", b"\0Artist")
    return [
        ("two titles", [title, artist, one(b"TT2", b"\0Second")]),
        ("two artists of one text", [artist, artist, title]),
        ("two comments", [one(b"COM", b"\0deu\0eins"), one(b"COM", b"\0eng\0two"), title]),
        ("a comment twice", [one(b"COM", b"\0eng\0one"), title, one(b"COM", b"\0eng\0two")]),
        ("described comment first", [one(b"COM", b"\0eng\0d\0x"), one(b"COM", b"\0XXX\0y")]),
        ("two front covers", [one(b"PIC", picture(version, 0, 3)), title,
                              one(b"PIC", picture(version, 1, 3, "zwei"))]),
        ("cover behind another", [one(b"PIC", picture(version, 0, 4)), artist,
                                  one(b"PIC", picture(version, 0, 3)), title]),
        ("empty first", [one(b"TT2", b"\0"), one(b"TT2", b"\0Later"), artist]),
        ("empty frames", [one(b"TT2", b""), one(b"TP1", b""), one(b"COM", b""), one(b"PIC", b""),
                          one(b"TXX", b""), one(b"TAL", b"\0Album")]),
        ("broken frames", [one(b"COM", b"\0en"), one(b"PIC", b"\0im"), one(b"TT2", b"\7odd"), title,
                           one(b"TP1", b"\1\xff\xfeA"), one(b"TAL", b"\3\xff\xfe")]),
        ("unknown frames", [one(b"XYZ", b"\0\xff\xfe"), title, frame(version, b"ABC9"[:3 + (
            version > 2)], b"own"), artist]),
        ("artist behind the rest", [one(b"CNT", b"\0\0\0\1"), one(b"TP2", b"\0Band"), title, artist]),
    ]


def made_tags(version):
    """(what, bytes of the whole tag) of one version."""
    encodings = (0, 1) if version == 2 else (0, 1, 2, 3)
    tags = [(f"usual in {encoding}", id3v2(version, usual(version, encoding), padding=padding))
            for encoding in encodings for padding in (0, 300)]
    tags += [(what, id3v2(version, frames, padding=40)) for what, frames in
             odd_texts(version) + empty_years(version) + doubles(version)]
    body = usual(version, 1)
    title = frame(version, named(version, b"TT2"), b"\0Title")
    artist = frame(version, named(version, b"TP1"), b"\0Artist")
    tags += [
        ("hole", id3v2(version, [title, bytes(30), artist], padding=20)),
        ("bytes behind", id3v2(version, [title, artist], padding=20, behind=b"left over\0x")),
        ("bytes without padding", id3v2(version, [title, artist, b"\1\2\3\4rest of it"], padding=0)),
        ("no frames", id3v2(version, [], padding=100)),
        ("nothing", id3v2(version, [], padding=0)),
        ("experimental", id3v2(version, body, flags=0x20 if version > 2 else 0)),
    ]
    if version < 4:
        packed = unsynchronised(b"".join(body) + bytes(20))
        tags += [("unsynchronised", id3v2(version, [packed], 0x80, 0)),
                 ("flag of unsynchronisation alone", id3v2(version, [title, artist], 0x80, 20))]
    return tags + (flagged_tags(version) if version > 2 else [])


def flagged_tags(version):
    title = frame(version, b"TIT2", b"\0Title")
    rest = [frame(version, b"TPE1", utf16("Ёлка")), frame(version, b"TPE2", b"\0Band")]
    plain = text(1, "Песня")
    packed = zlib.compress(plain)
    crc = b"\x12\x34\x56\x78"
    if version == 3:
        size = len(plain).to_bytes(4, "big")
        frames = [("compressed", b"\0\x80", size + packed), ("grouped", b"\0\x20", b"\x90" + plain),
                  ("grouped and compressed", b"\0\xa0", size + b"\x90" + packed),
                  ("encrypted", b"\0\x40", b"\x81" + plain), ("read only", b"\x20\0", plain),
                  ("compressed to another size", b"\0\x80", b"\0\0\1\0" + packed),
                  ("compressed and broken", b"\0\x80", size + b"no stream")]
        heads = [("6", b"\0\0\0\6" + bytes(6)), ("10", b"\0\0\0\x0a\x80\0\0\0\0\0" + crc),
                 ("flag alone", b""), ("too large", b"\0\0\x40\0" + bytes(6)),
                 ("counts itself", b"\0\0\0\x0a" + bytes(6)), ("huge", b"\xff" * 4 + bytes(6))]
    else:
        size = syncsafe(len(plain))
        wild = text(0, "\xff\xe0\xff\0 x")
        frames = [("compressed", b"\0\x09", size + packed), ("grouped", b"\0\x40", b"\x90" + plain),
                  ("length", b"\0\1", size + plain), ("grouped, length", b"\0\x41",
                                                      b"\x90" + size + plain),
                  ("encrypted", b"\0\4", b"\x81" + plain), ("read only", b"\x10\0", plain),
                  ("unsynchronised", b"\0\2", unsynchronised(wild)),
                  ("unsynchronised, length", b"\0\3", syncsafe(len(wild)) + unsynchronised(wild)),
                  ("compressed and broken", b"\0\x09", size + b"no stream")]
        heads = [("6", b"\0\0\0\6\1\0"), ("crc", b"\0\0\0\x0c\1\x20\5\0\1\2\3\4"),
                 ("flag alone", b""), ("too large", b"\0\0\x7f\0\1\0"), ("of 2.3", b"\0\0\0\6"
                                                                         + bytes(6)),
                 ("does not count itself", b"\0\0\0\2\1\0"), ("not 7 bits", b"\xff" * 4 + b"\1\0")]
    made = [(f"frame {what}", id3v2(version, [frame(version, b"TIT2", body, flags), *rest,
                                              frame(version, b"TIT3", body, flags),
                                              frame(version, b"XOWN", body, flags)]))
            for what, flags, body in frames]
    made += [(f"extended header {what}", id3v2(version, [head, title, *rest], 0x40))
             for what, head in heads]
    if version == 3:
        tag = unsynchronised(heads[1][1] + title + b"".join(rest))
        return made + [("extended header, unsynchronised", id3v2(3, [tag], 0xC0, 0))]
    several = [frame(4, b"TPE1", text(3, "Один", "Two")), frame(4, b"TIT2", text(1, "A", "Б")),
               frame(4, b"TCON", text(0, "17", "Own")), frame(4, b"TXXX", b"\3k\0a\0b"),
               frame(4, b"TPE2", text(2, "Э", "Ю")), frame(4, b"TDRC", b"\0002001-02-03T04:05"),
               frame(4, b"TDOR", b"\0001990"), frame(4, b"TIPL", text(3, "mix", "Я")),
               frame(4, b"TMOO", b"\3calm")]
    flagged = [frame(4, b"TIT2", unsynchronised(text(1, "Я\u00ff")), b"\0\2"), *rest]
    dates = [frame(4, b"TIT2", b"\0Title"), frame(4, b"TYER", b"\0001998"),
             frame(4, b"TDAT", b"\0000203"), frame(4, b"TDRC", b"\0001999-04")]
    large = [b"TPE2" + (300).to_bytes(4, "big") + b"\0\0" + b"\0" + b"B" * 299, *rest]
    return made + [
        ("several values", id3v2(4, several)), ("with footer", with_footer(id3v2(4, several, 0x10, 0))),
        ("footer flag alone", id3v2(4, several, 0x10)), ("dates", id3v2(4, dates)),
        ("unsynchronised", id3v2(4, flagged, 0x80)), ("sizes of 2.3", id3v2(4, large)),
        ("footer, extended header", with_footer(id3v2(4, [heads[0][1], *several], 0x50, 0)))]


# --- Tags at the end -----------------------------------------------------------------------------

COVER = b"front.png\0" + PICTURE_DATA
APE_ITEMS = [
    (b"Title", "Песня (Ремикс)".encode(), 0), (b"Artist", "Один\0Two".encode(), 0),
    (b"Album", b"Album", 0), (b"Year", b"1999-02-03", 0), (b"Track", b"3/12", 0),
    (b"Genre", "Дворовый романс".encode(), 0), (b"Comment", b"note", 0), (b"Disc", b"1/2", 0),
    (b"Composer", "Größe".encode(), 0), (b"Copyright", b"Me", 0), (b"Encoded by", b"Coder", 0),
    (b"Album Artist", b"Band", 0), (b"Lyrics", b"la\r\nla", 0), (b"REPLAYGAIN_TRACK_GAIN",
                                                                b"-6.5 dB", 1),
    (b"Cover Art (Front)", COVER, 2), (b"Cover Art (Back)", COVER, 2),
    (b"Link", b"http://example.org/a", 4), (b"Own", b"\0\xff\xfe\0", 2), (b"Empty", b"", 0),
    (b"MUSICBRAINZ_ALBUMID", b"0123", 0)]


def made_apes():
    def recased(change):
        return [(change(key), *rest) for key, *rest in APE_ITEMS]
    short = [(b"Title", b"Song (Remix (2009 Edit))", 0), (b"Artist", b"Artist", 0),
             (b"Own", b"kept", 0)]
    return [
        ("every kind", ape(APE_ITEMS)), ("without header", ape(APE_ITEMS, header=False)),
        ("version 1", ape([(key, value, 0) for key, value, _ in short], 1000, False)),
        ("version 1 in 8 bits", ape([(b"Title", b"Zo\xeb", 0), (b"Own", b"\xe9", 0)], 1000, False)),
        ("large keys", ape(recased(bytes.upper))), ("small keys", ape(recased(bytes.lower))),
        ("front cover's other case", ape([*short, (b"Cover Art (front)", COVER, 2)])),
        ("count too small", ape(short, count=2)), ("count too large", ape(short, count=9)),
        ("count 0", ape(short, count=0)), ("no items", ape([])),
        ("a key twice", ape([*short, (b"Title", b"Second", 0), (b"TITLE", b"Third", 0)])),
        ("binary title", ape([(b"Title", b"\0\1\2", 2), *short[1:]])),
        ("linked artist", ape([(b"Artist", b"http://a", 4), short[0]])),
        ("read only", ape([(key, value, 1) for key, value, _ in short])),
        ("8-bit text", ape([(b"Title", b"Zo\xeb", 0), (b"Own", b"caf\xe9", 0)])),
        ("track of words", ape([(b"Track", b"A1", 0), (b"Year", b"circa 1999", 0), *short])),
        ("blanks", ape([(b"Title", b"  Song ", 0), (b"Genre", b" ", 0), *short[1:]])),
        ("no last item", ape(short)[:-34] + b"xy" + ape(short)[-32:]),
    ]


LYRICS = lyrics([(b"IND", b"00"), (b"ETT", b"Title"), (b"EAR", b"Artist"), (b"LYR", b"la\r\nla")])
V1 = id3v1(b"Title", 4)
ODD_V1 = [
    ("usual", V1), ("8 bits", id3v1(b"\xc8\xec\xff", 0)), ("1.0", V1[:97] + b"c" * 30 + b"\x11"),
    ("behind NUL", V1[:3] + b"Title\0junk".ljust(30, b"\xff") + V1[33:]),
    ("blanks", V1[:3] + b" Title ".ljust(30) + V1[33:63] + b"album".ljust(30) + V1[93:]),
    ("no genre", V1[:127] + b"\xff"), ("genre 200", V1[:127] + b"\xc8"),
    ("short year", V1[:93] + b"99\0\0" + V1[97:]), ("no year", V1[:93] + bytes(4) + V1[97:]),
    ("comment #", V1[:97] + b"#".ljust(28, b"\0") + V1[125:]),
    ("zero track", V1[:126] + b"\0" + V1[127:]), ("nothing", b"TAG" + bytes(125)),
    ("blanks only", b"TAG" + b" " * 125), ("marks", b"TAG" + b"TAGAPETAGEXLYRICS200".ljust(125, b"x")),
]
