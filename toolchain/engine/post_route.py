"""Writes what timing analysis needs of the routed design to the file named by VOSTRAND_TIMING, so that nobody has to
know the device or run the engine again: every cell, every connection with its delay, and the delays within cells. All in ps.
"""

import json
import os

import fabric


def picoseconds(nanoseconds):
    return round(nanoseconds * 1000)


def kind_of(cell, ports):
    if cell.type == "GENERIC_IOB":
        return "input" if ports["O"] is not None else "output"
    return "ff" if int(cell.params["FF_USED"]) else "lut"


def delays_along(net):
    """From a wire of the net to its delay from the net's source: the sum over the switches on the way. (The engine's
    own function for this cannot be called from Python.) None for a wire that the net does not reach."""
    switches = {wire: bound.pip for wire, bound in net.wires}
    delays = {}

    def delay_at(wire):
        if wire not in switches:
            return None
        if wire not in delays:
            switch = switches[wire]
            before = delay_at(ctx.getPipSrcWire(switch)) if switch else 0.0
            delays[wire] = None if before is None else before + (ctx.getPipDelay(switch).maxDelay() if switch else 0.0)
        return delays[wire]

    return delay_at


def collect():
    index, cells, arcs, unrouted = {}, [], [], 0
    for name, cell in sorted(ctx.cells, key=lambda entry: entry[0]):
        ports = {port: pin.net for port, pin in cell.ports}
        kind = kind_of(cell, ports)
        driven = ports.get({"ff": "Q", "lut": "F"}.get(kind))
        # Pads are named after their port, all others after the net they drive: the user knows these names.
        shown = name[:-len("$iob")] if name.endswith("$iob") else driven.name if driven is not None else name
        index[name] = len(cells)
        inputs = sum(1 for port, net in ports.items() if port.startswith("I[") and net is not None)
        cells.append({"kind": kind, "name": shown, "place": cell.bel,
                      # A flip-flop alone in its slice is reached through a LUT that only passes its input on.
                      "logic": kind in ("lut", "ff") and (kind == "lut" or inputs > 1)})
    for _, net in sorted(ctx.nets, key=lambda entry: entry[0]):
        if net.driver.cell is None:
            continue
        delay_at = delays_along(net)
        for user in net.users:
            delay = delay_at(ctx.getBelPinWire(user.cell.bel, user.port))
            if delay is None:
                unrouted += 1
            else:
                pin = user.port.replace("[", "").replace("]", "")
                arcs.append([index[net.driver.cell.name], index[user.cell.name], pin, picoseconds(delay)])
    delays = {"lut": [picoseconds(d) for d in fabric.LUT_DELAY], "setup": [picoseconds(d) for d in fabric.SETUP],
              "hold": picoseconds(fabric.HOLD), "clock_to_out": picoseconds(fabric.CLOCK_TO_OUT),
              "pad_out": picoseconds(fabric.PAD_OUT_DELAY)}
    return {"cells": cells, "arcs": arcs, "delays": delays, "unrouted": unrouted}


with open(os.environ["VOSTRAND_TIMING"], "w") as file:
    json.dump(collect(), file)
