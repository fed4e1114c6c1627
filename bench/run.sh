#!/usr/bin/env bash
# Measures the library beside the others, prints the table and writes it to
# docs/benchmarks.md.
#
#   bench/run.sh              every family, about ten minutes at most
#   bench/run.sh fft arith    these families; the others' sections stay
#
# Everything runs on one core: the last one that this shell may use.

cd "$(dirname "$0")/.." || exit 1
. scripts/require.sh

require_packages cmake ninja-build g++ pkg-config python3 libbenchmark-dev
for peer in libfftw3-dev libopenblas-dev libeigen3-dev libgsl-dev libopencv-imgproc-dev \
    libsleef-dev python3-scipy python3-pywt; do
    (require_packages $peer) || say "going on without $peer"
done

mkdir -p build/log build/bench
step build/log/bench-build.log "Building the benchmarks" \
    bash -c 'cmake --preset bench && cmake --build --preset bench' || exit 1

families=("$@")
if [ ${#families[@]} -eq 0 ]; then
    for program in bench/bench_*.cpp; do
        name=${program##*/bench_}
        families+=("${name%.cpp}")
    done
fi

# Packages are for the system's own Python, whichever one is first in the path.
python=python3
[ ! -x /usr/bin/python3 ] || python=/usr/bin/python3

core=$(taskset -pc $$ | sed 's/.*[^0-9]//')
results=()
for name in "${families[@]}"; do
    [ -f "bench/bench_$name.cpp" ] || die "there is no bench/bench_$name.cpp"
    # Interleaved at random, so that a slow moment of the machine meets all alike.
    step "build/log/bench-$name.log" "Measuring $name" \
        taskset -c "$core" "build/bench/bench/bench_$name" \
        --benchmark_enable_random_interleaving=true \
        --benchmark_repetitions=7 --benchmark_min_time=0.01 \
        --benchmark_out="build/bench/$name.json" --benchmark_out_format=json || exit 1
    results+=("build/bench/$name.json")
    [ -f "bench/bench_$name.py" ] || continue
    step "build/log/bench-$name-python.log" "Measuring $name from Python" \
        taskset -c "$core" "$python" -B "bench/bench_$name.py" build/bench/_SRC/librvx.so \
        "build/bench/$name.python.json" || exit 1
    results+=("build/bench/$name.python.json")
done

python3 bench/table.py docs/benchmarks.md "${results[@]}"
