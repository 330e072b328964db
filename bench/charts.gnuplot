# The pictures of docs/performance.md. Called with the variables results (a folder) and pages (a folder).
set datafile separator "\t"
set style fill solid 0.8 noborder
set grid xtics

set terminal pngcairo size 900,420 font "DejaVu Sans,10" enhanced
set output pages."/performance.png"
set title "Used of what each row may use, in per cent (100 is the target)"
set xrange [0:*]
set yrange [:] reverse
set arrow 1 from 100, graph 0 to 100, graph 1 nohead lw 2 lc rgb "#c0392b" front
plot results."/chart.tsv" using ($2/2):0:($2/2):(0.35):ytic(1) with boxxyerror lc rgb "#2e6da4" notitle, \
     "" using 2:0:(sprintf("  %.0f", $2)) with labels left notitle
unset arrow 1
set yrange [*:*] noreverse

set terminal pngcairo size 700,420 font "DejaVu Sans,10" enhanced
set key top left
set grid xtics ytics
set ytics nomirror
set y2tics
set y2label "most memory of the process, MiB"
set y2range [0:12]
set yrange [0:*]

set output pages."/performance-check.png"
set title "A check, by the size of the update-information file"
set xlabel "KB"
set ylabel "milliseconds"
plot results."/check.tsv" using 1:2 with linespoints lw 2 pt 7 lc rgb "#2e6da4" title "time", \
     "" using 1:($3/1024) axes x1y2 with linespoints lw 2 pt 5 dt 2 lc rgb "#777777" title "memory"

set logscale x
set logscale y
set yrange [*:*]

set output pages."/performance-download.png"
set title "A download with its dialog, by size"
set xlabel "MiB"
set ylabel "seconds"
plot results."/download.tsv" using 1:2 with linespoints lw 2 pt 7 lc rgb "#2e6da4" title "time", \
     "" using 1:($3/1024) axes x1y2 with linespoints lw 2 pt 5 dt 2 lc rgb "#777777" title "memory"

set output pages."/performance-log.png"
set title "The debug log, by the number of lines"
set xlabel "lines"
set ylabel "seconds"
plot results."/log.tsv" using 1:2 with linespoints lw 2 pt 7 lc rgb "#2e6da4" title "time", \
     "" using 1:($3/1024) axes x1y2 with linespoints lw 2 pt 5 dt 2 lc rgb "#777777" title "memory"
