#!/usr/bin/env bash
# Builds the library, runs every chapter of the demo on its recording, and gathers
# what they draw in demo-out/index.html.

cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1
. scripts/require.sh

build=build/demo
out=demo-out

tools=(g++ cmake ninja-build pkg-config libsndfile1-dev)
# Any of the packaged gnuplots will do.
command -v gnuplot >/dev/null || tools+=(gnuplot-nox)
require_packages "${tools[@]}"
command -v gnuplot >/dev/null || die "gnuplot is missing"

mkdir -p "$build" "$out" || die "cannot make the folders $build and $out"

# A fresh cache: the checkout may have moved, or the compiler have changed.
step "$build/configure.log" "Configuring" \
    cmake --fresh --preset release -B "$build" -DRVX_BUILD_TESTS=OFF || exit 1
step "$build/build.log" "Building the library and the examples" \
    cmake --build "$build" --parallel "$(processors)" --target examples || exit 1

sections=()
while read -r chapter input; do
    [ -n "$chapter" ] || continue
    step "$build/$chapter.log" "Chapter $chapter, on $input" \
        "$build/examples/example_$chapter" "examples/data/$input" "$out" || exit 1
    sed 's/^/    /' "$build/$chapter.log"
    sections+=("$out/$chapter/section.html")
done <examples/chapters.txt

cat examples/page/head.html "${sections[@]}" examples/page/foot.html >"$out/index.html" ||
    die "cannot write $out/index.html"

say
say "Open $out/index.html in a browser."
