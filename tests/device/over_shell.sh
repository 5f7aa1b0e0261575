#!/usr/bin/env bash
# Runs a command on a device that a shell command reaches: over_shell.sh IN_DIR OUT_DIR COMMAND
# DEVICE_SHELL is what runs something there and passes standard input and output on, such as "ssh root@board" or
# "adb shell -T". The folder goes there as a tar archive, and what the command leaves in $OUT comes back as one.
set -euo pipefail
: "${DEVICE_SHELL:?say how the device is reached, such as: DEVICE_SHELL='ssh root@board'}"
folder=${DEVICE_FOLDER:-/data/local/tmp/zelconv-session}
in=$1 out=$2 command=$3
tar -C "$in" -cf - . | $DEVICE_SHELL "rm -rf $folder && mkdir -p $folder/out && tar -C $folder -xf -"
status=0
$DEVICE_SHELL "cd $folder && export OUT=$folder/out && $command" || status=$?
mkdir -p "$out"
$DEVICE_SHELL "tar -C $folder/out -cf - ." | tar -C "$out" -xf -
exit $status
