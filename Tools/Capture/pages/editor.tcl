# A window with a text: wish editor.tcl FILE
wm title . editor
set file [open [lindex $argv 0] r]
fconfigure $file -encoding utf-8
text .text -font {{DejaVu Sans} 12} -wrap word
.text insert end [read $file]
close $file
pack .text -expand yes -fill both
focus -force .text
