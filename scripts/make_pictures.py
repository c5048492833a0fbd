#!/usr/bin/env python3
"""Draws the module's compiled-in pictures (resources/) and the pictures of the sample dark
skin (examples/skins/dark/) as small RGBA PNG files. Shapes are rasterised with 4x4
supersampling; no imaging library is needed.

    scripts/make_pictures.py            # writes both sets next to the sources
"""
import math
import os
import struct
import sys
import zlib

SS = 4  # samples per pixel side


def png(path, width, height, pixels):
    raw = b"".join(b"\x00" + bytes(c for px in pixels[y * width:(y + 1) * width] for c in px)
                   for y in range(height))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)

    with open(path, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n")
        f.write(chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)))
        f.write(chunk(b"IDAT", zlib.compress(raw, 9)))
        f.write(chunk(b"IEND", b""))


class Canvas:
    def __init__(self, w, h):
        self.w, self.h = w, h
        self.px = [(0, 0, 0, 0)] * (w * h)

    def fill(self, inside, color):
        """Paints `color` (r,g,b[,a]) where inside(x, y) holds, x and y in pixel units."""
        r, g, b = color[:3]
        a = color[3] if len(color) > 3 else 255
        for py in range(self.h):
            for px in range(self.w):
                hits = sum(1 for sy in range(SS) for sx in range(SS)
                           if inside(px + (sx + 0.5) / SS, py + (sy + 0.5) / SS))
                if not hits:
                    continue
                cov = hits / (SS * SS) * a / 255.0
                dr, dg, db, da = self.px[py * self.w + px]
                da_f = da / 255.0
                out_a = cov + da_f * (1 - cov)
                if out_a <= 0:
                    continue
                mix = lambda s, d: int(round((s * cov + d * da_f * (1 - cov)) / out_a))
                self.px[py * self.w + px] = (mix(r, dr), mix(g, dg), mix(b, db), int(round(out_a * 255)))

    def save(self, path):
        png(path, self.w, self.h, self.px)


def rect(x0, y0, x1, y1):
    return lambda x, y: x0 <= x <= x1 and y0 <= y <= y1


def circle(cx, cy, r):
    return lambda x, y: (x - cx) ** 2 + (y - cy) ** 2 <= r * r


def ring(cx, cy, r, width):
    return lambda x, y: (r - width) ** 2 <= (x - cx) ** 2 + (y - cy) ** 2 <= r * r


def polygon(points):
    def inside(x, y):
        n, c = len(points), False
        j = n - 1
        for i in range(n):
            xi, yi = points[i]
            xj, yj = points[j]
            if (yi > y) != (yj > y) and x < (xj - xi) * (y - yi) / (yj - yi) + xi:
                c = not c
            j = i
        return c
    return inside


def line(x0, y0, x1, y1, width):
    dx, dy = x1 - x0, y1 - y0
    length2 = dx * dx + dy * dy

    def inside(x, y):
        t = max(0.0, min(1.0, ((x - x0) * dx + (y - y0) * dy) / length2))
        px, py = x0 + t * dx, y0 + t * dy
        return (x - px) ** 2 + (y - py) ** 2 <= (width / 2.0) ** 2
    return inside


def arc(cx, cy, r, width, start, end):
    """Part of a ring between two angles in degrees (0 to the right, clockwise on screen)."""
    def inside(x, y):
        d = math.hypot(x - cx, y - cy)
        if not (r - width / 2.0 <= d <= r + width / 2.0):
            return False
        a = math.degrees(math.atan2(y - cy, x - cx)) % 360
        return start <= a <= end
    return inside


def any_of(*shapes):
    return lambda x, y: any(s(x, y) for s in shapes)


# ---------------------------------------------------------------------------------------
# Pictures. `p` is the palette: the compiled-in set and the dark skin differ only in it.

def add_graph(p):
    c = Canvas(16, 16)
    c.fill(rect(1, 2, 12.5, 13.5), p["paper"])
    c.fill(any_of(rect(1, 2, 1.9, 13.5), rect(1, 12.6, 12.5, 13.5)), p["ink"])
    c.fill(line(2.5, 10.5, 5.5, 6.5, 1.3), p["up"])
    c.fill(line(5.5, 6.5, 8, 9, 1.3), p["up"])
    c.fill(line(8, 9, 11.5, 4, 1.3), p["up"])
    c.fill(circle(12, 12, 3.8), p["plus_back"])
    c.fill(any_of(rect(9.9, 11.3, 14.1, 12.7), rect(11.3, 9.9, 12.7, 14.1)), (255, 255, 255))
    return c


def prop(p):
    c = Canvas(16, 16)
    c.fill(rect(2.5, 1.5, 13.5, 14.5), p["ink"])
    c.fill(rect(3.5, 2.5, 12.5, 13.5), p["paper"])
    for y in (4.5, 7.5, 10.5):
        c.fill(rect(5, y, 6.5, y + 1.3), p["up"])
        c.fill(rect(7.5, y, 11.2, y + 1.3), p["ink"])
    return c


def trade_in(p):
    c = Canvas(16, 16)
    c.fill(polygon([(1, 6), (8, 1), (15, 6), (11, 6), (11, 8), (5, 8), (5, 6)]), p["buy"])
    c.fill(polygon([(1, 10), (5, 10), (5, 8.8), (11, 8.8), (11, 10), (15, 10), (8, 15)]), p["sell"])
    return c


def deal_mark(p, up):
    c = Canvas(12, 12)
    color = p["buy"] if up else p["sell"]
    if up:
        body = polygon([(6, 0.5), (11.5, 6.5), (8.2, 6.5), (8.2, 11.5), (3.8, 11.5), (3.8, 6.5), (0.5, 6.5)])
    else:
        body = polygon([(3.8, 0.5), (8.2, 0.5), (8.2, 5.5), (11.5, 5.5), (6, 11.5), (0.5, 5.5), (3.8, 5.5)])
    c.fill(body, p["ink"])
    shrink = polygon([(6, 2), (10, 6.2), (7.4, 6.2), (7.4, 10.6), (4.6, 10.6), (4.6, 6.2), (2, 6.2)]) if up else \
        polygon([(4.6, 1.4), (7.4, 1.4), (7.4, 5.8), (10, 5.8), (6, 10), (2, 5.8), (4.6, 5.8)])
    c.fill(shrink, color)
    return c


def limit_mark(p, up):
    c = Canvas(12, 12)
    color = p["buy"] if up else p["sell"]
    if up:
        c.fill(rect(0.5, 0.5, 11.5, 2.5), p["ink"])
        c.fill(polygon([(6, 3.5), (11.5, 11.5), (0.5, 11.5)]), p["ink"])
        c.fill(polygon([(6, 5.6), (9.8, 10.7), (2.2, 10.7)]), color)
    else:
        c.fill(rect(0.5, 9.5, 11.5, 11.5), p["ink"])
        c.fill(polygon([(0.5, 0.5), (11.5, 0.5), (6, 8.5)]), p["ink"])
        c.fill(polygon([(2.2, 1.3), (9.8, 1.3), (6, 6.4)]), color)
    return c


def smile(p, good):
    c = Canvas(16, 16)
    c.fill(circle(8, 8, 7.5), p["ink"])
    c.fill(circle(8, 8, 6.6), p["good"] if good else p["bad"])
    c.fill(any_of(circle(5.6, 6, 1.1), circle(10.4, 6, 1.1)), p["ink"])
    if good:
        c.fill(arc(8, 8, 4, 1.3, 25, 155), p["ink"])
    else:
        c.fill(arc(8, 14.2, 4, 1.3, 205, 335), p["ink"])
    return c


def zoom(p, plus):
    c = Canvas(16, 16)
    c.fill(ring(6.5, 6.5, 5.5, 1.6), p["ink"])
    c.fill(circle(6.5, 6.5, 3.9), p["paper"])
    c.fill(line(10.5, 10.5, 14.5, 14.5, 2.4), p["ink"])
    c.fill(rect(4, 5.8, 9, 7.2), p["ink"])
    if plus:
        c.fill(rect(5.8, 4, 7.2, 9), p["ink"])
    return c


def deal(p):
    c = Canvas(16, 16)
    c.fill(circle(8, 8, 7), p["buy"])
    c.fill(polygon([(4, 9), (8, 4), (12, 9)]), (255, 255, 255))
    c.fill(rect(6.8, 8, 9.2, 12), (255, 255, 255))
    return c


def tool_bar_strip(p):
    """The dark skin's tool bar background: a vertical gradient, one pixel wide."""
    c = Canvas(1, 24)
    top, bottom = p["bar_top"], p["bar_bottom"]
    for y in range(24):
        t = y / 23.0
        c.px[y] = tuple(int(round(top[i] + (bottom[i] - top[i]) * t)) for i in range(3)) + (255,)
    return c


BUILT_IN = {
    "paper": (255, 255, 255), "ink": (64, 64, 64), "up": (40, 90, 200), "plus_back": (40, 160, 60),
    "buy": (132, 185, 231), "sell": (157, 225, 145), "good": (250, 215, 70), "bad": (240, 120, 90),
}
DARK = {
    "paper": (52, 56, 64), "ink": (200, 205, 215), "up": (90, 170, 255), "plus_back": (40, 170, 110),
    "buy": (70, 150, 255), "sell": (255, 110, 90), "good": (120, 210, 120), "bad": (230, 90, 90),
    "bar_top": (58, 62, 72), "bar_bottom": (30, 33, 40),
}


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    resources = os.path.join(root, "resources")
    built_in = {
        "addgraph.png": add_graph(BUILT_IN), "prop.png": prop(BUILT_IN), "tradein.png": trade_in(BUILT_IN),
        "up_deal.png": deal_mark(BUILT_IN, True), "down_deal.png": deal_mark(BUILT_IN, False),
        "up_limit.png": limit_mark(BUILT_IN, True), "down_limit.png": limit_mark(BUILT_IN, False),
        "smile1.png": smile(BUILT_IN, False), "smile2.png": smile(BUILT_IN, True),
    }
    for name, canvas in built_in.items():
        canvas.save(os.path.join(resources, name))
    dark_dir = os.path.join(root, "examples", "skins", "dark")
    os.makedirs(dark_dir, exist_ok=True)
    dark = {
        "add.png": add_graph(DARK), "prop.png": prop(DARK), "zoom_in.png": zoom(DARK, True),
        "zoom_out.png": zoom(DARK, False), "trade_auto.png": trade_in(DARK), "deal.png": deal(DARK),
        "up_deal.png": deal_mark(DARK, True), "down_deal.png": deal_mark(DARK, False),
        "up_limit.png": limit_mark(DARK, True), "down_limit.png": limit_mark(DARK, False),
        "bad.png": smile(DARK, False), "good.png": smile(DARK, True), "toolbar.png": tool_bar_strip(DARK),
    }
    for name, canvas in dark.items():
        canvas.save(os.path.join(dark_dir, name))
    return 0


if __name__ == "__main__":
    sys.exit(main())
