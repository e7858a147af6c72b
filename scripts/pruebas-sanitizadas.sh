#!/usr/bin/env bash
# The whole test suite again, built with AddressSanitizer and
# UndefinedBehaviorSanitizer into its own folder. Any finding fails the run;
# only the font library's own leaks are suppressed (scripts/lsan-fuentes.supp).
source "$(dirname "${BASH_SOURCE[0]}")/comun.sh"
instala_dependencias
CONSTRUCCION="${KALO_CONSTRUCCION_SANITIZADA:-$RAIZ/build-sanitizada}"
# vptr needs the type information the library keeps hidden; float-cast-overflow
# is not part of g++'s "undefined". The fuzz targets carry their own
# sanitizers and are built by the plain build.
SANITIZADORES="-fsanitize=address,undefined,float-cast-overflow -fno-sanitize=vptr -fno-sanitize-recover=all -fno-omit-frame-pointer"
# -O1 and line tables only: quicker to build, and enough for the reports.
construye -DKALO_PRUEBAS=ON -DKALO_FUZZ=OFF -DCMAKE_BUILD_TYPE=Sanitizada \
    -DCMAKE_CXX_FLAGS="$SANITIZADORES -O1 -g1" \
    -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined" \
    -DCMAKE_SHARED_LINKER_FLAGS="-fsanitize=address,undefined"
export QT_QPA_PLATFORM=offscreen
export ASAN_OPTIONS="detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
export LSAN_OPTIONS="suppressions=$RAIZ/scripts/lsan-fuentes.supp:print_suppressions=0"
# The installation test builds a host without the sanitizers, and Python is
# one too: neither can load a sanitized library. The plain build runs both.
ctest --test-dir "$CONSTRUCCION" --output-on-failure --parallel "$(nproc)" -E '^(Instalacion|Python)\.'

