# shellcheck shell=bash
# ./dev fuzz: the fuzz targets of tests/fuzz, each for a while. Sourced by ./dev.

# One target. New inputs go to out/fuzz/TARGET; what ends the target goes to out/fuzz/findings.
fuzz_target() {
  local target=$1 seconds=$2 seed=$3
  local own=out/fuzz/$target log=out/fuzz/$target.log dictionary=tests/fuzz/$target.dict code=0
  mkdir -p "$own" out/fuzz/findings
  [[ -e $dictionary ]] || dictionary=tests/fuzz/formats.dict
  build/sanitize/bin/"fuzz_$target" -max_total_time="$seconds" ${seed:+-seed="$seed"} -dict="$dictionary" -max_len=16384 \
    -timeout=25 -rss_limit_mb=4096 -print_final_stats=1 -artifact_prefix="out/fuzz/findings/$target-" \
    "$own" "tests/fuzz/corpus/$target" >"$log" 2>&1 || code=$?
  local runs reached
  runs=$(sed -n 's/^stat::number_of_executed_units: //p' "$log" | tail -n 1)
  reached=$(sed -n 's/.*cov: \([0-9]*\) .*/\1/p' "$log" | tail -n 1)
  printf '%-12s %9s executions, %s edges, %s\n' "$target" "${runs:-0}" "${reached:-0}" \
    "$( ((code)) && echo "A FINDING: see $log" || echo "nothing found")"
  return "$code"
}

fuzz() {
  local seconds=60 seed="" targets=() target failed=0
  while (($#)); do
    case "$1" in
      --seconds | --seed)
        [[ ${2-} =~ ^[0-9]+$ ]] || refuse "fuzz $1 takes a number, not '${2-}'"
        if [[ $1 == --seed ]]; then seed=$2; else seconds=$2; fi
        shift
        ;;
      *)
        [[ -e tests/fuzz/$1.cpp && $1 == [a-z]* ]] || refuse "there is no fuzz target '$1'"
        targets+=("$1")
        ;;
    esac
    shift
  done
  if ((${#targets[@]} == 0)); then
    for target in tests/fuzz/[a-z]*.cpp; do targets+=("$(basename "$target" .cpp)"); done
  fi
  need "${packages_build[@]:?}" "${packages_test[@]:?}" "${packages_clang[@]:?}"
  say "building the fuzz targets"
  cmake --preset sanitize
  cmake --build --preset sanitize -j "${jobs:?}" --target "${targets[@]/#/fuzz_}"
  say "fuzzing, $seconds seconds each"
  export ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1:malloc_context_size=8
  export UBSAN_OPTIONS=print_stacktrace=1
  for target in "${targets[@]}"; do fuzz_target "$target" "$seconds" "$seed" || failed=1; done
  return "$failed"
}
