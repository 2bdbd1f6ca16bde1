# shellcheck shell=bash
# What the commands need of the machine: packages of Debian 12. Sourced by ./dev.

# shellcheck disable=SC2034  # ./dev and scripts/compare.sh name these
{
  packages_build=(g++ cmake ninja-build pkg-config qtbase5-dev libqt5sql5-sqlite libtinyxml-dev sqlite3
    libcli11-dev libsqlite3-dev nlohmann-json3-dev)
  packages_test=(libgtest-dev libgmock-dev libsqlite3-dev python3 python3-clang-14 binutils locales
    python3-pytest python3-hypothesis python3-prompt-toolkit python3-jsonschema mypy python3-setuptools python3-wheel
    python3-pip python3-venv man-db groff mandoc zsh fish)
  packages_servers=(mariadb-server libqt5sql5-mysql libqt5sql5-odbc unixodbc libsqliteodbc odbc-mdbtools)
  packages_format=(clang-format)
  packages_clang=(clang libclang-rt-14-dev)
  packages_lint=("${packages_clang[@]}" clang-tidy clang-format shellcheck)
  packages_coverage=("${packages_clang[@]}" llvm)
  packages_bench=(libsqlite3-dev python3 mariadb-server libqt5sql5-mysql)
  packages_package=(dpkg-dev file lintian)
  packages_bare_root=(debootstrap)
  packages_examples=(libjna-java openjdk-17-jdk-headless mono-mcs mono-runtime libmono-system-core4.0-cil
    libmono-system-xml4.0-cil)
  packages_count=(valgrind libsqlite3-dev python3)
}

as_root() {
  if ((EUID == 0)); then "$@"; else sudo "$@"; fi
}

is_installed() { [[ $(dpkg-query -W -f='${Status}' "$1" 2>/dev/null) == "install ok installed" ]]; }

# Installs packages. A server that comes with one is not started: the tests start their own, on their own files. Debian's
# way to say so is a policy; one that stands already is the machine owner's, and stays.
install_packages() (
  policy=/usr/sbin/policy-rc.d
  if [[ ! -e $policy ]]; then
    trap 'as_root rm -f "$policy"' EXIT
    printf '#!/bin/sh\nexit 101\n' | as_root tee "$policy" >/dev/null
    as_root chmod 755 "$policy"
  fi
  as_root apt-get update -q
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "$@" </dev/null
)

# Those of the packages that apt knows on this machine, as `need`. The examples' runtimes are not there on every architecture,
# and their tests do without.
need_where_known() {
  local missing=() known package
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  as_root apt-get update -q
  mapfile -t known < <(apt-cache show --no-all-versions "${missing[@]}" 2>/dev/null | sed -n 's/^Package: //p')
  need "${known[@]}"
}

# Installs those of the packages that are missing; with none missing, the network is not touched.
need() {
  local missing=() package
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  say "installing ${missing[*]}"
  install_packages "${missing[@]}"
}
