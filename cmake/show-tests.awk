# SPDX-License-Identifier: BSL-1.0
# Summarises CTest's log of GoogleTest programs: how many promises each program checked, which it skipped and why, and
# the output of those that failed.
{ sub(/\r$/, "") }

/^[0-9]+\/[0-9]+ Testing: / { program = $3; programs[++count] = program; lines = 0; blocks = 0; block = ""; next }
/^Output:$/ { inside = 1; getline; next }
/^<end of output>$/ { inside = 0; next }
!inside && /^Test (Failed|timeout)|^Test .*Exception/ { Report() }
!inside { next }

{ output[++lines] = $0 }
/^The record comes from another environment|^The public headers were not compiled/ { notes[program] = $0 }
/^\[ RUN      \] / { block = ""; reason = "" }
{ block = block $0 "\n" }
/: Skipped$/ { waiting = 1; next }
waiting { if (/^\[  SKIPPED \] / || $0 == "") waiting = 0; else reason = reason (reason == "" ? "" : " ") $0 }
/^\[  SKIPPED \] .*\([0-9]+ ms\)$/ { skipped[program] = skipped[program] "    skipped " $4 ": " reason "\n"; skips[program]++ }
/^\[  FAILED  \] .*\([0-9]+ ms\)$/ { failed[++blocks] = block; failures[program]++ }
/^\[  PASSED  \] [0-9]+ test/ { passed[program] = $4 }

function Report(    i) {
    printf "\n%s failed:\n", program
    for (i = 1; i <= blocks; i++) printf "%s", failed[i]
    if (blocks == 0) for (i = (lines > 60 ? lines - 59 : 1); i <= lines; i++) print output[i]
}

END {
    print ""
    for (i = 1; i <= count; i++) {
        name = programs[i]
        if (name in passed || failures[name] > 0)
            printf "%s: %d passed, %d skipped, %d failed\n", name, passed[name], skips[name], failures[name]
        printf "%s", skipped[name]
        if (name in notes) printf "%s: %s\n", name, notes[name]
    }
    print ""
}
