"""Makes seeds/progressive_decode_fuzz from the progressive files in seeds/vekpix_decode_fuzz: of each scan its kind,
its band, the first table that it uses, an empty state, four blocks, the entropy-coded segments. Not a part of any
build."""
import pathlib

FOLDER = pathlib.Path(__file__).parent / "seeds"
LONGEST = 400
# For a first scan nothing is known; before a refinement a few coefficients of every fourth block are.
EMPTY = bytes(8)
SOME = bytes.fromhex("0000000000010302") + b"\x00\x04\xff\xfc\x00\x10\x00\x08"


def scans(jpeg):
    tables = {}
    at = 2
    while at < len(jpeg):
        marker, length = jpeg[at + 1], int.from_bytes(jpeg[at + 2:at + 4], "big")
        if marker == 0xD9:
            return
        segment = jpeg[at + 4:at + 2 + length]
        at += 2 + length
        while marker == 0xC4 and segment:
            end = 17 + sum(segment[1:17])
            tables[segment[0]] = segment[1:end]
            segment = segment[end:]
        if marker != 0xDA:
            continue
        begin = at
        while jpeg[at] != 0xFF or jpeg[at + 1] == 0 or 0xD0 <= jpeg[at + 1] <= 0xD7:
            at += 1
        first, last, bits = segment[-3:]
        refines = bits >> 4 != 0
        kind = (2 if first > 0 else 0) + refines
        selector = 0x10 | segment[2] & 15 if first > 0 else segment[2] >> 4
        table = bytes(16) if kind == 1 else tables[selector]
        band = bytes([first - 1, last - first]) if first > 0 else bytes(2)
        blocks = SOME + 3 * EMPTY if refines else 4 * EMPTY
        state = bytes(9) + b"\x01"
        yield bytes([kind]) + band + bytes([bits & 15]) + table + state + blocks + jpeg[begin:min(at, begin + LONGEST)]


(FOLDER / "progressive_decode_fuzz").mkdir(exist_ok=True)
for path in sorted((FOLDER / "vekpix_decode_fuzz").glob("progressive*.jpg")):
    for number, seed in enumerate(scans(path.read_bytes())):
        (FOLDER / "progressive_decode_fuzz" / f"{path.stem}_{number}").write_bytes(seed)
