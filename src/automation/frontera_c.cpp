// The plain-C boundary: handles over Objeto, variants in and out, late-bound
// calls, and the type information as C structures.

#include "automation/frontera_c.h"

#include <QByteArray>
#include <QHash>
#include <QVarLengthArray>
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <mutex>
#include <thread>
#include <unordered_map>

struct KaloObjeto {
    std::shared_ptr<kalo::Objeto> objeto;
    std::thread::id hilo;
    uint32_t referencias = 1;
};

namespace kalo::frontera {

namespace {

std::atomic<int> pendientes{0};

bool EnSuHilo(const KaloObjeto* o) { return o->hilo == std::this_thread::get_id(); }

char* CopiaTexto(const QByteArray& utf8) {
    char* copia = static_cast<char*>(std::malloc(size_t(utf8.size()) + 1));
    if (!copia) throw std::bad_alloc();
    std::memcpy(copia, utf8.constData(), size_t(utf8.size()) + 1);
    return copia;
}

// A C value into a runtime value. Texts must be UTF-8, objects must belong to
// this thread; the tag must be one of the runtime's.
KaloResultado DeC(const KaloVariant& c, Variant& v) {
    switch (c.tipo) {
    case KALO_VACIO: v = Variant(); return KALO_S_OK;
    case KALO_NULO: v = Variant::Nulo(); return KALO_S_OK;
    case KALO_ENTERO: v = Variant(c.v.entero); return KALO_S_OK;
    case KALO_LARGO: v = Variant(c.v.largo); return KALO_S_OK;
    case KALO_SENCILLO: v = Variant(c.v.sencillo); return KALO_S_OK;
    case KALO_DOBLE: v = Variant(c.v.doble); return KALO_S_OK;
    case KALO_MONEDA: v = Variant(Moneda{c.v.moneda}); return KALO_S_OK;
    case KALO_FECHA: v = Variant::Fecha(c.v.fecha); return KALO_S_OK;
    case KALO_ERROR: v = Variant::Error(c.v.error); return KALO_S_OK;
    case KALO_BOOLEANO: v = Variant(c.v.booleano != 0); return KALO_S_OK;
    case KALO_TEXTO: {
        if (!c.v.texto) {
            v = Variant(QString());
            return KALO_S_OK;
        }
        const size_t n = std::strlen(c.v.texto);
        if (!EsUtf8(c.v.texto, n)) return KALO_E_INVALIDARG;
        v = Variant(QString::fromUtf8(c.v.texto, qsizetype(n)));
        return KALO_S_OK;
    }
    case KALO_OBJETO:
        if (!c.v.objeto) {
            v = Variant::Nada();
            return KALO_S_OK;
        }
        if (!EnSuHilo(c.v.objeto)) return KALO_RPC_E_WRONG_THREAD;
        v = Variant(c.v.objeto->objeto);
        return KALO_S_OK;
    default: return KALO_DISP_E_BADVARTYPE;
    }
}

// A runtime value into a C one that holds nothing yet.
void AC(const Variant& v, KaloVariant& c) {
    c.tipo = static_cast<uint16_t>(v.tipo());
    switch (v.tipo()) {
    case TipoVariant::Vacio:
    case TipoVariant::Nulo: c.v.moneda = 0; break;
    case TipoVariant::Entero: c.v.entero = v.entero(); break;
    case TipoVariant::Largo: c.v.largo = v.largo(); break;
    case TipoVariant::Sencillo: c.v.sencillo = v.sencillo(); break;
    case TipoVariant::Doble: c.v.doble = v.doble(); break;
    case TipoVariant::Moneda: c.v.moneda = v.moneda().escalado; break;
    case TipoVariant::Fecha: c.v.fecha = v.fecha(); break;
    case TipoVariant::Error: c.v.error = v.codigoDeError(); break;
    case TipoVariant::Booleano: c.v.booleano = v.booleano() ? -1 : 0; break;
    case TipoVariant::Texto: c.v.texto = CopiaTexto(v.texto().toUtf8()); break;
    case TipoVariant::Objeto: c.v.objeto = v.objeto() ? Envuelve(v.objeto()) : nullptr; break;
    }
}

uint16_t EtiquetaDeTipo(TipoDato tipo) {
    switch (tipo) {
    case TipoDato::Variante: return KALO_CUALQUIERA;
    case TipoDato::Booleano: return KALO_BOOLEANO;
    case TipoDato::Entero: return KALO_ENTERO;
    case TipoDato::Largo: return KALO_LARGO;
    case TipoDato::Doble: return KALO_DOBLE;
    case TipoDato::Fecha: return KALO_FECHA;
    case TipoDato::Texto: return KALO_TEXTO;
    case TipoDato::Objeto:
    case TipoDato::ParamData: return KALO_OBJETO;
    case TipoDato::Ninguno: return KALO_SIN_VALOR;
    }
    return KALO_CUALQUIERA;
}

// One class's type information rendered for C once, kept for the process,
// with its members indexed by dispatch id for the calls' checks.
struct InformacionC {
    KaloInformacionDeTipo info{};
    std::deque<QByteArray> textos;
    std::deque<KaloVariant> omisiones;
    std::deque<std::vector<KaloParametro>> parametros;
    std::vector<KaloMiembro> miembros;
    QHash<int32_t, const DescripcionDeMiembro*> porId;

    explicit InformacionC(const InformacionDeTipo& fuente) {
        info.nombre_de_clase = Texto(fuente.nombreDeClase);
        for (const DescripcionDeMiembro& m : fuente.miembros) {
            std::vector<KaloParametro>& ps = parametros.emplace_back();
            for (const Parametro& p : m.parametros) {
                const KaloVariant* omision = nullptr;
                if (p.omision) {
                    KaloVariant& o = omisiones.emplace_back();
                    kalo_variant_inicia(&o);
                    AC(*p.omision, o);
                    omision = &o;
                }
                ps.push_back({Texto(p.nombre), EtiquetaDeTipo(p.tipo), uint8_t(p.porReferencia),
                              uint8_t(p.opcional), omision});
            }
            miembros.push_back({Texto(m.nombre), m.dispid, static_cast<uint16_t>(m.clase), EtiquetaDeTipo(m.tipo),
                                uint32_t(ps.size()), ps.empty() ? nullptr : ps.data()});
            porId.insert(m.dispid, &m);
        }
        info.cuantos_miembros = uint32_t(miembros.size());
        info.miembros = miembros.empty() ? nullptr : miembros.data();
    }

    ~InformacionC() {
        for (KaloVariant& o : omisiones) kalo_variant_limpia(&o);
    }

    const char* Texto(const QString& s) { return textos.emplace_back(s.toUtf8()).constData(); }
};

const InformacionC& InformacionDe(const InformacionDeTipo& fuente) {
    // Each call asks for its object's class: the last one answers without the lock.
    thread_local const InformacionDeTipo* ultimaFuente = nullptr;
    thread_local const InformacionC* ultima = nullptr;
    if (ultimaFuente == &fuente) return *ultima;
    static std::mutex mutex;
    static std::unordered_map<const InformacionDeTipo*, std::unique_ptr<InformacionC>> todas;
    std::lock_guard bloqueo(mutex);
    std::unique_ptr<InformacionC>& c = todas[&fuente];
    if (!c) c = std::make_unique<InformacionC>(fuente);
    ultimaFuente = &fuente;
    ultima = c.get();
    return *c;
}

// The status a call with these arguments must give before it runs, judged
// from the member's description: unknown member, or a wrong count.
KaloResultado Anticipa(const DescripcionDeMiembro* m, Llamada tipo, uint32_t cuantos) {
    if (!m) return KALO_DISP_E_MEMBERNOTFOUND;
    const bool lectura = tipo == Llamada::LeePropiedad || tipo == Llamada::Metodo;
    if (m->asignable()) {
        if (lectura ? cuantos != 0 : cuantos != 1) return KALO_DISP_E_BADPARAMCOUNT;
        return KALO_S_OK;
    }
    if (cuantos > m->parametros.size()) return KALO_DISP_E_BADPARAMCOUNT;
    for (size_t i = cuantos; i < m->parametros.size(); ++i)
        if (!m->parametros[i].opcional) return KALO_DISP_E_BADPARAMCOUNT;
    return KALO_S_OK;
}

}  // namespace

KaloObjeto* Envuelve(std::shared_ptr<Objeto> objeto) {
    auto* o = new KaloObjeto{std::move(objeto), std::this_thread::get_id(), 1};
    pendientes.fetch_add(1, std::memory_order_relaxed);
    return o;
}

int Pendientes() { return pendientes.load(); }

void Bloquea(bool bloquea) { pendientes.fetch_add(bloquea ? 1 : -1); }

void LlenaError(KaloError* error, const ErrorDeAutomatizacion& e) {
    if (!error) return;
    kalo_error_limpia(error);
    error->numero = e.numero();
    error->descripcion = static_cast<char*>(std::malloc(size_t(e.descripcion().toUtf8().size()) + 1));
    error->origen = static_cast<char*>(std::malloc(size_t(e.origen().toUtf8().size()) + 1));
    if (error->descripcion) std::strcpy(error->descripcion, e.descripcion().toUtf8().constData());
    if (error->origen) std::strcpy(error->origen, e.origen().toUtf8().constData());
}

bool EsUtf8(const char* texto, size_t longitud) {
    const auto* s = reinterpret_cast<const unsigned char*>(texto);
    size_t i = 0;
    while (i < longitud) {
        const unsigned char c = s[i];
        if (c < 0x80) {
            ++i;
            continue;
        }
        int siguen;
        uint32_t punto;
        if ((c & 0xE0) == 0xC0) {
            siguen = 1;
            punto = c & 0x1F;
        } else if ((c & 0xF0) == 0xE0) {
            siguen = 2;
            punto = c & 0x0F;
        } else if ((c & 0xF8) == 0xF0) {
            siguen = 3;
            punto = c & 0x07;
        } else {
            return false;
        }
        if (longitud - i <= size_t(siguen)) return false;
        for (int k = 1; k <= siguen; ++k) {
            if ((s[i + k] & 0xC0) != 0x80) return false;
            punto = (punto << 6) | (s[i + k] & 0x3F);
        }
        static constexpr uint32_t kMinimo[] = {0, 0x80, 0x800, 0x10000};
        if (punto < kMinimo[siguen] || punto > 0x10FFFF || (punto >= 0xD800 && punto <= 0xDFFF)) return false;
        i += size_t(siguen) + 1;
    }
    return true;
}

QString TextoDeGuid(const KaloGuid& g) {
    return QString::asprintf("{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", g.dato1, g.dato2, g.dato3,
                             g.dato4[0], g.dato4[1], g.dato4[2], g.dato4[3], g.dato4[4], g.dato4[5], g.dato4[6],
                             g.dato4[7]);
}

}  // namespace kalo::frontera

using namespace kalo;
using namespace kalo::frontera;

extern "C" {

KaloResultado kalo_guid_de_texto(const char* texto, KaloGuid* guid) {
    if (!texto || !guid) return KALO_E_POINTER;
    const size_t n = std::strlen(texto);
    const bool llaves = n == 38 && texto[0] == '{' && texto[37] == '}';
    if (n != 36 && !llaves) return KALO_E_INVALIDARG;
    const char* p = texto + (llaves ? 1 : 0);
    uint8_t bytes[16];
    int b = 0;
    for (int i = 0; i < 36; ++i) {
        if (i == 8 || i == 13 || i == 18 || i == 23) {
            if (p[i] != '-') return KALO_E_INVALIDARG;
            continue;
        }
        const char c = p[i];
        int valor;
        if (c >= '0' && c <= '9') valor = c - '0';
        else if (c >= 'a' && c <= 'f') valor = c - 'a' + 10;
        else if (c >= 'A' && c <= 'F') valor = c - 'A' + 10;
        else return KALO_E_INVALIDARG;
        if (b % 2 == 0) bytes[b / 2] = uint8_t(valor << 4);
        else bytes[b / 2] |= uint8_t(valor);
        ++b;
    }
    guid->dato1 = uint32_t(bytes[0]) << 24 | uint32_t(bytes[1]) << 16 | uint32_t(bytes[2]) << 8 | bytes[3];
    guid->dato2 = uint16_t(bytes[4] << 8 | bytes[5]);
    guid->dato3 = uint16_t(bytes[6] << 8 | bytes[7]);
    std::memcpy(guid->dato4, bytes + 8, 8);
    return KALO_S_OK;
}

void kalo_variant_inicia(KaloVariant* variant) {
    if (!variant) return;
    variant->tipo = KALO_VACIO;
    variant->v.moneda = 0;
}

KaloResultado kalo_variant_limpia(KaloVariant* variant) {
    if (!variant) return KALO_E_POINTER;
    if (variant->tipo == KALO_TEXTO) {
        std::free(variant->v.texto);
    } else if (variant->tipo == KALO_OBJETO && variant->v.objeto) {
        const KaloResultado r = kalo_libera(variant->v.objeto);
        if (r != KALO_S_OK) return r;
    }
    kalo_variant_inicia(variant);
    return KALO_S_OK;
}

KaloResultado kalo_variant_texto(KaloVariant* variant, const char* utf8) {
    if (!variant) return KALO_E_POINTER;
    kalo_variant_inicia(variant);
    if (!utf8) return KALO_E_POINTER;
    const size_t n = std::strlen(utf8);
    if (!EsUtf8(utf8, n)) return KALO_E_INVALIDARG;
    char* copia = static_cast<char*>(std::malloc(n + 1));
    if (!copia) return KALO_E_OUTOFMEMORY;
    std::memcpy(copia, utf8, n + 1);
    variant->tipo = KALO_TEXTO;
    variant->v.texto = copia;
    return KALO_S_OK;
}

KaloResultado kalo_variant_objeto(KaloVariant* variant, KaloObjeto* objeto) {
    if (!variant) return KALO_E_POINTER;
    if (objeto) {
        const KaloResultado r = kalo_agrega_referencia(objeto);
        if (r != KALO_S_OK) return r;
    }
    variant->tipo = KALO_OBJETO;
    variant->v.objeto = objeto;
    return KALO_S_OK;
}

void kalo_variant_omitido(KaloVariant* variant) {
    if (!variant) return;
    variant->tipo = KALO_ERROR;
    variant->v.moneda = 0;
    variant->v.error = KALO_ARGUMENTO_OMITIDO;
}

void kalo_error_limpia(KaloError* error) {
    if (!error) return;
    std::free(error->descripcion);
    std::free(error->origen);
    *error = KaloError{0, nullptr, nullptr};
}

KaloResultado kalo_agrega_referencia(KaloObjeto* objeto) {
    if (!objeto) return KALO_E_POINTER;
    if (!EnSuHilo(objeto)) return KALO_RPC_E_WRONG_THREAD;
    ++objeto->referencias;
    return KALO_S_OK;
}

KaloResultado kalo_libera(KaloObjeto* objeto) {
    if (!objeto) return KALO_E_POINTER;
    if (!EnSuHilo(objeto)) return KALO_RPC_E_WRONG_THREAD;
    if (--objeto->referencias == 0) {
        delete objeto;
        pendientes.fetch_sub(1, std::memory_order_relaxed);
    }
    return KALO_S_OK;
}

KaloResultado kalo_id_de_nombre(KaloObjeto* objeto, const char* nombre, int32_t* dispid) {
    if (!objeto || !nombre || !dispid) return KALO_E_POINTER;
    if (!EnSuHilo(objeto)) return KALO_RPC_E_WRONG_THREAD;
    const size_t n = std::strlen(nombre);
    if (!EsUtf8(nombre, n)) return KALO_E_INVALIDARG;
    return Protege(nullptr, KALO_E_FAIL, [&] {
        const int32_t id = objeto->objeto->IdDeNombre(QString::fromUtf8(nombre, qsizetype(n)));
        if (id == kDispidDesconocido) return KALO_DISP_E_UNKNOWNNAME;
        *dispid = id;
        return KALO_S_OK;
    });
}

KaloResultado kalo_invoca(KaloObjeto* objeto, int32_t dispid, uint16_t llamada, KaloVariant* argumentos,
                          uint32_t cuantos, KaloVariant* resultado, KaloError* error) {
    if (!objeto) return KALO_E_POINTER;
    if (!EnSuHilo(objeto)) return KALO_RPC_E_WRONG_THREAD;
    if (cuantos && !argumentos) return KALO_E_POINTER;
    Llamada tipo;
    switch (llamada) {
    case KALO_LLAMA_METODO:
    case KALO_LLAMA_METODO | KALO_LEE_PROPIEDAD: tipo = Llamada::Metodo; break;
    case KALO_LEE_PROPIEDAD: tipo = Llamada::LeePropiedad; break;
    case KALO_ASIGNA_VALOR: tipo = Llamada::AsignaValor; break;
    case KALO_ASIGNA_REFERENCIA: tipo = Llamada::AsignaReferencia; break;
    default: return KALO_E_INVALIDARG;
    }
    return Protege(error, KALO_DISP_E_EXCEPTION, [&]() -> KaloResultado {
        // With a description, unknown members and wrong counts get their own
        // status; the member table still raises the runtime's error for them.
        KaloResultado anticipado = KALO_S_OK;
        bool hayPorReferencia = true;
        const InformacionDeTipo* info = objeto->objeto->Describe();
        const DescripcionDeMiembro* m = nullptr;
        if (info) {
            m = InformacionDe(*info).porId.value(dispid, nullptr);
            anticipado = Anticipa(m, tipo, cuantos);
            hayPorReferencia = m && std::any_of(m->parametros.begin(), m->parametros.end(),
                                                [](const Parametro& p) { return p.porReferencia; });
        }
        QVarLengthArray<Variant, 8> valores(cuantos);
        for (uint32_t i = 0; i < cuantos; ++i)
            if (const KaloResultado r = DeC(argumentos[i], valores[i]); r != KALO_S_OK) return r;
        QVarLengthArray<Variant, 8> antes;
        if (hayPorReferencia && tipo == Llamada::Metodo) antes = valores;
        Variant r;
        try {
            r = objeto->objeto->Invoca(dispid, tipo, std::span<Variant>(valores.data(), valores.size()));
        } catch (const ErrorDeAutomatizacion& e) {
            // A host in C has no call stack of ours to look at: say which member failed.
            if (e.origen().isEmpty() && m)
                LlenaError(error, ErrorDeAutomatizacion(e.numero(), e.descripcion(),
                                                        info->nombreDeClase + u'.' + m->nombre));
            else
                LlenaError(error, e);
            return anticipado != KALO_S_OK ? anticipado : KALO_DISP_E_EXCEPTION;
        }
        for (qsizetype i = 0; i < antes.size(); ++i) {
            if (valores[i].identico(antes[i])) continue;
            KaloVariant nuevo;
            kalo_variant_inicia(&nuevo);
            AC(valores[i], nuevo);
            kalo_variant_limpia(&argumentos[i]);
            argumentos[i] = nuevo;
        }
        if (resultado) AC(r, *resultado);
        return KALO_S_OK;
    });
}

KaloResultado kalo_describe(KaloObjeto* objeto, const KaloInformacionDeTipo** informacion) {
    if (!objeto || !informacion) return KALO_E_POINTER;
    if (!EnSuHilo(objeto)) return KALO_RPC_E_WRONG_THREAD;
    return Protege(nullptr, KALO_E_FAIL, [&] {
        const InformacionDeTipo* info = objeto->objeto->Describe();
        if (!info) return KALO_E_NOTIMPL;
        *informacion = &InformacionDe(*info).info;
        return KALO_S_OK;
    });
}

}  // extern "C"
