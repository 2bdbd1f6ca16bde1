# shellcheck shell=bash
# ./dev package: the Debian packages. Sourced by ./dev.

package_folder=out/packages

# Builds the four packages and lets lintian look at them.
package() {
  need "${packages_build[@]:?}" "${packages_package[@]:?}"
  # The time of the commit stands for that of the build, so that a commit gives the same packages whenever it is built.
  if [[ -z ${SOURCE_DATE_EPOCH-} ]] && git rev-parse --verify --quiet HEAD >/dev/null 2>&1; then
    SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
    export SOURCE_DATE_EPOCH
  fi
  build package
  say "packing"
  rm -rf build/package/packages "$package_folder"
  cpack --preset package
  mkdir -p "$package_folder"
  mv build/package/packages/*.deb "$package_folder/"
  say "lintian"
  # It warns of being root. A machine that builds packages in a container is nothing else.
  lintian --allow-root --fail-on error "$package_folder"/*.deb
  say "packages"
  (cd "$package_folder" && sha256sum ./*.deb)
}

# Installs the packages in a bare Debian of their own, uses them there, and removes them.
test_package() {
  ((EUID == 0)) || refuse "test --package makes a root of its own and works in it by chroot; only root can do that"
  package
  need "${packages_bare_root[@]:?}"
  tests/package/run.sh "$package_folder" build/package-root
}
