# shellcheck shell=bash
# The project's own files, and what looks at each of them. Sourced by ./dev.

source_folders=(base bench db engine host include log promo rule sale samples tests tools)

# Every C and C++ file of the project, with a zero byte behind each name.
sources() {
  find "${source_folders[@]}" -type f \( -name '*.h' -o -name '*.cpp' -o -name '*.c' \) -print0
}

# Every shell script of the project, with a zero byte behind each name.
shell_scripts() {
  printf '%s\0' dev .ci/run packaging/python3-qncorvane/{postinst,prerm}
  find . \( -path ./build -o -path ./out -o -path ./.git \) -prune -o -name '*.sh' -print0
}

check_format() {
  sources | xargs -0 clang-format --dry-run -Werror
}

check_scripts() {
  shell_scripts | xargs -0 shellcheck
}

# Looks at those files of a build that lie in the project's own folders: what the build generates is nobody's to mend.
tidy() {
  local build=$1 root folders
  # The folder's name stands in a pattern.
  root=$(printf '%s' "$PWD" | sed 's/[][\\.*^$+?(){}|]/\\&/g')
  folders=$(IFS='|' && printf '%s' "${source_folders[*]}")
  # Of the output the commands and the warnings in the system's headers, which are not shown, are of no interest.
  run-clang-tidy -quiet -p "$build" -j "${jobs:?}" "^$root/($folders)/" \
    > >(grep -v '^clang-tidy-[0-9]* ') 2> >(grep -v 'warnings\? generated\.$' >&2)
}
