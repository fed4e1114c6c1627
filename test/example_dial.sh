#!/usr/bin/env bash
# The chapter on dialling tones: the mix taken apart, every level once more straight from the
# definition, every block and digit decided anew; rates against other noise; digits at the edges
# of what is to be taken, another rate; pictures; and what a bad recording is told.
#
#     example_dial.sh PROGRAM RECORDING

. "${0%/*}/support/example.sh"
recording=$input

expect_chapter mix levels response rates
cp "$work/stdout" "$work/printed"
cd "$work/out/$chapter" || exit 1
od -An -v -t d2 -w2 -j 44 "$recording" | awk '{ print $1 / 32768 }' >"$work/samples"

# printed LABEL: what is printed behind it.
printed() {
    sed -n "s/^$1  *//p" "$work/printed"
}
[ "$(printed Dialled)" = '123A456B789C*0#D' ] || fail "dialled: $(printed Dialled)"
[ "$(printed Decoded)" = '123A456B789C*0#D' ] || fail "decoded: $(printed Decoded)"

# --- the mix -----------------------------------------------------------------
# Columns of mix.txt: time dialled voice mix, six digits each, of 18560 samples. The voice is
# 10 dB below the tones, which have 0.2^2 together, where its 18560 samples are loudest. Each digit
# is two tones of 0.2; what is left is noise, 10 dB below the tones too.

awk '
    function off(name, x, y, bound) {
        if (x - y < bound && y - x < bound) return
        print name, x, y; bad = 1
    }
    FNR == NR { x[n++] = $1; squares += $1 ^ 2; next }
    /^#/ { next }
    {
        if (!m) first = int($1 * 8000 + 0.5)
        i = m++; dialled[i] = $2
        gain = 0.2 / sqrt(10) / sqrt(squares / n)
        off("voice", $3, gain * x[first + i], 1e-6)
        here += x[first + i] ^ 2
        noise = $4 - $2 - $3; sum += noise; power += noise ^ 2; next_to += noise * last; last = noise
    }
    # How much of a frequency is in a tone, and the rest without it.
    function take(f, start, i, c, s, re, im, cc, ss, cs, d, a, b) {
        re = im = cc = ss = cs = 0
        for (i = 0; i < 560; ++i) {
            c = cos(2 * pi * f * i / 8000); s = sin(2 * pi * f * i / 8000)
            re += rest[i] * c; im += rest[i] * s; cc += c * c; ss += s * s; cs += c * s
        }
        d = cc * ss - cs * cs; a = (re * ss - im * cs) / d; b = (im * cc - re * cs) / d
        for (i = 0; i < 560; ++i)
            rest[i] -= a * cos(2 * pi * f * i / 8000) + b * sin(2 * pi * f * i / 8000)
    }
    END {
        pi = atan2(0, -1)
        for (k = 0; k < 16; ++k) {
            start = 1600 + 200 + 960 * k; energy = 0
            for (i = 0; i < 560; ++i) { rest[i] = dialled[start + i]; energy += rest[i] ^ 2 }
            off("power of a digit", energy / 560, 0.04, 0.001)
            split("697 770 852 941", rows); split("1209 1336 1477 1633", columns)
            # Each takes a little of the other, and less each time.
            for (round = 0; round < 6; ++round) {
                take(rows[int(k / 4) + 1]); take(columns[k % 4 + 1])
            }
            for (i = 0; i < 560; ++i) { off("a digit", rest[i], 0, 2e-6); dialled[start + i] = 0 }
        }
        for (i = 0; i < m; ++i) off("a pause", dialled[i], 0, 1e-9)
        off("mean of the noise", sum / m, 0, 0.0015)
        off("power of the noise", power / m, 0.004, 0.0002)
        off("likeness of the noise", next_to / power, 0, 0.03)
        for (start = 0; start + m <= n; start += 960) {
            there = 0
            for (i = 0; i < m; ++i) there += x[start + i] ^ 2
            if (there > here + 1e-9) { print "louder at", start; bad = 1 }
        }
        printf "%-16s from %.2f s on, the voice 10 dB and noise 10 dB below the digits\n", "Mix",
            first / 8000
        exit bad || m != 18560
    }' "$work/samples" mix.txt >"$work/mix" || fail "the mix: $(head -n 3 "$work/mix")"
tail -n 1 "$work/mix" | diff - <(grep '^Mix ' "$work/printed") || fail "mix (above: expected)"

# --- the decoder -------------------------------------------------------------
# Blocks of 178 samples, one every 114. A program that uses it has samples in x[0] to x[n - 1].

cat >"$work/decoder.awk" <<'AWK'
    BEGIN {
        pi = atan2(0, -1); db = 10 / log(10)
        split("697 770 852 941 1209 1336 1477 1633", hertz)
        for (t = 1; t <= 8; ++t) {
            for (i = 0; i < 178; ++i) {
                c[178 * t + i] = cos(2 * pi * hertz[t] * i / 8000)
                s[178 * t + i] = sin(2 * pi * hertz[t] * i / 8000)
            }
        }
    }
    # level[1..8] in dB, of a tone of amplitude 1 on a frequency 0; and of all, in power.
    function block(start, t, i, j, v, re, im) {
        power = 0
        for (i = 0; i < 178; ++i) power += x[start + i] ^ 2 / 178
        for (t = 1; t <= 8; ++t) {
            re = im = 0; j = 178 * t
            for (i = 0; i < 178; ++i) {
                v = x[start + i]; re += v * c[j]; im += v * s[j++]
            }
            level[t] = db * log((re * re + im * im) * 4 / 178 ^ 2 + 1e-30)
        }
    }
    function strongest(first, t, best) {
        best = first
        for (t = first; t < first + 4; ++t) if (level[t] > level[best]) best = t
        lead = 1000
        for (t = first; t < first + 4; ++t)
            if (t != best && level[best] - level[t] < lead) lead = level[best] - level[t]
        return best
    }
    # What is right of the last block: limits[1..4] for level, twist, lead and share.
    function judge(row, column, rowLead, r, k) {
        row = strongest(1); rowLead = lead; column = strongest(5)
        if (rowLead < lead) lead = rowLead
        r = level[row]; k = level[column]
        limits[1] = r >= -40 && k >= -40
        limits[2] = k - r >= -8 && k - r <= 4
        limits[3] = lead >= 8
        share = (exp(r / db) + exp(k / db)) / 2 / (power + 1e-30)
        limits[4] = share >= 0.38
        return substr("123A456B789C*0#D", 4 * (row - 1) + column - 4, 1)
    }
    # Three in a row begin a digit, two others end it. "." is no key. Of several decoders, the d-th;
    # a digit is found at the block begun[d].
    function hear(d, key, b) {
        if (!(d in held)) { held[d] = lastKey[d] = "."; digits[d] = "" }
        run[d] = key == lastKey[d] ? run[d] + 1 : 1
        lastKey[d] = key
        if (key == held[d]) missed[d] = 0; else missed[d]++
        if (key != "." && key != held[d] && run[d] >= 3) {
            held[d] = key; missed[d] = 0; digits[d] = digits[d] key; begun[d] = b - run[d] + 1
            return 1
        }
        if (missed[d] >= 2) held[d] = "."
        return 0
    }
AWK

# levels.txt: time, eight levels, share, key.
cp "$work/decoder.awk" "$work/levels.awk"
cat >>"$work/levels.awk" <<'AWK'
    function off(name, x, y, bound) {
        if (x - y < bound && y - x < bound) return
        print name, blocks, x, y; bad = 1
    }
    /^#/ { next }
    FNR == NR { if (!n) first = $1; x[n++] = $4; next }
    {
        block(114 * blocks)
        off("time", $1, first + (114 * blocks + 89) / 8000, 2e-5)
        for (t = 1; t <= 8; ++t) if (level[t] > -60) off("level " t, $(t + 1), level[t], 0.02)
        key = judge()
        off("share", $10, share, 1e-4)
        if (!(limits[1] && limits[2] && limits[3] && limits[4])) key = "."
        off("key", $11, index("123A456B789C*0#D", key) - 1, 0.5)
        hear(0, key, blocks++)
    }
    END { print digits[0]; exit bad || blocks != 162 }
AWK
awk -f "$work/levels.awk" mix.txt levels.txt >"$work/decoded" ||
    fail "levels: $(head -n 3 "$work/decoded")"
[ "$(cat "$work/decoded")" = "$(printed Decoded)" ] || fail "digits by the levels"

[ "$(printed 'Off frequency')" = 'all found up to 1.8 %, none from 2.6 % on' ] || fail "deviations"
[ "$(printed Length)" = 'all found from 40 ms on, none up to 22 ms' ] || fail "lengths"

# The recording as it is, with each limit alone, without it, with none and with all.
cp "$work/decoder.awk" "$work/alone.awk"
cat >>"$work/alone.awk" <<'AWK'
    { x[n++] = $1 }
    function count(d, passes) {
        if (passes) blocks[d]++
        hear(d, passes ? key : ".", b)
    }
    function told(d) {
        return sprintf("%d blocks, %d digits%s", blocks[d], length(digits[d]),
            length(digits[d]) && length(digits[d]) <= 20 ? ": " digits[d] : "")
    }
    END {
        for (b = 0; 114 * b + 178 <= n; ++b) {
            block(114 * b); key = judge()
            right = limits[1] + limits[2] + limits[3] + limits[4]
            for (k = 1; k <= 4; ++k) {
                count(k, right - limits[k] == 3); count(4 + k, limits[k])
            }
            count(0, right == 4); count(9, power > 0)
        }
        printf "%-16s %d blocks of the recording, as it is\n", "No digits", b
        printf "%-16s %s\n", "All limits", told(0)
        split("level twist lead share", names)
        for (k = 1; k <= 4; ++k)
            printf "%-16s %s; it alone %s\n", "But " names[k], told(k), told(4 + k)
        printf "%-16s %s\n", "Any two tones", told(9)
    }
AWK
awk -f "$work/alone.awk" "$work/samples" | diff - <(tail -n 7 "$work/printed") ||
    fail "the recording as it is (above: expected and printed)"

# --- a lone tone -------------------------------------------------------------

cp "$work/decoder.awk" "$work/response.awk"
cat >>"$work/response.awk" <<'AWK'
    /^#/ { next }
    {
        if ($1 != 600 + 2 * rows) { print; bad = 1 }
        if (rows++ % 20) next
        for (i = 0; i < 178; ++i) x[i] = cos(2 * pi * $1 * i / 8000)
        block(0)
        for (t = 1; t <= 8; ++t) {
            if ($(t + 1) - level[t] > 0.01 || level[t] - $(t + 1) > 0.01) {
                print $1, t, $(t + 1), level[t]; bad = 1
            }
        }
    }
    END { exit bad || rows != 601 }
AWK
awk -f "$work/response.awk" response.txt || fail "response"

# --- rates -------------------------------------------------------------------
# What is printed of them; what they are without a doubt; and a hundred digits and more in other
# noise and other phases, with and without the voice, where between half and nearly all are found.

awk '
    /^#/ { next }
    { if ($1 != -9 + rows++) bad = 1; for (i = 2; i <= 9; ++i) r[$1, i] = $i }
    function row(label, i) {
        printf "%-16s %.1f, %.1f, %.1f, %.1f, %.1f, %.1f %% right; ", label, r[-6, i], r[-3, i],
            r[0, i], r[3, i], r[6, i], r[12, i]
        i += 4
        printf "%.1f, %.1f, %.1f, %.1f, %.1f, %.1f %% wrong\n", r[-6, i], r[-3, i], r[0, i],
            r[3, i], r[6, i], r[12, i]
    }
    END {
        printf "%-16s -6, -3, 0, 3, 6, 12 dB, 732 digits each\n", "Over noise"
        row("Alone", 2); row("In the voice", 3); row("Any two tones", 4); row("Any, in it", 5)
        if (r[-9, 2] > 0 || r[12, 2] < 100 || r[12, 3] < 97) bad = 1
        for (i = -9; i <= 12; ++i) {
            if (r[i, 6] + r[i, 7] > 0) bad = 1
            wrong += (r[i, 8] + r[i, 9]) / 44
        }
        # What any two tones make of a pause counts as wrong.
        if (wrong < 0.4 || wrong > 2) bad = 1
        exit bad || rows != 22
    }' rates.txt >"$work/rates" || fail "rates"
diff "$work/rates" <(sed -n 9,13p "$work/printed") || fail "rates (above: expected and printed)"

cp "$work/decoder.awk" "$work/simulated.awk"
cat >>"$work/simulated.awk" <<'AWK'
    function gaussian() { return sqrt(-2 * log(1 - rand())) * cos(2 * pi * rand()) }
    function found(ratio, voiced, k, i, start, slot, a, b, right) {
        for (i = 0; i < n; ++i) x[i] = voiced * gain * voice[i] + noise[i] * 10 ^ (-ratio / 20)
        for (k = 0; 960 * (k + 1) <= n; ++k) {
            a = 2 * pi * rand(); b = 2 * pi * rand()
            for (i = 0; i < 560; ++i)
                x[200 + 960 * k + i] += 0.2 * cos(2 * pi * hertz[int(k / 4) % 4 + 1] * i / 8000 + a) \
                    + 0.2 * cos(2 * pi * hertz[k % 4 + 5] * i / 8000 + b)
        }
        d++
        for (i = 0; 114 * i + 178 <= n; ++i) {
            block(114 * i); key = judge()
            if (!hear(d, limits[1] + limits[2] + limits[3] + limits[4] == 4 ? key : ".", i)) continue
            slot = int((114 * begun[d] + 89) / 960)
            if (key == substr("123A456B789C*0#D", slot % 16 + 1, 1)) right++
        }
        return 100 * right / k
    }
    function check(ratio, column, voiced, f, sigma) {
        f = found(ratio, voiced); p = r[ratio, column] / 100
        sigma = 100 * sqrt((p * (1 - p) + 0.01) * (1 / 80 + 1 / 732))
        if (f - 100 * p > 4 * sigma || 100 * p - f > 4 * sigma) { print ratio, voiced, f, p; bad = 1 }
    }
    FNR == NR { if (n < 80 * 960) { voice[n++] = $1 }; squares += $1 ^ 2; m = FNR; next }
    !/^#/ { r[$1, 2] = $2; r[$1, 3] = $3 }
    END {
        srand(7)
        gain = 0.2 / sqrt(10) / sqrt(squares / m)
        for (i = 0; i < n; ++i) noise[i] = 0.2 * gaussian()
        check(-1, 2, 0); check(-1, 3, 1)
        exit bad
    }
AWK
awk -f "$work/simulated.awk" "$work/samples" rates.txt || fail "rates in other noise"

# --- edges -------------------------------------------------------------------
# A recording with digits in it, at another rate. What receivers are to take (ITU-T Q.24): 40 ms,
# 1.8 % off, columns nearly 4 dB louder and 8 dB quieter, a gap of 10 ms, quiet; and what they are
# to refuse: 22 ms, 3.5 % off, more twist, one tone alone, two of a row, less than the noise.

cat >"$work/edges.awk" <<'AWK'
    # key from start s on for length s, row and column of such amplitudes, off by a part.
    function press(key, length_, row, column, off, i, k, from) {
        k = index("123A456B789C*0#D", key) - 1; from = int(at * rate)
        for (i = 0; i < int(length_ * rate); ++i)
            x[from + i] += row * sin((1 + off) * 2 * pi * hertz[int(k / 4) + 1] * i / rate) + \
                column * sin((1 + off) * 2 * pi * hertz[k % 4 + 5] * i / rate)
        at += 0.1003
    }
    BEGIN {
        pi = atan2(0, -1); srand(3); at = 0.05
        split("697 770 852 941 1209 1336 1477 1633", hertz)
        press("1", 0.0401, 0.2, 0.2); press("2", 0.0401, 0.2, 0.2); press("3", 0.0401, 0.2, 0.2)
        press("A", 0.022, 0.2, 0.2); press("4", 0.022, 0.2, 0.2); press("5", 0.022, 0.2, 0.2)
        press("D", 0.05, 0.2, 0.2, 0.018); press("*", 0.05, 0.2, 0.2, -0.018)
        press("D", 0.05, 0.2, 0.2, 0.035); press("*", 0.05, 0.2, 0.2, -0.035)
        press("6", 0.07, 0.2, 0.3); press("6", 0.07, 0.2, 0.34)
        press("7", 0.07, 0.2, 0.085); press("8", 0.07, 0.2, 0.075)
        press("9", 0.05, 0.02, 0.02); press("C", 0.05, 0.008, 0.008)
        press("0", 0.05, 0.2, 0); press("0", 0.05, 0, 0.2)
        press("1", 0.05, 0.1, 0.1); at -= 0.1003; press("2", 0.05, 0.1, 0.1)
        press("#", 0.07, 0.2, 0.2)
        for (i = int((at - 0.0703) * rate); i < int((at - 0.0603) * rate); ++i) x[i] = 0
        press("B", 0.09, 0.2, 0.2)
        for (i = int((at - 0.15) * rate); i < int(at * rate); ++i) x[i] += rand() - 0.5
        press("5", 0.05, 0.2, 0.2); at -= 0.0103; press("5", 0.05, 0.2, 0.2)
        n = int(2.9 * rate)
        for (i = 0; i < n; ++i) {
            v = int(32767 * x[i] + 40000.5) - 40000; if (v < 0) v += 65536
            printf "\\x%02x\\x%02x", v % 256, int(v / 256)
        }
    }
AWK
rate=11025
wav "$work/edges.wav" $rate $((2 * 29 * rate / 10))
awk -v rate=$rate -f "$work/edges.awk" | { read -r bytes; printf "$bytes"; } >>"$work/edges.wav"
"$program" "$work/edges.wav" "$work/edges" >"$work/stdout" 2>"$work/stderr" ||
    fail "exit code $? on digits at $rate Hz: $(cat "$work/stderr")"
grep -q '^All limits .* digits: 123D\*679#55$' "$work/stdout" ||
    fail "digits at $rate Hz: $(grep '^All limits' "$work/stdout")"
grep -qE 'up to 1\.[5-9] %, none from (2\.|3\.[0-5])' "$work/stdout" ||
    fail "deviations at $rate Hz: $(grep '^Off' "$work/stdout")"
grep -qE 'from (3[0-9]|40) ms on, none up to 2[1-9] ms$' "$work/stdout" ||
    fail "lengths at $rate Hz: $(grep '^Length' "$work/stdout")"

# --- recordings that cannot be taken -----------------------------------------

expect_failure "$work/missing.wav: No such file or directory" "$work/missing.wav"
wav "$work/slow.wav" 7999 64000
head -c 64000 /dev/zero >>"$work/slow.wav"
expect_failure "$work/slow.wav: has 7999 samples per second, 8000 are needed" "$work/slow.wav"
wav "$work/fast.wav" 48001 400000
head -c 400000 /dev/zero >>"$work/fast.wav"
expect_failure "$work/fast.wav: has 48001 samples per second, 48000 at most can be taken" \
    "$work/fast.wav"
wav "$work/brief.wav" 8000 32000
head -c 32000 /dev/zero >>"$work/brief.wav"
expect_failure "$work/brief.wav: is too short: it has 2 s, 2.32 s are needed" "$work/brief.wav"
wav "$work/silence.wav" 8000 64000
head -c 64000 /dev/zero >>"$work/silence.wav"
expect_failure "$work/silence.wav: is silent" "$work/silence.wav"

finish
