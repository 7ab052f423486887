"""Decodes DDS files by Python's imaging library: each FILE to FILE.raw, a line of mode and size, then bytes."""
import sys

from PIL import Image

for name in sys.argv[1:]:
    image = Image.open(name)
    with open(name + ".raw", "wb") as raw:
        raw.write(f"{image.mode} {image.width} {image.height}\n".encode())
        raw.write(image.tobytes())
