# Debian packages that ./run, ./test and bench/run need, and how they get there; sourced by them
# with `root` set to the project's folder.
run_packages=(g++ cmake ninja-build rapidjson-dev zlib1g-dev libwxgtk3.2-dev)
fast_packages=("${run_packages[@]}" googletest clang-format)
# What conversions start.
codec_packages=(lame vorbis-tools flac wavpack musepack-tools ffmpeg faad)
# What a real window is driven and looked at with.
window_packages=(xvfb openbox xdotool imagemagick)
test_packages=("${fast_packages[@]}" g++-mingw-w64-x86-64-posix libz-mingw-w64-dev
    make xz-utils wine wine64 "${window_packages[@]}"
    clang libclang-rt-14-dev
    python3-mutagen libtag1-dev "${codec_packages[@]}")
lint_packages=("${run_packages[@]}" googletest clang-tidy)
peers_packages=("${run_packages[@]}" lame python3-mutagen libtag1-dev)
bench_packages=("${run_packages[@]}" pkg-config libtag1-dev python3-mutagen strace lame
    "${window_packages[@]}")

# Prints those of its arguments that are installed.
installed_packages() {
    dpkg-query -W -f '${Package}:${db:Status-Status}\n' "$@" 2>/dev/null | sed -n 's/:installed$//p'
}

install_packages() {
    local apt=(apt-get -q -o DPkg::Lock::Timeout=600)
    export DEBIAN_FRONTEND=noninteractive
    "${apt[@]}" update && "${apt[@]}" install -y --no-install-recommends "$@"
}

# Installs what is missing of its arguments as root; others are told the command, exit status 1.
need_packages() {
    local missing
    missing=$(comm -23 <(printf '%s\n' "$@" | sort) <(installed_packages "$@" | sort) |
        tr '\n' ' ')
    [ -n "$missing" ] || return 0
    if [ "$(id -u)" -ne 0 ]; then
        echo "These packages are missing; please run:" >&2
        echo "sudo apt-get update && sudo apt-get install -y --no-install-recommends $missing" >&2
        return 1
    fi
    echo "Installing $missing" >&2
    local log=$root/build/packages.txt
    mkdir -p "$root/build"
    # shellcheck disable=SC2086
    if ! install_packages $missing >"$log" 2>&1; then
        cat "$log" >&2
        return 1
    fi
}

# Configures a preset when it never was, or when the presets changed since; prints only errors.
configure() {
    local ninja=$root/build/$1/build.ninja
    [ "$ninja" -nt "$root/CMakePresets.json" ] || cmake -S "$root" --preset "$1" >/dev/null
}
