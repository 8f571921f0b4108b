"""The device: a vendor-neutral grid of tiles, described through the engine's Python interface.

A tile in the interior holds SLICES slices (a four-input LUT and a flip-flop behind it, sharing one output wire); a
tile at the edge holds PADS pads; corners are empty. Wires of a tile:

  OUT      one per slice: what the tile drives            (at the edge: PO, one per pad)
  S, Q     wires that start here, per direction: SINGLES reach the next tile, QUADS the fourth
  L        LOCALS wires that feed the tile's own inputs from whatever arrives
  TCLK     the tile's clock, one of the GLOBALS clock wires, which start at one pad in the middle of each edge

Delays are in ns. The switch and wire delays of a connection lie on its switches. The engine asserts on two switches of
one name, so switches are named after their two wires and made once.
"""

GRID_X = GRID_Y = 16
SLICES = 8
LUT_INPUTS = 4
PADS = 2
SINGLES, QUADS = 8, 6
LOCALS = 40  # Fewer, and the router oscillates for ever.
GLOBALS = 4

OUT_DELAY, SINGLE_DELAY, TURN_DELAY, QUAD_DELAY = 0.06, 0.33, 0.36, 0.62
LOCAL_DELAY, PIN_DELAY = 0.21, 0.17
GLOBAL_DELAY, TILE_CLOCK_DELAY, CLOCK_SKEW, CLOCK_PIN_DELAY = 0.95, 0.30, 0.012, 0.05  # The skew per tile of distance.
PAD_IN_DELAY, PAD_OUT_DELAY = 0.85, 1.90
LUT_DELAY = (0.42, 0.40, 0.36, 0.31)  # By input.
CLOCK_TO_OUT, HOLD = 0.38, 0.09
SETUP = (0.50, 0.48, 0.44, 0.39)  # Through the slice's LUT, by its input.

DIRECTIONS = ((1, 0), (0, 1), (-1, 0), (0, -1))
CENTRE_X, CENTRE_Y = GRID_X // 2, GRID_Y // 2
# Pad 0 of these tiles can be a clock.
CLOCK_TILES = ((0, CENTRE_Y), (GRID_X - 1, CENTRE_Y), (CENTRE_X, 0), (CENTRE_X, GRID_Y - 1))[:GLOBALS]


def is_edge(x, y):
    return x in (0, GRID_X - 1) or y in (0, GRID_Y - 1)


def has_tile(x, y):
    in_grid = 0 <= x < GRID_X and 0 <= y < GRID_Y
    return in_grid and not (x in (0, GRID_X - 1) and y in (0, GRID_Y - 1))


def tile_name(x, y):
    return "X%d/Y%d/" % (x, y)


TILES = [(x, y) for x in range(GRID_X) for y in range(GRID_Y) if has_tile(x, y)]


def add_wires(ctx):
    for g in range(GLOBALS):
        ctx.addWire(name="GCLK%d" % g, type="GCLK", x=CENTRE_X, y=CENTRE_Y)
    for x, y in TILES:
        def add(name, kind):
            ctx.addWire(name=tile_name(x, y) + name, type=kind, x=x, y=y)
        for d in range(4):
            for i in range(SINGLES):
                add("S%d_%d" % (d, i), "SINGLE")
            for i in range(QUADS):
                add("Q%d_%d" % (d, i), "QUAD")
        for i in range(LOCALS):
            add("L%d" % i, "LOCAL")
        if is_edge(x, y):
            for z in range(PADS):
                for name in ("I", "EN", "O", "PO"):
                    add("P%d%s" % (z, name), "PAD")
            continue
        for z in range(SLICES):
            for name, kind in (("OUT%d", "OUT"), ("C%d", "CLOCK"), ("F%d", "LUT_OUT"), ("FQ%d", "FF_OUT")):
                add(name % z, kind)
            for k in range(LUT_INPUTS):
                add("I%d_%d" % (z, k), "LUT_IN")
        add("TCLK", "CLOCK")


def add_bels(ctx, Loc):
    for x, y in TILES:
        tile = tile_name(x, y)
        for z in range(PADS if is_edge(x, y) else SLICES):
            if is_edge(x, y):
                bel = tile + "IO%d" % z
                ctx.addBel(name=bel, type="GENERIC_IOB", loc=Loc(x, y, z), gb=False, hidden=False)
                ctx.addBelInput(bel=bel, name="I", wire=tile + "P%dI" % z)
                ctx.addBelInput(bel=bel, name="EN", wire=tile + "P%dEN" % z)
                ctx.addBelOutput(bel=bel, name="O", wire=tile + "P%dO" % z)
                continue
            bel = tile + "SLICE%d" % z
            ctx.addBel(name=bel, type="GENERIC_SLICE", loc=Loc(x, y, z), gb=False, hidden=False)
            ctx.addBelInput(bel=bel, name="CLK", wire=tile + "C%d" % z)
            for k in range(LUT_INPUTS):
                ctx.addBelInput(bel=bel, name="I[%d]" % k, wire=tile + "I%d_%d" % (z, k))
            ctx.addBelOutput(bel=bel, name="F", wire=tile + "F%d" % z)
            ctx.addBelOutput(bel=bel, name="Q", wire=tile + "FQ%d" % z)


class Switches:
    """Adds the switches of one tile."""

    def __init__(self, ctx, Loc, x, y):
        self.ctx, self.x, self.y = ctx, x, y
        self.loc = Loc(x, y, 0)
        self.tile = tile_name(x, y)
        self.made = set()
        if is_edge(x, y):
            self.outs = [self.tile + "P%dPO" % (z % PADS) for z in range(SLICES)]
        else:
            self.outs = [self.tile + "OUT%d" % z for z in range(SLICES)]
        # Wires that end here, by direction: singles of the neighbour, quads of the fourth tile away.
        self.singles = self.arriving(1, "S", SINGLES)
        self.quads = self.arriving(4, "Q", QUADS)

    def arriving(self, reach, letter, count):
        wires = {}
        for d, (dx, dy) in enumerate(DIRECTIONS):
            x, y = self.x - reach * dx, self.y - reach * dy
            if has_tile(x, y):
                wires[d] = [tile_name(x, y) + "%s%d_%d" % (letter, d, i) for i in range(count)]
        return wires

    def add(self, source, target, delay, kind):
        name = self.tile + source.replace("/", ".") + ".." + target.rsplit("/", 1)[1]
        if name not in self.made:
            self.made.add(name)
            self.ctx.addPip(name=name, type=kind, srcWire=source, dstWire=target, delay=delay, loc=self.loc)

    def add_outputs(self):
        tile = self.tile
        if is_edge(self.x, self.y):
            for z in range(PADS):
                # The input buffer is a switch: the engine drops the delay of a pad that starts a path.
                self.add(tile + "P%dO" % z, tile + "P%dPO" % z, PAD_IN_DELAY, "PADBUF")
            return
        for z in range(SLICES):
            self.add(tile + "F%d" % z, tile + "OUT%d" % z, OUT_DELAY, "OUTMUX")
            self.add(tile + "FQ%d" % z, tile + "OUT%d" % z, OUT_DELAY, "OUTMUX")
            self.add(tile + "TCLK", tile + "C%d" % z, CLOCK_PIN_DELAY, "CLOCK")
        distance = abs(self.x - CENTRE_X) + abs(self.y - CENTRE_Y)
        for g in range(GLOBALS):
            self.add("GCLK%d" % g, tile + "TCLK", TILE_CLOCK_DELAY + CLOCK_SKEW * distance, "CLOCK")

    def add_span(self, d, i):
        """What drives a single and a quad of this tile; no wire turns back to where it came from."""
        dx, dy = DIRECTIONS[d]
        if i < SINGLES and has_tile(self.x + dx, self.y + dy):
            target = self.tile + "S%d_%d" % (d, i)
            for j in (0, 2, 5):
                self.add(self.outs[(i + d * 3 + j) % SLICES], target, SINGLE_DELAY, "OUT2S")
            for s, wires in self.singles.items():
                if (s + 2) % 4 != d:
                    straight = s == d
                    self.add(wires[(i + (0 if straight else s + 1)) % SINGLES], target,
                             SINGLE_DELAY if straight else TURN_DELAY, "S2S")
            for q, wires in self.quads.items():
                if (q + 2) % 4 != d:
                    self.add(wires[(i + q) % QUADS], target, SINGLE_DELAY, "Q2S")
        if i < QUADS and has_tile(self.x + 4 * dx, self.y + 4 * dy):
            target = self.tile + "Q%d_%d" % (d, i)
            for j in (0, 3, 6):
                self.add(self.outs[(i + d * 2 + j) % SLICES], target, QUAD_DELAY, "OUT2Q")
            for q, wires in self.quads.items():
                if (q + 2) % 4 != d:
                    self.add(wires[(i + (q != d)) % QUADS], target, QUAD_DELAY, "Q2Q")
            for s, wires in self.singles.items():
                if (s + 2) % 4 != d:
                    self.add(wires[(i + s) % SINGLES], target, QUAD_DELAY, "S2Q")

    def add_inputs(self):
        edge = is_edge(self.x, self.y)
        for i in range(LOCALS):
            target = self.tile + "L%d" % i
            for s, wires in self.singles.items():
                for j in (0, 3):
                    self.add(wires[(i + s * 2 + j) % SINGLES], target, LOCAL_DELAY, "S2L")
            for q, wires in self.quads.items():
                self.add(wires[(i + q) % QUADS], target, LOCAL_DELAY, "Q2L")
            if not edge:
                for j in (0, 3):
                    self.add(self.outs[(i + j) % SLICES], target, LOCAL_DELAY, "OUT2L")
        if edge:
            pins = [("P%dI" % z, z) for z in range(PADS)]
        else:
            pins = [("I%d_%d" % (z, k), z + k) for z in range(SLICES) for k in range(LUT_INPUTS)]
        for pin, parity in pins:
            for i in range(parity % 2, LOCALS, 2):
                self.add(self.tile + "L%d" % i, self.tile + pin, PIN_DELAY, "L2PIN")


def build(ctx, Loc):
    ctx.setLutK(LUT_INPUTS)
    ctx.setDelayScaling(0.28, 0.45)  # What the placer takes a tile of distance and the rest of a wire to cost.
    add_wires(ctx)
    add_bels(ctx, Loc)
    for x, y in TILES:
        switches = Switches(ctx, Loc, x, y)
        switches.add_outputs()
        for d in range(4):
            for i in range(max(SINGLES, QUADS)):
                switches.add_span(d, i)
        switches.add_inputs()
    for g, (x, y) in enumerate(CLOCK_TILES):
        ctx.addPip(name=tile_name(x, y) + "CLOCKPAD", type="CLOCK", srcWire=tile_name(x, y) + "P0PO",
                   dstWire="GCLK%d" % g, delay=GLOBAL_DELAY, loc=Loc(x, y, 0))


def is_constant(cell_name):
    return cell_name in ("$PACKER_GND", "$PACKER_VCC")


def set_timing(ctx):
    """The engine wants timing per cell, after packing."""
    for name, cell in ctx.cells:
        if cell.type == "GENERIC_IOB":
            # A clock pin that does not exist: paths start and end at pads without a clock.
            ctx.addCellTimingClockToOut(cell=name, port="O", clock="NONE", clktoq=0.0)
            ctx.addCellTimingSetupHold(cell=name, port="I", clock="NONE", setup=PAD_OUT_DELAY, hold=0.0)
        elif cell.type == "GENERIC_SLICE" and not is_constant(name):
            inputs = ["I[%d]" % k for k in range(LUT_INPUTS)]
            if int(cell.params["FF_USED"]):
                ctx.addCellTimingClock(cell=name, port="CLK")
                ctx.addCellTimingClockToOut(cell=name, port="Q", clock="CLK", clktoq=CLOCK_TO_OUT)
                for pin, setup in zip(inputs, SETUP):
                    ctx.addCellTimingSetupHold(cell=name, port=pin, clock="CLK", setup=setup, hold=HOLD)
            else:
                for pin, delay in zip(inputs, LUT_DELAY):
                    ctx.addCellTimingDelay(cell=name, fromPort=pin, toPort="F", delay=delay)


def place_clock_pads(ctx):
    """Puts every pad that clocks flip-flops where a clock wire starts."""
    clocks = set()
    for _, cell in ctx.cells:
        for port, pin in cell.ports:
            if cell.type == "GENERIC_SLICE" and port == "CLK" and pin.net is not None:
                clocks.add(pin.net.name)
    if len(clocks) > len(CLOCK_TILES):
        raise RuntimeError("the design has %d clocks, the device %d" % (len(clocks), len(CLOCK_TILES)))
    for net, (x, y) in zip(sorted(clocks), CLOCK_TILES):
        ctx.nets[net].driver.cell.setAttr("BEL", tile_name(x, y) + "IO0")
