# shellcheck shell=bash
# ./dev bench: the engine of the working tree beside the earlier one and the plain floor. ./dev count: its instructions.
# Sourced by ./dev, behind scripts/compare.sh.

# Real sales, where a machine has them.
bench_baskets=../shared/data/online_retail_10k.csv

bench_revision() {
  grep -v '^#' bench/baseline | head -n 1
}

bench() {
  local options=(--page docs/performance.md) baskets="" commit before
  while (($#)); do
    case "$1" in
      --quick) options+=(--quick) ;;
      *.csv) baskets=$1 ;;
      *) refuse "bench takes --quick and a file of real sales (.csv), not '$1'" ;;
    esac
    shift
  done
  [[ -z $baskets || -e $baskets ]] || refuse "there is no $baskets"
  [[ -n $baskets || ! -e $bench_baskets ]] || baskets=$bench_baskets
  [[ -n $baskets ]] || say "no file of real sales: the real baskets are left out"
  commit=$(compare_commit "$(bench_revision)")
  need "${packages_build[@]:?}" "${packages_bench[@]:?}"
  before=$(compare_old_library "$commit")
  build bench
  say "measuring"
  python3 -B bench/bench.py build/bench/bin "$before" build/bench/lib/libQNCORVANE.so out/bench \
    --revision "$commit" ${baskets:+--baskets "$baskets"} "${options[@]}"
}

# Instructions of a pass beside the committed ones.
count() {
  need "${packages_build[@]:?}" "${packages_count[@]:?}"
  build bench
  say "testing the bench"
  python3 -B bench/bench_test.py
  say "counting instructions"
  python3 -B bench/count.py build/bench/bin build/bench/lib/libQNCORVANE.so out/count bench/callgrind.baseline "$@"
}
