#!/usr/bin/env bash
# Draws two GS1 labels of the demo warehouse into docs/, to be scanned off the
# screen with a real scanner: a GS1 DataMatrix on a tin of milk powder (GTIN,
# batch, expiry, serial) and a GS1-128 carton label of two bottles of shampoo
# (GTIN and count). Needs zint (Debian package zint); dmtxread (dmtx-utils)
# checks the DataMatrix when it is there.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
command -v zint >/dev/null || { echo "zint is needed: apt-get install zint" >&2; exit 1; }

matrix="$root/docs/gs1-datamatrix-milk-powder.png"
carton="$root/docs/gs1-128-shampoo-carton.png"
zint --barcode=71 --gs1 --quietzones --scale=8 -o "$matrix" \
     -d "[01]06931000010338[10]M2403[17]260219[21]MF-0001"
zint --barcode=16 --gs1 --quietzones --height=50 --scale=3 -o "$carton" \
     -d "[01]06931000010147[30]2"

if command -v dmtxread >/dev/null; then
  read=$(dmtxread "$matrix")
  [ "$read" = "0106931000010338""10M2403""1726021921MF-0001" ] || { echo "the DataMatrix reads back as: $read" >&2; exit 1; }
fi
echo "wrote $matrix and $carton"
