#!/usr/bin/env bash
# Builds the library in every way that it is promised to work, and tests each.
# On a Debian machine it first installs what is missing. Output of each step is
# kept below build/log. Ends with the number of tests that passed and failed.

cd "$(dirname "$0")" || exit 1
. scripts/require.sh

require_packages cmake ninja-build g++ clang clang-format clang-tidy libgtest-dev pkg-config \
    libmpfr-dev qemu-user libsndfile1-dev gnuplot-nox

passed=0
failed=0
skipped=0
jobs=$(processors)
logs=build/log
mkdir -p $logs

# count REPORT: adds what a run of ctest wrote down to the sums.
count() {
    local attributes total failures disabled idle
    attributes=$(tr '\n\t' '  ' <"$1" | sed 's/<testsuite \([^>]*\)>.*/\1/')
    total=$(attribute tests) failures=$(attribute failures)
    disabled=$(attribute disabled) idle=$(attribute skipped)
    skipped=$((skipped + disabled + idle))
    failed=$((failed + failures))
    passed=$((passed + total - failures - disabled - idle))
}

attribute() {
    local value
    value=$(printf '%s' "$attributes" | sed -n "s/.*[ \"]$1=\"\([0-9]*\)\".*/\1/p")
    echo "${value:-0}"
}

# check NAME TEXT COMMAND...: a step that is a test by itself.
check() {
    local name=$1
    shift
    if step "$logs/$name.log" "$@"; then passed=$((passed + 1)); else failed=$((failed + 1)); fi
}

# build NAME TARGET TEXT OPTION...: configures with these options and builds. A
# build that fails counts as one failed test.
build() {
    local name=$1 target=$2 text=$3
    shift 3
    if ! step "$logs/$name-build.log" "$text: build" configure_and_build "$name" "$target" "$@"; then
        failed=$((failed + 1))
        return 1
    fi
}

configure_and_build() {
    local name=$1 target=$2
    shift 2
    cmake "$@" -B "build/$name" && cmake --build "build/$name" --target "$target" -j "$jobs"
}

# run_tests NAME TEXT [OPTION...]: every test of a build, or those that the options say.
run_tests() {
    local name=$1 text=$2 report=$PWD/$logs/$1-tests.xml
    shift 2
    rm -f "$report"
    step "$logs/$name-tests.log" "$text: tests" \
        ctest --test-dir "build/$name" -j "$jobs" --output-on-failure --no-tests=error \
        --output-junit "$report" "$@"
    local status=$?
    if [ -f "$report" ]; then
        local before=$failed
        count "$report"
        # Should ctest fail for a reason that its report does not hold.
        [ $status -eq 0 ] || [ $failed -gt $before ] || failed=$((failed + 1))
    else
        failed=$((failed + 1))
    fi
}

# build_and_test PRESET TEXT [OPTION...]
build_and_test() {
    local name=$1 text=$2
    shift 2
    build "$name" all "$text" --preset "$name" "$@" && run_tests "$name" "$text"
}

# digest PRESET TEXT: that a build gives the same bits as all others.
digest() {
    build "$1" rvx_digest "$2" --preset "$1" && run_tests "$1" "$2" -R '^digest$'
}

build_and_test dev "GCC, optimised"
build_and_test clang "Clang, optimised"
if [ -d build/clang ]; then
    check tidy "clang-tidy" cmake --build build/clang --target tidy -j "$jobs" -- -k 0
fi
digest plain "GCC, not optimised"
digest plain-clang "Clang, not optimised"
build_and_test asan "Address and undefined-behaviour sanitizers"
build_and_test tsan "Thread sanitizer"
build subproject all "Inside a project that asks for fast mathematics" \
    -S test/consumers/subproject -G Ninja -DCMAKE_BUILD_TYPE=Release -DRVX_SOURCE="$PWD" &&
    run_tests subproject "Inside a project that asks for fast mathematics"

[ $skipped -eq 0 ] || say "$skipped skipped: what they count is the sanitizer's own there"
say "$passed passed, $failed failed"
[ $failed -eq 0 ]
