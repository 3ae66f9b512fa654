# shellcheck shell=bash disable=SC2034
# The Debian packages that Orvo is built, run and tested with: the only list of them.
# Sourced, not run.

# To build the program, its tests and its benchmarks. Qt's X11 and offscreen platforms come with
# the libraries that qt6-base-dev needs. lrelease, in qt6-l10n-tools, compiles the translations;
# qt6-translations-l10n has the texts of Qt's own dialogs. libsm-dev and libice-dev are for the
# session manager of the tests, libxcb-res0-dev is for the tests that count what they left on a screen.
build_packages=(
  g++ cmake ninja-build pkg-config
  qt6-base-dev qt6-l10n-tools qt6-translations-l10n libglib2.0-dev libcubeb-dev
  libavformat-dev libavcodec-dev libswresample-dev libavutil-dev
  libgtest-dev libgmock-dev libbenchmark-dev libsm-dev libice-dev libxcb-res0-dev
)

# To run the real program where there is no screen and no sound server, and to listen to it; to make
# audio files and to decode ours a second time.
# at-spi2-core is the service that screen readers use; gdbus, in libglib2.0-bin, asks it.
# desktop-file-utils and what follows check an installation.
# fonts-liberation has the metrics of the font that the displays ask for; fonts-dejavu-core is for the
# test of what they do without it.
test_packages=(
  pulseaudio-utils
  xvfb openbox xdotool wmctrl imagemagick x11-utils
  at-spi2-core dbus-daemon libglib2.0-bin
  fonts-liberation fonts-dejavu-core fontconfig procps util-linux git
  ffmpeg sox
  desktop-file-utils shared-mime-info appstream libxml2-utils mandoc binutils
)

# The other kind of sound server, for scripts/test --pipewire.
pipewire_packages=(pipewire pipewire-pulse wireplumber)

# Installed only if neither kind is installed: two sound servers on one machine conflict.
sound_server_package=pulseaudio

# Debian 13 has no clang 14; a later clang may warn about more.
llvm=14
if grep -qs '^VERSION_CODENAME=trixie$' /etc/os-release; then
  llvm=19
fi
clang_packages=("clang-$llvm" "libclang-rt-$llvm-dev")  # with the sanitizers
coverage_packages=("llvm-$llvm")  # for scripts/test --coverage
files_lint_packages=(shellcheck reuse yamllint git dpkg-dev lintian)
lint_packages=("clang-$llvm" "clang-format-$llvm" "clang-tidy-$llvm" git)
