#!/usr/bin/env bash
# Installs what is missing, builds, and runs the demonstration.
source "$(dirname "${BASH_SOURCE[0]}")/comun.sh"
instala_dependencias
construye -DKALO_PRUEBAS=OFF
"$CONSTRUCCION/examples/kaloimpresora-demo"
