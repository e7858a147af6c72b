#!/usr/bin/env bash
# A private PostgreSQL server for the tests: a cluster made with initdb in a
# temporary folder, listening only on a socket in that folder (no TCP port),
# with a database "kalo" that the user "kalo" owns and reaches without a
# password. The machine's own clusters are never touched.
#
#   servidor_postgres.sh inicia BASE [PID_A_VIGILAR]
#       Starts the server and writes the socket's folder into BASE/servidor
#       (the Host of a connection string). When the PostgreSQL programs are
#       not installed it writes the reason into BASE/motivo instead and ends
#       well, so that the tests can skip with it. With PID_A_VIGILAR the
#       server stops as soon as that process ends.
#   servidor_postgres.sh detiene BASE
#       Stops the server started for BASE and removes its folder.
#
# PostgreSQL refuses to run as root; run as root, the cluster belongs to the
# unprivileged user "nobody" (KALO_USUARIO_POSTGRES to choose another).
# KALO_POSTGRES_BIN names the folder of initdb and pg_ctl when the newest
# /usr/lib/postgresql/*/bin is not the one wanted.
set -euo pipefail

PUERTO=5432
USUARIO_SISTEMA="${KALO_USUARIO_POSTGRES:-nobody}"

falla() { echo "servidor_postgres: $*" >&2; exit 1; }

bin_postgres() {
    if [[ -n "${KALO_POSTGRES_BIN:-}" ]]; then echo "$KALO_POSTGRES_BIN"; return; fi
    local d
    d="$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1 || true)"
    if [[ -z "$d" ]] && command -v initdb >/dev/null; then d="$(dirname "$(command -v initdb)")"; fi
    echo "$d"
}

# Runs a server program as the cluster's owner.
como_duenio() {
    if [[ $(id -u) -eq 0 ]]; then
        runuser -u "$USUARIO_SISTEMA" -- "$@"
    else
        "$@"
    fi
}

vivo() {
    local estado
    estado="$(awk '{print $3}' "/proc/$1/stat" 2>/dev/null)" && [[ -n "$estado" && "$estado" != Z ]]
}

vigila() {
    local pid_vigilado="$1" bin="$2" carpeta="$3"
    while vivo "$pid_vigilado" && [[ -f "$carpeta/datos/postmaster.pid" ]]; do sleep 0.5; done
    como_duenio "$bin/pg_ctl" -D "$carpeta/datos" -m immediate stop >/dev/null 2>&1 || true
    rm -rf "$carpeta"
}

detiene() {
    local base="$1"
    [[ -f "$base/servidor" ]] || return 0
    local carpeta bin
    carpeta="$(cat "$base/servidor")"
    bin="$(bin_postgres)"
    if [[ -f "$carpeta/datos/postmaster.pid" && -x "$bin/pg_ctl" ]]; then
        como_duenio "$bin/pg_ctl" -D "$carpeta/datos" -m fast -w stop >/dev/null 2>&1 || true
    fi
    # Only a folder this script made.
    [[ "$(basename "$carpeta")" == kalo-postgres.* ]] && rm -rf "$carpeta"
    rm -f "$base/servidor"
}

inicia() {
    local base="$1" vigilado="${2:-}"
    mkdir -p "$base"
    base="$(cd "$base" && pwd)"
    detiene "$base"  # one left over by a run that was cut short
    rm -f "$base/motivo"

    local bin
    bin="$(bin_postgres)"
    if [[ -z "$bin" || ! -x "$bin/initdb" || ! -x "$bin/pg_ctl" ]]; then
        echo "no están instalados los programas del servidor PostgreSQL (initdb, pg_ctl; paquete postgresql)" \
            > "$base/motivo"
        cat "$base/motivo"
        return 0
    fi

    # Short and outside the build tree: a socket path has a length limit, and
    # the server's user must be able to reach the folder (so /tmp for root,
    # whose TMPDIR may be private).
    local temporal="${TMPDIR:-/tmp}" carpeta
    [[ $(id -u) -eq 0 ]] && temporal=/tmp
    carpeta="$(mktemp -d "$temporal/kalo-postgres.XXXXXX")"
    chmod 0755 "$carpeta"
    if [[ $(id -u) -eq 0 ]]; then
        id "$USUARIO_SISTEMA" >/dev/null 2>&1 || falla "no existe el usuario $USUARIO_SISTEMA"
        chown "$USUARIO_SISTEMA" "$carpeta"
    fi
    echo "$carpeta" > "$base/servidor"

    if ! como_duenio "$bin/initdb" -D "$carpeta/datos" -U kalo --auth=trust --no-locale -E UTF8 --no-sync \
            >"$carpeta/initdb.salida" 2>&1; then
        cat "$carpeta/initdb.salida" >&2
        falla "initdb no pudo crear el grupo de bases de datos en $carpeta"
    fi
    cat >> "$carpeta/datos/postgresql.conf" <<EOF
listen_addresses = ''
unix_socket_directories = '$carpeta'
port = $PUERTO
fsync = off
synchronous_commit = off
full_page_writes = off
logging_collector = off
EOF
    if ! como_duenio "$bin/pg_ctl" -D "$carpeta/datos" -l "$carpeta/registro" -w -t 30 start >/dev/null 2>&1; then
        cat "$carpeta/registro" >&2 2>/dev/null || true
        falla "el servidor no arrancó"
    fi
    if ! "$bin/psql" -h "$carpeta" -p "$PUERTO" -U kalo -d postgres -q -c "CREATE DATABASE kalo" >/dev/null 2>&1; then
        falla "no se pudo crear la base de datos de prueba"
    fi
    if [[ -n "$vigilado" ]]; then
        vigila "$vigilado" "$bin" "$carpeta" </dev/null >/dev/null 2>&1 &
        disown
    fi
    echo "$carpeta"
}

case "${1:-}" in
    inicia) shift; inicia "$@" ;;
    detiene) shift; detiene "$@" ;;
    *) falla "uso: $0 inicia BASE [PID] | detiene BASE" ;;
esac
