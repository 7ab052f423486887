"""Makes seeds/huffman_decode_fuzz and seeds/huffman_encode_fuzz from the files in seeds/vekpix_decode_fuzz. Each begins
with the first DC table and the first AC table; then come an empty bit buffer and the entropy-coded segments of the
first scan; or the encoder's room, position, state and blocks. Not a part of any build."""
import pathlib
import random

FOLDER = pathlib.Path(__file__).parent / "seeds"
ENCODER = bytes([3, 0, 0, 0, 5, 0xA8, 0, 0, 0])  # room of 769, from its begin on, five pending bits


def blocks(count):
    """masks that thin out along the zig-zag, and small coefficients"""
    source = random.Random(count)
    for _ in range(count):
        mask = sum(1 << k for k in range(64) if source.random() < 0.9 ** k)
        yield mask.to_bytes(8, "big")
        yield bytes(source.choice((1, 2, 3, 40, 100, 200, 253, 254, 255)) for _ in range(mask.bit_count()))


def seeds(jpeg):
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
            both = tables[0] + tables[1]
            return both + bytes(9) + jpeg[at:at + 2000], both + ENCODER + b"".join(blocks(at % 7 + 2))


for folder in ("huffman_decode_fuzz", "huffman_encode_fuzz"):
    (FOLDER / folder).mkdir(exist_ok=True)
for path in sorted((FOLDER / "vekpix_decode_fuzz").glob("*.jpg")):
    if path.stem.startswith("progressive"):
        continue
    for folder, seed in zip(("huffman_decode_fuzz", "huffman_encode_fuzz"), seeds(path.read_bytes())):
        (FOLDER / folder / path.stem).write_bytes(seed)

every_symbol = bytes([0] * 8 + [255, 1] + [0] * 6) + bytes(range(256))
(FOLDER / "huffman_encode_fuzz" / "every_symbol").write_bytes(2 * every_symbol + ENCODER + b"".join(blocks(12)))
