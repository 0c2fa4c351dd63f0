"""Image files written byte by byte: png, 8-bit bmp and pcx, 24-bit tga, and the 16-bit grey bmp of height maps."""

import struct
import zlib


class Picture:
    """A grid of palette indices (rows from the top), or of (r, g, b, a) tuples when there is no palette."""

    def __init__(self, width, height, palette=None, fill=0):
        self.width = width
        self.height = height
        self.palette = palette
        self.rows = [[fill] * width for _ in range(height)]

    def paint(self, function):
        """Sets every pixel to function(x, y)."""
        for y in range(self.height):
            for x in range(self.width):
                self.rows[y][x] = function(x, y)
        return self

    def box(self, x0, y0, x1, y1, value):
        """Fills the pixels from (x0, y0) up to, not including, (x1, y1)."""
        for y in range(max(y0, 0), min(y1, self.height)):
            for x in range(max(x0, 0), min(x1, self.width)):
                self.rows[y][x] = value
        return self


def png(picture):
    """A png with a palette, or with red, green, blue and alpha when the picture has none."""
    if picture.palette:
        colour_type = 3
        lines = [bytes(row) for row in picture.rows]
        head = _chunk(b"PLTE", b"".join(bytes(colour) for colour in picture.palette))
    else:
        colour_type = 6
        lines = [b"".join(bytes(pixel) for pixel in row) for row in picture.rows]
        head = b""
    header = struct.pack(">IIBBBBB", picture.width, picture.height, 8, colour_type, 0, 0, 0)
    data = zlib.compress(b"".join(b"\0" + line for line in lines), 9)
    return b"\x89PNG\r\n\x1a\n" + _chunk(b"IHDR", header) + head + _chunk(b"IDAT", data) + _chunk(b"IEND", b"")


def _chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def same_png(one, other):
    """Whether two png files hold the same pixels; compressors differ between machines."""
    return _unpacked(one) == _unpacked(other)


def _unpacked(data):
    chunks = []
    position = 8
    while position + 8 <= len(data):
        length, kind = struct.unpack(">I4s", data[position : position + 8])
        content = data[position + 8 : position + 8 + length]
        chunks.append((kind, zlib.decompress(content) if kind == b"IDAT" else content))
        position += 12 + length
    return chunks


def bmp(picture):
    """An 8-bit bmp: rows from the bottom, padded to four bytes."""
    palette = picture.palette + [(0, 0, 0)] * (256 - len(picture.palette))
    colours = b"".join(bytes((b, g, r, 0)) for r, g, b in palette)
    return _bmp(picture.width, picture.height, 8, colours, [bytes(row) for row in reversed(picture.rows)])


def grey16_bmp(heights):
    """The form in which the editor keeps height maps: a bmp of 16-bit samples that are heights, not colours."""
    rows = [struct.pack("<%dH" % len(row), *row) for row in reversed(heights)]
    return _bmp(len(heights[0]), len(heights), 16, b"", rows)


def _bmp(width, height, bits, colours, rows):
    data = b"".join(row + b"\0" * (-len(row) % 4) for row in rows)
    start = 54 + len(colours)
    info = struct.pack("<IiiHHIIiiII", 40, width, height, 1, bits, 0, len(data), 2835, 2835, len(colours) // 4, 0)
    return b"BM" + struct.pack("<IHHI", start + len(data), 0, 0, start) + info + colours + data


def pcx(picture):
    """An 8-bit pcx: runs per line, the palette after the byte 12 at the end."""
    line_bytes = picture.width + picture.width % 2
    size = (0, 0, picture.width - 1, picture.height - 1)
    header = struct.pack("<BBBB4H2H48xBBHH", 10, 5, 1, 8, *size, 72, 72, 0, 1, line_bytes, 1)
    palette = picture.palette + [(0, 0, 0)] * (256 - len(picture.palette))
    data = b"".join(_pcx_line(bytes(row) + b"\0" * (line_bytes - picture.width)) for row in picture.rows)
    return header.ljust(128, b"\0") + data + b"\x0c" + b"".join(bytes(colour) for colour in palette)


def _pcx_line(line):
    out = bytearray()
    position = 0
    while position < len(line):
        run = 1
        while run < 63 and line[position : position + run + 1] == line[position : position + 1] * (run + 1):
            run += 1
        if run > 1 or line[position] >= 0xC0:
            out.append(0xC0 | run)
        out.append(line[position])
        position += run
    return bytes(out)


def tga(picture):
    """A plain 24-bit tga with its rows from the top."""
    header = struct.pack("<BBB5xHHHHBB", 0, 0, 2, 0, 0, picture.width, picture.height, 24, 0x20)
    return header + b"".join(bytes(picture.palette[index][::-1]) for row in picture.rows for index in row)
