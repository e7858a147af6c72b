"""Calls per second from Python through the package, late-bound by name:
Say on a document printed to PDF in a scratch folder, a helper that returns
text, and a property read.

    KALO_BIBLIOTECA=build-bancos/src/libkaloimpresora.so PYTHONPATH=python \\
        python3 bench/banco_python.py
"""

import os
import shutil
import tempfile
import time

carpeta = tempfile.mkdtemp(prefix="banco-python-")
# Never the machine's printers: the default printer is the PDF one here.
os.environ["CUPS_SERVER"] = "127.0.0.1:1"
os.environ["KALO_CARPETA_DE_IMPRESOS"] = carpeta
os.environ.setdefault("QT_QPA_PLATFORM", "offscreen")

import kaloimpresora  # noqa: E402  (after the environment above)

SEGUNDOS = float(os.environ.get("KALO_SEGUNDOS", "2"))


def mide(nombre, llamada):
    llamada(0)  # the first call loads and prepares what later ones reuse
    n, inicio = 0, time.perf_counter()
    while True:
        for _ in range(100):
            llamada(n)
            n += 1
        transcurrido = time.perf_counter() - inicio
        if transcurrido >= SEGUNDOS:
            break
    print(f"{nombre:<28} {n / transcurrido:>12,.0f} llamadas/s  ({transcurrido / n * 1e6:.2f} µs cada una)")


imp = kaloimpresora.crea("KaloImpresora.Impresora")
imp.Pantalla = False
imp.IniciaDocumento()
imp.EstableceFuente("DejaVu Sans", 10)


def say(i):
    if i % 60 == 59:
        imp.PaginaNueva()
    imp.Say(1 + (i % 60) / 6, 1.0, "Total a pagar")


mide("Say (a PDF)", say)
mide("Replicate", lambda i: imp.Replicate("ab", 3))
mide("Lee FormaAncho", lambda i: imp.FormaAncho)
imp.FinDocumento()
shutil.rmtree(carpeta, ignore_errors=True)
