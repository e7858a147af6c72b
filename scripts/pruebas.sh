#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test.
source "$(dirname "${BASH_SOURCE[0]}")/comun.sh"
instala_dependencias
construye -DKALO_PRUEBAS=ON
export QT_QPA_PLATFORM=offscreen
ctest --test-dir "$CONSTRUCCION" --output-on-failure --parallel "$(nproc)"
