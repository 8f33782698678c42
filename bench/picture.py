"""Line charts with logarithmic axes, in one SVG that is legible on light and dark pages."""

import math
from collections import namedtuple
from xml.sax.saxutils import escape

# series: {name: [(x, y)]}. x_text and y_text format a value of an axis. The x axis has ticks at powers of x_base.
Panel = namedtuple("Panel", "title x_title series x_text y_text x_base")

WIDTH, HEIGHT = 470, 390
LEFT, RIGHT, TOP, PLOT_BOTTOM = 70, 36, 40, 270

# Colours that people with colour blindness can distinguish; the marks differ too.
LIGHT = ["#0060a8", "#b85000", "#00785a", "#a03c80"]
DARK = ["#5ab4f0", "#f0a050", "#3cc8a0", "#e08cc0"]

STYLE = """
    text { font: 12px system-ui, sans-serif; fill: #24292f }
    .title { font-size: 14px; font-weight: 600 }
    .page { fill: #ffffff }
    .grid { stroke: #d0d7de; stroke-width: 1 }
    .line { fill: none; stroke-width: 2 }
"""
DARK_STYLE = """
      text { fill: #e6edf3 }
      .page { fill: #0d1117 }
      .grid { stroke: #3d444d }
"""


def colours(palette, indent):
    return "".join(
        f"{indent}.line.c{i} {{ stroke: {colour} }} .mark.c{i} {{ fill: {colour} }}\n"
        for i, colour in enumerate(palette)
    )


def mark(series, x, y):
    shapes = (
        f'<circle class="mark c{series}" cx="{x:.1f}" cy="{y:.1f}" r="4"/>',
        f'<rect class="mark c{series}" x="{x - 4:.1f}" y="{y - 4:.1f}" width="8" height="8"/>',
        f'<path class="mark c{series}" d="M{x:.1f} {y - 5:.1f}l5 9h-10z"/>',
        f'<path class="mark c{series}" d="M{x:.1f} {y - 6:.1f}l5 6l-5 6l-5 -6z"/>',
    )
    return shapes[series % len(shapes)]


class Axis:
    """A logarithmic axis from pixel `begin` to pixel `end`."""

    def __init__(self, values, base, begin, end):
        self.low = math.floor(math.log(min(values), base) + 1e-9)
        self.high = max(math.ceil(math.log(max(values), base) - 1e-9), self.low + 1)
        self.base, self.begin, self.end = base, begin, end

    def at(self, value):
        part = (math.log(value, self.base) - self.low) / (self.high - self.low)
        return self.begin + part * (self.end - self.begin)

    def ticks(self):
        return [self.base**power for power in range(self.low, self.high + 1)]


def draw_panel(panel, offset):
    points = [point for of_series in panel.series.values() for point in of_series]
    x_axis = Axis([x for x, _ in points], panel.x_base, LEFT, WIDTH - RIGHT)
    y_axis = Axis([y for _, y in points], 10, PLOT_BOTTOM, TOP)
    parts = [f'<g transform="translate({offset} 0)">', f'<text class="title" x="{LEFT}" y="22">{escape(panel.title)}</text>']
    for value in y_axis.ticks():
        y = y_axis.at(value)
        parts.append(f'<path class="grid" d="M{LEFT} {y:.1f}H{WIDTH - RIGHT}"/>')
        parts.append(f'<text x="{LEFT - 8}" y="{y + 4:.1f}" text-anchor="end">{panel.y_text(value)}</text>')
    for value in x_axis.ticks():
        x = x_axis.at(value)
        parts.append(f'<path class="grid" d="M{x:.1f} {TOP}V{PLOT_BOTTOM}"/>')
        parts.append(f'<text x="{x:.1f}" y="{PLOT_BOTTOM + 18}" text-anchor="middle">{panel.x_text(value)}</text>')
    centre = (LEFT + WIDTH - RIGHT) / 2
    parts.append(f'<text x="{centre}" y="{PLOT_BOTTOM + 36}" text-anchor="middle">{escape(panel.x_title)}</text>')
    for number, (name, of_series) in enumerate(panel.series.items()):
        pixels = [(x_axis.at(x), y_axis.at(y)) for x, y in sorted(of_series)]
        path = "L".join(f"{x:.1f} {y:.1f}" for x, y in pixels)
        parts.append(f'<path class="line c{number}" d="M{path}"/>')
        parts.extend(mark(number, x, y) for x, y in pixels)
        y = PLOT_BOTTOM + 58 + 17 * number
        parts.append(mark(number, LEFT + 6, y))
        parts.append(f'<text x="{LEFT + 18}" y="{y + 4}">{escape(name)}</text>')
    return parts + ["</g>"]


def draw(panels):
    width = WIDTH * len(panels)
    titles = "; ".join(panel.title for panel in panels)
    lines = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{HEIGHT}" viewBox="0 0 {width} {HEIGHT}"'
        f' role="img" aria-label="{escape(titles)}">',
        f"  <style>{STYLE}{colours(LIGHT, '    ')}    @media (prefers-color-scheme: dark) {{"
        f"{DARK_STYLE}{colours(DARK, '      ')}    }}\n  </style>",
        '  <rect class="page" width="100%" height="100%"/>',
    ]
    for number, panel in enumerate(panels):
        lines += ["  " + part for part in draw_panel(panel, number * WIDTH)]
    return "\n".join(lines + ["</svg>", ""])
