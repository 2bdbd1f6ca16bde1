# shellcheck shell=bash
# ./dev compare: proves that the working tree answers as an earlier revision does. Sourced by ./dev.

# Where the libraries are built, each revision's once.
compare_home=build/compare

# The revision that the working tree is measured by unless one is named: a hash, or the word "here" for the commit that
# last changed the file, so that a change can move the baseline to itself.
compare_baseline() {
  local file=tests/compare/baseline revision
  revision=$(grep -v '^#' "$file" | head -n 1)
  if [[ $revision == here ]]; then
    git diff --quiet HEAD -- "$file" ||
      refuse "the baseline moves with a change that is not committed yet; name the revision to compare with"
    [[ $(git rev-parse --is-shallow-repository) == false ]] ||
      refuse "in a shallow clone the commit that last changed $file is not known; 'git fetch --unshallow' brings it"
    revision=$(git log -1 --format=%H -- "$file")
  fi
  printf '%s\n' "$revision"
}

# The full hash of a revision. One that the history here does not hold can't be built, and so nothing could be proved.
compare_commit() {
  git rev-parse --verify --quiet "$1^{commit}" ||
    refuse "the history here does not hold the revision '$1', so there is nothing to compare with." \
      "In a shallow clone, 'git fetch --unshallow' brings it."
}

# Builds the library of a source tree alone.
compare_build() {
  local source=$1 build=$2 log=$2.log
  mkdir -p "$(dirname "$log")"
  # What a tree of long ago says while it is built is of interest only when it fails.
  if ! {
    cmake -S "$source" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
      -DQNCORVANE_BUILD_TESTS=OFF -DQNCORVANE_BUILD_TOOLS=OFF &&
      cmake --build "$build" --target QNCORVANE -j "${jobs:?}"
  } >"$log" 2>&1; then
    cat "$log" >&2
    refuse "the library of $source can't be built"
  fi
}

# The library of a commit, built unless that has been done. The sources come from the history, not from a working tree.
compare_old_library() {
  local commit=$1
  local folder=$compare_home/$commit
  local library=$folder/libQNCORVANE.so
  if [[ ! -e $library ]]; then
    say "building the library of ${commit:0:12}" >&2
    rm -rf "$folder"
    mkdir -p "$folder/source"
    git archive "$commit" | tar -x -C "$folder/source"
    compare_build "$folder/source" "$folder/build" >&2
    # The last step: a build that was broken off leaves nothing that looks whole.
    cp "$folder/build/lib/libQNCORVANE.so" "$library.new"
    rm -rf "$folder/build" "$folder/source"
    mv "$library.new" "$library"
  fi
  printf '%s\n' "$library"
}

compare() {
  local revision commit old
  if (($#)) && [[ $1 != -* ]]; then
    revision=$1
    shift
  else
    revision=$(compare_baseline)
  fi
  commit=$(compare_commit "$revision")
  need "${packages_build[@]:?}" python3
  old=$(compare_old_library "$commit")
  say "building today's library"
  compare_build . "$compare_home/today"
  say "comparing with ${commit:0:12}"
  python3 -B tests/compare/compare.py "$old" "$compare_home/today/lib/libQNCORVANE.so" \
    --schema samples/schema/sqlite.sql --reduced "$compare_home/difference.jsonl" "$@"
}
