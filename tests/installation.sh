#!/usr/bin/env bash
# Installs a build into empty folders, once with CMake and once from its packages, and uses what is there:
# installation.sh BUILD PACKAGE.deb...
set -euo pipefail
build=$(cd "$1" && pwd)
shift
mapfile -t packages < <(realpath "$@")
top=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "installation: $*"
    exit 1
}

# check PREFIX: the programs convert and read back, and their manual pages and documents are there
check() {
    local prefix=$1 program file
    export PATH=$prefix/bin:$PATH
    hash -r
    for program in zelconv zelconv-for-machine zelconv-hottest-functions zelconv-cpu-load; do
        [ "$(command -v $program)" = "$prefix/bin/$program" ] || fail "$program is not in $prefix/bin"
        zcat "$prefix/share/man/man1/$program.1.gz" | grep -q "^\.Os \"zelconv $version\"$" ||
            fail "the manual page of $program does not give the version $version"
    done
    for file in copyright changelog.gz changelog.Debian.gz README.md docs/profile-document.md; do
        [ -s "$prefix/share/doc/zelconv/$file" ] || fail "there is no $file"
    done
    zelconv-for-machine "$top/examples/machine" -b 5 -p "$build/examples" -i "$build/examples/profile.data" \
        -o "$work/profile.json"
    zelconv-hottest-functions "$work/profile.json" >"$work/hottest"
    grep -q 'pick_pear' "$work/hottest" || fail "the hottest functions lack pick_pear"
    zelconv-for-machine "$top/examples/machine" -t -q -b 2 -i "$build/examples/timechart.data" \
        -o "$work/timechart.json"
    zelconv-cpu-load "$work/timechart.json" >"$work/load"
    grep -q '^CPU 0' "$work/load" || fail "the load lacks CPU 0"
    (cd "$work" && zelconv -h >help && grep -q perf.data help) || fail "zelconv -h does not print its help"
    [ "$("$prefix/bin/zelkit" --version)" = "$version" ] || fail "zelkit does not give the version $version"
    "$prefix/bin/zelkit" view "$work/profile.json" "$work/timechart.json" -o "$work/report.html"
    grep -q 'data-name="profile.json"' "$work/report.html" || fail "zelkit view made no page with the documents"
}

version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
[ -n "$version" ] || fail "$build names no version"

DESTDIR=$work/cmake cmake --install "$build" --prefix /opt/zelconv >/dev/null
(check "$work/cmake/opt/zelconv")
echo "cmake --install: $(find "$work/cmake" -type f | wc -l) files, they work"

mkdir -p "$work/installed/var/lib/dpkg"
touch "$work/installed/var/lib/dpkg/status"
dpkg_in_root() {
    dpkg --root="$work/installed" --log=/dev/null --force-not-root --force-depends --force-script-chrootless "$@"
}
dpkg_in_root --install "${packages[@]}" >"$work/dpkg.log" 2>&1 || { cat "$work/dpkg.log"; fail "dpkg could not install"; }
for package in zelconv zelkit; do
    [ "$(dpkg-query --admindir="$work/installed/var/lib/dpkg" -Wf '${Version}' $package)" = "$version-1" ] ||
        fail "the package $package has another version than $version-1"
done
(check "$work/installed/usr")
echo "packages: $(find "$work/installed/usr" -type f | wc -l) files, they work"
dpkg_in_root --purge zelconv zelkit >"$work/dpkg.log" 2>&1 || { cat "$work/dpkg.log"; fail "dpkg could not remove"; }
[ ! -e "$work/installed/usr" ] || fail "the removed packages left $(find "$work/installed/usr" | tail -1)"
