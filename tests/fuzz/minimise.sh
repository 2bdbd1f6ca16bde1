#!/usr/bin/env bash
# Makes the corpus of targets anew: of it, of out/fuzz/TARGET, and of the folders OUT/TARGET of further OUT, the fewest
# inputs that reach all of it.
#
#   minimise.sh [--from OUT]... TARGET...
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

sources=(tests/fuzz/corpus out/fuzz)
while [[ ${1-} == --from ]]; do
  sources+=("$2")
  shift 2
done
for target in "$@"; do
  inputs=() small=out/fuzz/small/$target
  for folder in "${sources[@]}"; do
    if [[ -d $folder/$target ]]; then inputs+=("$folder/$target"); fi
  done
  rm -rf "$small"
  mkdir -p "$small"
  build/sanitize/bin/"fuzz_$target" -set_cover_merge=1 -use_counters=0 -max_len=4096 -timeout=25 "$small" "${inputs[@]}" >"$small.log" 2>&1
  rm -rf "tests/fuzz/corpus/$target"
  mv "$small" "tests/fuzz/corpus/$target"
  printf '%-12s %s inputs\n' "$target" "$(find "tests/fuzz/corpus/$target" -type f | wc -l)"
done
