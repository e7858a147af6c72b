"""The C boundary through ctypes: the library's structures and functions, and
where the library is found."""

import ctypes
import os

# Status codes (32-bit, as signed integers).
def _hr(valor):
    return ctypes.c_int32(valor).value


S_OK = 0
DISP_E_MEMBERNOTFOUND = _hr(0x80020003)
DISP_E_UNKNOWNNAME = _hr(0x80020006)
DISP_E_BADVARTYPE = _hr(0x80020008)
DISP_E_EXCEPTION = _hr(0x80020009)
DISP_E_BADPARAMCOUNT = _hr(0x8002000E)
E_INVALIDARG = _hr(0x80070057)
E_POINTER = _hr(0x80004003)
E_OUTOFMEMORY = _hr(0x8007000E)
REGDB_E_CLASSNOTREG = _hr(0x80040154)
RPC_E_WRONG_THREAD = _hr(0x8001010E)

# What a host sees for a status that carries no error of the runtime.
DESCRIPCIONES = {
    DISP_E_MEMBERNOTFOUND: "El objeto no admite esta propiedad o método",
    DISP_E_UNKNOWNNAME: "El objeto no admite esta propiedad o método",
    DISP_E_BADVARTYPE: "Tipo de variante no válido",
    E_INVALIDARG: "Argumento no válido (¿texto que no es UTF-8?)",
    E_OUTOFMEMORY: "Memoria insuficiente",
    REGDB_E_CLASSNOTREG: "El componente no puede crear el objeto",
    RPC_E_WRONG_THREAD: "El objeto pertenece a otro hilo",
}

VACIO, NULO, ENTERO, LARGO, SENCILLO, DOBLE, MONEDA, FECHA, TEXTO, OBJETO, ERROR, BOOLEANO = range(12)
CUALQUIERA, SIN_VALOR = 12, 24
ARGUMENTO_OMITIDO = 448

LLAMA_METODO, LEE_PROPIEDAD, ASIGNA_VALOR, ASIGNA_REFERENCIA = 1, 2, 4, 8
MIEMBRO_PROPIEDAD, MIEMBRO_PROPIEDAD_OBJETO, MIEMBRO_PROPIEDAD_LECTURA, MIEMBRO_METODO = range(4)


class _Valor(ctypes.Union):
    _fields_ = [
        ("entero", ctypes.c_int16),
        ("largo", ctypes.c_int32),
        ("sencillo", ctypes.c_float),
        ("doble", ctypes.c_double),
        ("moneda", ctypes.c_int64),
        ("error", ctypes.c_int32),
        ("booleano", ctypes.c_int16),
        ("texto", ctypes.c_void_p),
        ("objeto", ctypes.c_void_p),
    ]


class Variant(ctypes.Structure):
    _fields_ = [("tipo", ctypes.c_uint16), ("v", _Valor)]


class Error(ctypes.Structure):
    _fields_ = [("numero", ctypes.c_int32), ("descripcion", ctypes.c_void_p), ("origen", ctypes.c_void_p)]


class Guid(ctypes.Structure):
    _fields_ = [("dato1", ctypes.c_uint32), ("dato2", ctypes.c_uint16), ("dato3", ctypes.c_uint16),
                ("dato4", ctypes.c_uint8 * 8)]


class Parametro(ctypes.Structure):
    _fields_ = [("nombre", ctypes.c_char_p), ("tipo", ctypes.c_uint16), ("por_referencia", ctypes.c_uint8),
                ("opcional", ctypes.c_uint8), ("omision", ctypes.POINTER(Variant))]


class Miembro(ctypes.Structure):
    _fields_ = [("nombre", ctypes.c_char_p), ("dispid", ctypes.c_int32), ("clase", ctypes.c_uint16),
                ("tipo", ctypes.c_uint16), ("cuantos_parametros", ctypes.c_uint32),
                ("parametros", ctypes.POINTER(Parametro))]


class InformacionDeTipo(ctypes.Structure):
    _fields_ = [("nombre_de_clase", ctypes.c_char_p), ("cuantos_miembros", ctypes.c_uint32),
                ("miembros", ctypes.POINTER(Miembro))]


class Fabrica(ctypes.Structure):
    pass


_CREA_INSTANCIA = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.POINTER(Fabrica), ctypes.POINTER(ctypes.c_void_p))
_BLOQUEA = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.POINTER(Fabrica), ctypes.c_int32)
Fabrica._fields_ = [("tamano", ctypes.c_uint32), ("crea_instancia", _CREA_INSTANCIA), ("bloquea_servidor", _BLOQUEA)]

IID_ICLASSFACTORY = Guid(1, 0, 0, (ctypes.c_uint8 * 8)(0xC0, 0, 0, 0, 0, 0, 0, 0x46))


def _declara(b):
    c = ctypes
    firmas = {
        "DllRegisterServer": ([], c.c_int32),
        "DllUnregisterServer": ([], c.c_int32),
        "DllCanUnloadNow": ([], c.c_int32),
        "DllGetClassObject": ([c.POINTER(Guid), c.POINTER(Guid), c.POINTER(c.c_void_p)], c.c_int32),
        "kalo_guid_de_texto": ([c.c_char_p, c.POINTER(Guid)], c.c_int32),
        "kalo_variant_limpia": ([c.POINTER(Variant)], c.c_int32),
        "kalo_variant_texto": ([c.POINTER(Variant), c.c_char_p], c.c_int32),
        "kalo_variant_objeto": ([c.POINTER(Variant), c.c_void_p], c.c_int32),
        "kalo_error_limpia": ([c.POINTER(Error)], None),
        "kalo_crea": ([c.c_char_p, c.POINTER(c.c_void_p), c.POINTER(Error)], c.c_int32),
        "kalo_agrega_referencia": ([c.c_void_p], c.c_int32),
        "kalo_libera": ([c.c_void_p], c.c_int32),
        "kalo_id_de_nombre": ([c.c_void_p, c.c_char_p, c.POINTER(c.c_int32)], c.c_int32),
        "kalo_invoca": ([c.c_void_p, c.c_int32, c.c_uint16, c.POINTER(Variant), c.c_uint32,
                         c.POINTER(Variant), c.POINTER(Error)], c.c_int32),
        "kalo_describe": ([c.c_void_p, c.POINTER(c.POINTER(InformacionDeTipo))], c.c_int32),
    }
    for nombre, (argumentos, resultado) in firmas.items():
        f = getattr(b, nombre)
        f.argtypes = argumentos
        f.restype = resultado
    return b


_cargadas = {}


def carga(ruta):
    """The library at ruta, loaded once per process."""
    ruta = os.path.abspath(ruta)
    if ruta not in _cargadas:
        _cargadas[ruta] = _declara(ctypes.CDLL(ruta, mode=ctypes.RTLD_LOCAL))
    return _cargadas[ruta]


# ---- The registry of components ------------------------------------------

def carpetas_de_registro():
    """Where registrations are looked for, the user's folder first."""
    datos = os.environ.get("XDG_DATA_HOME") or os.path.join(os.path.expanduser("~"), ".local", "share")
    sistema = os.environ.get("XDG_DATA_DIRS") or "/usr/local/share:/usr/share"
    carpetas = [datos] + [d for d in sistema.split(":") if d]
    return [os.path.join(d, "kaloimpresora", "componentes") for d in carpetas]


def _lee_registro(ruta):
    registro = {}
    try:
        with open(ruta, encoding="utf-8") as f:
            for linea in f:
                if linea.startswith("#") or "=" not in linea:
                    continue
                clave, valor = linea.split("=", 1)
                registro[clave.strip()] = valor.strip()
    except OSError:
        return None
    return registro if registro.get("IdDeClase") and registro.get("Biblioteca") else None


def busca_registro(identificador):
    """The registration of a class by program or class identifier, or None."""
    ident = identificador.strip()
    clase = ident.strip("{}").upper()
    es_clase = len(clase) == 36 and clase.count("-") == 4
    for carpeta in carpetas_de_registro():
        if es_clase:
            r = _lee_registro(os.path.join(carpeta, clase + ".clase"))
            if r:
                return r
            continue
        try:
            archivos = sorted(os.listdir(carpeta))
        except OSError:
            continue
        for archivo in archivos:
            if archivo.endswith(".clase"):
                r = _lee_registro(os.path.join(carpeta, archivo))
                if r and r.get("IdDePrograma", "").lower() == ident.lower():
                    return r
    return None


def biblioteca_predeterminada():
    """KALO_BIBLIOTECA, else the library installed with this package."""
    propia = os.environ.get("KALO_BIBLIOTECA")
    if propia:
        return propia
    try:
        from . import _instalacion
    except ImportError:
        return None
    ruta = os.path.normpath(os.path.join(os.path.dirname(__file__), _instalacion.BIBLIOTECA_RELATIVA))
    return ruta if os.path.exists(ruta) else None
