"""Makes seeds/code_block_decode_fuzz: shapes, sub-bands and styles with segments of random bytes, some of which are
stuffed or look like markers, and some of which are empty. Not a part of any build."""
import pathlib
import random

FOLDER = pathlib.Path(__file__).parent / "seeds" / "code_block_decode_fuzz"

BYPASS, TERMINATE, SEGMENTATION, PREDICTABLE = 0x02, 0x04, 0x10, 0x10
STYLES = [
    (0, 0),
    (0x01, 0),
    (BYPASS, 0x01),
    (TERMINATE | 0x08, 0x04),
    (BYPASS | TERMINATE, PREDICTABLE),
    (SEGMENTATION, 0x01),
    (SEGMENTATION | 0x01 | BYPASS, PREDICTABLE | 0x04),
    (0x1F, 0x1F),
]
SHAPES = [(7, 7), (0, 39), (39, 2), (15, 17)]


def stream(rng, length):
    result = bytearray(rng.randrange(255) for _ in range(length))
    for i in range(0, length - 1, 9):
        result[i:i + 2] = rng.choice([b"\xff\x00", b"\xff\x7f", b"\xff\x8f", b"\xff\x90", b"\x55\x2a"])
    return bytes(result)


FOLDER.mkdir(parents=True, exist_ok=True)
rng = random.Random(1)
for i, style in enumerate(STYLES):
    width, height = SHAPES[i % len(SHAPES)]
    segments = 1 + 3 * i
    lengths = bytes(rng.choice([0, 1, 5, 20, 60]) for _ in range(segments))
    head = bytes([width, height, i % 5, 5 + 3 * i, 12 + 10 * i, *style, segments])
    (FOLDER / f"block_{i}").write_bytes(head + lengths + stream(rng, sum(lengths) + 30))
