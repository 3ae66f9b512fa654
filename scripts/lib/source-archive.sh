# shellcheck shell=bash
# The source archive of a version. Sourced, not run.

# source_archive REVISION VERSION FILE: writes the files of a revision into orvo-VERSION/ of an
# archive. Its bytes depend on the revision alone: not on the clock, the place, or the user's mask.
source_archive() {
  local revision=$1 version=$2 file=$3
  git -c core.autocrlf=false -c tar.umask=0022 archive --format=tar --prefix="orvo-$version/" \
    "$revision" | TZ=UTC LC_ALL=C xz -6 --threads=1 --check=crc64 >"$file"
}

# project_version: the version in CMakeLists.txt on standard input.
project_version() { sed -nE 's/^project\(Orvo VERSION ([0-9.]+).*/\1/p'; }
