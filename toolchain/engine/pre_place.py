import fabric

fabric.set_timing(ctx)
fabric.place_clock_pads(ctx)
