"""KaloImpresora from Python: the component's objects, bound late by member
name as the old hosts bound them.

    import kaloimpresora
    imp = kaloimpresora.crea("KaloImpresora.Impresora")
    imp.Pantalla = False
    imp.IniciaDocumento()
    imp.Say(imp.Row(3), imp.Col(10), "Total")
    imp.FinDocumento()

Values: bool, int, float, str, None (Null), datetime (Date), Decimal
(Currency) and the component's objects, both ways; Vacio is the empty value
and Omitido leaves out an optional argument. Ref(valor) receives what a
member writes back into a by-reference argument. Failures raise
ErrorDeAutomatizacion with the runtime's error number and description.
"""

import ctypes
import datetime
import decimal
import os

from . import _biblioteca as _b

__all__ = ["crea", "Objeto", "Ref", "ErrorDeAutomatizacion", "MiembroDesconocido", "Vacio", "Omitido",
           "CodigoDeError"]


class ErrorDeAutomatizacion(Exception):
    """A failure of the component: numero and descripcion as the runtime gives
    them, origen the member that failed, resultado the call's status code."""

    def __init__(self, numero, descripcion, origen="", resultado=_b.DISP_E_EXCEPTION):
        super().__init__(f"{numero}: {descripcion}" + (f" ({origen})" if origen else ""))
        self.numero = numero
        self.descripcion = descripcion
        self.origen = origen
        self.resultado = resultado


class MiembroDesconocido(ErrorDeAutomatizacion, AttributeError):
    """No member by that name (error 438); also an AttributeError, so
    hasattr and getattr with a default work."""


class _Marca:
    def __init__(self, nombre):
        self._nombre = nombre

    def __repr__(self):
        return self._nombre

    def __bool__(self):
        return False


Vacio = _Marca("Vacio")
Omitido = _Marca("Omitido")


class CodigoDeError(int):
    """A variant of the error type (other than an omitted argument)."""


class Ref:
    """A by-reference argument: valor holds what the member wrote back."""

    __slots__ = ("valor",)

    def __init__(self, valor=None):
        self.valor = valor

    def __repr__(self):
        return f"Ref({self.valor!r})"


_EPOCA = datetime.datetime(1899, 12, 30)
_DIEZ_MIL = decimal.Decimal(10000)


def _a_fecha(dias):
    # A negative date counts its day backwards and its time forwards.
    entero = int(dias)
    fraccion = abs(dias - entero)
    return _EPOCA + datetime.timedelta(days=entero) + datetime.timedelta(seconds=round(fraccion * 86400))


def _de_fecha(f):
    if not isinstance(f, datetime.datetime):
        f = datetime.datetime(f.year, f.month, f.day)
    if f.tzinfo is not None:
        f = f.replace(tzinfo=None)
    diferencia = f - _EPOCA
    dia = diferencia.days
    segundos = (f - datetime.datetime(f.year, f.month, f.day)).total_seconds()
    if dia < 0 and segundos:
        dia = (datetime.datetime(f.year, f.month, f.day) - _EPOCA).days
        return dia - segundos / 86400
    return dia + segundos / 86400


class _Api:
    """One loaded library and its handles."""

    def __init__(self, biblioteca):
        self.b = biblioteca

    def falla(self, resultado, error=None):
        if error is not None and error.numero:
            e = ErrorDeAutomatizacion(error.numero, _texto(error.descripcion), _texto(error.origen), resultado)
            self.b.kalo_error_limpia(ctypes.byref(error))
        else:
            descripcion = _b.DESCRIPCIONES.get(resultado, f"Error de automatización 0x{resultado & 0xFFFFFFFF:08X}")
            e = ErrorDeAutomatizacion(resultado, descripcion, "", resultado)
        if resultado in (_b.DISP_E_MEMBERNOTFOUND, _b.DISP_E_UNKNOWNNAME):
            e.__class__ = MiembroDesconocido
        raise e

    def a_variant(self, valor, destino, tipo=_b.CUALQUIERA):
        """A Python value into a Variant that holds nothing."""
        if isinstance(valor, Ref):
            valor = valor.valor
        if valor is None:
            destino.tipo = _b.OBJETO if tipo == _b.OBJETO else _b.NULO
            destino.v.objeto = None
        elif valor is Vacio:
            destino.tipo = _b.VACIO
        elif valor is Omitido:
            destino.tipo = _b.ERROR
            destino.v.error = _b.ARGUMENTO_OMITIDO
        elif isinstance(valor, bool):
            destino.tipo = _b.BOOLEANO
            destino.v.booleano = -1 if valor else 0
        elif isinstance(valor, CodigoDeError):
            destino.tipo = _b.ERROR
            destino.v.error = int(valor)
        elif isinstance(valor, int):
            if -2**31 <= valor < 2**31:
                destino.tipo = _b.LARGO
                destino.v.largo = valor
            else:
                destino.tipo = _b.DOBLE
                destino.v.doble = float(valor)
        elif isinstance(valor, float):
            destino.tipo = _b.DOBLE
            destino.v.doble = valor
        elif isinstance(valor, str):
            r = self.b.kalo_variant_texto(ctypes.byref(destino), valor.encode("utf-8"))
            if r != _b.S_OK:
                self.falla(r)
        elif isinstance(valor, decimal.Decimal):
            escalado = int((valor * _DIEZ_MIL).to_integral_value(decimal.ROUND_HALF_EVEN))
            if not -2**63 <= escalado < 2**63:
                raise ErrorDeAutomatizacion(6, "Desbordamiento")
            destino.tipo = _b.MONEDA
            destino.v.moneda = escalado
        elif isinstance(valor, (datetime.datetime, datetime.date)):
            destino.tipo = _b.FECHA
            destino.v.doble = _de_fecha(valor)
        elif isinstance(valor, Objeto):
            r = self.b.kalo_variant_objeto(ctypes.byref(destino), valor._h)
            if r != _b.S_OK:
                self.falla(r)
        else:
            raise TypeError(f"kaloimpresora no sabe pasar un {type(valor).__name__}")

    def de_variant(self, v):
        """A Variant's value in Python; the Variant keeps its contents."""
        t = v.tipo
        if t == _b.VACIO:
            return Vacio
        if t == _b.NULO:
            return None
        if t == _b.ENTERO:
            return v.v.entero
        if t == _b.LARGO:
            return v.v.largo
        if t == _b.SENCILLO:
            return float(ctypes.c_float(v.v.sencillo).value)
        if t == _b.DOBLE:
            return v.v.doble
        if t == _b.MONEDA:
            return decimal.Decimal(v.v.moneda) / _DIEZ_MIL
        if t == _b.FECHA:
            return _a_fecha(v.v.doble)
        if t == _b.TEXTO:
            return _texto(v.v.texto)
        if t == _b.BOOLEANO:
            return v.v.booleano != 0
        if t == _b.ERROR:
            return Omitido if v.v.error == _b.ARGUMENTO_OMITIDO else CodigoDeError(v.v.error)
        if t == _b.OBJETO:
            if not v.v.objeto:
                return None
            r = self.b.kalo_agrega_referencia(v.v.objeto)
            if r != _b.S_OK:
                self.falla(r)
            return Objeto._envuelve(self, v.v.objeto)
        raise ErrorDeAutomatizacion(_b.DISP_E_BADVARTYPE, _b.DESCRIPCIONES[_b.DISP_E_BADVARTYPE])

    def invoca(self, h, dispid, llamada, argumentos, tipos=()):
        n = len(argumentos)
        vs = (_b.Variant * n)() if n else None
        try:
            for i, a in enumerate(argumentos):
                self.a_variant(a, vs[i], tipos[i] if i < len(tipos) else _b.CUALQUIERA)
            antes = [bytes(vs[i]) for i in range(n)] if any(isinstance(a, Ref) for a in argumentos) else None
            resultado = _b.Variant()
            error = _b.Error()
            r = self.b.kalo_invoca(h, dispid, llamada, vs, n, ctypes.byref(resultado), ctypes.byref(error))
            if r != _b.S_OK:
                self.falla(r, error)
            try:
                if antes is not None:
                    for i, a in enumerate(argumentos):
                        if isinstance(a, Ref) and bytes(vs[i]) != antes[i]:
                            a.valor = self.de_variant(vs[i])
                return self.de_variant(resultado)
            finally:
                self.b.kalo_variant_limpia(ctypes.byref(resultado))
        finally:
            for i in range(n):
                self.b.kalo_variant_limpia(ctypes.byref(vs[i]))


def _texto(puntero):
    return ctypes.string_at(puntero).decode("utf-8") if puntero else ""


class _Clase:
    """What an object of one class says about its members, by folded name."""

    def __init__(self, info):
        self.nombre = info.nombre_de_clase.decode("utf-8")
        self.miembros = {}
        for i in range(info.cuantos_miembros):
            m = info.miembros[i]
            tipos = tuple(m.parametros[k].tipo for k in range(m.cuantos_parametros))
            self.miembros[m.nombre.decode("utf-8").casefold()] = (m.dispid, m.clase, m.tipo, tipos)


_clases = {}


class _Metodo:
    __slots__ = ("_objeto", "_dispid", "_tipos", "_llamada")

    def __init__(self, objeto, dispid, tipos, llamada):
        self._objeto = objeto
        self._dispid = dispid
        self._tipos = tipos
        self._llamada = llamada

    def __call__(self, *argumentos):
        o = self._objeto
        return o._api.invoca(o._h, self._dispid, self._llamada, argumentos, self._tipos)


class Objeto:
    """An object of the component. Members are found by name,
    case-insensitively; properties read and assign as attributes, methods
    are called. Use it on the thread that created it."""

    __slots__ = ("_api", "_h", "_clase", "_ids", "__weakref__")

    @classmethod
    def _envuelve(cls, api, h):
        o = object.__new__(cls)
        object.__setattr__(o, "_api", api)
        object.__setattr__(o, "_h", h)
        object.__setattr__(o, "_ids", {})
        info = ctypes.POINTER(_b.InformacionDeTipo)()
        clase = None
        if api.b.kalo_describe(h, ctypes.byref(info)) == _b.S_OK:
            clave = ctypes.addressof(info.contents)
            clase = _clases.get(clave)
            if clase is None:
                clase = _clases[clave] = _Clase(info.contents)
        object.__setattr__(o, "_clase", clase)
        return o

    def __del__(self):
        h = getattr(self, "_h", None)
        if h:
            self._api.b.kalo_libera(h)

    def _miembro(self, nombre):
        if self._clase is not None:
            m = self._clase.miembros.get(nombre.casefold())
            if m is None:
                raise MiembroDesconocido(438, _b.DESCRIPCIONES[_b.DISP_E_UNKNOWNNAME], nombre,
                                         _b.DISP_E_UNKNOWNNAME)
            return m
        dispid = self._ids.get(nombre)
        if dispid is None:
            d = ctypes.c_int32()
            r = self._api.b.kalo_id_de_nombre(self._h, nombre.encode("utf-8"), ctypes.byref(d))
            if r != _b.S_OK:
                self._api.falla(r)
            dispid = self._ids[nombre] = d.value
        return (dispid, None, _b.CUALQUIERA, ())

    def __getattr__(self, nombre):
        if nombre.startswith("__"):
            raise AttributeError(nombre)
        dispid, clase, _, tipos = self._miembro(nombre)
        if clase in (_b.MIEMBRO_PROPIEDAD, _b.MIEMBRO_PROPIEDAD_OBJETO) or (
                clase == _b.MIEMBRO_PROPIEDAD_LECTURA and not tipos):
            return self._api.invoca(self._h, dispid, _b.LEE_PROPIEDAD, ())
        return _Metodo(self, dispid, tipos, _b.LLAMA_METODO | _b.LEE_PROPIEDAD)

    def __setattr__(self, nombre, valor):
        if nombre.startswith("_"):
            raise AttributeError(f"{nombre} no es un miembro del componente")
        dispid, clase, tipo, _ = self._miembro(nombre)
        por_referencia = clase == _b.MIEMBRO_PROPIEDAD_OBJETO or (clase is None and isinstance(valor, Objeto))
        llamada = _b.ASIGNA_REFERENCIA if por_referencia else _b.ASIGNA_VALOR
        self._api.invoca(self._h, dispid, llamada, (valor,), (_b.OBJETO if por_referencia else tipo,))

    def __call__(self, *argumentos):
        """The default member (dispatch id 0), as rs("campo") reads a field."""
        return self._api.invoca(self._h, 0, _b.LLAMA_METODO | _b.LEE_PROPIEDAD, argumentos)

    def __dir__(self):
        return sorted(m for m in (self._clase.miembros if self._clase else ()))

    def __repr__(self):
        return f"<kaloimpresora.Objeto {self._clase.nombre if self._clase else '?'}>"


_apis = {}


def _api(ruta):
    api = _apis.get(ruta)
    if api is None:
        api = _apis[ruta] = _Api(_b.carga(ruta))
    return api


def crea(identificador):
    """An object by program identifier ("KaloImpresora.Impresora") or class
    identifier. A class in the registry of components is created by its
    library's class factory; otherwise the library installed with this
    package (or named by KALO_BIBLIOTECA) creates it."""
    propia = os.environ.get("KALO_BIBLIOTECA")
    registro = None if propia else _b.busca_registro(identificador)
    if registro:
        api = _api(registro["Biblioteca"])
        clsid = _b.Guid()
        r = api.b.kalo_guid_de_texto(registro["IdDeClase"].encode("ascii"), ctypes.byref(clsid))
        if r != _b.S_OK:
            api.falla(r)
        fabrica = ctypes.c_void_p()
        r = api.b.DllGetClassObject(ctypes.byref(clsid), ctypes.byref(_b.IID_ICLASSFACTORY), ctypes.byref(fabrica))
        if r != _b.S_OK:
            api.falla(r)
        f = ctypes.cast(fabrica, ctypes.POINTER(_b.Fabrica))
        h = ctypes.c_void_p()
        r = f.contents.crea_instancia(f, ctypes.byref(h))
        if r != _b.S_OK:
            api.falla(r)
        return Objeto._envuelve(api, h.value)
    ruta = propia or _b.biblioteca_predeterminada()
    if not ruta:
        raise ErrorDeAutomatizacion(429, "El componente no puede crear el objeto", identificador,
                                    _b.REGDB_E_CLASSNOTREG)
    api = _api(ruta)
    h = ctypes.c_void_p()
    error = _b.Error()
    r = api.b.kalo_crea(identificador.encode("utf-8"), ctypes.byref(h), ctypes.byref(error))
    if r != _b.S_OK:
        api.falla(r, error)
    return Objeto._envuelve(api, h.value)
