# The analyser's part of a timing analysis. It carries on after errors and always ends with 0, so everything runs within
# `analyse`, which says "@done" only when nothing failed.

proc analyse {body} {
  if {[catch {uplevel 1 $body} message]} {
    puts "Error: $message"
  } else {
    puts "@done"
  }
}

proc read_design {folder} {
  read_liberty $folder/cells.lib
  read_verilog $folder/design.v
  link_design design
  read_sdf $folder/delays.sdf
}

proc emit {args} { puts [join $args "\t"] }

# One line for the check of a preference and the points of its worst paths. The analyser gives a path for each input of a
# flip-flop's LUT; what counts is the worst at each flip-flop. `shift` is what the analysed slack exceeds the preference's
# by, in ns. Ports count as ends where `ports` is 1, and nothing else does then: paths from an input to an output belong
# to no preference.
proc check {preference kind paths shift shown ports} {
  set worst_at {}
  foreach path $paths {
    set pin [get_full_name [get_property $path endpoint]]
    if {([string first / $pin] < 0) != $ports} continue
    set slack [expr {[get_property $path slack] - $shift}]
    set end [lindex [split $pin /] 0]
    if {![dict exists $worst_at $end] || $slack < [lindex [dict get $worst_at $end] 0]} {
      dict set worst_at $end [list $slack $end $path]
    }
  }
  set failing 0
  set failing_sum 0.0
  dict for {end entry} $worst_at {
    set slack [lindex $entry 0]
    # Less than half a ps is noise.
    if {$slack < -0.0005} {
      incr failing
      set failing_sum [expr {$failing_sum - $slack}]
    }
  }
  set by_slack [lsort -real -index 0 [lsort -index 1 [dict values $worst_at]]]
  set worst [expr {[llength $by_slack] ? [lindex $by_slack 0 0] : 0.0}]
  emit @check $preference $kind [llength $by_slack] $failing $failing_sum $worst
  foreach entry [lrange $by_slack 0 [expr {$shown - 1}]] {
    emit @path [lindex $entry 0]
    foreach point [get_property [lindex $entry 2] points] {
      emit @point [get_full_name [get_property $point pin]] [get_property $point arrival]
    }
  }
}
