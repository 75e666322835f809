# Draws the tables that growth.py prints: gnuplot -e "data='FILE'; picture='FILE'" growth.gp
set terminal svg size 900,960 font "sans,12" background "white"
set output picture
set multiplot layout 3,2
unset key
set grid
set logscale xy
set format x "%g"

set title "Log::fastAppend"
set xlabel "characters in a line"
set ylabel "lines per second"
plot data index 0 using 1:2 with linespoints pt 7

set format x "10^{%L}"
set title "SevenZip::listFiles"
set xlabel "entries"
set ylabel "seconds"
plot data index 1 using 1:2 with linespoints pt 7

set title "AsyncTaskProcessor, tasks that finish at once"
set xlabel "tasks"
set ylabel "seconds"
set key left top
plot data index 2 using 1:2 with linespoints pt 7 title "no parent", \
    data index 4 using 1:2 with linespoints pt 6 title "the processor as parent"
unset key

set title "AsyncTaskProcessor, all tasks waiting"
set xlabel "tasks"
set ylabel "MiB"
plot data index 3 using 1:2 with linespoints pt 7

set title "System::getDirectorySize"
set xlabel "files"
set ylabel "seconds"
set key left top
plot data index 5 using 1:2 with linespoints pt 7 title "1,000 files in a folder", \
    data index 7 using 1:2 with linespoints pt 6 title "all files in one folder"

set title "System::getDirectorySize, peak of the memory"
set ylabel "MiB"
unset logscale y
set yrange [0:2<*]
plot data index 6 using 1:2 with linespoints pt 7 title "1,000 files in a folder", \
    data index 8 using 1:2 with linespoints pt 6 title "all files in one folder"
unset multiplot
