"""tile_ppm.py IN.ppm N OUT.ppm: puts a picture N times beside and N times below itself.
tile_ppm.py --pixels IN.ppm: prints how many pixels it has."""
import sys


def read(path):
    with open(path, "rb") as file:
        magic, width, height, largest = (file.readline().split() + file.readline().split() + file.readline().split())
        if magic != b"P6" or largest != b"255":
            sys.exit(f"{path} is no 8-bit PPM file")
        return int(width), int(height), file.read()


if sys.argv[1] == "--pixels":
    width, height, _ = read(sys.argv[2])
    print(width * height)
else:
    width, height, pixels = read(sys.argv[1])
    count = int(sys.argv[2])
    rows = [pixels[y * width * 3:(y + 1) * width * 3] * count for y in range(height)]
    with open(sys.argv[3], "wb") as file:
        file.write(b"P6\n%d %d\n255\n" % (width * count, height * count))
        for _ in range(count):
            file.write(b"".join(rows))
