#!/bin/sh
# Runs on the device, in a folder with zelconv, device_load and, if there are any, recordings; results go to $OUT.
# Records, converts with the device's own files, and tries bad surroundings. Prints what it does and each exit status.
here=$(pwd)
out=${OUT:-/out}
mkdir -p "$out"
tracing=/sys/kernel/debug/tracing
zelconv=$here/zelconv

run() { # run NAME COMMAND...: output to NAME.log
    name=$1
    shift
    "$@" >"$out/$name.log" 2>&1
    echo "$name: status $?"
}

uname -srm
cp /proc/softirqs "$out/softirqs"

echo "== a recording of this device's perf, profile mode"
run record-profile perf record -o own.data -e cpu-clock -F 499 -a -g -- ./device_load
run own-profile "$zelconv" -b 0.001 -i own.data -o "$out/own-profile.json"

cp own.data "$out/"
echo "== trace-points of this device's perf, with markers, timechart mode"
echo nop >$tracing/current_tracer
echo >$tracing/trace
echo 1 >$tracing/tracing_on
echo "ZVIEW,1,session,begin, from sh" >$tracing/trace_marker
run record-trace perf record -o own-trace.data -c 1 -a -e sched:sched_switch -e sched:sched_wakeup \
    -e irq:softirq_entry -e irq:softirq_exit -e irq:irq_handler_entry -e irq:irq_handler_exit -- ./device_load
echo "ZVIEW,2,session,end" >$tracing/trace_marker
cp $tracing/trace own-trace.data "$out/"
export kern_ver=6.1
run own-trace "$zelconv" -t -q -i own-trace.data -o "$out/own-trace.json"

echo "== recordings in the old layout, with this device's own symbols and names"
for file in recordings/*.data; do
    [ -e "$file" ] || continue
    base=$(basename "$file" .data)
    run "$base-profile" "$zelconv" -b 0.001 -p "$here/recordings/rootfs" -i "$file" -o "$out/$base-profile.json"
    run "$base-timechart" "$zelconv" -t -q -i "$file" -o "$out/$base-timechart.json"
done

echo "== bad surroundings"
mkdir -p bin && for tool in sh cat; do ln -sf "$(command -v $tool)" bin/; done
run no-nm env PATH="$here/bin" "$zelconv" -b 1 -i recordings/cpu-clock-g.data -o "$out/no-nm.json"
# Restores the device's /tmp however this ends, even if the connection breaks.
give_tmp_back() { [ ! -d /tmp.away ] || mv /tmp.away /tmp; }
trap give_tmp_back EXIT
trap 'exit 1' HUP INT TERM
mv /tmp /tmp.away
run no-tmp "$zelconv" -b 1 -p "$here/recordings/rootfs" -i recordings/cpu-clock-g.data -o "$out/no-tmp.json"
give_tmp_back
mkdir -p small && mount -t tmpfs -o size=8k tmpfs small
run full-disk "$zelconv" -b 1 -i own.data -o small/full.json
run full-disk-verbose "$zelconv" -b 1 -v 1 -i own.data -o small/full.json
mount -o remount,ro small
run read-only "$zelconv" -b 1 -i own.data -o small/other.json
run read-only-verbose "$zelconv" -b 1 -v 1 -i own.data -o small/other.json
umount small
if [ -x /bin/busybox ] && [ -d recordings ]; then
    mkdir -p android/system/bin android/tmp android/data android/in
    cp /bin/busybox android/system/bin/sh
    printf '#!/system/bin/sh\necho 00010000 T from_system_shell\necho 00020000 T second_name\n' >android/system/bin/nm
    chmod +x android/system/bin/nm
    cp "$zelconv" recordings/cpu-clock-g.data android/data/
    cp recordings/rootfs/in/* android/in/
    run no-bin-sh env PATH=/system/bin /bin/busybox chroot android \
        /data/zelconv -b 1 -i /data/cpu-clock-g.data -o /data/out.json
    cp android/data/out.json "$out/android.json"
fi
umount /sys/kernel/debug/tracing /sys/kernel/debug 2>/dev/null
run no-tracing "$zelconv" -t -q -i own-trace.data -o "$out/no-tracing.json"
