# shellcheck shell=bash
# ./dev coverage: which lines and branches of the engine the suite, the servers' tests and the fuzz corpus reach. Sourced by
# ./dev.

coverage() {
  (($# == 0)) || refuse "coverage takes nothing, not '$1'"
  need "${packages_build[@]:?}" "${packages_test[@]:?}" "${packages_servers[@]:?}" "${packages_coverage[@]:?}"
  build coverage
  local folder=$PWD/build/coverage
  rm -rf "$folder/profiles"
  say "testing coverage"
  ctest --preset coverage -j 2
  LLVM_PROFILE_FILE=$folder/profiles/%4m.profraw tests/db/run.sh build/coverage
  say "counting"
  python3 -B scripts/coverage.py "$folder"
}
