# shellcheck shell=bash
# ./dev soak: one engine through a long day, while rules change and the database comes and goes. Sourced by ./dev.

soak() {
  need "${packages_build[@]:?}" "${packages_test[@]:?}" python3
  say "building the release library and its host"
  cmake --preset ci-gcc
  cmake --build --preset ci-gcc -j "${jobs:?}" --target QNCORVANE soak_host
  say "soaking"
  python3 -B tests/soak/soak.py build/ci-gcc/bin/soak_host build/ci-gcc/lib/libQNCORVANE.so \
    samples/schema/sqlite.sql "$@"
}
