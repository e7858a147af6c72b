#!/usr/bin/env bash
# A private print server for the tests: its own configuration, spool, cache,
# state and logs under one folder, listening only on 127.0.0.1 at a free port,
# with no browsing or sharing. The machine's own printers are never touched.
#
#   servidor_cups.sh inicia CARPETA [PID_A_VIGILAR]
#       Starts the server, prints "127.0.0.1:PUERTO" (the value for
#       CUPS_SERVER) and creates the queues below. When PID_A_VIGILAR is
#       given, the server is stopped as soon as that process ends, so a test
#       that crashes leaves nothing running.
#   servidor_cups.sh cola CARPETA NOMBRE [predeterminada] [PPD]
#       Adds a queue; "predeterminada" makes it the default destination. With
#       a PPD the queue has its paper sizes and printable areas (prueba.ppd
#       next to this script is meant for that); without one it is a raw queue.
#   servidor_cups.sh detiene CARPETA
#       Stops the server started in CARPETA.
#
# Queues write every job's document, as it came (a PDF, or a raw job's
# bytes), to CARPETA/trabajos/trabajo-ID.pdf, and the job's copies, title and
# options to CARPETA/trabajos/trabajo-ID.txt, through the small backend
# "archivo" next to this script.
set -euo pipefail

AQUI="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
CUPSD="${KALO_CUPSD:-$(command -v cupsd || echo /usr/sbin/cupsd)}"
LPADMIN="$(command -v lpadmin || echo /usr/sbin/lpadmin)"
SISTEMA_BIN=/usr/lib/cups

falla() { echo "servidor_cups: $*" >&2; exit 1; }

# Running and not a zombie: once this script has exited, cupsd's exit status
# may wait a while for someone to collect it.
vivo() {
    local estado
    estado="$(awk '{print $3}' "/proc/$1/stat" 2>/dev/null)" && [[ -n "$estado" && "$estado" != Z ]]
}

puerto_libre() {
    # A random high port that nothing answers on; cupsd failing to bind it
    # anyway (a race) is handled by the caller's retries.
    local p
    for _ in $(seq 1 50); do
        p=$((20000 + RANDOM % 40000))
        (echo >"/dev/tcp/127.0.0.1/$p") 2>/dev/null || { echo "$p"; return; }
    done
    echo "$p"
}

escribe_configuracion() {
    local dir="$1" puerto="$2"
    mkdir -p "$dir"/{conf,cache,spool/tmp,estado,registro,bin/backend,trabajos}
    chmod 0755 "$dir" "$dir/bin" "$dir/bin/backend"
    # Backends run as the unprivileged print user, which must be able to write here.
    chmod 0777 "$dir/trabajos"

    # The system's helpers (cups-exec and friends) with our own backend set.
    for sub in daemon filter monitor notifier cgi-bin; do
        [[ -e "$SISTEMA_BIN/$sub" ]] && ln -sfn "$SISTEMA_BIN/$sub" "$dir/bin/$sub"
    done
    install -m 0755 "$AQUI/archivo" "$dir/bin/backend/archivo"

    local usuario=""
    if [[ $(id -u) -eq 0 ]]; then
        usuario=$'User lp\nGroup lp'
    fi
    cat > "$dir/conf/cups-files.conf" <<EOF
ServerRoot $dir/conf
ServerBin $dir/bin
CacheDir $dir/cache
StateDir $dir/estado
RequestRoot $dir/spool
TempDir $dir/spool/tmp
AccessLog $dir/registro/access_log
ErrorLog $dir/registro/error_log
PageLog $dir/registro/page_log
Printcap
FileDevice Yes
CreateSelfSignedCerts No
SystemGroup root lpadmin $(id -gn)
$usuario
EOF
    cat > "$dir/conf/cupsd.conf" <<EOF
Listen 127.0.0.1:$puerto
LogLevel info
Browsing No
BrowseLocalProtocols none
DefaultShared No
WebInterface No
# Queues keep the paper their description gives, whatever the machine's locale.
DefaultPaperSize None
DefaultAuthType None
MaxJobs 0
PreserveJobHistory Yes
PreserveJobFiles No
JobRetryLimit 0
ErrorPolicy abort-job
<Location />
  Order allow,deny
  Allow 127.0.0.1
</Location>
<Policy default>
  <Limit All>
    Order allow,deny
    Allow 127.0.0.1
  </Limit>
</Policy>
EOF
}

espera_servidor() {
    local servidor="$1" pid="$2"
    for _ in $(seq 1 100); do
        vivo "$pid" || return 1
        lpstat -h "$servidor" -r >/dev/null 2>&1 && return 0
        sleep 0.05
    done
    return 1
}

agrega_cola() {
    local dir="$1" nombre="$2" predeterminada="${3:-}" ppd="${4:-}"
    local servidor modelo
    servidor="$(cat "$dir/servidor")"
    # Either way the backend receives the PDF exactly as the application wrote it.
    if [[ -n "$ppd" ]]; then modelo=(-P "$ppd"); else modelo=(-m raw); fi
    "$LPADMIN" -h "$servidor" -p "$nombre" -E -v "archivo:$dir/trabajos" "${modelo[@]}" 2>/dev/null
    if [[ "$predeterminada" == predeterminada ]]; then
        "$LPADMIN" -h "$servidor" -d "$nombre"
    fi
}

vigila() {
    local pid_vigilado="$1" pid_cupsd="$2"
    while vivo "$pid_vigilado" && vivo "$pid_cupsd"; do sleep 0.5; done
    kill "$pid_cupsd" 2>/dev/null || true
}

inicia() {
    local dir="$1" vigilado="${2:-}"
    [[ -x "$CUPSD" ]] || falla "no se encontró cupsd (paquete cups-daemon)"
    mkdir -p "$dir"
    dir="$(cd "$dir" && pwd)"
    local puerto pid
    for _ in 1 2 3; do
        puerto="$(puerto_libre)"
        escribe_configuracion "$dir" "$puerto"
        "$CUPSD" -f -c "$dir/conf/cupsd.conf" -s "$dir/conf/cups-files.conf" \
            </dev/null >"$dir/registro/cupsd.salida" 2>&1 &
        pid=$!
        echo "$pid" > "$dir/cupsd.pid"
        echo "127.0.0.1:$puerto" > "$dir/servidor"
        if espera_servidor "127.0.0.1:$puerto" "$pid"; then
            if [[ -n "$vigilado" ]]; then
                vigila "$vigilado" "$pid" </dev/null >/dev/null 2>&1 &
                disown
            fi
            echo "127.0.0.1:$puerto"
            return 0
        fi
        kill "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    done
    cat "$dir/registro/cupsd.salida" "$dir/registro/error_log" >&2 2>/dev/null || true
    falla "cupsd no arrancó"
}

detiene() {
    local dir="$1"
    [[ -f "$dir/cupsd.pid" ]] || return 0
    local pid
    pid="$(cat "$dir/cupsd.pid")"
    kill "$pid" 2>/dev/null || true
    for _ in $(seq 1 100); do
        vivo "$pid" || break
        sleep 0.05
    done
    rm -f "$dir/cupsd.pid"
}

case "${1:-}" in
    inicia) shift; inicia "$@" ;;
    cola) shift; agrega_cola "$@" ;;
    detiene) shift; detiene "$@" ;;
    *) falla "uso: $0 inicia CARPETA [PID] | cola CARPETA NOMBRE [predeterminada] | detiene CARPETA" ;;
esac
