# shellcheck shell=bash
# shellcheck disable=SC2154,SC2034 # here comes from, and the identifiers go to, the sourcing run
# Sourced by the end-to-end runs after they set `here` (their directory); the build directory is
# their first argument, the environment as tests/e2e/run describes. Everything the runs make lives
# in a temporary directory removed at exit.

source_dir=$(cd "$here/../.." && pwd)
build=${1:-$source_dir/build-e2e}
mkdir -p "$build"
build=$(cd "$build" && pwd)
out=${E2E_OUT:-$build/e2e-shots}
timeout=${E2E_TIMEOUT:-30}

work=$(mktemp -d "${TMPDIR:-/tmp}/quillery-e2e.XXXXXX")
app_pid=
# Display servers and helpers the run started, stopped after the app, last one first.
server_pids=()

log() { echo "-- $*"; }

# Also from inside $(...), which is why it writes to standard error; callers there add "|| exit 1".
fail() {
    {
        echo "FAIL: $*"
        if [ -s "$work/app.log" ]; then
            echo "   last lines the app printed:"
            tail -n 20 "$work/app.log" | sed 's/^/   | /'
        fi
    } >&2
    exit 1
}

stop_process() { # PID
    kill "$1" 2>/dev/null || return 0
    for _ in $(seq 50); do
        kill -0 "$1" 2>/dev/null || break
        sleep 0.1
    done
    kill -KILL "$1" 2>/dev/null || true
    wait "$1" 2>/dev/null || true
}

cleanup() {
    local status=$? index
    [ -z "$app_pid" ] || stop_process "$app_pid"
    for ((index = ${#server_pids[@]} - 1; index >= 0; index--)); do
        stop_process "${server_pids[index]}"
    done
    if [ "$status" -ne 0 ] && [ -d "$out" ]; then
        cp "$work"/*.log "$out/" 2>/dev/null || true
    fi
    rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT TERM

wait_until() { # WHAT COMMAND...: polls for at most E2E_TIMEOUT seconds
    local deadline=$((SECONDS + timeout))
    until "${@:2}"; do
        [ "$SECONDS" -lt "$deadline" ] || fail "timed out after ${timeout}s waiting for $1"
        check_app_running "waiting for $1"
        sleep 0.2
    done
}

check_app_running() { # WHILE
    [ -n "$app_pid" ] || return 0
    kill -0 "$app_pid" 2>/dev/null && return 0
    local status=0
    wait "$app_pid" || status=$?
    app_pid=
    fail "the app exited with status $status while $1"
}

# Waits for the app to end after being told to quit, and fails unless it exits with status 0.
wait_for_quit() { # HOW
    local deadline=$((SECONDS + timeout)) status=0
    while kill -0 "$app_pid" 2>/dev/null; do
        [ "$SECONDS" -lt "$deadline" ] || fail "the app did not quit within ${timeout}s of $1"
        sleep 0.1
    done
    wait "$app_pid" || status=$?
    app_pid=
    [ "$status" -eq 0 ] || fail "the app exited with status $status after $1"
}

# Sets app and cli to the programs installed from the build into a temporary prefix.
install_programs() {
    if [ "${E2E_NO_BUILD:-0}" != 1 ]; then
        if [ ! -f "$build/CMakeCache.txt" ]; then
            cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
                -DQUILLERY_BUILD_TESTS=OFF -DQUILLERY_BUILD_BENCHMARKS=OFF >"$work/build.log" 2>&1 ||
                { cat "$work/build.log"; fail "could not configure $build"; }
        fi
        cmake --build "$build" --target quillery quillery-cli >"$work/build.log" 2>&1 ||
            { tail -n 40 "$work/build.log"; fail "could not build the programs in $build"; }
    fi
    local prefix=$work/prefix
    cmake --install "$build" --prefix "$prefix" >"$work/install.log" 2>&1 ||
        { cat "$work/install.log"; fail "cmake --install failed"; }
    app=$prefix/bin/quillery
    cli=$prefix/bin/quillery-cli
    { [ -x "$app" ] && [ -x "$cli" ]; } || fail "the install did not put quillery and quillery-cli in bin/"

    mkdir -p "$out"
    # Only what an earlier run left; the directory may be one the caller keeps other things in.
    rm -f "$out"/[0-9][0-9]-*.png "$out"/*.log "$out/final.json"
}

private_environment() {
    export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data \
        XDG_CACHE_HOME=$work/cache XDG_STATE_HOME=$work/state XDG_RUNTIME_DIR=$work/runtime
    mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$XDG_STATE_HOME"
    mkdir -m 700 "$XDG_RUNTIME_DIR"
    export LC_ALL=C.UTF-8
    unset DISPLAY WAYLAND_DISPLAY SESSION_MANAGER XDG_CURRENT_DESKTOP QT_STYLE_OVERRIDE \
        QT_QPA_PLATFORMTHEME QT_SCALE_FACTOR QT_SCREEN_SCALE_FACTORS QT_AUTO_SCREEN_SCALE_FACTOR \
        QT_FONT_DPI
}

# The notebook both runs start from, made with the installed quillery-cli: sets package, the
# identifiers groceries, projects and reading, and initial_tree.
initial_tree='Groceries
  Apples
  Bread
    Rye
Projects
  Garden
  Kitchen
Reading'

add_note() { # TEXT [PARENT]: prints the new note's identifier
    local arguments=(add "$package" --text "$1")
    [ $# -lt 2 ] || arguments+=(--parent "$2")
    "$cli" "${arguments[@]}" 2>>"$work/cli.log"
}

make_notebook() {
    package=$work/notes/Household.quillery
    mkdir -p "$(dirname "$package")"
    "$cli" new "$package" >/dev/null 2>>"$work/cli.log" || fail "quillery-cli new failed"
    groceries=$(add_note Groceries)
    projects=$(add_note Projects)
    reading=$(add_note Reading)
    add_note Apples "$groceries" >/dev/null
    local bread
    bread=$(add_note Bread "$groceries")
    add_note Rye "$bread" >/dev/null
    add_note Garden "$projects" >/dev/null
    add_note Kitchen "$projects" >/dev/null
    [ "$(outline)" = "$initial_tree" ] || fail "quillery-cli made an unexpected notebook:
$(outline)"
}

outline() { # the saved notebook as an indented outline
    "$cli" export --format json "$package" 2>>"$work/cli.log" | python3 "$here/tree.py" outline
}

# Waits until the package on disk (the app saves a moment after each change) holds the tree.
wait_for_tree() { # DESCRIPTION TREE
    local deadline=$((SECONDS + timeout)) now
    until now=$(outline || true) && [ "$now" = "$2" ]; do
        [ "$SECONDS" -lt "$deadline" ] || fail "$1: the saved notebook is not as expected after ${timeout}s.
--- expected
$2
--- saved
$now"
        check_app_running "$1"
        sleep 0.3
    done
}

# Exports the saved package to final.json in the output directory and checks that it holds the
# tree and no deleted notes.
check_saved_tree() { # TREE
    "$cli" export --format json "$package" >"$out/final.json" 2>>"$work/cli.log" ||
        fail "quillery-cli export could not read the saved package"
    local saved deleted
    saved=$(python3 "$here/tree.py" outline <"$out/final.json")
    [ "$saved" = "$1" ] || fail "the saved notebook is not as expected.
--- expected
$1
--- saved
$saved"
    deleted=$(python3 "$here/tree.py" outline --deleted <"$out/final.json")
    [ -z "$deleted" ] || fail "notes were deleted: $deleted"
}

check_placed() { # TEXT PARENT INDEX [IDENTIFIER]: where the one note reading TEXT was saved
    local found identifier parent index
    found=$(python3 "$here/tree.py" locate "$1" <"$out/final.json") ||
        fail "'$1' is not in the saved notebook once"
    read -r identifier parent index <<<"$found"
    [ "$parent $index" = "$2 $3" ] || fail "'$1' was saved as child $index of $parent, not $3 of $2"
    [ -z "${4:-}" ] || [ "$identifier" = "$4" ] || fail "'$1' came back as another note ($identifier)"
}

# A second start hands the notebook to the running app and ends; the caller checks the windows.
start_again() {
    local status=0
    timeout "$timeout" "$app" "$package" >>"$work/app.log" 2>&1 || status=$?
    [ "$status" -eq 0 ] || fail "a second start of the app exited with status $status"
}

# Runs the command and waits until the journal is written anew, whether or not the app saved on
# its own before.
save_with() { # WHAT COMMAND...
    local journal before
    journal=$(find "$package" -maxdepth 1 -name '*.journal' | head -n 1)
    [ -n "$journal" ] || fail "the package has no journal"
    before=$(stat -c '%i %Y' "$journal")
    "${@:2}" || fail "$1 failed"
    wait_until "$1 to write the journal" journal_changed "$journal" "$before"
}
journal_changed() { [ -f "$1" ] && [ "$(stat -c '%i %Y' "$1")" != "$2" ]; }

next_shot() { # NAME: sets shot to the next numbered screenshot file in the output directory
    shot_count=$((${shot_count:-0} + 1))
    shot=$(printf '%s/%02d-%s.png' "$out" "$shot_count" "$1")
}
