/* The component for hosts in any language: plain C, reached with dlopen.

   Objects are opaque handles counted with kalo_agrega_referencia and
   kalo_libera; members are found by name (kalo_id_de_nombre) and called by
   dispatch id (kalo_invoca), exactly as an automation host binds late. Every
   function returns a 32-bit status code with its usual meaning (KALO_S_OK,
   or a failure below zero); none of them raises or aborts on bad input.

   An object is used on the thread that created it: any call about it from
   another thread returns KALO_RPC_E_WRONG_THREAD and changes nothing.

   A KaloVariant owns what it holds: its text (UTF-8, NUL-terminated, from
   the C library's malloc) and one reference to its object. Build texts with
   kalo_variant_texto and objects with kalo_variant_objeto; kalo_variant_limpia
   gives them back. */
#ifndef KALOIMPRESORA_KALOIMPRESORA_H
#define KALOIMPRESORA_KALOIMPRESORA_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define KALO_C_EXPORTA __attribute__((visibility("default")))
#else
#define KALO_C_EXPORTA
#endif

typedef int32_t KaloResultado;

#define KALO_S_OK ((KaloResultado)0)
#define KALO_S_FALSE ((KaloResultado)1)
#define KALO_E_NOTIMPL ((KaloResultado)0x80004001u)
#define KALO_E_NOINTERFACE ((KaloResultado)0x80004002u)
#define KALO_E_POINTER ((KaloResultado)0x80004003u)
#define KALO_E_FAIL ((KaloResultado)0x80004005u)
#define KALO_E_UNEXPECTED ((KaloResultado)0x8000FFFFu)
#define KALO_E_ACCESSDENIED ((KaloResultado)0x80070005u)
#define KALO_E_OUTOFMEMORY ((KaloResultado)0x8007000Eu)
#define KALO_E_INVALIDARG ((KaloResultado)0x80070057u)
#define KALO_DISP_E_MEMBERNOTFOUND ((KaloResultado)0x80020003u)
#define KALO_DISP_E_UNKNOWNNAME ((KaloResultado)0x80020006u)
#define KALO_DISP_E_BADVARTYPE ((KaloResultado)0x80020008u)
#define KALO_DISP_E_EXCEPTION ((KaloResultado)0x80020009u)
#define KALO_DISP_E_BADPARAMCOUNT ((KaloResultado)0x8002000Eu)
#define KALO_CLASS_E_CLASSNOTAVAILABLE ((KaloResultado)0x80040111u)
#define KALO_REGDB_E_CLASSNOTREG ((KaloResultado)0x80040154u)
#define KALO_SELFREG_E_CLASS ((KaloResultado)0x80040201u)
#define KALO_RPC_E_WRONG_THREAD ((KaloResultado)0x8001010Eu)

/* ---- Identities ------------------------------------------------------- */

typedef struct KaloGuid {
    uint32_t dato1;
    uint16_t dato2;
    uint16_t dato3;
    uint8_t dato4[8];
} KaloGuid;

#define KALO_ID_IMPRESORA "KaloImpresora.Impresora"
#define KALO_ID_PARAMDATA "KaloImpresora.ParamData"
#define KALO_CLSID_IMPRESORA_TEXTO "{E94BEC84-E327-4A16-913B-8FBDD11090A8}"
#define KALO_CLSID_PARAMDATA_TEXTO "{B3A1E471-9B00-448B-A06E-ABBC3C84DD1D}"
#define KALO_CLSID_IMPRESORA \
    { 0xE94BEC84u, 0xE327u, 0x4A16u, { 0x91u, 0x3Bu, 0x8Fu, 0xBDu, 0xD1u, 0x10u, 0x90u, 0xA8u } }
#define KALO_CLSID_PARAMDATA \
    { 0xB3A1E471u, 0x9B00u, 0x448Bu, { 0xA0u, 0x6Eu, 0xABu, 0xBCu, 0x3Cu, 0x84u, 0xDDu, 0x1Du } }
/* The interfaces a class factory is asked for. */
#define KALO_IID_IUNKNOWN \
    { 0x00000000u, 0x0000u, 0x0000u, { 0xC0u, 0x00u, 0x00u, 0x00u, 0x00u, 0x00u, 0x00u, 0x46u } }
#define KALO_IID_ICLASSFACTORY \
    { 0x00000001u, 0x0000u, 0x0000u, { 0xC0u, 0x00u, 0x00u, 0x00u, 0x00u, 0x00u, 0x00u, 0x46u } }

/* "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", braces optional, any case. */
KALO_C_EXPORTA KaloResultado kalo_guid_de_texto(const char* texto, KaloGuid* guid);

/* ---- Values ----------------------------------------------------------- */

/* Type tags, numbered as the runtime numbers its types. */
enum {
    KALO_VACIO = 0,
    KALO_NULO = 1,
    KALO_ENTERO = 2,   /* 16-bit */
    KALO_LARGO = 3,    /* 32-bit */
    KALO_SENCILLO = 4, /* float */
    KALO_DOBLE = 5,
    KALO_MONEDA = 6,   /* 64-bit, the value times 10,000 */
    KALO_FECHA = 7,    /* days since 30 December 1899 */
    KALO_TEXTO = 8,
    KALO_OBJETO = 9,   /* a handle, or NULL for Nothing */
    KALO_ERROR = 10,   /* KALO_ERROR with code 448 is an omitted optional */
    KALO_BOOLEANO = 11 /* -1 true, 0 false */
};
/* In type information only: any value, and no value at all. */
enum { KALO_CUALQUIERA = 12, KALO_SIN_VALOR = 24 };

#define KALO_ARGUMENTO_OMITIDO 448

typedef struct KaloObjeto KaloObjeto;

typedef struct KaloVariant {
    uint16_t tipo;
    union {
        int16_t entero;
        int32_t largo;
        float sencillo;
        double doble;
        int64_t moneda;
        double fecha;
        int32_t error;
        int16_t booleano;
        char* texto;
        KaloObjeto* objeto;
    } v;
} KaloVariant;

/* Empty, holding nothing. */
KALO_C_EXPORTA void kalo_variant_inicia(KaloVariant* variant);
/* Gives back its text or object and leaves it Empty. */
KALO_C_EXPORTA KaloResultado kalo_variant_limpia(KaloVariant* variant);
/* A copy of the text; KALO_E_INVALIDARG (and Empty) when it is not UTF-8. */
KALO_C_EXPORTA KaloResultado kalo_variant_texto(KaloVariant* variant, const char* utf8);
/* A new reference to the object (NULL: Nothing). */
KALO_C_EXPORTA KaloResultado kalo_variant_objeto(KaloVariant* variant, KaloObjeto* objeto);
/* The marker of an omitted optional argument. */
KALO_C_EXPORTA void kalo_variant_omitido(KaloVariant* variant);

/* A failure a member raised: the runtime's error number, its Spanish
   description and where it came from. Start zeroed; kalo_error_limpia frees
   the texts and zeroes it again. */
typedef struct KaloError {
    int32_t numero;
    char* descripcion;
    char* origen;
} KaloError;

KALO_C_EXPORTA void kalo_error_limpia(KaloError* error);

/* ---- Objects ---------------------------------------------------------- */

/* By program identifier ("KaloImpresora.Impresora") or class identifier,
   compared case-insensitively: KALO_REGDB_E_CLASSNOTREG for an unknown one.
   error may be NULL. */
KALO_C_EXPORTA KaloResultado kalo_crea(const char* identificador, KaloObjeto** objeto, KaloError* error);
KALO_C_EXPORTA KaloResultado kalo_agrega_referencia(KaloObjeto* objeto);
KALO_C_EXPORTA KaloResultado kalo_libera(KaloObjeto* objeto);

/* Dispatch id of a member, the name compared case-insensitively;
   KALO_DISP_E_UNKNOWNNAME when there is none. */
KALO_C_EXPORTA KaloResultado kalo_id_de_nombre(KaloObjeto* objeto, const char* nombre, int32_t* dispid);

/* How a member is called (the automation dispatch flags). */
enum {
    KALO_LLAMA_METODO = 1,
    KALO_LEE_PROPIEDAD = 2,
    KALO_ASIGNA_VALOR = 4,
    KALO_ASIGNA_REFERENCIA = 8
};

/* Calls a member. Arguments come in declaration order; trailing optionals
   may be left out, or passed with kalo_variant_omitido. A by-reference
   argument the member changes is written back in place (its old contents
   given back first). resultado, when not NULL, is overwritten, so pass one
   that holds nothing. A member's failure returns KALO_DISP_E_EXCEPTION and
   fills error (when not NULL); an unknown dispid gives
   KALO_DISP_E_MEMBERNOTFOUND, a wrong number of arguments
   KALO_DISP_E_BADPARAMCOUNT, both with the runtime's error in error too. */
KALO_C_EXPORTA KaloResultado kalo_invoca(KaloObjeto* objeto, int32_t dispid, uint16_t llamada,
                                         KaloVariant* argumentos, uint32_t cuantos, KaloVariant* resultado,
                                         KaloError* error);

/* ---- Type information ------------------------------------------------- */

enum {
    KALO_MIEMBRO_PROPIEDAD = 0,          /* get and let */
    KALO_MIEMBRO_PROPIEDAD_OBJETO = 1,   /* get and set */
    KALO_MIEMBRO_PROPIEDAD_LECTURA = 2,  /* get only, maybe with parameters */
    KALO_MIEMBRO_METODO = 3
};

typedef struct KaloParametro {
    const char* nombre;
    uint16_t tipo; /* a type tag, or KALO_CUALQUIERA */
    uint8_t por_referencia;
    uint8_t opcional;
    const KaloVariant* omision; /* default of an optional; NULL without one */
} KaloParametro;

typedef struct KaloMiembro {
    const char* nombre;
    int32_t dispid;
    uint16_t clase; /* KALO_MIEMBRO_* */
    uint16_t tipo;  /* of the property or the result; KALO_SIN_VALOR for none */
    uint32_t cuantos_parametros;
    const KaloParametro* parametros;
} KaloMiembro;

typedef struct KaloInformacionDeTipo {
    const char* nombre_de_clase;
    uint32_t cuantos_miembros;
    const KaloMiembro* miembros; /* in declaration order */
} KaloInformacionDeTipo;

/* The object's members; lives as long as the process. KALO_E_NOTIMPL for
   an object that cannot describe itself. */
KALO_C_EXPORTA KaloResultado kalo_describe(KaloObjeto* objeto, const KaloInformacionDeTipo** informacion);

/* ---- The in-process server -------------------------------------------- */

typedef struct KaloFabricaDeClase KaloFabricaDeClase;
struct KaloFabricaDeClase {
    uint32_t tamano; /* sizeof(KaloFabricaDeClase) */
    KaloResultado (*crea_instancia)(const KaloFabricaDeClase* fabrica, KaloObjeto** objeto);
    /* Nonzero locks the server in memory, zero undoes one lock. */
    KaloResultado (*bloquea_servidor)(const KaloFabricaDeClase* fabrica, int32_t bloquea);
};

/* Writes the registration of both classes in the registry of components
   (see the README), with this library's path. */
KALO_C_EXPORTA KaloResultado DllRegisterServer(void);
KALO_C_EXPORTA KaloResultado DllUnregisterServer(void);
/* *fabrica receives a const KaloFabricaDeClase*; iid is KALO_IID_ICLASSFACTORY
   or KALO_IID_IUNKNOWN. */
KALO_C_EXPORTA KaloResultado DllGetClassObject(const KaloGuid* clsid, const KaloGuid* iid, void** fabrica);
/* KALO_S_OK when no object and no lock is outstanding, else KALO_S_FALSE. */
KALO_C_EXPORTA KaloResultado DllCanUnloadNow(void);

#ifdef __cplusplus
}
#endif

#endif
