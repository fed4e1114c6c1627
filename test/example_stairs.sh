#!/usr/bin/env bash
# The chapter on the photograph: pixels of every view once more, straight from the definitions;
# the numbers that are printed; pictures; and what a bad photograph is told.
#
#     example_stairs.sh PROGRAM PHOTOGRAPH

. "${0%/*}/support/example.sh"
photograph=$input

expect_chapter filters detail edges disc
cd "$work/out/$chapter" || exit 1

# --- the views ---------------------------------------------------------------
# They are kept column by column from the bottom, in single precision: here row by row from
# the top, one pixel in a line.

# view NAME ROWS: a view as lines "row col value".
view() {
    od -An -v -t f4 -w4 "$1.bin" | awk -v rows="$2" '{
        k = NR - 1
        print rows - 1 - k % rows, int(k / rows), $1
    }'
}

tail -c 262144 "$photograph" | od -An -v -t u1 -w1 | awk '{ printf "%.9g\n", $1 / 255 }' \
    >"$work/pixels"
view original 512 | awk '
    FNR == NR { x[NR - 1] = $1; next }
    { d = $3 - x[512 * $1 + $2]; if (d > 1e-7 || d < -1e-7) bad++ }
    END { if (bad || FNR != 262144) { print bad " of " FNR; exit 1 } }' "$work/pixels" - ||
    fail "what was read"

# check NAME SIDE RIM STEP KERNEL: a view of SIDE by SIDE pixels is the photograph under a
# kernel. KERNEL is awk that sets half, the side of the kernel without its middle, halved, and
# h[i, j] for i and j from -half to half. The photograph goes on around itself if RIM is 1, else
# there is black. Every so-many-th pixel is looked at, and the corners are.
check() {
    view "$1" "$2" | awk -v side="$2" -v rim="$3" -v step="$4" '
        function clamp(k) { return k < 0 ? 0 : k > 511 ? 511 : k }
        function pixel(row, col) {
            if (rim) return x[512 * clamp(row) + clamp(col)]
            return row < 0 || row > 511 || col < 0 || col > 511 ? 0 : x[512 * row + col]
        }
        function gaussian(    i, j, sum) {
            half = 3
            for (i = -3; i <= 3; ++i) for (j = -3; j <= 3; ++j)
                sum += h[i, j] = exp(-(i * i + j * j) / (2 * 1.5 ^ 2))
            for (i in h) h[i] /= sum
        }
        function disc(    i, j, d, sum) {
            half = 31
            for (i = -31; i <= 31; ++i) for (j = -31; j <= 31; ++j) {
                d = 31.5 - sqrt(i * i + j * j)
                sum += h[i, j] = d < 0 ? 0 : d > 1 ? 1 : d
            }
            for (i in h) h[i] /= sum
        }
        function row3(i, a, b, c) { half = 1; h[i, -1] = a; h[i, 0] = b; h[i, 1] = c }
        BEGIN { '"$5"'; if (!half) exit failed = 1 }
        FNR == NR { x[NR - 1] = $1; next }
        {
            shift = (side - 512) / 2
            corner = ($1 == 0 || $1 == side - 1) && ($2 == 0 || $2 == side - 1)
            if (FNR % step && !corner) next
            sum = 0
            for (i = -half; i <= half; ++i) for (j = -half; j <= half; ++j)
                sum += h[i, j] * pixel($1 - shift - i, $2 - shift - j)
            looked++
            if (sum - $3 > 3e-7 || $3 - sum > 3e-7) { print $0, sum; failed = 1 }
        }
        END { if (failed || FNR != side * side || looked < 100) { print looked; exit 1 } }
        ' "$work/pixels" - || fail "the view $1"
}
check blurred 512 1 1009 'gaussian()'
check sharpened 512 1 1009 \
    'gaussian(); for (i in h) h[i] *= -1.5; h[0, 0] += 2.5'
check across 512 1 1009 'row3(-1, 1/8, 0, -1/8); row3(0, 1/4, 0, -1/4); row3(1, 1/8, 0, -1/8)'
check down 512 1 1009 'row3(-1, 1/8, 1/4, 1/8); row3(0, 0, 0, 0); row3(1, -1/8, -1/4, -1/8)'
check disc 512 1 2503 'disc()'
check full 574 0 2503 'disc()'

view across 512 >"$work/across"
view down 512 >"$work/down"
view steepness 512 | paste "$work/across" "$work/down" - | awk '
    { d = $9 - sqrt($3 ^ 2 + $6 ^ 2); if (d > 1e-7 || d < -1e-7) bad++ }
    END { if (bad || NR != 262144) { print bad " of " NR; exit 1 } }' || fail "the view steepness"

# --- what was printed --------------------------------------------------------

# rms FILE: of the values of a view.
rms() {
    awk '{ sum += $3 ^ 2 } END { printf "%.4f", sqrt(sum / NR) }' "$1"
}
greys() {
    view "$1" 512 | awk -v label="$2" -v more="$3" '
        {
            sum += $3; squares += $3 ^ 2
            if (NR == 1 || $3 < least) least = $3
            if (NR == 1 || $3 > most) most = $3
        }
        END {
            mean = sum / NR
            printf "%-16s %smean %.4f, deviation %.4f, from %.3f to %.3f\n", label, more, mean,
                sqrt((squares - NR * mean ^ 2) / (NR - 1)), least, most
        }'
}
{
    greys original Photograph '512 by 512 pixels, '
    greys blurred Blurred
    greys sharpened Sharpened
    greys disc Disc
    printf '%-16s %s\n' Edges "$(rms "$work/across") per pixel from left to right, $(
        rms "$work/down") from top to bottom (RMS)"
} >"$work/numbers"
head -n 5 "$work/stdout" | sed 's/, edges.*//' | diff "$work/numbers" - ||
    fail "numbers (above: expected and printed)"

# A blur makes edges less steep, a larger one far less; sharpening makes them steeper.
sed -n 's/^\([A-Z][a-z]*\) .*, edges \([0-9.]*\) times as steep$/\1 \2/p' "$work/stdout" | awk '
    { steep[$1] = $2 }
    END {
        exit !(NR == 3 && steep["Blurred"] > 0.4 && steep["Blurred"] < 0.7 &&
            steep["Sharpened"] > 1.5 && steep["Sharpened"] < 2.5 &&
            steep["Disc"] > 0.03 && steep["Disc"] < 0.1)
    }' || fail "steepness of edges"

# Filter and convolution give the same up to rounding, though not to the bit.
sed -n 's/^\([0-9]* by [0-9]*\) .* filter [0-9.]* ms, convolution [0-9.]* ms, apart by \([0-9.e+-]*\) at most$/\2/p' \
    "$work/stdout" | awk '
    { if ($1 > 2e-15 || $1 < 1e-17) { print; bad = 1 } }
    END { exit bad || NR != 2 }' || fail "filter and convolution differ"

# --- other photographs -------------------------------------------------------

# A white one stays white; two bytes for each pixel, and comments in the header. Around it the
# whole convolution turns black.
{
    printf 'P5\n# a white\n#\n64 65\n# picture\n65535\n'
    head -c 8320 /dev/zero | tr '\0' '\377'
} >"$work/white.pgm"
"$program" "$work/white.pgm" "$work/out" >"$work/stdout" 2>"$work/stderr" ||
    fail "exit code $? on white: $(cat "$work/stderr")"
grep -qx 'Photograph       64 by 65 pixels, mean 1.0000, deviation 0.0000, from 1.000 to 1.000' \
    "$work/stdout" || fail "white: $(head -n 1 "$work/stdout")"
grep -qx 'Disc             mean 1.0000, deviation 0.0000, from 1.000 to 1.000' "$work/stdout" ||
    fail "white out of focus"
grep -q nan "$work/stdout" && fail "not a number on white"

expect_failure "$work/missing.pgm: No such file or directory" "$work/missing.pgm"
expect_failure "$work: is a directory, not a PGM file" "$work"
: >"$work/empty.pgm"
expect_failure "$work/empty.pgm: is empty" "$work/empty.pgm"
echo 'no picture at all' >"$work/text.pgm"
expect_failure "$work/text.pgm: is not a binary PGM file" "$work/text.pgm"
printf 'P2\n64 64\n255\n' >"$work/plain.pgm"
expect_failure "$work/plain.pgm: is not a binary PGM file" "$work/plain.pgm"
for header in '64' '64 64' '64 -64 255' '64 64 0' '64 64 65536' 'a b c' '99999999999 64 255'; do
    printf 'P5\n%s\n' "$header" >"$work/bad.pgm"
    expect_failure "$work/bad.pgm: has a header that is not that of a PGM file" "$work/bad.pgm"
done
printf 'P5 63 64 255\n' >"$work/small.pgm"
expect_failure "$work/small.pgm: has 63 by 64 pixels; 64 to 4096 are needed on each side" \
    "$work/small.pgm"
printf 'P5 64 4097 255\n' >"$work/large.pgm"
expect_failure "$work/large.pgm: has 64 by 4097 pixels" "$work/large.pgm"
head -c -1 "$photograph" >"$work/cut.pgm"
expect_failure "$work/cut.pgm: is cut short: 262144 bytes of pixels announced, 262143 are there" \
    "$work/cut.pgm"
{
    printf 'P5 64 64 100\n'
    head -c 4095 /dev/zero
    printf 'e'
} >"$work/bright.pgm"
expect_failure "$work/bright.pgm: has a pixel of 101, more than the 100 of white" \
    "$work/bright.pgm"

finish
