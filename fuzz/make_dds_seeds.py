"""Makes seeds/dds_decode_fuzz: a small file of each format, with mipmaps, faces and layers. Not a part of any build."""
import pathlib
import random
import struct

FOLDER = pathlib.Path(__file__).parent / "seeds" / "dds_decode_fuzz"


def texture(name, code, block, width, height, levels=1, caps2=0, dxgi=None, cube=False, layers=1, mark=b""):
    header = struct.pack("<4s7I", b"DDS ", 124, 0x1007, height, width, 0, 0, levels)
    header += (bytes(12) + mark).ljust(44, b"\0")
    header += struct.pack("<2I4s5I", 32, 4, code, 0, 0, 0, 0, 0)
    header += struct.pack("<5I", 0x1000, caps2, 0, 0, 0)
    if dxgi is not None:
        header += struct.pack("<5I", dxgi, 3, 4 if cube else 0, layers, 0)
    blocks = 0
    for level in range(levels):
        wide, high = max(1, width >> level), max(1, height >> level)
        blocks += (wide + 3) // 4 * ((high + 3) // 4)
    chains = layers * (6 if cube else max(1, bin(caps2 >> 10).count("1")))
    bits = random.Random(name)
    (FOLDER / name).write_bytes(header + bits.randbytes(blocks * chains * block))


FOLDER.mkdir(parents=True, exist_ok=True)
texture("bc1", b"DXT1", 8, 9, 7, levels=4)
texture("bc2", b"DXT3", 16, 5, 5)
texture("bc3", b"DXT5", 16, 6, 3, levels=2)
texture("bc4", b"ATI1", 8, 4, 13)
texture("bc5", b"BC5U", 16, 8, 4)
texture("ycocg", b"DXT5", 16, 8, 8, mark=b"YCG2")
texture("cube_part", b"BC4U", 8, 8, 8, levels=2, caps2=0x2600)
texture("bc6h", b"DX10", 16, 9, 6, dxgi=95)
texture("bc6h_signed", b"DX10", 16, 5, 9, levels=3, dxgi=96)
texture("bc7", b"DX10", 16, 12, 12, dxgi=98)
texture("bc7_cubes", b"DX10", 16, 4, 4, levels=3, dxgi=99, cube=True, layers=2)
texture("bc1_array", b"DX10", 8, 16, 4, dxgi=71, layers=3)
