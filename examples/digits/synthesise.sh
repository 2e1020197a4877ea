#!/bin/sh
# Writes the training speech: every digit word by every voice of three synthesisers, at several speeds and pitches.
# A voice is a folder SPEAKER-VARIANT, and what it says are its files WORD-n.wav.
# usage: synthesise.sh FOLDER
set -eu
target=$1
words="zero one two three four five six seven eight nine oh"

# It is all there or not there at all.
[ ! -d "$target" ] || exit 0
folder=$target.part
rm -rf "$folder"
mkdir -p "$folder"

# Formant synthesis: many voices and accents, all by one set of rules.
# usage: espeak ACCENT SPEAKER...
espeak() {
    accent=$1 && shift
    for speaker; do
        voice=$folder/espeak-$accent-$speaker
        mkdir "$voice"
        for word in $words; do
            for take in "1 -s 130 -p 50" "2 -s 170 -p 35" "3 -s 150 -p 65"; do
                echo "espeak-ng -v $accent+$speaker ${take#* } -w '$voice/$word-${take%% *}.wav' $word"
            done
        done
    done
}

# Voices made of recordings of one human speaker each.
# usage: flite VOICE SPEAKER PITCH...
flite() {
    flite_voice=$1 voice=$folder/$2-flite
    shift 2
    mkdir "$voice"
    for word in $words; do
        take=0
        for stretch in 0.85 1.0 1.25 1.5; do
            for pitch; do
                take=$((take + 1))
                echo "flite -voice $flite_voice --setf duration_stretch=$stretch --setf int_f0_target_mean=$pitch" \
                    "-t $word -o '$voice/$word-$take.wav'"
            done
        done
    done
}

# The same, by older and newer methods.
# usage: festival VOICE SPEAKER
festival() {
    voice=$folder/$2-festival
    mkdir "$voice"
    {
        echo "(voice_$1)"
        for word in $words; do
            take=0
            for stretch in 0.85 1.0 1.25 1.5; do
                take=$((take + 1))
                echo "(Parameter.set 'Duration_Stretch $stretch)"
                echo "(utt.save.wave (SynthText \"$word\") \"$voice/$word-$take.wav\")"
            done
        done
    } >"$voice/script"
    echo "festival -b '$voice/script'"
}

{
    festival kal_diphone kal
    festival ked_diphone ked
    festival cmu_us_slt_arctic_hts slt
    flite kal16 kal 80 105 130
    flite awb awb 90 120 150
    flite rms rms 80 100 130
    flite slt slt 150 180 220
    espeak en-us m1 m3 f1 f2 f3 f4 linda steph max
    espeak en-us-nyc m3
    espeak en-gb f1
    espeak en-gb-x-rp m7
} | tr '\n' '\0' | xargs -0 -n 1 -P "$(nproc)" sh -c >/dev/null
mv "$folder" "$target"
