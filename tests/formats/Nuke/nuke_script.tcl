# Prints, as JSON, the nested lists of a Nuke script: an array of [class, [knob, ...]], a knob being the words of its
# command. A script is Tcl: what this can't take apart, no program can load.

proc commands {text} {
    set found {}
    set command ""
    foreach line [split $text \n] {
        append command $line \n
        if {![info complete $command]} continue
        if {[string trim $command] ne ""} { lappend found $command }
        set command ""
    }
    if {$command ne ""} { error "a brace or a quote is open at the end" }
    return $found
}

proc quoted {text} {
    return "\"[string map [list \\ \\\\ \" \\\" \n \\n \t \\t] $text]\""
}

proc nested {word} {
    if {[llength $word] == 0 || ([llength $word] == 1 && [lindex $word 0] eq $word)} { return [quoted $word] }
    return [words $word]
}

proc words {text} {
    set parts {}
    foreach word $text { lappend parts [nested $word] }
    return "\[[join $parts ,]\]"
}

set file [open [lindex $argv 0] r]
fconfigure $file -encoding utf-8 -translation lf
set script [read $file]
fconfigure stdout -encoding utf-8 -translation lf
set nodes {}
foreach node [commands $script] {
    if {[llength $node] != 2} { error "a node is a class and its knobs" }
    set knobs {}
    foreach knob [commands [lindex $node 1]] { lappend knobs [words $knob] }
    lappend nodes "\[[quoted [lindex $node 0]],\[[join $knobs ,]\]\]"
}
puts "\[[join $nodes ,]\]"
