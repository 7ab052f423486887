"""Makes seeds/jpeg2000_decode_fuzz: small pictures of many styles, written by opj_compress. Not a part of any build."""
import pathlib
import subprocess
import tempfile

FOLDER = pathlib.Path(__file__).parent / "seeds" / "jpeg2000_decode_fuzz"
STYLES = {
    "grey.j2k": (1, 8, "-n 3"),
    "colours.jp2": (3, 8, "-n 3"),
    "deep.j2k": (1, 16, "-n 2"),
    "bypass.j2k": (1, 8, "-n 2 -M 1"),
    "all_terminated.j2k": (1, 8, "-n 2 -M 5 -b 8,8"),
    "all_styles.j2k": (1, 8, "-n 2 -M 63 -b 16,4"),
    "layers.j2k": (3, 8, "-n 3 -r 20,8,2 -p RLCP -SOP -EPH"),
    "precincts.j2k": (3, 8, "-n 3 -c [16,16],[8,8] -p PCRL -PLT -TLM"),
    "tiles.j2k": (3, 8, "-n 2 -t 13,11 -d 5,3 -T 1,2 -p RPCL"),
    "parts.j2k": (3, 8, "-n 3 -TP R -p CPRL"),
    "changes.j2k": (3, 8, "-n 3 -POC T1=0,0,1,2,3,RLCP/T1=2,0,1,3,3,CPRL"),
    "interest.j2k": (3, 8, "-n 2 -ROI c=1,U=7 -mct 0"),
    "lossy.j2k": (3, 8, "-n 3 -I -r 9"),
    "lossy_deep.jp2": (3, 12, "-n 3 -I -r 12,5 -M 4"),
    "subsampled.j2k": (0, 8, "-n 2 -mct 0"),
}
WIDTH, HEIGHT = 27, 21


def pixels(channels, bits):
    for y in range(HEIGHT):
        for x in range(WIDTH):
            for c in range(channels):
                value = (x * (5 + c) + y * y * (3 - c) + 40 * (x // 9 % 2)) * ((1 << bits) - 1) // 900
                yield min(value, (1 << bits) - 1).to_bytes(1 if bits == 8 else 2, "big")


FOLDER.mkdir(parents=True, exist_ok=True)
for name, (channels, bits, options) in STYLES.items():
    with tempfile.TemporaryDirectory() as scratch:
        if channels == 0:  # planes of their own sizes
            source = pathlib.Path(scratch) / "a.raw"
            source.write_bytes(bytes(range(100)) * 10)
            options += f" -F {WIDTH},{HEIGHT},3,8,u@1x1:2x2:2x1"
        else:
            source = pathlib.Path(scratch) / ("a.pgm" if channels == 1 else "a.ppm")
            head = f"P{5 if channels == 1 else 6}\n{WIDTH} {HEIGHT}\n{(1 << bits) - 1}\n"
            source.write_bytes(head.encode() + b"".join(pixels(channels, bits)))
        subprocess.run(["opj_compress", "-i", source, "-o", FOLDER / name, *options.split()], check=True,
                       stdout=subprocess.DEVNULL)
