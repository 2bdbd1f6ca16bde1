#!/usr/bin/env bash
# Runs walks of the sample store through the host program and shows what it prints.
#   samples/demo.sh PROGRAM STORE OUT [NAME...]
# OUT takes the result XMLs, one for each walk. Without a name: basket, weekly-shop, till. "all" stands for every walk.
set -euo pipefail

program=$1
store=$2
out=$3
names=("${@:4}")
samples=$(dirname "${BASH_SOURCE[0]}")

if ((${#names[@]} == 0)); then names=(basket weekly-shop till); fi
if [[ ${names[0]} == all ]]; then
  mapfile -t names < <(sed -n 's/^\([a-z][a-z-]*\) *|.*/\1/p' "$samples/walks.txt")
fi

for name in "${names[@]}"; do
  if ! line=$(grep "^$name  *|" "$samples/walks.txt"); then
    echo "demo: no walk named '$name' in $samples/walks.txt" >&2
    exit 2
  fi
  IFS='|' read -r _ title steps <<<"$line"
  title=$(sed 's/^ *//; s/ *$//' <<<"$title")
  steps=${steps// /}
  printf '\n######## %s\n\n' "$title"
  "$program" calc --store "$store" --mode "${steps//=/=$samples/sales/}" --key "$name" --out "$out/$name.xml"
done
