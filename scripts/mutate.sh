# shellcheck shell=bash
# ./dev mutate: whether the tests notice single wrong operators in the rules. Sourced by ./dev. See tests/mutation/README.md.

mutate() {
  need "${packages_build[@]:?}" "${packages_test[@]:?}"
  build ci-gcc
  say "mutating"
  python3 -B tests/mutation/mutate.py --jobs "${jobs:?}" "$@"
}
