# Sourced by the other scripts: installs Debian packages that are not there yet.

packages_build=(build-essential cmake ninja-build ccache pkg-config libboost-dev libcli11-dev libpng-dev)
packages_test=(clang clang-format dcmtk doxygen git grokj2k-tools imagemagick libbenchmark-dev libclang-rt-dev
  libgtest-dev libjpeg-dev libjpeg-turbo-progs libomp-dev libopenjp2-7-dev libopenjp2-tools libsquish-dev libtiff-dev
  libtiff-tools llvm python3 python3-pil zlib1g-dev)
packages_bench=(grokj2k-tools libbenchmark-dev libjpeg-dev libopenjp2-7-dev libopenjp2-tools libsquish-dev libtiff-dev
  libturbojpeg0-dev python3 python3-matplotlib)
packages_demo=(libjpeg-turbo-progs libopenjp2-tools python3)

as_root() {
  if [[ $EUID -eq 0 ]]; then
    "$@"
  else
    sudo "$@"
  fi
}

# install_packages NAME...
install_packages() {
  local missing=() name
  for name in "$@"; do
    [[ $(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null) == installed ]] || missing+=("$name")
  done
  [[ ${#missing[@]} -eq 0 ]] && return
  echo "Installing ${missing[*]}"
  as_root apt-get -qq update
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0 install --no-install-recommends -y \
    "${missing[@]}" >/dev/null
}
