#!/usr/bin/env bash
# Makes inputs for every target out of the sample store and the scenarios: seeds.sh BUILD FOLDER
#
# BUILD has the programs `scenarios` and libfuzz_recorder.so (cmake --build BUILD --target scenarios fuzz_recorder); one
# without sanitizers will do. The inputs go to FOLDER/TARGET.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=$(cd "$1" && pwd)
mkdir -p "$2"/{sale_xml,rule_xml,calls,table_rows,config_ini,sql_text}
out=$(cd "$2" && pwd)

find "$here/../scenarios" -mindepth 2 -name '*.txt' -print0 | while IFS= read -r -d '' scenario; do
  RECORD_TO=$out LD_PRELOAD=$build/lib/libfuzz_recorder.so timeout 60 "$build/bin/scenarios" "$scenario" >/dev/null
done
python3 -B "$here/make_seeds.py" "$out"
