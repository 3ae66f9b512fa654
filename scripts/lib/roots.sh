# shellcheck shell=bash disable=SC2034
# Clean roots of Debian's releases, in which packages are built and tried. Sourced, not run.

roots_packages=(mmdebstrap)

# suite_sources SUITE: the machine's own package sources, for another release of Debian.
suite_sources() {
  apt-get indextargets --format '$(ORIGIN) $(REPO_URI) $(CODENAME) $(COMPONENT)' \
    'Created-By: Packages' | awk -v suite="$1" '
    $1 == "Debian" {
      sub(/^[a-z]+/, suite, $3)
      print "deb", $2, $3, $4
    }' | sort -u
}

# make_root SUITE FOLDER PACKAGE…: a fresh root with these packages.
make_root() {
  local suite=$1 root=$2 sources
  shift 2
  sources=$(suite_sources "$suite")
  [ -n "$sources" ] || die "this machine has no package sources of Debian"
  local IFS=,
  mmdebstrap --quiet --variant=apt --aptopt='APT::Install-Recommends "false"' \
    --include="$*" "$suite" "$root" - <<<"$sources"
}

# in_root ROOT COMMAND: runs a command there, by bash. Its mounts and processes end with it.
in_root() {
  local root=$1
  shift
  cp /etc/resolv.conf "$root/etc/resolv.conf"
  # shellcheck disable=SC2016
  unshare --mount --pid --fork --kill-child --propagation private bash -c '
    root=$1
    mount -t proc proc "$root/proc"
    mount --rbind /dev "$root/dev"
    mount -t tmpfs tmpfs "$root/dev/shm"
    exec chroot "$root" env -i HOME=/root LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
      PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
      bash -c "$2"' bash "$root" "set -euo pipefail; $*"
}
