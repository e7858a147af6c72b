"""The Python package over the C boundary: a document printed to PDF, values
both ways, write-back, errors, threads, and creation through the registry of
components in another process. ctest gives KALO_BIBLIOTECA, a private
KALO_CARPETA_DE_IMPRESOS and XDG_DATA_HOME, and a print server that does not
exist."""

import ctypes
import datetime
import decimal
import os
import subprocess
import sys
import tempfile
import threading
import unittest

import kaloimpresora as k
from kaloimpresora import _biblioteca

IMPRESORA_CLSID = "{E94BEC84-E327-4A16-913B-8FBDD11090A8}"


def paginas_del_pdf(ruta):
    with open(ruta, "rb") as f:
        datos = f.read()
    return datos.count(b"/Type /Page") - datos.count(b"/Type /Pages")


class Documento(unittest.TestCase):
    def test_dos_paginas_en_pdf_por_nombre(self):
        carpeta = os.environ["KALO_CARPETA_DE_IMPRESOS"]
        antes = set(os.listdir(carpeta)) if os.path.isdir(carpeta) else set()
        imp = k.crea("KaloImpresora.Impresora")
        imp.Pantalla = False
        imp.iniciadocumento()  # names in any case
        imp.EstableceFuente("DejaVu Sans", 12)
        imp.Say(imp.Row(3), imp.Col(10), "Total")
        imp.PaginaNueva()
        imp.Say(imp.Row(5), imp.Col(10), "Segunda página")
        imp.FinDocumento()
        nuevos = sorted(set(os.listdir(carpeta)) - antes)
        self.assertEqual(len(nuevos), 1, nuevos)
        self.assertEqual(paginas_del_pdf(os.path.join(carpeta, nuevos[0])), 2)


class Conversiones(unittest.TestCase):
    def setUp(self):
        self.imp = k.crea("KaloImpresora.Impresora")

    def test_ida_y_vuelta_por_propiedades(self):
        casos = [
            ("Pantalla", True, True),
            ("Pantalla", 0, False),
            ("Documento", 7, 7),
            ("Documento", "12", 12),  # a numeric text is a number
            ("PaperOrientation", 2, 2),
            ("nRow", 2.5, 2.5),
            ("nRow", decimal.Decimal("1.2345"), 1.2345),
            ("strTemp", "año ñ €", "año ñ €"),
            ("strTemp", 3.5, "3.5"),
            ("FechaInicial", datetime.datetime(2024, 2, 29, 6, 30), datetime.datetime(2024, 2, 29, 6, 30)),
            ("FechaInicial", datetime.date(1999, 12, 31), datetime.datetime(1999, 12, 31)),
            ("FechaInicial", datetime.datetime(1899, 12, 29, 6, 0), datetime.datetime(1899, 12, 29, 6, 0)),
        ]
        for propiedad, valor, esperado in casos:
            with self.subTest(propiedad=propiedad, valor=valor):
                setattr(self.imp, propiedad, valor)
                leido = getattr(self.imp, propiedad)
                self.assertEqual(leido, esperado)
                self.assertIs(type(leido), type(esperado))

    def test_valores_que_llegan_al_componente(self):
        casos = [
            (decimal.Decimal("1234.5"), "0.00", "1234.50"),
            (datetime.datetime(2024, 3, 5, 13, 30), "yyyy-mm-dd hh:nn", "2024-03-05 13:30"),
            (-3, "0", "-3"),
            (2**40, "0", str(2**40)),
            (True, "0", "-1"),
        ]
        for valor, formato, esperado in casos:
            with self.subTest(valor=valor):
                self.assertEqual(self.imp.Formato(valor, formato), esperado)

    def test_valores_que_vuelven_de_un_recordset(self):
        cn = k.crea("ADODB.Connection")
        cn.Open("Data Source=:memory:")
        rs = self.imp.rst("SELECT 7 AS siete, 'ñu' AS texto, NULL AS nada, 2.5 AS medio", cn)
        self.assertEqual([rs(c).Value for c in ("siete", "texto", "nada", "medio")], [7, "ñu", None, 2.5])
        self.assertIsInstance(rs, k.Objeto)

    def test_objetos_y_nothing(self):
        self.assertIsNone(self.imp.Imagen1)
        p = k.crea("KaloImpresora.ParamData")
        p.BusquedaIni = "A001"
        self.imp.ParamData = p
        self.assertEqual(self.imp.ParamData.BusquedaIni, "A001")
        self.imp.ParamData = None
        self.assertIsNone(self.imp.ParamData)

    def test_variantes_que_python_no_tiene(self):
        api = k._api(os.environ["KALO_BIBLIOTECA"])
        v = _biblioteca.Variant()
        casos = [
            (_biblioteca.MONEDA, "moneda", -12345678, decimal.Decimal("-1234.5678")),
            (_biblioteca.ENTERO, "entero", -2, -2),
            (_biblioteca.VACIO, "largo", 0, k.Vacio),
            (_biblioteca.ERROR, "error", 448, k.Omitido),
            (_biblioteca.ERROR, "error", 7, 7),
        ]
        for tipo, campo, crudo, esperado in casos:
            with self.subTest(tipo=tipo, crudo=crudo):
                v.tipo = tipo
                setattr(v.v, campo, crudo)
                self.assertEqual(api.de_variant(v), esperado)

    def test_por_referencia(self):
        destino = k.Ref("a b c")
        self.assertEqual(self.imp.Cambia("-", " ", destino), "a-b-c")
        self.assertEqual(destino.valor, "a-b-c")
        quieto = k.Ref("sin comillas")
        self.imp.Quote(quieto)
        self.assertEqual(quieto.valor, "sin comillas")

    def test_optativo_omitido(self):
        self.assertEqual(self.imp.Letra(21, "DÓLARES", False, k.Omitido), "VEINTIÚN DÓLARES")
        self.assertEqual(self.imp.Letra(21, "DÓLARES", False), "VEINTIÚN DÓLARES")


class Errores(unittest.TestCase):
    def setUp(self):
        self.imp = k.crea("KaloImpresora.Impresora")

    def test_numero_y_descripcion(self):
        casos = [
            (lambda: self.imp.Say("abc", 1, "x"), 13, "No coinciden los tipos"),
            (lambda: self.imp.Say(1), 449, "El argumento no es opcional"),
            (lambda: self.imp.Say(1, 2, 3, 4), 450, "Número de argumentos erróneo o asignación de propiedad no válida"),
            (lambda: k.crea("No.Existe"), 429, "El componente no puede crear el objeto"),
        ]
        for llamada, numero, descripcion in casos:
            with self.subTest(numero=numero):
                with self.assertRaises(k.ErrorDeAutomatizacion) as e:
                    llamada()
                self.assertEqual(e.exception.numero, numero)
                self.assertEqual(e.exception.descripcion, descripcion)

    def test_miembro_desconocido(self):
        with self.assertRaises(k.MiembroDesconocido) as e:
            self.imp.NoExiste()
        self.assertEqual(e.exception.numero, 438)
        self.assertFalse(hasattr(self.imp, "NoExiste"))
        self.assertTrue(hasattr(self.imp, "fontitalic"))

    def test_valor_que_no_se_puede_pasar(self):
        with self.assertRaises(TypeError):
            self.imp.strTemp = object()

    def test_otro_hilo(self):
        fallos = []

        def usa():
            try:
                self.imp.Pantalla = True
            except k.ErrorDeAutomatizacion as e:
                fallos.append(e.resultado)

        hilo = threading.Thread(target=usa)
        hilo.start()
        hilo.join()
        self.assertEqual(fallos, [_biblioteca.RPC_E_WRONG_THREAD])
        self.assertFalse(self.imp.Pantalla)


class Registro(unittest.TestCase):
    def test_otro_proceso_crea_la_clase_por_el_registro(self):
        biblioteca = _biblioteca.carga(os.environ["KALO_BIBLIOTECA"])
        with tempfile.TemporaryDirectory() as datos:
            entorno = dict(os.environ, XDG_DATA_HOME=datos, XDG_DATA_DIRS=datos)
            del entorno["KALO_BIBLIOTECA"]
            guion = "import kaloimpresora as k; print(k.crea(%r).Replicate('ab', 3))"
            anterior = os.environ.get("XDG_DATA_HOME")
            os.environ["XDG_DATA_HOME"] = datos
            try:
                self.assertEqual(biblioteca.DllRegisterServer(), 0)
                for identificador in (IMPRESORA_CLSID.lower(), "KaloImpresora.Impresora"):
                    salida = subprocess.run([sys.executable, "-c", guion % identificador], env=entorno,
                                            capture_output=True, text=True, timeout=120)
                    self.assertEqual(salida.stdout.strip(), "ababab", salida.stderr)
                self.assertEqual(biblioteca.DllUnregisterServer(), 0)
            finally:
                if anterior is None:
                    del os.environ["XDG_DATA_HOME"]
                else:
                    os.environ["XDG_DATA_HOME"] = anterior
            salida = subprocess.run([sys.executable, "-c", guion % "KaloImpresora.Impresora"], env=entorno,
                                    capture_output=True, text=True, timeout=120)
            self.assertNotEqual(salida.returncode, 0)
            self.assertIn("429", salida.stderr)


if __name__ == "__main__":
    unittest.main()
