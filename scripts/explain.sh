# shellcheck shell=bash
# ./dev test --explain: explanations on many generated tills. Sourced by ./dev.

test_explain() {
  local count=100000 seed=1 arguments
  if [[ ${1-} == [0-9]* ]]; then
    count=$1
    shift
  fi
  while (($#)); do
    [[ $1 == --seed && ${2-} =~ ^[0-9]+$ ]] || refuse "test --explain takes a number of tills and --seed N, not '$*'"
    seed=$2
    shift 2
  done
  [[ $count =~ ^[1-9][0-9]*$ ]] || refuse "test --explain takes a number of tills, not '$count'"
  need "${packages_build[@]:?}" "${packages_test[@]:?}"
  say "building ci-gcc"
  cmake --preset ci-gcc
  cmake --build --preset ci-gcc -j "${jobs:?}" --target qncorvane_host
  arguments=(build/ci-gcc/lib/libqncorvane-host.so samples/schema/sqlite.sql docs/explanation.schema.json --seed "$seed")
  say "each calculation of $count tills explained"
  python3 -B tests/explain/complete.py "${arguments[@]}" --count "$count" --jobs "$jobs"
  say "reasons by counterfactuals"
  python3 -B tests/explain/counterfactual.py "${arguments[@]}" --each 20 --tills 4000
  say "near misses"
  python3 -B tests/explain/near.py "${arguments[@]}" --count $((count / 20 + 1)) --jobs "$jobs"
}
