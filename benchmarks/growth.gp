# SPDX-License-Identifier: Zlib
# gnuplot -e "data='FILE'; picture='FILE.svg'" growth.gp: what an item costs among how many, a line for each row.
set terminal svg size 900,560 font "sans-serif,13" background "white"
set output picture
set logscale xy
set xlabel "objects that exist"
set ylabel "nanoseconds an item"
set format y "%g"
set grid xtics ytics linecolor rgb "#dddddd"
set key outside right top noenhanced samplen 2
set style data linespoints
set xrange [80:80000]
stats data using 1 nooutput
# Seven colours that stay apart on white; what comes after them is dashed.
array colour[7] = ["#4477aa", "#ee6677", "#228833", "#ccaa00", "#66ccee", "#aa3377", "#777777"]
plot for [i=0:STATS_blocks-1] data index i using 1:2 linecolor rgb colour[i % 7 + 1] dashtype i / 7 + 1 linewidth 1.6 \
  pointtype i % 7 + 4 pointsize 0.6 \
  title columnheader(1)
