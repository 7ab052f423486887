"""Makes seeds/huffman_decode_fuzz from the files in seeds/vekpix_decode_fuzz: the first DC table, the first AC table,
an empty bit buffer, the entropy-coded segments of the first scan. Not a part of any build."""
import pathlib

FOLDER = pathlib.Path(__file__).parent / "seeds"


def seed(jpeg):
    tables = {}
    at = 2
    while True:
        marker, length = jpeg[at + 1], int.from_bytes(jpeg[at + 2:at + 4], "big")
        segment = jpeg[at + 4:at + 2 + length]
        at += 2 + length
        while marker == 0xC4 and segment:
            end = 17 + sum(segment[1:17])
            tables.setdefault(segment[0] >> 4, segment[1:end])
            segment = segment[end:]
        if marker == 0xDA:
            return tables[0] + tables[1] + bytes(9) + jpeg[at:at + 2000]


(FOLDER / "huffman_decode_fuzz").mkdir(exist_ok=True)
for path in sorted((FOLDER / "vekpix_decode_fuzz").glob("*.jpg")):
    (FOLDER / "huffman_decode_fuzz" / path.stem).write_bytes(seed(path.read_bytes()))
