# shellcheck shell=bash
# ./dev bench: the engine of the working tree beside the earlier one and the plain floor. ./dev count: its instructions.
# Sourced by ./dev, behind scripts/compare.sh.

# Real sales, where a machine has them.
bench_baskets=../shared/data/online_retail_10k.csv

# The commit in front of the one that brought the file of bench/baseline. A name would not outlive a history that is
# written anew.
bench_revision() {
  local file brought
  file=$(grep -v '^#' bench/baseline | head -n 1)
  brought=$(git log --diff-filter=A --format=%H -- "$file" | tail -n 1)
  [[ -n $brought ]] || refuse "the history here does not tell what brought $file; 'git fetch --unshallow' may bring it"
  printf '%s^\n' "$brought"
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
  need "${packages_build[@]:?}" "${packages_test[@]:?}" "${packages_count[@]:?}"
  build ci-gcc
  say "testing the bench"
  python3 -B bench/bench_test.py
  say "counting instructions"
  python3 -B bench/count.py build/ci-gcc/bin build/ci-gcc/lib/libQNCORVANE.so out/count bench/callgrind.baseline "$@"
}
