# What the tests of the chapters share. A test is example_CHAPTER.sh PROGRAM INPUT; it reads this
# file first and ends with `finish`.

export LC_ALL=C
program=$1
input=$2
chapter=${0##*/example_}
chapter=${chapter%.sh}
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
failures=0

[ -x "$program" ] && [ -r "$input" ] || {
    echo "usage: $0 PROGRAM INPUT" >&2
    exit 2
}

fail() {
    printf 'FAILED: %s\n' "$*"
    failures=$((failures + 1))
}

# expect_chapter PICTURE...: the chapter is made of the input, without a word of complaint, and
# has these pictures. What was printed is in $work/stdout.
expect_chapter() {
    local picture out=$work/out/$chapter
    "$program" "$input" "$work/out" >"$work/stdout" 2>"$work/stderr" ||
        fail "exit code $? on the input"
    [ ! -s "$work/stderr" ] || fail "on the input: $(cat "$work/stderr")"
    for picture; do
        grep -qF "src=\"$chapter/$picture.png\"" "$out/section.html" ||
            fail "$picture.png is not on the page"
        [ "$(head -c 8 "$out/$picture.png" | od -An -t x1 | tr -d ' \n')" = 89504e470d0a1a0a ] ||
            fail "$picture.png is no picture"
    done
}

# expect_late_failure TEXT INPUT [OUTPUT]: one line on standard error that begins with the
# chapter's name and the text, exit code 1. The program looks for gnuplot in gnuplotPath.
gnuplotPath=$PATH
expect_late_failure() {
    local text=$1 input=$2 output=${3:-$work/out} status
    env PATH="$gnuplotPath" "$program" "$input" "$output" >"$work/stdout" 2>"$work/stderr"
    status=$?
    [ "$status" -eq 1 ] || fail "exit code $status on $input"
    [ "$(wc -l <"$work/stderr")" -eq 1 ] || fail "not one line on $input: $(cat "$work/stderr")"
    [[ $(cat "$work/stderr") == "$chapter: $text"* ]] ||
        fail "expected '$text' on $input, got: $(cat "$work/stderr")"
}

# expect_failure TEXT INPUT [OUTPUT]: the same, before anything is printed.
expect_failure() {
    expect_late_failure "$@"
    [ ! -s "$work/stdout" ] || fail "printed on $2: $(cat "$work/stdout")"
}

# le VALUE BYTES: an integer, lowest byte first, as printf's escapes.
le() {
    local value=$1 i
    for ((i = 0; i < $2; ++i)); do
        printf '\\x%02x' $((value & 255))
        value=$((value >> 8))
    done
}

# wav FILE RATE BYTES [CHANNELS FORMAT BITS]: the header of a file, of one channel and 16 bits
# if nothing else is said.
wav() {
    local rate=$2 bytes=$3 channels=${4:-1} format=${5:-1} bits=${6:-16}
    local block=$((channels * bits / 8))
    printf "RIFF$(le $((36 + bytes)) 4)WAVEfmt $(le 16 4)$(le "$format" 2)$(le "$channels" 2)$(
        le "$rate" 4)$(le $((rate * block)) 4)$(le "$block" 2)$(le "$bits" 2)data$(
        le "$bytes" 4)" >"$1"
}

# The last check of a test: what the program is for, when it is called wrongly.
finish() {
    "$program" "$input" >/dev/null 2>"$work/stderr"
    [ $? -eq 2 ] || fail "exit code on a missing argument"
    grep -q '^usage: ' "$work/stderr" || fail "no usage on a missing argument"
    [ "$failures" -eq 0 ]
}
