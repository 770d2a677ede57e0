#!/bin/bash
# Jobs of several files with stand-ins for the encoders: order, log, exit code, dry run, Ctrl+C.
set -euo pipefail
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
export XDG_CONFIG_HOME=$place/settings TMPDIR=$place/temporary TAVLO_ANSI_CODE_PAGE=1252
cd "$place"
mkdir tools temporary as music
drive= suffix=
if [ "$TAVLO_SYSTEM" = windows ]; then
    drive=Z: suffix=.exe
    export WINEPATH="Z:${place//\//\\}\\tools"
fi
for tool in lame oggdec oggenc; do cp "$TAVLO_CHILD" "tools/$tool$suffix"; done
export PATH=$place/tools:$PATH TAVLO_CHILD_LOG=$drive$place/told
gives="give=$drive$place/as/12"

/usr/bin/python3 -c '
def wave(name, seconds):
    size = seconds * 1000
    head = b"WAVEfmt \x10\0\0\0\1\0\1\0\xe8\3\0\0\xe8\3\0\0\1\0\x08\0data"
    data = head + size.to_bytes(4, "little") + bytes(size)
    open(name, "wb").write(b"RIFF" + len(data).to_bytes(4, "little") + data)
for name in "as/12", "music/b", "music/d": wave(name + ".wav", 12)
wave("music/c.wav", 3)
open("music/a.ogg", "w").write("sound")
open("as/12.mp3", "wb").write((b"\xff\xfb\x90\x64" + bytes(413)) * 460)'

fail() {
    echo "$1"
    cat log out
    exit 1
}

# holds FOLDER NAME...: these files, and nothing passing is left anywhere
holds() {
    [ "$(ls "$1" | xargs)" = "${*:2}" ] || fail "$1 holds $(ls "$1" | xargs), not ${*:2}"
    [ -z "$(find . -name 'tavlo[0-9]*')" ] || fail "left: $(find . -name 'tavlo[0-9]*')"
}

export TAVLO_CHILD_DOES="oggdec:sleep=700 $gives"
"$TAVLO" /encode mp3 vbr1 music /to made /json /dryrun > out 2> log
[ "$(grep -c '"Result":"planned"' out)" = 4 ] || fail "no plan"
if [ -e told ] || [ -e made ]; then fail "a dry run changed something"; fi

# One fails, and the first takes the longest.
code=0
"$TAVLO" /encode mp3 vbr1 music /to made /jobs 3 /json /log saved.txt > out 2> log || code=$?
[ $code = 1 ] || fail "exit code $code"
holds made a.mp3 b.mp3 d.mp3
[ "$(sed 's/.*[/\\]\([a-d]\)\.[a-z]*","NewPath.*"Result":"\([a-z]*\)".*/\1 \2/' out | xargs)" = \
    "a converted b converted c failed d converted" ] || fail "not in the list's order"
sed 's/\r$//; s/processing .*[/\\]/processing /' saved.txt > lines
grep -v '%' lines | diff - <(cat << 'EOF'
Batch audio operation is in progress
processing a.ogg
decoding from Ogg Vorbis
encoding to MP3 using LAME
reduce level mode
VBR medium preset
file bitrate: 128 kbps
updating information tags
tags of this source format cannot be read yet, so none go over
processing b.wav
encoding to MP3 using LAME
reduce level mode
VBR medium preset
processing c.wav
encoding to MP3 using LAME
reduce level mode
VBR medium preset
no whole file came out of lame.exe
Encoding ERROR detected! Operation cancelled.
processing d.wav
encoding to MP3 using LAME
reduce level mode
VBR medium preset
1 errors found!
done
EOF
) || fail "another log"
[ "$(grep -c $'\r$' saved.txt)" = "$(wc -l < saved.txt)" ] || fail "no CR LF"
tr -d '\r' < saved.txt | diff - log || fail "what was shown is not what was saved"

[ "$TAVLO_SYSTEM" = native ] || exit 0

# until_said FILE TEXT: waits for it
until_said() {
    local i
    for i in {1..200}; do
        if grep -q -- "$2" "$1" 2> /dev/null; then return; fi
        sleep 0.05
    done
    fail "$1 never said $2"
}

# interrupted ENCODER DOES [twice]: a job of three files; Ctrl+C comes when the encoder runs
interrupted() {
    rm -rf made told
    export TAVLO_CHILD_DOES=$2
    "$TAVLO" /encode "$1" music /to made > out 2> log &
    until_said told music/b.wav
    kill -INT $!
    until_said log 'exe" is still running'
    [ "${3:-}" != twice ] || kill -INT $!
    code=0
    wait $! || code=$?
    [ $code = 1 ] || fail "exit code $code"
    grep -q 'interrupted by user' log || fail "not told"
    if grep -q 'music/[cd].wav' told log; then fail "it went on"; fi
}
rm music/a.ogg
interrupted mp3 "sleep=500 $gives"
holds made b.mp3
interrupted ogg "garbage sleep=60000" twice
holds made
