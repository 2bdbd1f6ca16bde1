#!/usr/bin/env bash
# Installs the Debian packages in a bare root of their own, uses them there as a user without rights, and removes them.
#   tests/package/run.sh PACKAGES WORK
# PACKAGES holds the .deb files. WORK keeps the bare root and what apt has fetched, so that the next run fetches little.
# Nothing of the machine is mounted into the root; the network that apt uses is the machine's.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
packages=$(realpath "$1")
mkdir -p "$2"
work=$(realpath "$2")
root=$work/root
suite=bookworm
base=$work/$suite-$(dpkg --print-architecture).tar
names=(libqncorvane1 libqncorvane-dev qncorvane python3-qncorvane)
user=1000

say() { printf -- '-- %s (%d s)\n' "$*" "$SECONDS"; }

fail() {
  printf 'package test: %s\n' "$*" >&2
  exit 1
}

((EUID == 0)) || fail "only root can make a root and work in it by chroot"

# Takes off whatever is still mounted in the root, innermost first; making the base mounts and unmounts there. What can't be
# taken off is not deleted either.
release() {
  local mounted
  while read -r mounted; do
    umount "$mounted" || umount -l "$mounted" || true
  done < <(awk -v root="$root" '$2 == root || index($2, root "/") == 1 { print $2 }' /proc/self/mounts | sort -r)
  rm -rf --one-file-system "$root"
}
trap release EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

clean_environment=(PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive)
for name in http_proxy https_proxy no_proxy; do
  [[ -z ${!name-} ]] || clean_environment+=("$name=${!name}")
done

in_root() { chroot "$root" env -i "${clean_environment[@]}" "$@"; }

as_user() { chroot --userspec=$user:$user "$root" env -i --chdir=/home/till "${clean_environment[@]}" HOME=/home/till "$@"; }

# The sources of Debian that the machine's apt knows, each as "URI CODENAME COMPONENT".
debian_sources() {
  # shellcheck disable=SC2016  # the fields are apt's
  apt-get indextargets --format '$(REPO_URI) $(CODENAME) $(COMPONENT)' 'Created-By: Packages' 'Origin: Debian' |
    awk -v suite="$suite" '$2 == suite || index($2, suite "-") == 1' | sort -u
}

make_base() {
  local mirror include=
  mirror=$(debian_sources | awk -v suite="$suite" '$2 == suite && $3 == "main" { print $1; exit }')
  [[ -n $mirror ]] || fail "the machine's apt knows no source of Debian's $suite; 'apt-get update' may bring it"
  [[ $mirror != https:* ]] || include=--include=ca-certificates
  # debootstrap asks the environment where apt asks its settings.
  local proxy
  proxy=$(apt-config shell p Acquire::http::Proxy)
  eval "${proxy/#p=/local apt_proxy=}"
  say "making a bare $suite from $mirror"
  env ${apt_proxy:+http_proxy="$apt_proxy"} \
    debootstrap --variant=minbase ${include:+"$include"} "$suite" "$root" "$mirror" >"$work/debootstrap.log" ||
    fail "debootstrap: $(tail -n 5 "$work/debootstrap.log")"
  # The packages' own cache is kept apart, below.
  tar -C "$root" --one-file-system --exclude=./var/cache/apt/archives/*.deb -cf "$base.new" .
  mv "$base.new" "$base"
  release
}

# The machine's sources, settings of fetching, and keys of Debian; the root has none of other vendors.
give_apt_settings() {
  debian_sources | sed 's/^/deb /' >"$root/etc/apt/sources.list"
  local file
  while read -r file; do
    cp "$file" "$root/etc/apt/apt.conf.d/"
  done < <(grep -lE '^[[:space:]]*Acquire' /etc/apt/apt.conf /etc/apt/apt.conf.d/* 2>/dev/null)
  cp /etc/resolv.conf /etc/hosts "$root/etc/"
  cp -n /etc/apt/trusted.gpg.d/* "$root/etc/apt/trusted.gpg.d/" 2>/dev/null || true
  cp -r /usr/local/share/ca-certificates "$root/usr/local/share/" 2>/dev/null || true
  [[ ! -x $root/usr/sbin/update-ca-certificates ]] || in_root update-ca-certificates >/dev/null
}

install_in_root() {
  in_root apt-get install -y -q "$@" </dev/null >"$work/apt.log" 2>&1 || {
    cat "$work/apt.log" >&2
    fail "apt could not install $*"
  }
  cp -n "$root"/var/cache/apt/archives/*.deb "$work/archives/" 2>/dev/null || true
}

make_root() {
  [[ -e $base ]] || make_base
  say "unpacking the bare root"
  mkdir -p "$root" "$work/archives"
  tar -C "$root" -xf "$base"
  cp -n "$work"/archives/*.deb "$root/var/cache/apt/archives/" 2>/dev/null || true
  give_apt_settings
  # A root that lives for a minute need not outlive a power cut.
  echo force-unsafe-io >"$root/etc/dpkg/dpkg.cfg.d/unsafe-io"
  install -d -o $user -g $user "$root/home/till"
  mkdir "$root/packages"
  cp "$packages"/*.deb "$root/packages/"
  in_root apt-get update -q >"$work/apt.log" 2>&1 || {
    cat "$work/apt.log" >&2
    fail "apt finds no packages"
  }
}

# A text and a line that has to be in it.
expect_line() {
  grep -qxF -- "$2" <<<"$1" || fail "expected the line '$2' in:"$'\n'"$1"
}

# What is done here stands in the page that tells how to install.
told() { grep -qxF "# $1" "$here/../../docs/installing.md" || fail "docs/installing.md doesn't tell: $1"; }

use_program() {
  say "the program"
  local said
  expect_line "$(as_user qncorvane --version)" "qncorvane $version"
  as_user qncorvane init shop >/dev/null
  expect_line "$(as_user qncorvane check --store shop)" "/home/till/shop: nothing wrong"
  said=$(as_user qncorvane calc --store shop --mode All --out result.xml shop/sale.xml)
  expect_line "$said" "      Total before                                                                 12.50"
  expect_line "$said" "        PTXS-1  Offers of the week                                                 -2.01"
  expect_line "$said" "      To pay                                                                       10.49"
  zgrep -q '^\.TH ' "$root/usr/share/man/man1/qncorvane.1.gz" || fail "the manual is no manual"
}

# The driver comes as a recommendation. Without it, the store is refused with the package's name.
use_program_without_driver() {
  say "the program, without the database's driver"
  in_root dpkg --remove libqt5sql5-sqlite >/dev/null
  local said code=0
  said=$(as_user qncorvane check --store shop 2>&1) || code=$?
  [[ $code == 1 && $said == *libqt5sql5-sqlite* ]] || fail "without the driver, check ends with $code and says: $said"
  install_in_root libqt5sql5-sqlite
}

use_python() {
  say "Python"
  install -m 644 "$here/host.py" "$root/home/till/host.py"
  expect_line "$(as_user python3 host.py shop shop/sale.xml)" "$version: 12.50, to pay 10.49"
  expect_line "$(as_user qncorvane till --store shop --script - <<<'3 x cola')" \
    "  1 Cola 0.5 l                                                3 x 1.50      4.50"
}

use_c() {
  say "C"
  install_in_root --no-install-recommends gcc libc6-dev pkg-config
  cp "$here"/../host/installed/installed{,_host}.c "$root/home/till/"
  # shellcheck disable=SC2016  # the shell in the root expands it
  as_user sh -ec 'gcc -Wall -Werror -o eight installed.c $(pkg-config --cflags --libs qncorvane)
    gcc -Wall -Werror -o safe installed_host.c $(pkg-config --cflags --libs qncorvane-host)'
  as_user sh -ec 'mkdir -p bare && cd bare && ../eight'
  expect_line "$(as_user ./safe shop shop/sale.xml)" "to pay 1049 cents"
}

remove() {
  say "removing them"
  # That their names lead to all their files is what makes the search below a whole one.
  local file folders=()
  while read -r file; do
    if [[ -d $root$file && ! -L $root$file ]]; then
      folders+=("$file")
    elif [[ ${file,,} != *qncorvane* ]]; then
      fail "$file can't be told from another package's by its name"
    fi
  done < <(in_root dpkg -L "${names[@]}" | grep '^/[^.]' | sort -u)
  told "apt-get purge ${names[*]}"
  in_root apt-get purge -y -q "${names[@]}" </dev/null >"$work/apt.log" 2>&1 || fail "apt can't remove: $(cat "$work/apt.log")"
  local left
  left=$(in_root find / -xdev \( -path /packages -o -path /home/till \) -prune -o -iname '*qncorvane*' -print)
  [[ -z $left ]] || fail "they left behind: $left"
  # shellcheck disable=SC2016  # the fields are dpkg's
  left=$(in_root dpkg-query -W -f='${Package} ${Status}\n' | grep qncorvane) && fail "dpkg still knows: $left"
  left=$(in_root ldconfig -p | grep -i qncorvane) && fail "the loader still knows: $left"
  for file in "${folders[@]}"; do
    [[ ! -e $root$file ]] || in_root dpkg -S "$file" >/dev/null 2>&1 || fail "they left the folder $file behind"
  done
}

release
for name in "${names[@]}"; do
  compgen -G "$packages/${name}_*.deb" >/dev/null || fail "$packages holds no package $name"
done
version=$(dpkg-deb -f "$packages"/libqncorvane1_*.deb Version)
version=${version%-*}
make_root
say "installing the packages"
told "apt-get install ./*.deb"
# shellcheck disable=SC2046  # names of files without blanks
install_in_root $(cd "$root" && printf '/%s ' packages/*.deb)
use_program
use_program_without_driver
use_python
use_c
remove
say "the packages install, work and go"
