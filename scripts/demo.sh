#!/usr/bin/env bash
# Codes two photographs and a large picture with vekpix, decodes the files with it and with the packaged codecs, and
# prints what came of it. Installs what it needs on Debian 12. The files are left in build/demo to look at.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
install_packages "${packages_build[@]}" "${packages_demo[@]}"

demo=build/demo
mkdir -p "$demo"
cmake -S . -B build/app -G Ninja -DCMAKE_C_COMPILER=gcc -DCMAKE_CXX_COMPILER=g++ -DVEK_BUILD_TESTS=OFF \
  -DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache >build/app.log ||
  { cat build/app.log; exit 1; }
ninja -C build/app --quiet vekpix
vekpix=build/app/apps/vekpix/vekpix

# The photographs are those of a Debian package, which is unpacked here and not installed.
photographs=$demo/photographs
if [[ ! -f $photographs/astronaut.png || ! -f $photographs/chelsea.png ]]; then
  rm -rf "$demo/package"
  mkdir -p "$demo/package" "$photographs"
  download() { (cd "$demo/package" && apt-get -qq -o APT::Sandbox::User=root download python3-imageio); }
  if ! download 2>/dev/null; then
    as_root apt-get -qq update
    download
  fi
  dpkg-deb -x "$demo"/package/python3-imageio_*.deb "$demo/package"
  find "$demo/package" \( -name astronaut.png -o -name chelsea.png \) -exec cp {} "$photographs/" \;
fi

# A picture of 26 megapixels: the first photograph, many times over.
large=$demo/large.ppm
if [[ ! -f $large ]]; then
  "$vekpix" encode --quality 98 --sampling 444 "$photographs/astronaut.png" "$demo/large_tile.jpg"
  "$vekpix" decode "$demo/large_tile.jpg" "$demo/large_tile.ppm"
  python3 scripts/tile_ppm.py "$demo/large_tile.ppm" 10 "$large"
  rm "$demo"/large_tile.*
fi

# best_ms COMMAND...: runs it three times; sets `ms` to the shortest time.
best_ms() {
  local i began ended
  ms=
  for i in 1 2 3; do
    began=$(date +%s%N)
    "$@"
    ended=$(date +%s%N)
    if [[ -z $ms ]] || (((ended - began) / 1000000 < ms)); then
      ms=$(((ended - began) / 1000000))
    fi
  done
}
psnr() { "$vekpix" compare "$1" "$2" | awk '/PSNR/ {value = $3} END {print value}'; }
rate() { awk -v pixels="$1" -v ms="$2" 'BEGIN {printf "%.1f", pixels / 1000 / (ms > 0 ? ms : 1)}'; }
pixels_of() { python3 scripts/tile_ppm.py --pixels "$1"; }

printf '%-32s %10s | %8s %8s | %10s %10s\n' '' '' 'PSNR, dB' '' 'megapixels per second' ''
printf '%-32s %10s | %8s %8s | %10s %10s\n' 'file' 'bytes' 'vekpix' 'peer' 'encode' 'decode'
# row PICTURE FILE OPTION...
row() {
  local picture=$1 file=$demo/$2 name=${2%.*} encode_ms decode_ms pixels
  shift 2
  best_ms "$vekpix" encode "$picture" "$file" "$@"
  encode_ms=$ms
  best_ms "$vekpix" decode "$file" "$demo/$name.vekpix.ppm"
  decode_ms=$ms
  case $file in
    *.jpg) djpeg -ppm -outfile "$demo/$name.peer.ppm" "$file" ;;
    *.jp2) opj_decompress -i "$file" -o "$demo/$name.peer.ppm" &>/dev/null ;;
  esac
  pixels=$(pixels_of "$demo/$name.vekpix.ppm")
  printf '%-32s %10d | %8s %8s | %10s %10s\n' "${file##*/}" "$(stat -c %s "$file")" \
    "$(psnr "$picture" "$demo/$name.vekpix.ppm")" "$(psnr "$picture" "$demo/$name.peer.ppm")" \
    "$(rate "$pixels" "$encode_ms")" "$(rate "$pixels" "$decode_ms")"
}
for photograph in astronaut chelsea; do
  for quality in 50 75 95; do
    for sampling in 444 422 420; do
      row "$photographs/$photograph.png" "${photograph}_q${quality}_$sampling.jpg" \
        --quality "$quality" --sampling "$sampling"
    done
  done
  row "$photographs/$photograph.png" "${photograph}_q75_420_optimized.jpg" --quality 75 --sampling 420 --optimize
  for rate in 0.5 1 2; do row "$photographs/$photograph.png" "${photograph}_$rate.jp2" --rate "$rate"; done
  row "$photographs/$photograph.png" "${photograph}_lossless.jp2"
done
row "$large" large_q75_420_restart.jpg --quality 75 --sampling 420 --restart 256
row "$large" large_q75_420.jpg --quality 75 --sampling 420
row "$large" large_2.jp2 --rate 2
rm "$demo"/large_*.ppm
echo
echo "The peers are djpeg, which smooths the chroma that it enlarges (422, 420) as vekpix does, and opj_decompress;"
echo "a rate stands in the names of JP2 files, in bits per pixel. The photographs are read from PNG files,"
echo "the large picture from a PPM file; a time is that of the whole program, on $(nproc) processors."
echo "Files to look at: $demo"
