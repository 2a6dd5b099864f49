#!/usr/bin/env bash
# Makes the station's nine voice prompts in assets/voice: short Mandarin
# phrases spoken by espeak-ng, trimmed of silence and normalised by sox,
# 16-bit PCM mono at 22050 Hz. The file names are the ones the station plays;
# "Succes.wav" is spelt so on purpose.
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
out="${1:-$here/assets/voice}"
voice="${VOICE:-cmn}"
speed="${SPEED:-200}"

for tool in espeak-ng sox; do
    command -v "$tool" >/dev/null || { echo "make-voices: $tool is missing" >&2; exit 1; }
done
mkdir -p "$out"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

# file name | what the worker hears
prompts=(
    "findGoods.wav|找不到商品"
    "scanSerial.wav|请扫描序列号"
    "repeatScan.wav|序列号重复扫描"
    "DifKFPeriod.wav|保质期不一致"
    "Error.wav|非本单商品"
    "Excess.wav|拣货超量"
    "Succes.wav|校验通过"
    "refunds.wav|此单已申请退款"
    "repeatCheck.wav|此单已校验过"
)

for entry in "${prompts[@]}"; do
    name="${entry%%|*}"
    text="${entry#*|}"
    espeak-ng -v "$voice" -s "$speed" -a 180 -w "$work/raw.wav" "$text"
    # Silence off both ends, a short lead-in so the first syllable is not
    # clipped by the sound card, loudness to -1 dBFS.
    sox "$work/raw.wav" -r 22050 -c 1 -b 16 -e signed-integer "$out/$name" \
        silence 1 0.02 0.5% reverse silence 1 0.02 0.5% reverse \
        pad 0.05 0.05 norm -1
    echo "$name: $text ($(soxi -D "$out/$name")s)"
done
