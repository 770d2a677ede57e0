#!/bin/bash
# Builds the window toolkit for Windows, static, from Debian's own source package, and prints the
# folder it lies in: cmake/windows_wx.sh. It is built once for this script's text and kept in
# $XDG_CACHE_HOME/tavlo (or ~/.cache/tavlo); TAVLO_CACHE names another folder.
set -euo pipefail
script=$(readlink -f "${BASH_SOURCE[0]}")
host=x86_64-w64-mingw32
parts=(--disable-shared --enable-unicode --disable-debug_flag --disable-debug_info
    --without-libpng --without-libjpeg --without-libtiff --without-expat --without-zlib
    --without-regex --without-libiconv --without-opengl
    --disable-svg --disable-xrc --disable-aui --disable-html --disable-ribbon --disable-propgrid
    --disable-richtext --disable-stc --disable-webview --disable-mediactrl
    --disable-fs_archive --disable-fs_inet --disable-fs_zip --disable-zipstream --disable-tarstream
    --disable-sockets --disable-protocols --disable-ipc --disable-url --disable-secretstore
    --disable-joystick --disable-dialupman --disable-debugreport --disable-printarch
    --disable-postscript --disable-mdi --disable-docview --disable-help --disable-sound
    --disable-grid --disable-calendar --disable-datepick
    --disable-timepick --disable-richtooltip --disable-notifmsg --disable-wizarddlg
    --disable-propgrid --disable-bannerwindow --disable-editablebox --disable-commandlinkbutton)
cache=${TAVLO_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/tavlo}
place=$cache/wx-windows-$(sha256sum "$script" | cut -c1-12)

# Debian's sources, from wherever this machine gets its packages; the system's list stays as it is.
fetch_source() {
    local lists=$work/lists
    mkdir -p "$lists/partial"
    apt-get indextargets --format '$(REPO_URI) $(CODENAME) $(COMPONENT) $(ORIGIN)' \
        'Created-By: Packages' |
        awk '$4 == "Debian" && $3 == "main" && $2 !~ /-/ { print "deb-src", $1, $2, $3; exit }' \
            >"$work/sources.list"
    local apt=(apt-get -q -o "Dir::Etc::sourcelist=$work/sources.list"
        -o Dir::Etc::sourceparts=- -o APT::Sandbox::User=root -o "Dir::State::lists=$lists")
    "${apt[@]}" update
    "${apt[@]}" source --download-only wxwidgets3.2
}

build() {
    cd "$work"
    fetch_source
    mkdir source object
    tar -xf wxwidgets3.2_*.orig.tar.* -C source --strip-components=1
    cd object
    ../source/configure --host="$host" --prefix="$work/done" "${parts[@]}" \
        CC="$host-gcc-posix" CXX="$host-g++-posix" CXXFLAGS="-O1 -w" CFLAGS="-O1 -w"
    make -j "$(nproc)"
    make install
}

if [ ! -d "$place" ]; then
    mkdir -p "$cache"
    work=$(mktemp -d "$cache/building.XXXXXX")
    trap 'rm -rf "$work"' EXIT
    # Not in a condition: there -e would have no effect inside the function.
    (build) >"$cache/wx-windows.log" 2>&1 &
    wait $! || { tail -n 40 "$cache/wx-windows.log" >&2; exit 1; }
    # Another run may have been faster.
    mv -T "$work/done" "$place" 2>/dev/null || [ -d "$place" ]
fi
echo "$place"
