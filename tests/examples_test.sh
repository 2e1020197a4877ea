#!/bin/sh
# Runs the example programs.
# usage: examples_test.sh refusals|htk|conditioning|digits DIGITS FEATURES [SYNTHESISE SPEECH_FOLDER]
set -eu
check=$1 digits=$2 features=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "$*" >&2
    exit 1
}

tone() { # usage: tone FILE SECONDS [SOX_OPTION...]
    file=$work/$1 seconds=$2
    shift 2
    sox -n -r 8000 -c 1 -b 16 "$@" "$file" synth "$seconds" sine 500 gain -6
}

# A bad file is told in one line that names it and its fault.
# usage: refuses FAULT FILE
refuses() {
    for program in "$digits $work" "$features"; do
        status=0
        $program "$work/$2" >"$work/out" 2>"$work/fault" || status=$?
        test $status -eq 1 || fail "$program $2: exit status $status"
        test "$(wc -l <"$work/fault")" -eq 1 || fail "$program $2: $(cat "$work/fault")"
        grep -q "^[a-z]*: $work/$2: .*$1" "$work/fault" || fail "$program $2: $(cat "$work/fault")"
        test ! -s "$work/out" || fail "$program $2 printed something"
    done
}

refusals() {
    echo "no sound at all" >"$work/text.wav"
    : >"$work/nothing.wav"
    tone stereo.wav 1 -c 2
    tone rate.wav 1 -r 12345
    tone zero-length.wav 0.5
    sox "$work/zero-length.wav" "$work/empty.wav" trim 0 0
    sox -D -n -r 8000 -c 1 -b 16 "$work/mute.wav" trim 0 1
    tone short.wav 0.05

    refuses "no such file" missing.wav
    refuses "not a sound file" text.wav
    refuses "not a sound file" nothing.wav
    refuses "2 channels" stereo.wav
    refuses "rate of 12345 Hz" rate.wav
    refuses "no samples" empty.wav
    refuses "no sound" mute.wav
    refuses "too short" short.wav

    tone good.wav 1
    for arguments in "" "--nonsense $work/good.wav" "$work/good.wav $work/a $work/b" "--plot"; do
        status=0
        $features $arguments >/dev/null 2>&1 || status=$?
        test $status -eq 2 || fail "features $arguments: exit status $status"
    done
    ! "$features" "$work/good.wav" "$work/no/folder" 2>"$work/fault" || fail "wrote into a folder that is not there"
    grep -q "cannot be written" "$work/fault"
    ! "$digits" "$work/no-folder" "$work/good.wav" 2>"$work/fault" || fail "trained on a folder that is not there"
    grep -q "no such folder" "$work/fault"
    ! "$digits" "$work" "$work/good.wav" 2>"$work/fault" || fail "trained on an empty folder"
    grep -q "nobody says 'zero'" "$work/fault"
}

# The parameter file says in its header what the text has, and holds the same numbers.
htk() {
    for rate in 8000 16000 44100; do
        tone "$rate.wav" 0.7 -r $rate
        "$features" "$work/$rate.wav" "$work/text"
        "$features" --htk "$work/$rate.wav" "$work/htk"
        frames=$(wc -l <"$work/text")
        header=$(od -An --endian=big -tu4 -N8 "$work/htk" && od -An --endian=big -tu2 -j8 -N4 "$work/htk")
        # A frame each 10 ms in units of 100 ns, 39 floats; cepstra 6, deltas 0400, accelerations 01000, C0 020000.
        test "$(echo $header)" = "$frames 100000 156 8966" || fail "header is" $header
        test "$frames" -eq 68 || fail "$frames frames of 25 ms fit into 0.7 s"
        test "$(wc -c <"$work/htk")" -eq $((12 + 156 * frames))
        tr ' ' '\n' <"$work/text" >"$work/expected"
        od -An -v --endian=big -tf4 -w4 -j12 "$work/htk" | paste "$work/expected" - |
            awk '{ d = $1 - $2; s = $1 < 0 ? -$1 : $1; if (d > 1e-6 * s || -d > 1e-6 * s) exit 1 }' ||
            fail "text and parameter file differ at $rate Hz"
    done
}

# A sound that swells and fades, so that its frames differ, with and without an offset of a tenth of the range.
conditioning() {
    sox -D -n -r 8000 -c 1 -b 16 "$work/sound.wav" synth 1 sine 300:2500 fade t 0.4 1 0.4 gain -9
    sox -D "$work/sound.wav" "$work/shifted.wav" dcshift 0.1
    for sound in sound shifted; do
        "$features" --energy "$work/$sound.wav" "$work/$sound.as-is"
        "$features" --energy --offset "$work/$sound.wav" "$work/$sound.without"
    done
    # Mean difference of the energies, column 13, of two files.
    difference() {
        paste "$work/$1" "$work/$2" | awk '{ d = $13 - $52; sum += d < 0 ? -d : d } END { print sum / NR }'
    }
    offset=$(difference sound.as-is shifted.as-is) left=$(difference sound.without shifted.without)
    echo "$offset $left" | awk '{ exit !($1 > 0.05 && $2 < 0.1 * $1) }' ||
        fail "energies differ by $offset with an offset, by $left without"
    awk '$13 > max { max = $13 } END { exit !(max == 1) }' "$work/sound.as-is" || fail "the greatest energy is not 1"

    "$features" --cmvn "$work/sound.wav" "$work/normalised"
    awk '{ for (c = 1; c <= 13; ++c) { sum[c] += $c; squares[c] += $c * $c } }
         END { for (c = 1; c <= 13; ++c) {
                   mean = sum[c] / NR; variance = squares[c] / (NR - 1)
                   if (mean > 1e-3 || mean < -1e-3 || variance > 1.001 || variance < 0.999) exit 1 } }' "$work/normalised" ||
        fail "mean and variance are not 0 and 1"

    "$features" --htk --energy --cmvn --plot "$work/picture.svg" "$work/sound.wav" "$work/htk"
    # As in htk(), with energy 0100 instead of C0, and zero mean 04000.
    test "$(echo $(od -An --endian=big -tu2 -j10 -N2 "$work/htk"))" = 2886 || fail "not MFCC_E_D_A_Z"
    test "$(tail -c 7 "$work/picture.svg")" = "</svg>" || fail "the picture is not whole"
    for panel in waveform mel cepstra deltas energy; do
        grep -q ">$panel</text>" "$work/picture.svg" || fail "the picture has no $panel"
    done
    ! "$features" --plot "$work/no/folder" "$work/sound.wav" "$work/out" 2>"$work/fault" || fail "drew into no folder"
    grep -q "cannot be written" "$work/fault"
}

# Synthetic voices train, and a human voice is recognised, in 16 bits as in floating point.
recognition() {
    for program in espeak-ng flite festival; do
        command -v $program >/dev/null || { echo "skipped: $program is not installed"; exit 77; }
    done
    recordings=$(dpkg -L asterisk-core-sounds-en-wav | grep -E '/digits/([0-9]|oh)\.wav$') ||
        { echo "skipped: no recordings"; exit 77; }
    "$1" "$2"
    "$digits" --fixed --plot "$work/plot.svg" "$2" $recordings | tee "$work/report"
    right=$(sed -n 's/^accuracy: \([0-9]*\) of 11,.*/\1/p' "$work/report")
    test "$right" -ge 10 || fail "only $right of 11 recognised"
    others=$(sed -n 's/^cost of 16 bits: \([0-9]*\) of 11 answers differ.*/\1/p' "$work/report")
    test "$others" -le 1 || fail "$others answers differ between 16 bits and floating point"
    test "$(tail -c 7 "$work/plot.svg")" = "</svg>" || fail "the picture is not whole"
}

case $check in
refusals) refusals ;;
htk) htk ;;
conditioning) conditioning ;;
digits) recognition "$4" "$5" ;;
*) fail "no check '$check'" ;;
esac
