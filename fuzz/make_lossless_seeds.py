"""Makes seeds/lossless_rows_fuzz: shapes with a standard code, a steep one and one that lacks categories, an empty bit
buffer, then bytes that serve as values and as a stream, with stuffing and markers. Not a part of any build."""
import pathlib
import random

FOLDER = pathlib.Path(__file__).parent / "seeds" / "lossless_rows_fuzz"

STANDARD = bytes([0, 1, 5] + [1] * 11 + [0, 0]) + bytes(range(17))
STEEP = bytes([1] * 16) + bytes(reversed(range(16)))
LACKING = bytes([0, 2, 1, 1, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0]) + bytes([0, 3, 1, 16, 40, 5])


def stream(rng, length, ones):
    result = bytearray(rng.randrange(255) for _ in range(length))
    for i in range(0, length - 1, ones):
        result[i:i + 2] = rng.choice([b"\xff\x00", b"\xff\x00", b"\xff\xff", b"\xff\xd9"])
    return bytes(result)


FOLDER.mkdir(parents=True, exist_ok=True)
rng = random.Random(1)
for i, (first, second) in enumerate((a, b) for a in (STANDARD, STEEP, LACKING) for b in (STANDARD, STEEP, LACKING)):
    shape = bytes([i % 6, 7 * i + 3, i % 4, 50 + 20 * i])
    seed = shape + first + second + bytes(9) + stream(rng, 40 + 30 * i, 5 + 7 * i)
    (FOLDER / f"rows_{i}").write_bytes(seed)
