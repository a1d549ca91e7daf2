# A throw-away machine: sourced by scripts that test units and packages. What it shows of this machine is
# read-only; all that is written stays in memory, and all of it ends with the script, however that ends.
#   enter_private_world NAME "$0" "$@"   goes on as process 1 of private namespaces; ends 77 where that is impossible
#   make_root                            prepares the container's file system at $container_root
#   boot                                 starts it and waits until it is up; ends 77 where nspawn cannot work
#   start_without_systemd, shut_down     the same without a service manager, and its end
#   inside COMMAND...                    runs a command in it
#   make_packages BUILD-DIRECTORY        puts the Debian packages of a build into it, sets $version
#   make_ordinary, install_packages, purge_packages, as dpkg does it there
# shellcheck shell=bash

container_root=/run/container/root
boot_patience=120
# An answer may need the whole machine to itself; only a failing test waits that long.
# shellcheck disable=SC2034 # for the scripts
patience=60
packages=(reticled reticle-tools libreticle-client-dev python3-reticle-client)

# Also where a command's output is thrown away while it is tried again, failures are told.
exec 3>&2

fail() {
    echo "FAILED: $*" >&3
    exit 1
}

ok() {
    echo "ok: $*"
}

not_tested() {
    echo "NOT TESTED: $world_name: $*" >&3
    exit 77
}

# Runs a command until it succeeds, for a bounded time.
#   eventually SECONDS WHAT COMMAND...
eventually() {
    local end=$((SECONDS + $1)) what=$2
    shift 2
    until "$@" >/dev/null 2>&1; do
        [ $SECONDS -lt $end ] || fail "$what: not within the bound"
        sleep 0.1
    done
}

require_tools() {
    local tool
    for tool in systemd-nspawn systemd-analyze nsenter unshare pgrep ss; do
        command -v $tool >/dev/null || not_tested "$tool is missing, scripts/bootstrap installs it"
    done
}

# In the first of two nested steps: mounts that nobody else sees, and a control group, which everybody sees.
hold_control_group() {
    mount --make-rprivate /
    if [ "$(stat -f -c %T /sys/fs/cgroup)" != cgroup2fs ]; then
        umount -R /sys/fs/cgroup 2>/dev/null || true
        mount -t cgroup2 cgroup2 /sys/fs/cgroup || not_tested "no unified control groups"
    fi
    control_group=/sys/fs/cgroup/$world_name.$$
    mkdir "$control_group" || not_tested "no control group can be made"
}

leave_control_group() {
    local tries
    [ -z "${inner-}" ] || kill -KILL "$inner" 2>/dev/null || true
    for tries in $(seq 100); do
        find "$control_group" -depth -type d -exec rmdir {} + 2>/dev/null || true
        [ -d "$control_group" ] || return 0
        sleep 0.1
    done
    echo "left behind after $tries tries: $control_group" >&2
}

enter_private_world() {
    world_name=$1
    local script=$2 status=0
    shift 2
    case "${CONTAINER_STEP-}" in
        "")
            [ "$(id -u)" -eq 0 ] || not_tested "needs root"
            require_tools
            CONTAINER_STEP=mounts exec unshare --mount "$script" "$@"
            not_tested "no private namespaces"
            ;;
        mounts)
            hold_control_group
            trap leave_control_group EXIT
            trap 'exit 130' INT TERM HUP
            # Whoever is killed takes the next one along, and with it the whole process namespace.
            CONTAINER_STEP=processes bash -c 'echo $$ >"$1/cgroup.procs" && shift && exec "$@"' bash \
                "$control_group" setpriv --pdeathsig KILL unshare --pid --fork --kill-child=KILL --mount --mount-proc \
                "$script" "$@" &
            inner=$!
            wait "$inner" || status=$?
            exit "$status"
            ;;
        processes) unset CONTAINER_STEP ;;
    esac
}

make_root() {
    mount -t tmpfs tmpfs /run
    mkdir -p "$container_root" /run/container/upper /run/container/work
    mount -t overlay overlay -o lowerdir=/,upperdir=/run/container/upper,workdir=/run/container/work \
        "$container_root" || not_tested "no overlay on the root file system"
    # This machine's own services stay out.
    rm -rf "$container_root/etc/systemd/system" "$container_root"/etc/systemd/*.conf.d
    mkdir -p "$container_root/etc/systemd/system" "$container_root/etc/systemd/journald.conf.d"
    printf '[Journal]\nStorage=volatile\n' >"$container_root/etc/systemd/journald.conf.d/volatile.conf"
    : >"$container_root/etc/fstab"
    tr -d - </proc/sys/kernel/random/uuid >"$container_root/etc/machine-id"
}

# Takes the place of the calling subshell.
nspawn() {
    exec systemd-nspawn --quiet --directory="$container_root" --register=no --keep-unit --private-network \
        --link-journal=no --resolv-conf=off --timezone=off --console=pipe "$@" </dev/null
}

# Process 1 of the container is a child of nspawn.
find_leader() {
    local pid
    for pid in $(pgrep -P "$nspawn_pid"); do
        if grep -qE '^NSpid:.*[[:space:]]1$' "/proc/$pid/status"; then
            leader=$pid
            return 0
        fi
    done
    return 1
}

is_up() {
    kill -0 "$nspawn_pid" 2>/dev/null || fail "the container ended: $(cat /run/container/console)"
    find_leader && [[ $(inside systemctl is-system-running 2>/dev/null) =~ ^(running|degraded)$ ]]
}

require_nspawn() {
    (nspawn --as-pid2 /bin/true) >/run/container/console 2>&1 ||
        not_tested "systemd-nspawn cannot run a command: $(tail -n 3 /run/container/console)"
}

boot() {
    require_nspawn
    nspawn --boot systemd.unit=multi-user.target >/run/container/console 2>&1 &
    nspawn_pid=$!
    eventually $boot_patience "boot of the container" is_up
}

is_started() {
    kill -0 "$nspawn_pid" 2>/dev/null || fail "the container ended: $(cat /run/container/console)"
    find_leader && inside test -e /run/started
}

start_without_systemd() {
    require_nspawn
    nspawn --as-pid2 /bin/sh -c ': >/run/started && exec sleep infinity' >/run/container/console 2>&1 &
    nspawn_pid=$!
    eventually $boot_patience "start of the container" is_started
}

shut_down() {
    kill -KILL "$leader"
    wait "$nspawn_pid" 2>/dev/null || true
}

inside() {
    nsenter --target "$leader" --mount --uts --ipc --net --pid --cgroup --root --wd "$@"
}

make_packages() {
    cpack --config "$1/CPackConfig.cmake" -B /run/container/packages >/run/container/cpack 2>&1 ||
        fail "no packages: $(cat /run/container/cpack)"
    install -m 644 -D -t "$container_root/packages" /run/container/packages/*.deb
    # shellcheck disable=SC2034 # for the scripts
    version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$1/CMakeCache.txt")
}

# Images for containers leave manual pages out, and forbid packages to stop services.
make_ordinary() {
    rm -rf "$container_root"/etc/dpkg/dpkg.cfg.d "$container_root/usr/sbin/policy-rc.d"
    inside dpkg --purge "${packages[@]}" >/dev/null 2>&1
}

# install_packages PATTERN
install_packages() {
    inside sh -c "dpkg --install /packages/$1" >/run/container/dpkg 2>&1 || fail "$(cat /run/container/dpkg)"
}

purge_packages() {
    inside dpkg --purge "${packages[@]}" >/run/container/dpkg 2>&1 || fail "$(cat /run/container/dpkg)"
    # Debian's own presets are in the same directory, which dpkg knows under its other name, /lib.
    ! grep -v "directory '/usr/lib/systemd/system-preset' not empty" /run/container/dpkg | grep -iE 'warning|error' ||
        fail "the removal complains"
    # shellcheck disable=SC2016 # dpkg-query fills it in
    [ -z "$(inside dpkg-query -W -f '${Package} ' '*reticle*' 2>/dev/null)" ] || fail "dpkg knows the packages"
    ! inside getent passwd reticled || fail "the user is left"
    ! inside getent group reticled || fail "the group is left"
    is_quiet || fail "a process or port is left"
}

answers() {
    inside reticlectl --timeout 5 list
}

listens() {
    [ -n "$(inside ss -ltnH 'sport = :3451')" ]
}

is_quiet() {
    ! inside pgrep 'retic|rtos-sim' >/dev/null && ! listens
}

is_as_on_this_machine() {
    local here=/run/container/upper/$1 there=/$1
    [ "$(stat -c '%F %a %u %g' "$here")" = "$(stat -c '%F %a %u %g' "$there" 2>/dev/null)" ] || return 1
    if [ -L "$here" ]; then
        [ "$(readlink "$here")" = "$(readlink "$there")" ]
    elif [ -f "$here" ]; then
        cmp -s "$here" "$there"
    fi
}

# What every installation and removal leaves: records of dpkg, man-db and the log, and the copies that programs make of
# the lists of users before they change them.
bookkeeping='etc/(passwd|shadow|group|gshadow|subuid|subgid)-|etc/\.pwd\.lock'
bookkeeping+='|var/cache/man(/.*)?|var/lib/dpkg/(status|available)(-old)?|var/log(/.*)?'

# Names of all that was made, changed or removed in the container, short of the bookkeeping.
changed_files() {
    local name
    while IFS= read -r -d '' name; do
        is_as_on_this_machine "$name" || echo "$name"
    done < <(find /run/container/upper -mindepth 1 -printf '%P\0' | LC_ALL=C sort -z) | grep -vxE "$bookkeeping"
}
