# Shared by the project's scripts: install what is missing, then configure and build.
set -euo pipefail
RAIZ="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
CONSTRUCCION="${KALO_CONSTRUCCION:-$RAIZ/build}"

instala_dependencias() {
    local faltan=()
    while read -r paquete; do
        [[ -z "$paquete" || "$paquete" == \#* ]] && continue
        dpkg-query -W -f='${Status}' "$paquete" 2>/dev/null | grep -q 'install ok installed' || faltan+=("$paquete")
    done < "$RAIZ/scripts/paquetes-debian.txt"
    if ((${#faltan[@]})); then
        echo "Instalando: ${faltan[*]}"
        local sudo=""
        [[ $(id -u) -ne 0 ]] && sudo="sudo"
        $sudo apt-get update -qq
        DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${faltan[@]}"
    fi
}

construye() {
    cmake -S "$RAIZ" -B "$CONSTRUCCION" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
    cmake --build "$CONSTRUCCION" --parallel "$(nproc)"
}
