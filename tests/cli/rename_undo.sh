#!/bin/bash
# Copies of samples/ renamed and taken back are what they were, their playlists with them.
set -euo pipefail
samples=$PWD/samples
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
export XDG_CONFIG_HOME=$place/settings TAVLO_ANSI_CODE_PAGE=1252
mkdir "$place/all"
cp -r "$samples" "$place/all/music"
cd "$place"

shown() { (cd "$1" && find . -type d && find . -type f -exec sha256sum {} +) | sort; }

fail() {
    echo "$1"
    exit 1
}

# entries_lead LIST: each of its entries leads to a file
entries_lead() {
    local entry
    while IFS= read -r entry; do
        [ -f "$(dirname "$1")/${entry//\\//}" ] || fail "no file: $entry"
    done < <(tr -d '\r' < "$1" | sed 's/^\xef\xbb\xbf//; /^#/d')
}

# undone FOLDER JOB...: the job changes names, its playlist follows, and it can be taken back
undone() {
    local folder=$1
    shift
    shown "$folder" > before
    "$TAVLO" "$@" /dryrun > /dev/null
    shown "$folder" | diff -u before -
    "$TAVLO" "$@" > /dev/null
    shown "$folder" > after
    if cmp -s before after; then fail "nothing was renamed: $*"; fi
    [ "$(grep -c '\.mp3$' after)" = "$(grep -c '\.mp3$' before)" ]
    entries_lead "$folder/!Playlist.m3u8"
    "$TAVLO" /undo > /dev/null
    shown "$folder" | diff -u before -
}

"$TAVLO" /makelist /s /u8 all/music > /dev/null
entries_lead 'all/music/!Playlist.m3u8'
undone all/music /rename /s all/music /template '%A\%L\%N %T'
undone all/music /rename /s all/music /template 'one\deep\%R%T'
undone all/music /rename2 all/music /f2
undone all/music /autorename /s all/music

# A circle of names, and a name that two want.
mkdir circle
for pair in a:b b:c c:a d:b; do
    cp "$samples/02 "*.mp3 "circle/${pair%:*}.mp3"
    "$TAVLO" /change "circle/${pair%:*}.mp3" /t "${pair#*:}" > /dev/null
done
"$TAVLO" /makelist /u8 circle > /dev/null
undone circle /rename circle /template '%T'

# What was changed since is left, and so is what somebody put in the old place.
"$TAVLO" /rename circle /template 'x %T' > /dev/null
echo more >> 'circle/x c.mp3'
echo new > circle/a.mp3
if "$TAVLO" /undo > /dev/null 2> messages; then fail "nothing was told"; fi
[ "$(wc -l < messages)" = 3 ]
[ "$(cat circle/a.mp3)" = new ]
[ -f 'circle/x c.mp3' ] && [ -f 'circle/x b.mp3' ] && [ -f circle/c.mp3 ] && [ -f circle/d.mp3 ]
rm circle/a.mp3
"$TAVLO" /undo > /dev/null 2> messages || true
[ "$(wc -l < messages)" = 1 ]
[ -f circle/a.mp3 ]
entries_lead 'circle/!Playlist.m3u8'
if "$TAVLO" /undo > /dev/null 2>&1; then fail "taken back twice"; fi

# Copies: whole, below their folders, and not twice.
"$TAVLO" /copy 'all/music/!Playlist.m3u8' /to copies /paths > /dev/null
"$TAVLO" /copy 'all/music/!Playlist.m3u8' /to copies /paths /json > again
grep -q '"there"' again
if grep -vq '"there"' again; then fail "copied twice"; fi
(cd all/music && find . -name '*.mp3') | sort > names
(cd copies && find . -name '*.mp3') | sort | diff -u names -
while IFS= read -r name; do cmp "all/music/$name" "copies/$name"; done < names
