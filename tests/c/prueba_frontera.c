/* A host in plain C that knows the component only through dlopen: the class
   factory, a two-page document printed to PDF by late-bound calls, write-back,
   errors, threads, and the registry of components seen from a second process.

     prueba_frontera documento BIBLIOTECA CARPETA   prints into CARPETA
     prueba_frontera registro BIBLIOTECA             registers, asks a second
                                                     process, unregisters
     prueba_frontera segundo                         creates from the registry */
#define _POSIX_C_SOURCE 200809L

#include <dirent.h>
#include <dlfcn.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "kaloimpresora/kaloimpresora.h"

static int fallos = 0;

#define COMPRUEBA(c)                                                              \
    do {                                                                          \
        if (!(c)) {                                                               \
            fprintf(stderr, "%s:%d: no se cumple: %s\n", __FILE__, __LINE__, #c); \
            ++fallos;                                                             \
        }                                                                         \
    } while (0)

/* The library's functions, found by name. */
static struct {
    KaloResultado (*DllGetClassObject)(const KaloGuid*, const KaloGuid*, void**);
    KaloResultado (*DllCanUnloadNow)(void);
    KaloResultado (*DllRegisterServer)(void);
    KaloResultado (*DllUnregisterServer)(void);
    KaloResultado (*guid_de_texto)(const char*, KaloGuid*);
    void (*variant_inicia)(KaloVariant*);
    KaloResultado (*variant_limpia)(KaloVariant*);
    KaloResultado (*variant_texto)(KaloVariant*, const char*);
    void (*variant_omitido)(KaloVariant*);
    void (*error_limpia)(KaloError*);
    KaloResultado (*crea)(const char*, KaloObjeto**, KaloError*);
    KaloResultado (*libera)(KaloObjeto*);
    KaloResultado (*id_de_nombre)(KaloObjeto*, const char*, int32_t*);
    KaloResultado (*invoca)(KaloObjeto*, int32_t, uint16_t, KaloVariant*, uint32_t, KaloVariant*, KaloError*);
    KaloResultado (*describe)(KaloObjeto*, const KaloInformacionDeTipo**);
} api;

static void Busca(void* biblioteca, const char* nombre, void* destino, size_t tamano) {
    void* simbolo = dlsym(biblioteca, nombre);
    if (!simbolo) {
        fprintf(stderr, "falta %s: %s\n", nombre, dlerror());
        exit(2);
    }
    memcpy(destino, &simbolo, tamano); /* ISO C has no cast from data to function pointers */
}

#define BUSCA(b, campo, nombre) Busca(b, nombre, &api.campo, sizeof api.campo)

static void* Carga(const char* ruta) {
    void* b = dlopen(ruta, RTLD_NOW | RTLD_LOCAL);
    if (!b) {
        fprintf(stderr, "dlopen %s: %s\n", ruta, dlerror());
        exit(2);
    }
    BUSCA(b, DllGetClassObject, "DllGetClassObject");
    BUSCA(b, DllCanUnloadNow, "DllCanUnloadNow");
    BUSCA(b, DllRegisterServer, "DllRegisterServer");
    BUSCA(b, DllUnregisterServer, "DllUnregisterServer");
    BUSCA(b, guid_de_texto, "kalo_guid_de_texto");
    BUSCA(b, variant_inicia, "kalo_variant_inicia");
    BUSCA(b, variant_limpia, "kalo_variant_limpia");
    BUSCA(b, variant_texto, "kalo_variant_texto");
    BUSCA(b, variant_omitido, "kalo_variant_omitido");
    BUSCA(b, error_limpia, "kalo_error_limpia");
    BUSCA(b, crea, "kalo_crea");
    BUSCA(b, libera, "kalo_libera");
    BUSCA(b, id_de_nombre, "kalo_id_de_nombre");
    BUSCA(b, invoca, "kalo_invoca");
    BUSCA(b, describe, "kalo_describe");
    return b;
}

static KaloVariant Texto(const char* s) {
    KaloVariant v;
    if (api.variant_texto(&v, s) != KALO_S_OK) exit(3);
    return v;
}

static KaloVariant Doble(double d) {
    KaloVariant v;
    v.tipo = KALO_DOBLE;
    v.v.doble = d;
    return v;
}

static KaloVariant Booleano(int b) {
    KaloVariant v;
    v.tipo = KALO_BOOLEANO;
    v.v.booleano = (int16_t)(b ? -1 : 0);
    return v;
}

/* Late-bound by name; the arguments are given back afterwards. */
static KaloResultado Llama(KaloObjeto* o, const char* nombre, uint16_t tipo, KaloVariant* args, uint32_t n,
                           KaloVariant* resultado, KaloError* error) {
    int32_t id = 0;
    KaloResultado r = api.id_de_nombre(o, nombre, &id);
    if (r != KALO_S_OK) return r;
    return api.invoca(o, id, tipo, args, n, resultado, error);
}

static void LlamaBien(KaloObjeto* o, const char* nombre, KaloVariant* args, uint32_t n) {
    KaloError e = {0, NULL, NULL};
    uint32_t i;
    KaloResultado r = Llama(o, nombre, KALO_LLAMA_METODO, args, n, NULL, &e);
    if (r != KALO_S_OK)
        fprintf(stderr, "%s: 0x%08X %d %s\n", nombre, (unsigned)r, e.numero, e.descripcion ? e.descripcion : "");
    COMPRUEBA(r == KALO_S_OK);
    api.error_limpia(&e);
    for (i = 0; i < n; ++i) api.variant_limpia(&args[i]);
}

/* Row(n) or Col(n): the position in inches. */
static KaloVariant Posicion(KaloObjeto* imp, const char* miembro, double n) {
    KaloVariant arg = Doble(n), res;
    COMPRUEBA(Llama(imp, miembro, KALO_LLAMA_METODO, &arg, 1, &res, NULL) == KALO_S_OK);
    return res;
}

static void Say(KaloObjeto* imp, double renglon, double columna, const char* texto) {
    KaloVariant args[3];
    args[0] = Posicion(imp, "Row", renglon);
    args[1] = Posicion(imp, "Col", columna);
    args[2] = Texto(texto);
    LlamaBien(imp, "Say", args, 3);
}

static int PaginasDelPdf(const char* carpeta) {
    DIR* d = opendir(carpeta);
    struct dirent* e;
    int paginas = -1;
    if (!d) return -1;
    while ((e = readdir(d)) != NULL) {
        char ruta[4096];
        FILE* f;
        char* datos;
        long n;
        long p;
        size_t largo = strlen(e->d_name);
        if (largo < 4 || strcmp(e->d_name + largo - 4, ".pdf") != 0) continue;
        snprintf(ruta, sizeof ruta, "%s/%s", carpeta, e->d_name);
        f = fopen(ruta, "rb");
        if (!f) continue;
        fseek(f, 0, SEEK_END);
        n = ftell(f);
        fseek(f, 0, SEEK_SET);
        datos = calloc((size_t)n + 1, 1);
        if (datos && fread(datos, 1, (size_t)n, f) == (size_t)n) {
            paginas = 0;
            /* Page objects: "/Type /Page" not followed by "s"; streams hold NULs. */
            for (p = 0; p + 12 <= n; ++p)
                if (memcmp(datos + p, "/Type /Page", 11) == 0 && datos[p + 11] != 's') ++paginas;
        }
        free(datos);
        fclose(f);
        break;
    }
    closedir(d);
    return paginas;
}

static KaloObjeto* objetoDeOtroHilo;
static KaloResultado resultadoDeOtroHilo[3];

static void* DesdeOtroHilo(void* nada) {
    KaloVariant v = Booleano(1);
    int32_t id = 0;
    (void)nada;
    resultadoDeOtroHilo[0] = api.id_de_nombre(objetoDeOtroHilo, "Pantalla", &id);
    resultadoDeOtroHilo[1] = api.invoca(objetoDeOtroHilo, 0x40030002, KALO_ASIGNA_VALOR, &v, 1, NULL, NULL);
    resultadoDeOtroHilo[2] = api.libera(objetoDeOtroHilo);
    return NULL;
}

static int Documento(const char* ruta, const char* carpeta) {
    const KaloGuid clsid = KALO_CLSID_IMPRESORA, otra = KALO_IID_IUNKNOWN, fabricaId = KALO_IID_ICLASSFACTORY;
    KaloGuid ninguna;
    const KaloFabricaDeClase* fabrica = NULL;
    void* salida = NULL;
    KaloObjeto* imp = NULL;
    KaloVariant args[4], res;
    KaloError e = {0, NULL, NULL};
    const KaloInformacionDeTipo* info = NULL;
    pthread_t hilo;
    int32_t id = 0;
    uint32_t i;

    setenv("KALO_CARPETA_DE_IMPRESOS", carpeta, 1);
    Carga(ruta);
    COMPRUEBA(api.DllCanUnloadNow() == KALO_S_OK);

    /* The class factory: only for the two classes, only as a factory. */
    COMPRUEBA(api.guid_de_texto("{00000000-0000-0000-0000-000000000001}", &ninguna) == KALO_S_OK);
    COMPRUEBA(api.DllGetClassObject(&ninguna, &fabricaId, &salida) == KALO_CLASS_E_CLASSNOTAVAILABLE && !salida);
    COMPRUEBA(api.DllGetClassObject(&clsid, &ninguna, &salida) == KALO_E_NOINTERFACE && !salida);
    COMPRUEBA(api.DllGetClassObject(&clsid, &otra, &salida) == KALO_S_OK && salida);
    COMPRUEBA(api.DllGetClassObject(&clsid, &fabricaId, &salida) == KALO_S_OK);
    fabrica = (const KaloFabricaDeClase*)salida;
    COMPRUEBA(fabrica->tamano == sizeof(KaloFabricaDeClase));
    COMPRUEBA(fabrica->crea_instancia(fabrica, &imp) == KALO_S_OK && imp);
    COMPRUEBA(api.DllCanUnloadNow() == KALO_S_FALSE);

    /* The two-page document, on the printer (the PDF one here). */
    args[0] = Booleano(0);
    COMPRUEBA(Llama(imp, "pantalla", KALO_ASIGNA_VALOR, args, 1, NULL, NULL) == KALO_S_OK);
    LlamaBien(imp, "IniciaDocumento", NULL, 0);
    args[0] = Texto("DejaVu Sans");
    args[1] = Doble(12);
    LlamaBien(imp, "EstableceFuente", args, 2);
    Say(imp, 3, 10, "Total");
    LlamaBien(imp, "PaginaNueva", NULL, 0);
    Say(imp, 5, 10, "Segunda página");
    LlamaBien(imp, "FinDocumento", NULL, 0);
    COMPRUEBA(PaginasDelPdf(carpeta) == 2);

    /* By reference: Cambia writes its third argument back. */
    args[0] = Texto("-");
    args[1] = Texto(" ");
    args[2] = Texto("a b c");
    COMPRUEBA(Llama(imp, "CAMBIA", KALO_LLAMA_METODO, args, 3, &res, NULL) == KALO_S_OK);
    COMPRUEBA(args[2].tipo == KALO_TEXTO && strcmp(args[2].v.texto, "a-b-c") == 0);
    COMPRUEBA(args[0].tipo == KALO_TEXTO && strcmp(args[0].v.texto, "-") == 0);
    COMPRUEBA(res.tipo == KALO_TEXTO && strcmp(res.v.texto, "a-b-c") == 0);
    api.variant_limpia(&res);
    for (i = 0; i < 3; ++i) api.variant_limpia(&args[i]);

    /* A member's failure: the runtime's number and its Spanish text. */
    args[0] = Texto("abc");
    args[1] = Doble(1);
    args[2] = Texto("x");
    COMPRUEBA(Llama(imp, "Say", KALO_LLAMA_METODO, args, 3, NULL, &e) == KALO_DISP_E_EXCEPTION);
    COMPRUEBA(e.numero == 13 && e.descripcion && strcmp(e.descripcion, "No coinciden los tipos") == 0);
    COMPRUEBA(e.origen && strcmp(e.origen, "Impresora.Say") == 0);
    api.error_limpia(&e);
    COMPRUEBA(e.numero == 0 && !e.descripcion);

    /* What never crashes: null handles, unknown ids and names, wrong counts,
       bad tags, texts that are not UTF-8. */
    COMPRUEBA(api.invoca(NULL, 0x60030004, KALO_LLAMA_METODO, NULL, 0, NULL, NULL) == KALO_E_POINTER);
    COMPRUEBA(api.libera(NULL) == KALO_E_POINTER);
    COMPRUEBA(api.id_de_nombre(imp, "NoExiste", &id) == KALO_DISP_E_UNKNOWNNAME);
    COMPRUEBA(api.invoca(imp, 0x12345, KALO_LLAMA_METODO, NULL, 0, NULL, &e) == KALO_DISP_E_MEMBERNOTFOUND);
    COMPRUEBA(e.numero == 438);
    args[3] = Doble(0);
    COMPRUEBA(Llama(imp, "Say", KALO_LLAMA_METODO, args, 4, NULL, &e) == KALO_DISP_E_BADPARAMCOUNT);
    COMPRUEBA(e.numero == 450);
    COMPRUEBA(Llama(imp, "Say", KALO_LLAMA_METODO, args, 1, NULL, &e) == KALO_DISP_E_BADPARAMCOUNT);
    COMPRUEBA(e.numero == 449);
    api.error_limpia(&e);
    args[3].tipo = 77;
    COMPRUEBA(Llama(imp, "Replicate", KALO_LLAMA_METODO, args + 2, 2, NULL, NULL) == KALO_DISP_E_BADVARTYPE);
    for (i = 0; i < 3; ++i) api.variant_limpia(&args[i]);
    COMPRUEBA(api.variant_texto(&args[0], "\xC3\x28") == KALO_E_INVALIDARG && args[0].tipo == KALO_VACIO);
    COMPRUEBA(api.id_de_nombre(imp, "Sa\xFF", &id) == KALO_E_INVALIDARG);
    {
        char malo[] = "ca\xED";
        KaloVariant crudo;
        crudo.tipo = KALO_TEXTO;
        crudo.v.texto = malo;
        COMPRUEBA(Llama(imp, "Quote", KALO_LLAMA_METODO, &crudo, 1, NULL, NULL) == KALO_E_INVALIDARG);
        COMPRUEBA(crudo.v.texto == malo);
    }
    COMPRUEBA(api.invoca(imp, 0x40030002, 99, NULL, 0, NULL, NULL) == KALO_E_INVALIDARG);

    /* An omitted optional takes its default. */
    args[0] = Doble(21);
    args[1] = Texto("DÓLARES");
    args[2] = Booleano(0);
    api.variant_omitido(&args[3]);
    COMPRUEBA(Llama(imp, "Letra", KALO_LLAMA_METODO, args, 4, &res, NULL) == KALO_S_OK);
    COMPRUEBA(res.tipo == KALO_TEXTO && strcmp(res.v.texto, "VEINTIÚN DÓLARES") == 0);
    api.variant_limpia(&res);
    for (i = 0; i < 4; ++i) api.variant_limpia(&args[i]);

    /* The member list. */
    COMPRUEBA(api.describe(imp, &info) == KALO_S_OK);
    COMPRUEBA(info && strcmp(info->nombre_de_clase, "Impresora") == 0 && info->cuantos_miembros > 90);
    COMPRUEBA(strcmp(info->miembros[info->cuantos_miembros - 1].nombre, "EstableceEstiloImpresoraNT") == 0);
    COMPRUEBA(info->miembros[0].dispid == 0x40030002 && strcmp(info->miembros[0].nombre, "Pantalla") == 0);
    for (i = 0; info && i < info->cuantos_miembros; ++i) {
        const KaloMiembro* m = &info->miembros[i];
        if (strcmp(m->nombre, "Bar128") != 0) continue;
        COMPRUEBA(m->clase == KALO_MIEMBRO_METODO && m->cuantos_parametros == 7);
        COMPRUEBA(m->parametros[0].tipo == KALO_ENTERO && m->parametros[0].por_referencia);
        COMPRUEBA(m->parametros[6].opcional && m->parametros[6].omision &&
                  m->parametros[6].omision->tipo == KALO_BOOLEANO && m->parametros[6].omision->v.booleano);
    }

    /* Another thread is refused and changes nothing. */
    objetoDeOtroHilo = imp;
    COMPRUEBA(pthread_create(&hilo, NULL, DesdeOtroHilo, NULL) == 0);
    pthread_join(hilo, NULL);
    for (i = 0; i < 3; ++i) COMPRUEBA(resultadoDeOtroHilo[i] == KALO_RPC_E_WRONG_THREAD);
    COMPRUEBA(Llama(imp, "Pantalla", KALO_LEE_PROPIEDAD, NULL, 0, &res, NULL) == KALO_S_OK);
    COMPRUEBA(res.tipo == KALO_BOOLEANO && res.v.booleano == 0);

    /* Unloading: not while an object or a lock is outstanding. */
    COMPRUEBA(fabrica->bloquea_servidor(fabrica, 1) == KALO_S_OK);
    COMPRUEBA(api.libera(imp) == KALO_S_OK);
    COMPRUEBA(api.DllCanUnloadNow() == KALO_S_FALSE);
    COMPRUEBA(fabrica->bloquea_servidor(fabrica, 0) == KALO_S_OK);
    COMPRUEBA(api.DllCanUnloadNow() == KALO_S_OK);
    return fallos;
}

/* Value of "Clave=" in a registration file; empty when missing. */
static void LeeClave(const char* ruta, const char* clave, char* valor, size_t tamano) {
    char linea[4096];
    size_t n = strlen(clave);
    FILE* f = fopen(ruta, "r");
    valor[0] = '\0';
    if (!f) return;
    while (fgets(linea, sizeof linea, f)) {
        if (strncmp(linea, clave, n) != 0 || linea[n] != '=') continue;
        linea[strcspn(linea, "\n")] = '\0';
        snprintf(valor, tamano, "%s", linea + n + 1);
    }
    fclose(f);
}

static void RutaDeRegistro(char* ruta, size_t tamano) {
    const char* datos = getenv("XDG_DATA_HOME");
    snprintf(ruta, tamano, "%s/kaloimpresora/componentes/E94BEC84-E327-4A16-913B-8FBDD11090A8.clase",
             datos ? datos : "/nonexistent");
}

/* Another process that knows only the class identifier and the registry. */
static int Segundo(void) {
    char registro[4096], biblioteca[4096], idDeClase[64], modelo[64];
    KaloGuid clsid;
    const KaloGuid fabricaId = KALO_IID_ICLASSFACTORY;
    void* salida = NULL;
    const KaloFabricaDeClase* fabrica;
    KaloObjeto *imp = NULL, *param = NULL;
    KaloVariant args[2], res;

    RutaDeRegistro(registro, sizeof registro);
    LeeClave(registro, "Biblioteca", biblioteca, sizeof biblioteca);
    LeeClave(registro, "IdDeClase", idDeClase, sizeof idDeClase);
    LeeClave(registro, "ModeloDeHilos", modelo, sizeof modelo);
    COMPRUEBA(strcmp(modelo, "Apartment") == 0);
    if (!biblioteca[0]) {
        fprintf(stderr, "sin registro en %s\n", registro);
        return 1;
    }
    Carga(biblioteca);
    COMPRUEBA(api.guid_de_texto(idDeClase, &clsid) == KALO_S_OK);
    COMPRUEBA(api.DllGetClassObject(&clsid, &fabricaId, &salida) == KALO_S_OK);
    fabrica = (const KaloFabricaDeClase*)salida;
    COMPRUEBA(fabrica && fabrica->crea_instancia(fabrica, &imp) == KALO_S_OK);
    args[0] = Texto("ab");
    args[1] = Doble(3);
    COMPRUEBA(Llama(imp, "Replicate", KALO_LLAMA_METODO, args, 2, &res, NULL) == KALO_S_OK);
    COMPRUEBA(res.tipo == KALO_TEXTO && strcmp(res.v.texto, "ababab") == 0);
    api.variant_limpia(&res);
    api.variant_limpia(&args[0]);
    COMPRUEBA(api.crea("kaloimpresora.paramdata", &param, NULL) == KALO_S_OK);
    COMPRUEBA(Llama(param, "Todos1", KALO_LEE_PROPIEDAD, NULL, 0, &res, NULL) == KALO_S_OK);
    COMPRUEBA(res.tipo == KALO_BOOLEANO);
    api.libera(param);
    api.libera(imp);
    return fallos;
}

static int Registro(const char* ruta, const char* programa) {
    char registro[4096], valor[4096];
    pid_t hijo;
    int estado = 0;

    Carga(ruta);
    RutaDeRegistro(registro, sizeof registro);
    COMPRUEBA(api.DllRegisterServer() == KALO_S_OK);
    LeeClave(registro, "IdDePrograma", valor, sizeof valor);
    COMPRUEBA(strcmp(valor, "KaloImpresora.Impresora") == 0);
    LeeClave(registro, "IdDeInterfaz", valor, sizeof valor);
    COMPRUEBA(strcmp(valor, "{9A8C280D-29BC-4A62-BD58-8B46F27C3C00}") == 0);
    LeeClave(registro, "BibliotecaDeTipos", valor, sizeof valor);
    COMPRUEBA(strcmp(valor, "{89626209-5F4C-4D16-8089-808B5994E8A3}") == 0);
    LeeClave(registro, "Biblioteca", valor, sizeof valor);
    COMPRUEBA(valor[0] == '/' && access(valor, R_OK) == 0);

    hijo = fork();
    if (hijo == 0) {
        execl(programa, programa, "segundo", (char*)NULL);
        _exit(127);
    }
    COMPRUEBA(hijo > 0 && waitpid(hijo, &estado, 0) == hijo);
    COMPRUEBA(WIFEXITED(estado) && WEXITSTATUS(estado) == 0);

    COMPRUEBA(api.DllUnregisterServer() == KALO_S_OK);
    COMPRUEBA(access(registro, F_OK) != 0);
    COMPRUEBA(api.DllUnregisterServer() == KALO_S_OK);
    return fallos;
}

int main(int argc, char** argv) {
    int r;
    setenv("CUPS_SERVER", "127.0.0.1:1", 1); /* never the machine's printers */
    if (argc == 4 && strcmp(argv[1], "documento") == 0)
        r = Documento(argv[2], argv[3]);
    else if (argc == 3 && strcmp(argv[1], "registro") == 0)
        r = Registro(argv[2], argv[0]);
    else if (argc == 2 && strcmp(argv[1], "segundo") == 0)
        r = Segundo();
    else {
        fprintf(stderr, "uso: %s documento BIBLIOTECA CARPETA | registro BIBLIOTECA | segundo\n", argv[0]);
        return 2;
    }
    if (r) fprintf(stderr, "%d comprobaciones fallaron\n", r);
    return r ? 1 : 0;
}
