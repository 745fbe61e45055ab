#!/usr/bin/env python3
"""Writes the demo stack's description, pictures and sounds: demo.json, the card pictures (PNG), the
photo card's stored JPEG background (photo.bin, made with cjpeg and djpeg), the button icons under
icons/ and the sounds under sounds/ (WAV).

Every picture is drawn here from plain shapes and every sound made from sine waves, so the demo
carries no art from elsewhere. Run it
from any folder after changing the tour; `quillbrook build demo.json` then makes the stack, as the
desktop build does. The output is the same on every run.
"""

import json
import math
import os
import struct
import subprocess
import tempfile
import wave
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
W, H = 640, 480

# ---------------------------------------------------------------------------------------------
# Colours. Every card picture keeps the first sixteen colours of the program's default palette at
# indices 0 to 15 and black at 255, so a button's colour numbers (1-based) mean the same on every
# card: 1 white, 2 yellow, 3 orange, 4 red, 5 pink, 6 purple, 7 blue, 8 sky blue, 9 green,
# 10 dark green, 11 brown, 12 tan, 13 light grey, 14 grey, 15 dark grey, 256 black.
FIXED = [
    (0xFF, 0xFF, 0xFF), (0xFC, 0xF3, 0x05), (0xFF, 0x64, 0x02), (0xDD, 0x08, 0x06),
    (0xFF, 0x68, 0x73), (0x46, 0x00, 0xA5), (0x00, 0x00, 0xD4), (0x02, 0xAB, 0xEA),
    (0x1F, 0xB7, 0x14), (0x00, 0x64, 0x11), (0x56, 0x2C, 0x05), (0x90, 0x71, 0x3A),
    (0xC0, 0xC0, 0xC0), (0x80, 0x80, 0x80), (0x40, 0x40, 0x40), (0x01, 0x01, 0x01),
]
BLACK = (0, 0, 0)
WHITE_I, YELLOW, ORANGE, RED, PINK, PURPLE, BLUE, SKY, GREEN, DARK_GREEN, BROWN, TAN, \
    LIGHT_GREY, GREY, DARK_GREY = range(1, 16)
BLACK_I = 256


class Palette:
    """256 colours: the fixed sixteen, a picture's own colours from 16 on, black at 255."""

    def __init__(self):
        self.colours = list(FIXED)
        self.index = {c: i for i, c in enumerate(FIXED)}
        self.index[BLACK] = 255

    def add(self, canvas, transparent=False):
        for c in canvas.px:
            if c is None:
                if transparent:
                    continue
                raise SystemExit("a card picture has a pixel left unpainted")
            if c not in self.index:
                if len(self.colours) >= 255:
                    raise SystemExit("a picture has more colours than a palette holds")
                self.index[c] = len(self.colours)
                self.colours.append(c)
        return self

    def table(self):
        return self.colours + [BLACK] * (256 - len(self.colours))

    def indices(self, canvas):
        return bytes(self.index[c] for c in canvas.px)


def mix(a, b, t):
    return tuple(int(round(a[i] + (b[i] - a[i]) * t)) for i in range(3))


# ---------------------------------------------------------------------------------------------
# Drawing: flat shapes on a canvas of RGB tuples (None where a picture is transparent).
class Canvas:
    def __init__(self, w, h, fill=None):
        self.w, self.h = w, h
        self.px = [fill] * (w * h)

    def put(self, x, y, c):
        if 0 <= x < self.w and 0 <= y < self.h:
            self.px[y * self.w + x] = c

    def get(self, x, y):
        return self.px[y * self.w + x]

    def fill_where(self, inside, colour):
        for y in range(self.h):
            for x in range(self.w):
                if inside(x + 0.5, y + 0.5):
                    self.px[y * self.w + x] = colour

    def rect(self, x0, y0, x1, y1, c):
        for y in range(max(0, y0), min(self.h, y1)):
            for x in range(max(0, x0), min(self.w, x1)):
                self.px[y * self.w + x] = c

    def frame(self, x0, y0, x1, y1, c, width=1):
        self.rect(x0, y0, x1, y0 + width, c)
        self.rect(x0, y1 - width, x1, y1, c)
        self.rect(x0, y0, x0 + width, y1, c)
        self.rect(x1 - width, y0, x1, y1, c)

    def circle(self, cx, cy, r, c):
        for y in range(max(0, int(cy - r) - 1), min(self.h, int(cy + r) + 2)):
            for x in range(max(0, int(cx - r) - 1), min(self.w, int(cx + r) + 2)):
                if (x + 0.5 - cx) ** 2 + (y + 0.5 - cy) ** 2 <= r * r:
                    self.px[y * self.w + x] = c

    def ellipse(self, cx, cy, rx, ry, c):
        for y in range(max(0, int(cy - ry) - 1), min(self.h, int(cy + ry) + 2)):
            for x in range(max(0, int(cx - rx) - 1), min(self.w, int(cx + rx) + 2)):
                if ((x + 0.5 - cx) / rx) ** 2 + ((y + 0.5 - cy) / ry) ** 2 <= 1:
                    self.px[y * self.w + x] = c

    def polygon(self, points, c):
        ys = [p[1] for p in points]
        for y in range(max(0, int(min(ys))), min(self.h, int(max(ys)) + 1)):
            sy = y + 0.5
            xs = []
            for i in range(len(points)):
                (x0, y0), (x1, y1) = points[i], points[(i + 1) % len(points)]
                if (y0 <= sy < y1) or (y1 <= sy < y0):
                    xs.append(x0 + (sy - y0) * (x1 - x0) / (y1 - y0))
            xs.sort()
            for a, b in zip(xs[0::2], xs[1::2]):
                for x in range(max(0, int(math.ceil(a - 0.5))), min(self.w, int(math.ceil(b - 0.5)))):
                    self.px[y * self.w + x] = c

    def vgradient(self, y0, y1, top, bottom, steps):
        for y in range(max(0, y0), min(self.h, y1)):
            t = (y - y0) / max(1, y1 - y0 - 1)
            c = mix(top, bottom, round(t * (steps - 1)) / (steps - 1))
            self.rect(0, y, self.w, y + 1, c)

    def below(self, curve, c, x0=0, x1=None):
        """Fills every pixel under the curve y = curve(x)."""
        for x in range(x0, self.w if x1 is None else x1):
            top = int(round(curve(x + 0.5)))
            for y in range(max(0, top), self.h):
                self.px[y * self.w + x] = c

    def crop(self, x0, y0, x1, y1):
        out = Canvas(x1 - x0, y1 - y0)
        for y in range(y0, y1):
            out.px[(y - y0) * out.w:(y - y0 + 1) * out.w] = self.px[y * self.w + x0:y * self.w + x1]
        return out

    def paste(self, other, x0, y0):
        for y in range(other.h):
            for x in range(other.w):
                c = other.get(x, y)
                if c is not None:
                    self.put(x0 + x, y0 + y, c)


def star(cx, cy, outer, inner, points=5, turn=-math.pi / 2):
    return [(cx + (outer if i % 2 == 0 else inner) * math.cos(turn + i * math.pi / points),
             cy + (outer if i % 2 == 0 else inner) * math.sin(turn + i * math.pi / points))
            for i in range(points * 2)]


# ---------------------------------------------------------------------------------------------
# Files.
def png_chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def write_png(path, w, h, colour_type, rows, palette=None):
    raw = b"".join(b"\0" + row for row in rows)
    data = b"\x89PNG\r\n\x1a\n" + png_chunk(b"IHDR", struct.pack(">IIBBBBB", w, h, 8, colour_type, 0, 0, 0))
    if palette:
        data += png_chunk(b"PLTE", b"".join(bytes(c) for c in palette))
    data += png_chunk(b"IDAT", zlib.compress(raw, 9)) + png_chunk(b"IEND", b"")
    with open(path, "wb") as f:
        f.write(data)


def write_indexed(name, canvas, palette):
    pixels = palette.indices(canvas)
    rows = [pixels[y * canvas.w:(y + 1) * canvas.w] for y in range(canvas.h)]
    write_png(os.path.join(HERE, name), canvas.w, canvas.h, 3, rows, palette.table())


def write_rgba(name, canvas):
    rows = []
    for y in range(canvas.h):
        row = bytearray()
        for x in range(canvas.w):
            c = canvas.get(x, y)
            row += bytes(c) + b"\xff" if c is not None else b"\0\0\0\0"
        rows.append(bytes(row))
    write_png(os.path.join(HERE, name), canvas.w, canvas.h, 6, rows)


def stored_color_table(colours):
    """A ColorTable as a card stores it: seed, flags, count less one, then index and the three
    components, each in the high byte of its word."""
    out = struct.pack(">IHH", 0, 0, len(colours) - 1)
    for i, (r, g, b) in enumerate(colours):
        out += struct.pack(">HHHH", i, r << 8, g << 8, b << 8)
    return out


def image_description(w, h, depth):
    """The 86-byte description that stands before the JPEG stream of a format 3 picture."""
    name = b"\x0cPhoto - JPEG".ljust(32, b"\0")
    return (struct.pack(">I4s20sIHHII", 86, b"jpeg", b"", 0x200, w, h, 0x480000, 0x480000)
            + struct.pack(">I2s", w * 3 * h, b"") + name + struct.pack(">HH", 24, 0xFFFF))


# ---------------------------------------------------------------------------------------------
# The pictures.
def hills(c, base, layers):
    for i, (colour, amp, period, phase) in enumerate(layers):
        y = base + i * 40
        c.below(lambda x, y=y, amp=amp, period=period, phase=phase:
                 y - amp * math.cos(2 * math.pi * (x + phase) / period), colour)


def welcome_picture():
    c = Canvas(W, H)
    c.vgradient(0, 400, (20, 40, 110), (150, 185, 210), 60)
    c.circle(540, 110, 61, (245, 170, 60))
    c.circle(540, 110, 55, (252, 220, 72))
    hills(c, 360, [((42, 125, 64), 38, 520, 0), ((60, 150, 72), 30, 360, 120), ((86, 176, 84), 18, 120, 40)])
    c.rect(170, 196, 470, 420, BLACK)
    c.rect(171, 197, 469, 419, (246, 240, 228))
    return c


def seaside_picture():
    c = Canvas(W, H)
    c.vgradient(0, 300, (110, 170, 230), (210, 232, 246), 48)
    for cx, cy, r in [(90, 70, 26), (118, 60, 32), (150, 74, 24), (420, 110, 20), (446, 100, 27), (474, 112, 19)]:
        c.circle(cx, cy, r, (250, 252, 255))
    c.rect(0, 300, W, 420, (40, 110, 170))
    for i, y in enumerate(range(306, 400, 12)):
        for x in range((i * 37) % 90, W, 90):
            c.rect(x, y, x + 34, y + 2, (90, 160, 210))
    c.below(lambda x: 400 - 14 * math.sin(x / 70.0), (232, 206, 150))
    # A lighthouse on the sand, red and white.
    c.polygon([(548, 160), (580, 160), (592, 392), (536, 392)], (250, 250, 250))
    for y in (190, 250, 310):
        c.polygon([(548 - (y - 160) * 12 / 232, y), (580 + (y - 160) * 12 / 232, y),
                   (580 + (y + 28 - 160) * 12 / 232, y + 28), (548 - (y + 28 - 160) * 12 / 232, y + 28)],
                  FIXED[RED - 1])
    c.rect(542, 140, 586, 162, (60, 60, 70))
    c.rect(550, 144, 578, 158, (252, 230, 90))
    c.polygon([(538, 140), (590, 140), (564, 118)], (60, 60, 70))
    return c


def boat_on(background, x0, y0):
    """The sailing boat graphic: drawn over its own part of the card, so it fits in seamlessly."""
    g = background.crop(x0, y0, x0 + 160, y0 + 120)
    g.polygon([(14, 84), (146, 84), (126, 110), (34, 110)], (120, 62, 30))
    g.rect(18, 84, 142, 90, (250, 250, 250))
    g.rect(78, 8, 82, 84, (70, 50, 30))
    g.polygon([(84, 12), (84, 78), (140, 78)], (250, 250, 250))
    g.polygon([(76, 18), (76, 78), (26, 78)], FIXED[RED - 1])
    g.polygon([(82, 2), (82, 12), (98, 7)], FIXED[YELLOW - 1])
    return g


def photo_picture():
    """A sunset over the sea in full colour: smooth, as a photograph is, which suits JPEG."""
    rows = []
    sun_x, sun_y = 420.0, 250.0
    for y in range(H):
        row = bytearray()
        for x in range(W):
            if y < 280:
                t = y / 280.0
                r, g, b = 70 + 180 * t, 40 + 110 * t * t, 120 - 40 * t
                d = math.hypot(x - sun_x, y - sun_y)
                glow = max(0.0, 1 - d / 260.0) ** 2
                r, g, b = r + 120 * glow, g + 90 * glow, b + 20 * glow
                if d < 46:
                    r, g, b = 255, 236, 170
            else:
                t = (y - 280) / 200.0
                r, g, b = 40 + 60 * (1 - t), 40 + 50 * (1 - t), 90 + 30 * (1 - t)
                # The sun's path on the water: bright streaks that narrow towards the horizon.
                half = 30 + 90 * t
                streak = 0.5 + 0.5 * math.sin(y * 0.9 + math.sin(x * 0.05) * 2)
                if abs(x - sun_x) < half:
                    k = (1 - abs(x - sun_x) / half) * streak * (1 - 0.6 * t)
                    r, g, b = r + 200 * k, g + 140 * k, b + 40 * k
            # An island on the horizon, dark against the sky.
            island = 280 - 60 * math.exp(-((x - 150) / 70.0) ** 2) - 25 * math.exp(-((x - 230) / 40.0) ** 2)
            if island <= y < 281:
                r, g, b = 30, 22, 40
            row += bytes(max(0, min(255, int(v))) for v in (r, g, b))
        rows.append(bytes(row))
    return rows


def garden_picture():
    c = Canvas(W, H)
    c.vgradient(0, 200, (150, 200, 240), (220, 236, 250), 32)
    c.rect(0, 200, W, H, (96, 170, 80))
    for x in range(0, W, 8):  # mown stripes
        if (x // 40) % 2:
            c.rect(x, 200, x + 8, H, (104, 180, 86))
    # A fence along the back.
    c.rect(0, 176, W, 182, (236, 226, 200))
    c.rect(0, 194, W, 200, (236, 226, 200))
    for x in range(6, W, 26):
        c.polygon([(x, 214), (x, 166), (x + 7, 158), (x + 14, 166), (x + 14, 214)], (246, 238, 216))
    # The path to the pond, the pond, a rose bed, a tree.
    c.polygon([(290, 480), (350, 480), (330, 300), (310, 300)], (214, 196, 160))
    c.ellipse(470, 330, 120, 52, (66, 120, 200))
    c.ellipse(470, 330, 104, 42, (96, 150, 220))
    for x, y in [(430, 320), (520, 340)]:
        c.ellipse(x, y, 16, 7, (40, 140, 60))
    c.ellipse(130, 350, 110, 46, (120, 80, 50))
    for i in range(14):
        x, y = 50 + (i % 7) * 27, 336 + (i // 7) * 26
        c.circle(x, y, 9, (40, 120, 50))
        c.circle(x, y - 2, 6, [(220, 40, 70), (240, 120, 150), (250, 250, 250)][i % 3])
    c.rect(590, 110, 604, 230, (110, 70, 40))
    c.circle(597, 90, 46, (50, 120, 56))
    c.circle(570, 118, 30, (60, 134, 62))
    return c


def rose_graphic(garden):
    g = garden.crop(40, 250, 160, 330)
    g.rect(58, 30, 62, 80, (40, 110, 50))
    g.ellipse(48, 56, 12, 5, (50, 130, 60))
    g.circle(60, 26, 18, (200, 30, 60))
    g.circle(60, 26, 12, (230, 60, 90))
    g.circle(60, 26, 5, (160, 20, 50))
    return g


def arrival_picture():
    """Bold rays in the fixed colours, so every transition shows plainly."""
    c = Canvas(W, H)
    colours = [FIXED[i - 1] for i in (YELLOW, ORANGE, RED, PINK, PURPLE, BLUE, SKY, GREEN)]
    cx, cy = W / 2, H / 2
    for y in range(H):
        for x in range(W):
            a = math.atan2(y + 0.5 - cy, x + 0.5 - cx)
            c.px[y * W + x] = colours[int((a + math.pi) / (2 * math.pi) * 16) % len(colours)]
    c.circle(cx, cy, 150, (255, 255, 255))
    c.circle(cx, cy, 144, (250, 246, 236))
    return c


def mask_shape(kind):
    """The 96 x 96 masks of the picture buttons: which pixels hit."""
    def inside(x, y):
        u, v = x + 0.5 - 48, y + 0.5 - 48
        if kind == "circle":
            return u * u + v * v <= 48 * 48
        if kind == "diamond":
            return abs(u) + abs(v) <= 48
        return abs(u) <= 16 or abs(v) <= 16  # cross
    return inside


def picture_buttons_picture():
    c = Canvas(W, H)
    c.vgradient(0, H, (250, 244, 230), (226, 214, 190), 24)
    for (kind, x0, colour) in [("circle", 80, (230, 90, 60)), ("diamond", 272, (70, 140, 210)),
                               ("cross", 464, (80, 170, 90))]:
        inside = mask_shape(kind)
        for y in range(96):
            for x in range(96):
                if inside(x, y):
                    edge = not all(inside(x + dx, y + dy) for dx, dy in ((-2, 0), (2, 0), (0, -2), (0, 2)))
                    c.put(x0 + x, 200 + y, (40, 40, 40) if edge else colour)
    return c


def mask_hex(kind, left, top):
    """A type 130 sub-record: its 32-byte head (the builder writes type and length), then the
    mask's width, height and the corner it was made at, 16 zero bytes, and the rows of bits."""
    inside = mask_shape(kind)
    body = struct.pack(">HHHH", 96, 96, left, top) + bytes(16)
    for y in range(96):
        bits = 0
        for x in range(96):
            bits = bits << 1 | (1 if inside(x, y) else 0)
        body += bits.to_bytes(12, "big")
    return (bytes(32) + body).hex()


# Icons: small pictures with transparent surroundings.
def icon_star():
    c = Canvas(32, 32)
    c.polygon(star(16, 17, 15.5, 6.5), (120, 80, 0))
    c.polygon(star(16, 17, 12.5, 5), (252, 210, 40))
    c.polygon(star(14.5, 14.5, 4, 1.8), (255, 248, 200))
    return c


def icon_heart():
    c = Canvas(32, 32)
    for colour, grow in [((110, 0, 20), 1.5), ((220, 30, 50), 0)]:
        c.circle(10, 11, 7 + grow, colour)
        c.circle(22, 11, 7 + grow, colour)
        c.polygon([(3 - grow, 14), (29 + grow, 14), (16, 28 + grow)], colour)
    c.circle(9, 9, 2.5, (255, 170, 180))
    return c


def icon_house():
    c = Canvas(32, 32)
    c.polygon([(1, 16), (16, 2), (31, 16)], (150, 40, 30))
    c.polygon([(5, 15), (16, 5), (27, 15)], (200, 70, 50))
    c.rect(5, 15, 27, 30, (120, 90, 60))
    c.rect(6, 16, 26, 29, (236, 220, 180))
    c.rect(13, 20, 19, 29, (120, 70, 40))
    c.rect(8, 18, 12, 22, (120, 180, 230))
    c.rect(20, 18, 24, 22, (120, 180, 230))
    c.rect(22, 4, 26, 11, (90, 60, 50))
    return c


def icon_arrow():
    c = Canvas(16, 16)
    c.polygon([(1, 5), (8, 5), (8, 1), (15, 8), (8, 15), (8, 11), (1, 11)], (20, 100, 30))
    c.polygon([(2.5, 6.5), (9.5, 6.5), (9.5, 4.5), (13, 8), (9.5, 11.5), (9.5, 9.5), (2.5, 9.5)], (60, 190, 70))
    return c


# ---------------------------------------------------------------------------------------------
# Sounds, from sine waves: every sample is a function of its time, so the files are the same on
# every run.
RATE = 22050


def write_wav(name, samples, bits):
    """Mono samples from -1 to 1 as 8-bit unsigned or 16-bit signed PCM."""
    if bits == 8:
        data = bytes(max(0, min(255, 128 + round(v * 127))) for v in samples)
    else:
        data = b"".join(struct.pack("<h", max(-32767, min(32767, round(v * 32767)))) for v in samples)
    with wave.open(os.path.join(HERE, name), "wb") as f:
        f.setnchannels(1)
        f.setsampwidth(bits // 8)
        f.setframerate(RATE)
        f.writeframes(data)


def bell(t, frequency):
    """A struck note: the tone and a softer octave, dying away, with a 5 ms onset."""
    if t < 0:
        return 0.0
    onset = min(1.0, t / 0.005)
    tone = math.sin(2 * math.pi * frequency * t) + 0.3 * math.sin(4 * math.pi * frequency * t) * math.exp(-6 * t)
    return onset * math.exp(-3 * t) * tone


def welcome_chime():
    """The Welcome card's greeting: C, E, G and the high C struck in turn, 1.5 s."""
    notes = [(0.0, 523.25), (0.18, 659.25), (0.36, 783.99), (0.54, 1046.5)]
    count = int(1.5 * RATE)
    samples = []
    for i in range(count):
        t = i / RATE
        fade = min(1.0, (count - i) / (0.1 * RATE))  # the last 100 ms go quiet
        samples.append(0.22 * fade * sum(bell(t - start, f) for start, f in notes))
    return samples


def click():
    """A short tick of two high tones, 40 ms."""
    return [math.exp(-t / 0.004) * (0.6 * math.sin(2 * math.pi * 1800 * t) + 0.3 * math.sin(2 * math.pi * 3100 * t))
            for t in (i / RATE for i in range(int(0.04 * RATE)))]


# ---------------------------------------------------------------------------------------------
# The description.
FONT = 20  # Arial, by the stack's font table (SANS below)


def run(start, size, bold, colour):
    height, ascent = (28, 22) if size >= 20 else (18, 14)
    return {"start": start, "font": FONT, "size": size, "style": 1 if bold else 0, "color": list(colour),
            "lineHeight": height, "ascent": ascent}


def field(item_id, card_id, rect, heading, body, colour=(0, 0, 0)):
    """A field's text for one card: the heading in bold 24 points, the body in 14."""
    return {"kind": 96, "id": item_id, "rect": rect, "name": "Text", "itemFlags": 128, "fields": {"26": 4},
            "cardId": card_id, "text": heading + "\n" + body,
            "runs": [run(0, 24, True, colour), run(len(heading) + 1, 14, False, colour)]}


def scrolling_field(item_id, card_id, rect, heading, paragraphs):
    """A framed, read-only field with a scroll bar: a bold heading, then one paragraph per line."""
    f = field(item_id, card_id, rect, heading, "\n".join(paragraphs))
    f["fields"] = {"26": 0x100 | 2 | 4}
    return f


def button(item_id, rect, name, to, transition, shape=2, fill=LIGHT_GREY, text=BLACK_I, **more):
    b = {"kind": 48, "id": item_id, "rect": rect, "name": name, "shape": shape, "buttonFlags": 8,
         "textColor": text, "fillColor": fill, "destination": to, "transition": transition,
         "actionFlags": 32}
    for key, value in more.items():
        if key == "icon":
            b["buttonFlags"] |= 16
            b["iconId"] = value
        else:
            b[key] = value
    return b


def nav(first_id, back, contents, forward, fill=LIGHT_GREY, text=BLACK_I):
    """The bar along the bottom of a card: back, contents, next; None leaves a place out."""
    items = []
    if back is not None:
        items.append(button(first_id, [20, 436, 150, 466], "< Back", back, 2, 3, fill, text))
    if contents is not None:
        items.append(button(first_id + 1, [255, 436, 385, 466], "Contents", contents, 11, 3, fill, text))
    if forward is not None:
        items.append(button(first_id + 2, [490, 436, 620, 466], "Next >", forward, 1, 3, fill, text))
    return items


# 'Snd ' records, and the 'Actn' record of the Welcome card's arrival.
CHIME, CLICK = 1, 2
GREETING = 1


def stack_sound(sound_id, flags=0):
    """A type 83 sub-record at full volume; flag 2 lets the sound play on through a card change."""
    return {"type": 83, "fields": {"4": 127, "16": sound_id, "24": flags}}


WELCOME, SHAPES, PICTURE_BUTTONS, ABOUT, PICTURES, PHOTO, GARDEN, ROSES, POND, ICONS, HIDDEN, \
    TRANSITIONS, ARRIVED, SPRITES, TEXT = 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15

# Transitions by number, as the authoring dialogs name them.
TRANSITION_SET = [(1, "Left to right"), (5, "Fade to black"), (7, "Blocks"), (10, "Blinds"), (13, "Rain"),
                  (14, "Dissolve"), (16, "Barn close"), (19, "Iris open"), (21, "Zoom in"),
                  (27, "Fade to button color")]


def nearest(colours, target):
    """The 1-based number of the colour nearest to `target`, as a button names its colours."""
    return 1 + min(range(len(colours)), key=lambda i: sum((colours[i][k] - target[k]) ** 2 for k in range(3)))


def cards(photo_colours):
    welcome = {"id": WELCOME, "kind": 1, "name": "Welcome", "background": {"png": "welcome.png", "depth": 8},
               "arriveAction": GREETING, "items": [
        field(101, WELCOME, [40, 30, 460, 180], "Welcome to Quillbrook",
              "A tour of what a stack can hold, built by quillbrook build from examples/demo/demo.json. "
              "Pick a place, or follow Next from Pictures on.", (255, 255, 255)),
    ]}
    contents = [("Pictures", PICTURES, 8, 0, BLUE, WHITE_I), ("A group of cards", GARDEN, 15, 1, GREEN, WHITE_I),
                ("Button shapes", SHAPES, 1, 2, RED, WHITE_I), ("Picture buttons", PICTURE_BUTTONS, 14, 3, PURPLE, WHITE_I),
                ("Icons", ICONS, 12, 0, ORANGE, BLACK_I), ("Hide and seek", HIDDEN, 9, 1, DARK_GREY, WHITE_I),
                ("Transitions", TRANSITIONS, 26, 2, DARK_GREEN, WHITE_I), ("About", ABOUT, 19, 3, BLACK_I, WHITE_I)]
    for i, (name, to, transition, shape, fill, text) in enumerate(contents):
        x = 185 if i < 4 else 325
        y = 212 + (i % 4) * 50
        # The contents click on the way: a go (32) that also plays a stack sound (4).
        welcome["items"].append(button(102 + i, [x, y, x + 130, y + 36], name, to, transition, shape, fill, text,
                                       actionFlags=36, subRecords=[stack_sound(CLICK, 2)]))

    pictures = {"id": PICTURES, "kind": 1, "name": "Pictures", "background": {"png": "seaside.png", "depth": 8}, "items": [
        field(501, PICTURES, [30, 20, 500, 140], "Pictures",
              "The sea and the lighthouse are the card's own 8-bit picture. The boat is a graphic: "
              "a picture of its own, laid on the card."),
        {"kind": 16, "id": 502, "rect": [200, 250, 360, 370], "name": "Boat", "png": "boat.png"},
    ] + nav(503, WELCOME, WELCOME, PHOTO)}

    photo = {"id": PHOTO, "kind": 1, "name": "Photo", "background": {"format": 3, "tableSize": 2056, "file": "photo.bin"},
             "items": [field(601, PHOTO, [30, 20, 610, 140], "A JPEG picture",
                             "This card's picture is stored as a JPEG stream (background format 3), "
                             "decoded when the card is shown.", (255, 255, 255))]
             + nav(602, PICTURES, WELCOME, GARDEN, nearest(photo_colours, (255, 240, 200)),
                   nearest(photo_colours, BLACK))}

    # The garden: the owner card's picture and its shared button (item flag 16) show on both members.
    leave = button(702, [470, 20, 620, 56], "Leave the garden", SHAPES, 16, shape=0, fill=GREEN, text=WHITE_I,
                   itemFlags=16)
    garden = {"id": GARDEN, "kind": 1, "name": "Garden", "background": {"png": "garden.png", "depth": 8}, "items": [
        field(701, GARDEN, [30, 20, 460, 150], "A group of cards",
              "The next two cards show this card's picture, and the green button above is shared with them. "
              "Each has items of its own as well."),
        leave,
        button(703, [200, 230, 300, 262], "Roses", ROSES, 17, shape=0, fill=PINK),
        button(704, [420, 230, 520, 262], "Pond", POND, 20, shape=0, fill=SKY),
    ] + nav(705, PHOTO, WELCOME, ROSES)}
    roses = {"id": ROSES, "kind": 3, "ownerId": GARDEN, "name": "Roses", "items": [
        field(801, ROSES, [30, 20, 460, 150], "The rose bed",
              "A member of the garden group: the picture and the shared button come from the Garden card. "
              "This text and the rose are this card's own."),
        {"kind": 16, "id": 802, "rect": [40, 250, 160, 330], "name": "Rose", "png": "rose.png"},
        button(803, [200, 226, 340, 266], "To the pond", POND, 4, shape=1, fill=SKY),
    ] + nav(804, GARDEN, WELCOME, POND)}
    pond = {"id": POND, "kind": 3, "ownerId": GARDEN, "name": "Pond", "items": [
        field(901, POND, [30, 20, 460, 150], "The pond",
              "The second member of the group, with its own text and buttons over the same picture."),
        button(902, [380, 240, 560, 276], "Back to the gate", GARDEN, 18, shape=2, fill=TAN),
    ] + nav(903, ROSES, WELCOME, SHAPES)}

    shapes = {"id": SHAPES, "name": "Shapes", "items": [
        field(201, SHAPES, [40, 30, 600, 120], "Button shapes 0 to 4",
              "Round, framed, rectangle, shadow, and 4, which draws only its name; each in its own colours."),
        button(202, [60, 160, 260, 200], "Round", PICTURE_BUTTONS, 2, 0, YELLOW, BLACK_I),
        button(203, [380, 160, 580, 210], "Framed", ABOUT, 11, 1, SKY, BLACK_I),
        button(204, [60, 250, 260, 290], "Rectangle", WELCOME, 4, 2, RED, WHITE_I),
        button(205, [380, 250, 580, 290], "Shadow", PICTURE_BUTTONS, 15, 3, DARK_GREEN, WHITE_I),
        button(206, [220, 330, 420, 370], "Name only", WELCOME, 26, 4, WHITE_I, PURPLE),
    ] + nav(207, POND, WELCOME, PICTURE_BUTTONS)}

    picture_buttons = {"id": PICTURE_BUTTONS, "kind": 1, "name": "Picture buttons",
                       "background": {"png": "picture-buttons.png", "depth": 8}, "items": [
        field(301, PICTURE_BUTTONS, [40, 30, 600, 120], "Picture buttons 5 to 7",
              "They draw nothing but their name and are hit only where their mask is set: "
              "over the circle, the diamond and the cross of the card's picture."),
    ]}
    for item_id, kind, shape, left, to, transition in [(302, "circle", 5, 80, WELCOME, 21),
                                                       (303, "diamond", 6, 272, SHAPES, 7),
                                                       (304, "cross", 7, 464, ABOUT, 12)]:
        b = button(item_id, [left, 200, left + 96, 296], kind.capitalize(), to, transition, shape, WHITE_I, BLACK_I)
        b["subRecords"] = [{"type": 130, "hex": mask_hex(kind, left, 200)}]
        picture_buttons["items"].append(b)
    picture_buttons["items"] += nav(305, SHAPES, WELCOME, ICONS)

    icons = {"id": ICONS, "kind": 1, "name": "Icons", "background": {"png": "icons-card.png", "depth": 8}, "items": [
        field(1001, ICONS, [40, 30, 600, 120], "Icons",
              "Buttons can show an icon from the stack's Icon records, with or without their name. "
              "The icons were drawn as PNG files and built into records."),
        button(1002, [40, 150, 160, 260], "Star", WELCOME, 23, 4, WHITE_I, BLACK_I, icon=1),
        button(1003, [180, 150, 300, 260], "Heart", GARDEN, 24, 0, PINK, BLACK_I, icon=2),
        button(1004, [320, 150, 440, 260], "Home", WELCOME, 25, 3, TAN, BLACK_I, icon=3),
        button(1005, [460, 150, 600, 260], "Shapes", SHAPES, 8, 1, SKY, BLACK_I, icon=1),
        button(1006, [40, 300, 140, 380], "", WELCOME, 22, 2, LIGHT_GREY, BLACK_I, icon=3),
        button(1007, [180, 300, 300, 380], "Next", HIDDEN, 1, 2, SKY, BLACK_I, icon=4),
    ] + nav(1008, PICTURE_BUTTONS, WELCOME, HIDDEN)}
    icons["items"][6]["buttonFlags"] = 16  # the icon alone

    hidden = {"id": HIDDEN, "name": "Hide and seek", "items": [
        field(1101, HIDDEN, [40, 30, 600, 120], "Hide and seek",
              "Between One and Three stands button Two, and between the two squares a third: both are "
              "hidden (item flag 32), so they are neither drawn nor hit."),
        button(1102, [60, 180, 200, 220], "One", WELCOME, 3, 0, SKY, BLACK_I),
        button(1103, [250, 180, 390, 220], "Two", WELCOME, 3, 0, RED, WHITE_I, itemFlags=32),
        button(1104, [440, 180, 580, 220], "Three", WELCOME, 3, 0, SKY, BLACK_I),
        {"kind": 16, "id": 1105, "rect": [100, 270, 180, 350], "name": "Square 1", "png": "square-1.png"},
        {"kind": 16, "id": 1106, "rect": [280, 270, 360, 350], "name": "Square 2", "png": "square-2.png",
         "itemFlags": 32},
        {"kind": 16, "id": 1107, "rect": [460, 270, 540, 350], "name": "Square 3", "png": "square-3.png"},
    ] + nav(1108, ICONS, WELCOME, TRANSITIONS)}

    transitions = {"id": TRANSITIONS, "name": "Transitions", "items": [
        field(1201, TRANSITIONS, [40, 20, 600, 100], "Transitions",
              "Each button goes to the same card by a different transition. "
              "The slow ones take twice as long; Back there returns here."),
    ]}
    for i, (number, label) in enumerate(TRANSITION_SET):
        x = 60 if i < 5 else 340
        y = 120 + (i % 5) * 58
        extra = {"transitionSpeed": 16} if number in (14, 19) else {}
        name = label + (" (slow)" if extra else "")
        fill, text = (RED, WHITE_I) if number == 27 else (LIGHT_GREY, BLACK_I)
        transitions["items"].append(button(1202 + i, [x, y, x + 240, y + 40], name, ARRIVED, number, 0, fill, text,
                                           **extra))
    transitions["items"] += nav(1212, HIDDEN, WELCOME, SPRITES)

    about = {"id": ABOUT, "name": "About", "items": [
        field(401, ABOUT, [40, 40, 600, 200], "About this stack",
              "Fifteen cards: pictures from PNG and JPEG, a group, buttons of all eight shapes with "
              "colours and icons, hidden items and transitions, sprite films and a frame-delta animation, "
              "styled text to read and to type into, sounds, and a font table. Start over reopens "
              "demo.stk at its first card through a file reference."),
        scrolling_field(405, ABOUT, [40, 210, 600, 366], "What each card shows", [
            "Welcome: a picture, a styled text with a hot word, a chime on arrival and a panel of buttons "
            "that click.",
            "Pictures: an 8-bit picture and a graphic with a picture of its own.",
            "Photo: a JPEG background.",
            "Garden, Roses and Pond: a group of cards sharing a picture and a button.",
            "Shapes: buttons of shapes 0 to 4 in their own colours.",
            "Picture buttons: shapes 5 to 7, hit only where their masks are set.",
            "Icons: buttons with icons of 4 and 8 bits.",
            "Hide and seek: hidden items between visible ones.",
            "Transitions: ten ways to reach the Arrived card.",
            "Sprites: films on paths, behind and in front of the items, and a frame-delta flag.",
            "Text: three families of type in sizes from 9 to 24 points, styles and colours, a hot word, "
            "and a field to type into.",
            "About: this card. Its text is longer than the field, which scrolls: press the arrows, the "
            "track above or below the thumb, or drag the thumb."]),
        button(402, [60, 380, 220, 420], "Previous", -2, 2, 2, LIGHT_GREY, BLACK_I),
        button(403, [240, 380, 400, 420], "Start over", -6, 5, 0, BLUE, WHITE_I,
               subRecords=[{"type": 60, "path": "C:\\demo.stk", "name": "demo.stk"}]),
        button(404, [420, 380, 580, 420], "First card", WELCOME, 16, 3, LIGHT_GREY, BLACK_I),
    ]}

    arrived = {"id": ARRIVED, "kind": 1, "name": "Arrived", "background": {"png": "arrived.png", "depth": 8}, "items": [
        field(1301, ARRIVED, [200, 200, 440, 260], "You have arrived", "", (0, 0, 0)),
        button(1302, [230, 270, 410, 306], "Back", -4, 3, 0, BLUE, WHITE_I),
    ]}
    # The text card stands last, so that the cards before it keep their numbers.
    return [welcome, pictures, photo, garden, roses, pond, shapes, picture_buttons, icons, hidden, transitions,
            sprites_card(), about, arrived, text_card()]


# The sprite card: a tall post in the middle; films cross behind it and in front of it, a ball
# bounces between two points, and a flag waves by frame-delta.
POST = [300, 140, 340, 340]


def film_step(sprite, rect=(0, 0, 0, 0)):
    """A type 56 sub-record that plays a sprite film built from PNG frames."""
    return {"type": 56, "rect": list(rect), "sprite": sprite}


def sprites_card():
    line = lambda y, x0, x1, step: [[x, y] for x in range(x0, x1 + 1, step)]
    items = [
        field(1401, SPRITES, [40, 20, 600, 120], "Sprites",
              "A bird flies behind the post and a balloon in front of it; the ball bounces between the "
              "walls, and the flag waves frame by frame. Press a button to start each."),
        button(1402, POST, "Post", 0, 0, 0, BROWN, WHITE_I, actionFlags=0),
        button(1403, [40, 370, 170, 406], "Bird", 0, 0, 2, SKY, BLACK_I, actionFlags=0x80,
               subRecords=[film_step({"frames": ["sprites/bird-1.png", "sprites/bird-2.png"],
                                      "points": line(200, 40, 580, 20), "pathRate": 60, "frameRate": 120})]),
        button(1404, [180, 370, 310, 406], "Balloon", 0, 0, 2, RED, WHITE_I, actionFlags=0x80,
               subRecords=[film_step({"frames": ["sprites/balloon.png"], "points": line(250, 580, 40, -20),
                                      "pathRate": 80, "overItems": True})]),
        button(1405, [320, 370, 450, 406], "Ball", 0, 0, 2, GREEN, WHITE_I, actionFlags=0x80,
               subRecords=[film_step({"frames": ["sprites/ball.png"], "points": line(300, 200, 420, 20),
                                      "path": "pingpong", "pathRate": 50, "loops": 2})]),
        button(1406, [460, 370, 590, 406], "Flag", 0, 0, 2, YELLOW, BLACK_I, actionFlags=0x80,
               subRecords=[{"type": 56, "rect": [500, 140, 548, 172],
                            "frameDelta": {"frames": ["sprites/flag-%d.png" % n for n in range(1, 5)],
                                           "tickDelay": 8, "repeats": 3}}]),
    ]
    return {"id": SPRITES, "name": "Sprites", "items": items + nav(1407, TRANSITIONS, WELCOME, TEXT)}


def styled(pieces):
    """A text and its runs from (text, font, size, style, colour) pieces; the builder measures each run."""
    text, runs = "", []
    for piece, font, size, style, colour in pieces:
        runs.append({"start": len(text), "font": font, "size": size, "style": style, "color": list(colour)})
        text += piece
    return text, runs


def text_card():
    """Styled text in the three families, a hot word, and a field to type into."""
    black, red, green, blue = (0, 0, 0), (200, 30, 30), (20, 130, 40), (30, 60, 200)
    text, runs = styled([
        ("Styled text\n", SANS, 24, 1, black),
        ("Arial at ", SANS, 12, 0, black), ("9, ", SANS, 9, 0, black), ("12, ", SANS, 12, 0, black),
        ("14, ", SANS, 14, 0, black), ("18 ", SANS, 18, 0, black), ("and 24", SANS, 24, 0, black),
        (" points.\n", SANS, 12, 0, black),
        ("Times New Roman in ", SERIF, 14, 0, black), ("bold", SERIF, 14, 1, black), (", ", SERIF, 14, 0, black),
        ("italic", SERIF, 14, 2, black), (" and ", SERIF, 14, 0, black), ("underlined", SERIF, 14, 4, black),
        (".\n", SERIF, 14, 0, black),
        ("Courier New in ", MONO, 14, 0, black), ("red", MONO, 14, 1, red), (", ", MONO, 14, 0, black),
        ("green", MONO, 14, 1, green), (" and ", MONO, 14, 0, black), ("blue", MONO, 14, 1, blue),
        (".\n", MONO, 14, 0, black),
        ("A hot word: click Sprites to see the films again.", SANS, 12, 2, black),
    ])
    shown = {"kind": 96, "id": 1501, "rect": [40, 20, 600, 150], "name": "Styles", "itemFlags": 128,
             "fields": {"26": 4}, "cardId": TEXT, "text": text, "runs": runs}
    typed, typed_runs = styled([
        ("Type here. ", SANS, 14, 1, black),
        ("Click to place the insertion point, drag or Shift with the arrows to select, and cut, copy "
         "and paste with Ctrl+X, Ctrl+C and Ctrl+V; Ctrl+B, Ctrl+I and Ctrl+U make the selection bold, "
         "italic or underlined. What you write stays with the card, and Save keeps it in the stack.",
         SANS, 14, 0, black)])
    editable = {"kind": 96, "id": 1502, "rect": [40, 170, 600, 420], "name": "Notes", "itemFlags": 0,
                "fields": {"26": 0x100 | 2}, "cardId": TEXT, "text": typed, "runs": typed_runs}
    return {"id": TEXT, "name": "Text", "items": [shown, editable] + nav(1503, SPRITES, WELCOME, ABOUT)}


def sprite_pictures():
    """The films' frames (transparent around their shapes) and the flag's four pictures."""
    os.makedirs(os.path.join(HERE, "sprites"), exist_ok=True)
    for n, lift in [(1, -6), (2, 6)]:
        bird = Canvas(32, 24)
        bird.ellipse(16, 14, 10, 6, FIXED[BLUE - 1])
        bird.polygon([(10, 12), (18, 12), (14 + lift // 2, 12 + lift)], FIXED[SKY - 1])
        bird.circle(25, 11, 4, FIXED[BLUE - 1])
        bird.put(26, 10, BLACK)
        bird.polygon([(28, 10), (32, 12), (28, 13)], FIXED[ORANGE - 1])
        write_rgba("sprites/bird-%d.png" % n, bird)
    balloon = Canvas(28, 40)
    balloon.ellipse(14, 14, 12, 14, FIXED[RED - 1])
    balloon.rect(13, 28, 15, 40, FIXED[DARK_GREY - 1])
    write_rgba("sprites/balloon.png", balloon)
    ball = Canvas(20, 20)
    ball.circle(10, 10, 9, FIXED[GREEN - 1])
    ball.circle(7, 7, 3, FIXED[0])
    write_rgba("sprites/ball.png", ball)
    for n in range(1, 5):
        flag = Canvas(48, 32, FIXED[0])
        flag.rect(0, 0, 3, 32, FIXED[BROWN - 1])
        for x in range(3, 48):
            dy = int(3 * math.sin((x / 8.0) + n * math.pi / 2))
            flag.rect(x, 4 + dy, x + 1, 20 + dy, FIXED[RED - 1] if (x // 6) % 2 else FIXED[YELLOW - 1])
        write_rgba("sprites/flag-%d.png" % n, flag)


# The stack's font table: Arial (20, the font of most text), Times New Roman (21) and Courier New (22).
SANS, SERIF, MONO = 20, 21, 22


def font_row(name, font_id):
    """One 92-byte row: the name as a counted string, the id, and the request of a 12-point face."""
    row = bytearray(92)
    row[0] = len(name)
    row[1:1 + len(name)] = name.encode("ascii")
    struct.pack_into(">HHH", row, 64, font_id, 0, 0x22)
    struct.pack_into(">hHH", row, 86, -19, 0, 400)
    return row.hex()


FONT_TABLE = font_row("Arial", SANS) + font_row("Times New Roman", SERIF) + font_row("Courier New", MONO) + "00" * 92


def main():
    os.makedirs(os.path.join(HERE, "icons"), exist_ok=True)
    welcome = welcome_picture()
    write_indexed("welcome.png", welcome, Palette().add(welcome))

    seaside = seaside_picture()
    boat = boat_on(seaside, 200, 250)
    palette = Palette().add(seaside).add(boat)
    write_indexed("seaside.png", seaside, palette)
    write_indexed("boat.png", boat, palette)

    garden = garden_picture()
    rose = rose_graphic(garden)
    palette = Palette().add(garden).add(rose)
    write_indexed("garden.png", garden, palette)
    write_indexed("rose.png", rose, palette)

    for name, picture in [("picture-buttons.png", picture_buttons_picture()), ("arrived.png", arrival_picture())]:
        write_indexed(name, picture, Palette().add(picture))

    # The hidden card's squares are on a card of the default palette: its first sixteen colours.
    for n, colour in [(1, FIXED[BLUE - 1]), (2, FIXED[RED - 1]), (3, FIXED[GREEN - 1])]:
        square = Canvas(80, 80, FIXED[DARK_GREY - 1])
        square.rect(4, 4, 76, 76, colour)
        square.circle(40, 40, 18, FIXED[0])
        write_indexed("square-%d.png" % n, square, Palette())

    with tempfile.TemporaryDirectory() as tmp:
        ppm = os.path.join(tmp, "photo.ppm")
        with open(ppm, "wb") as f:
            f.write(b"P6 %d %d 255\n" % (W, H) + b"".join(photo_picture()))
        jpeg = subprocess.run(["cjpeg", "-quality", "80", "-optimize", ppm], check=True, capture_output=True).stdout
        # The card's colour table: the 256 colours that the picture is reduced to on an 8-bit
        # display (two passes, Floyd-Steinberg), so the card's palette is the picture's own.
        jpg = os.path.join(tmp, "photo.jpg")
        with open(jpg, "wb") as f:
            f.write(jpeg)
        bmp = subprocess.run(["djpeg", "-colors", "256", "-bmp", jpg], check=True, capture_output=True).stdout
    head = struct.unpack("<I", bmp[14:18])[0]
    count = struct.unpack("<I", bmp[46:50])[0] or 256
    photo_colours = [tuple(bmp[14 + head + 4 * i:17 + head + 4 * i][::-1]) for i in range(count)]
    photo_colours += [BLACK] * (256 - count)
    with open(os.path.join(HERE, "photo.bin"), "wb") as f:
        f.write(stored_color_table(photo_colours) + image_description(W, H, 24) + jpeg)

    icons = [("star", icon_star()), ("heart", icon_heart()), ("house", icon_house()), ("arrow", icon_arrow())]
    for name, icon in icons:
        write_rgba(os.path.join("icons", name + ".png"), icon)
    # On an 8-bit display an icon shows the nearest colours of the card's palette: the Icons card
    # carries the icons' own.
    paper = Canvas(W, H)
    paper.vgradient(0, H, (255, 255, 255), (226, 232, 246), 24)
    palette = Palette().add(paper)
    for _, icon in icons:
        palette.add(icon, transparent=True)
    write_indexed("icons-card.png", paper, palette)

    sprite_pictures()

    os.makedirs(os.path.join(HERE, "sounds"), exist_ok=True)
    write_wav("sounds/welcome.wav", welcome_chime(), 16)
    write_wav("sounds/click.wav", click(), 8)

    description = {
        "version": 5, "depth": 8, "cardWidth": W, "cardHeight": H, "autoTimers": 1,
        "cards": cards(photo_colours),
        "records": [
            {"type": "FntL", "id": 128, "name": "", "hex": FONT_TABLE},
            {"type": "Icon", "id": 1, "name": "Star", "png": "icons/star.png", "depth": 4},
            {"type": "Icon", "id": 2, "name": "Heart", "png": "icons/heart.png", "depth": 4},
            {"type": "Icon", "id": 3, "name": "House", "png": "icons/house.png", "depth": 8},
            {"type": "Icon", "id": 4, "name": "Arrow", "png": "icons/arrow.png", "depth": 4},
            {"type": "Snd ", "id": CHIME, "name": "Welcome", "sound": "sounds/welcome.wav"},
            {"type": "Snd ", "id": CLICK, "name": "Click", "sound": "sounds/click.wav"},
            {"type": "Actn", "id": GREETING, "name": "Greeting",
             "action": {"actionFlags": 4, "subRecords": [stack_sound(CHIME)]}},
            # A hot word of the welcome text: a click inside "Pictures" goes there.
            {"type": "Hlnk", "id": 1, "name": "", "link": {
                "words": "Pictures", "field": 101,
                "action": {"destination": PICTURES, "transition": 8, "actionFlags": 32}}},
            # And on the text card, "Sprites" goes back to the films.
            {"type": "Hlnk", "id": 2, "name": "", "link": {
                "words": "Sprites", "field": 1501,
                "action": {"destination": SPRITES, "transition": 1, "actionFlags": 32}}},
        ],
    }
    with open(os.path.join(HERE, "demo.json"), "w") as f:
        json.dump(description, f, indent=1)
        f.write("\n")


if __name__ == "__main__":
    main()
