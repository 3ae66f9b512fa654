# shellcheck shell=bash
# Builds Debian's package in a clean root, installs it in another one, uses it and removes it.
# Sourced, not run.

# shellcheck source=scripts/lib/roots.sh
source scripts/lib/roots.sh
# shellcheck source=scripts/lib/source-archive.sh
source scripts/lib/source-archive.sh

package_tools=(build-essential debhelper devscripts dpkg-dev fakeroot lintian)

# The packages that a field of the packaging names, without versions and alternatives.
packages_of() { # FIELD FILE
  sed -n "/^$1:/,/^[^ ]/{/^$1:/{s/^$1://;p;d};/^ /p}" "$2" | tr ',' '\n' |
    sed -E 's/[(|].*//; s/[@ ]//g; /^(|debhelper-compat)$/d'
}

# What is on the disk but the system's own notes of what it did.
files_of() { # ROOT FILE
  (cd "$1" && find . -xdev \
    \( -path ./proc -o -path ./sys -o -path ./dev -o -path ./tmp -o -path ./run -o -path ./build \
    -o -path ./root -o -path ./home -o -path ./var/cache -o -path ./var/log -o -path ./var/lib/apt \
    -o -path './var/lib/dpkg/*-old' -o -path './etc/sub[gu]id-' \) -prune -o -print | sort) >"$2"
}

# build_package ROOT FOLDER [PRELUDE]: from the archive in FOLDER of the root, as a distributor would;
# PRELUDE is run before.
build_package() {
  in_root "$1" "
    ${3:-}
    cd $2
    version=\$(basename orvo_*.orig.tar.xz .orig.tar.xz)
    version=\${version#orvo_}
    tar -xf orvo_\$version.orig.tar.xz
    cd orvo-\$version
    cp -r packaging/debian debian
    dpkg-buildpackage -us -uc >../build.log 2>&1 || { tail -n 60 ../build.log; exit 1; }"
}

# Newer ones of lintian ask appstreamcli and make one tag of whatever it says; there is no homepage to
# name in the metainfo before there is a public address. An override would be an error in older ones.
# The tests of the installation know each thing that may be said.
check_package() { # ROOT
  say "  lintian"
  in_root "$1" "
    cd /build/first
    suppressed=()
    ! lintian-explain-tags appstream-metadata-validation-failed >/dev/null 2>&1 ||
      suppressed=(--suppress-tags appstream-metadata-validation-failed)
    lintian --allow-root --pedantic --fail-on error,warning,pedantic --tag-display-limit 0 \
      \"\${suppressed[@]}\" *.changes"
  # Modules may have nothing to fortify: they call no function of which there is a checked form.
  in_root "$1" '
    cd /build/first
    options=(--nocfprotection)
    # Newer ones look for what only other processors have.
    ! grep -q nobranchprotection "$(command -v hardening-check)" || options+=(--nobranchprotection)
    mkdir elves
    dpkg-deb --extract orvo_*.deb elves
    mapfile -t files < <(find elves/usr/bin elves/usr/lib -type f -exec sh -c "head -c 4 \"\$1\" | grep -q ELF" sh {} \; -print)
    [ "${#files[@]}" -ge 3 ] || { echo "found only ${files[*]}"; exit 1; }
    for file in "${files[@]}"; do
      case "$file" in *.so) fortify=--nofortify ;; *) fortify= ;; esac
      hardening-check "${options[@]}" $fortify "$file" >hardening.log || { cat hardening.log; exit 1; }
    done
    rm -r elves
    ls orvo-dbgsym_*.deb >/dev/null'
}

# The same bytes in another folder, at another time, with another user's settings.
check_again() { # ROOT
  say "  built again elsewhere"
  mkdir -p "$1/build/elsewhere/deeper"
  cp "$1"/build/first/*.orig.tar.xz "$1/build/elsewhere/deeper"
  build_package "$1" /build/elsewhere/deeper \
    'export TZ=Pacific/Kiritimati LC_ALL=C USER=somebody HOME=/nonexistent; umask 027'
  in_root "$1" '
    cd /build/first
    for package in *.deb; do
      cmp "$package" "/build/elsewhere/deeper/$package"
    done'
}

use_package() { # ROOT DEBS…
  local root=$1
  shift
  files_of "$root" "$root/build/before"
  in_root "$root" 'dpkg-query -W | sort >/build/packages-before'
  in_root "$root" 'apt-get update -qq; apt-get install -qq -y --no-install-recommends /build/orvo_*.deb >/build/install.log 2>&1 ||
    { cat /build/install.log; exit 1; }'
  in_root "$root" '
    dpkg-query -W | sort >/build/packages-after
    printf "  pulls in %s packages; " $(($(wc -l </build/packages-after) - $(wc -l </build/packages-before) - 1))
    printf "installed size %s KiB\n" "$(dpkg-query -W -f "\${Installed-Size}" orvo)"
    useradd --create-home listener
    home=$(getent passwd listener | cut -d : -f 6)
    chown listener /build/pictures
    runuser -u listener -- env HOME="$home" PICTURE=/build/pictures/recorded.png \
      bash /build/record'
  in_root "$root" '
    userdel listener
    apt-get purge -qq -y --autoremove orvo >/build/purge.log 2>&1 || { cat /build/purge.log; exit 1; }
    if dpkg-query -W -f "\${db:Status-Status}" orvo 2>/dev/null | grep -q .; then
      echo "orvo is not gone"
      exit 1
    fi'
  files_of "$root" "$root/build/after"
  diff "$root/build/before" "$root/build/after" >"$root/build/left" || {
    cat "$root/build/left"
    die "removing the package left or took files"
  }
}

# test_package SUITE FOLDER: everything, with roots in FOLDER.
test_package() {
  local suite=$1 folder=$2 version control=packaging/debian/control
  local -a needed
  version=$(project_version <CMakeLists.txt)
  mkdir -p "$folder"

  say "$suite: building the package"
  mapfile -t needed < <(packages_of Build-Depends "$control")
  make_root "$suite" "$folder/$suite-build" "${package_tools[@]}" "${needed[@]}"
  mkdir -p "$folder/$suite-build/build/first"
  source_archive HEAD "$version" "$folder/$suite-build/build/first/orvo_$version.orig.tar.xz"
  build_package "$folder/$suite-build" /build/first
  check_package "$folder/$suite-build"
  check_again "$folder/$suite-build"

  say "$suite: installing it"
  mapfile -t needed < <(packages_of Depends packaging/debian/tests/control)
  make_root "$suite" "$folder/$suite-use" "${needed[@]}"
  mkdir -p "$folder/$suite-use/build/pictures"
  cp "$folder/$suite-build"/build/first/orvo_*.deb packaging/debian/tests/record \
    "$folder/$suite-use/build"
  use_package "$folder/$suite-use"
  say "$suite: passed"
}
