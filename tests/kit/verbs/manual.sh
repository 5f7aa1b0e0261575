#!/usr/bin/env bash
# manual.sh ZELKIT MANUAL: whether the manual's synopsis has exactly the options that each verb's --help has.
set -euo pipefail
zelkit=$1
manual=$2

verbs=$("$zelkit" --help | sed -n '/^Subcommands/,$ s/^  \([a-z]\+\) .*/\1/p')
[ "$(wc -w <<<"$verbs")" -ge 6 ] || { echo "no verbs in: $("$zelkit" --help)"; exit 1; }
status=0
for verb in $verbs; do
    told=$(sed -n '/^\.Sh SYNOPSIS/,/^\.Sh DESCRIPTION/p' "$manual" | sed -n "/^\.Cm $verb\$/,/^\.\(Nm\|Sh\)/p" |
        sed -n 's/^\.\(Op \)\?Fl -\?\([a-z]\+\).*/\2/p' | sort)
    has=$("$zelkit" "$verb" --help | sed -n 's/^  --\?\([a-z]\+\)[ =].*/\1/p' | sort)
    diff <(echo "$told") <(echo "$has") >/dev/null && continue
    echo "$verb: the manual has ${told//$'\n'/ } and the program has ${has//$'\n'/ }"
    status=1
done
exit "$status"
