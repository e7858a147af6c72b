// libFuzzer target for the C boundary's invoke path: random dispatch ids,
// call kinds, argument counts and variants (bad tags, texts that are not
// UTF-8, objects) against an Impresora drawing on a preview and a ParamData.
// Every call must end in a status code, never a crash; what comes back must
// be a well-formed variant; a failure must carry the runtime's error.

#include <QString>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <set>
#include <vector>

#include "automation/frontera_c.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/kaloimpresora.h"
#include "kaloimpresora/mensajes.h"
#include "kaloimpresora/paramdata.h"
#include "kaloimpresora/superficies.h"
#include "runtime/aplicacion.h"

namespace {

void Comprueba(bool condicion) {
    if (!condicion) std::abort();
}

// Members that reach outside the process's memory: printers and their forms,
// ports, files, dialogs, the destination of the document. And Cambia, which
// by design never ends when cInserta contains cBusca.
constexpr const char* kFuera[] = {
    "Pantalla", "Archivo", "Imagen1", "Imagen2", "Imagen3", "DB", "strTemp", "EstableceImpresora",
    "CreaBaseDeDatos", "BorraArchivo", "Copias", "RangoDeFechas", "FechaDeCorte", "RangoDeAlcance", "Eventos",
    "CreaForma", "Portrait", "LandScape", "PaperSize", "RestauraPapel", "RangoDeDatos", "Seleccion", "Rangos",
    "AbrirCajonDeDinero", "EstableceEstiloImpresoraNT", "Picture", "rst", "ParamData", "Avance", "sq",
    "AmbienteSucursal", "recordSetOrigen", "objetoReporte", "ControlhWndImpresora", "EstiloImpresion", "Cambia",
};

struct Objetivo {
    KaloObjeto* objeto;
    std::vector<int32_t> ids;  // the members it may be called on
};

struct Banco {
    std::vector<Objetivo> objetivos;
    std::set<int32_t> prohibidos;
};

Banco& ElBanco() {
    // Lives as long as the process, as a host's objects would.
    static Banco* banco = new Banco([] {
        qputenv("CUPS_SERVER", "127.0.0.1:1");
        kalo::AseguraAplicacion();
        kalo::EstablecePresentadorDeMensajes([](const QString&, int32_t, const QString&) { return 1; });
        auto imp = std::make_shared<kalo::Impresora>();
        imp->Pantalla = true;
        imp->Imagen2 = kalo::CreaSuperficieDeImagen(85, 110, 10);
        Banco b;
        for (std::shared_ptr<kalo::Objeto> o : {std::shared_ptr<kalo::Objeto>(imp),
                                                std::shared_ptr<kalo::Objeto>(std::make_shared<kalo::ParamData>())}) {
            Objetivo t{kalo::frontera::Envuelve(o), {}};
            const KaloInformacionDeTipo* info = nullptr;
            Comprueba(kalo_describe(t.objeto, &info) == KALO_S_OK);
            for (uint32_t i = 0; i < info->cuantos_miembros; ++i) {
                bool fuera = false;
                for (const char* n : kFuera) fuera |= std::strcmp(n, info->miembros[i].nombre) == 0;
                if (fuera && o.get() == imp.get()) b.prohibidos.insert(info->miembros[i].dispid);
                else t.ids.push_back(info->miembros[i].dispid);
            }
            b.objetivos.push_back(t);
        }
        return b;
    }());
    return *banco;
}

struct Lector {
    const uint8_t* datos;
    size_t quedan;
    uint8_t Byte() {
        if (!quedan) return 0;
        --quedan;
        return *datos++;
    }
    template <class T>
    T Valor() {
        T v{};
        const size_t n = std::min(sizeof v, quedan);
        std::memcpy(&v, datos, n);
        datos += n;
        quedan -= n;
        return v;
    }
};

bool BienFormado(const KaloVariant& v) {
    if (v.tipo > KALO_BOOLEANO) return false;
    if (v.tipo == KALO_TEXTO) return v.v.texto && kalo::frontera::EsUtf8(v.v.texto, std::strlen(v.v.texto));
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* datos, size_t tamano) {
    Banco& banco = ElBanco();
    Lector l{datos, tamano};
    for (int llamadas = 0; l.quedan && llamadas < 16; ++llamadas) {
        const Objetivo& t = banco.objetivos[l.Byte() % banco.objetivos.size()];
        const uint8_t eleccion = l.Byte();
        int32_t dispid = eleccion < 200 ? t.ids[eleccion % t.ids.size()] : l.Valor<int32_t>();
        if (banco.prohibidos.count(dispid) && &t == &banco.objetivos[0]) continue;
        static constexpr uint16_t kLlamadas[] = {KALO_LLAMA_METODO, KALO_LEE_PROPIEDAD, KALO_ASIGNA_VALOR,
                                                 KALO_ASIGNA_REFERENCIA, 3, 0, 16};
        const uint16_t llamada = kLlamadas[l.Byte() % std::size(kLlamadas)];
        const uint32_t cuantos = l.Byte() % 12;
        // Built as a host builds them: each variant owns its text (malloc'd,
        // not necessarily UTF-8) and a reference to its object.
        std::vector<KaloVariant> args(cuantos);
        for (uint32_t i = 0; i < cuantos; ++i) {
            KaloVariant& a = args[i];
            a.tipo = uint16_t(l.Byte() % 14);
            a.v.moneda = 0;
            switch (a.tipo) {
            case KALO_TEXTO: {
                const size_t n = l.Byte() % 24;
                a.v.texto = static_cast<char*>(std::calloc(n + 1, 1));
                for (size_t k = 0; k < n; ++k) a.v.texto[k] = char(l.Byte() | 1);  // no NUL inside
                break;
            }
            case KALO_OBJETO: {
                const uint8_t cual = l.Byte() % 3;
                kalo_variant_objeto(&a, cual == 2 ? nullptr : banco.objetivos[cual].objeto);
                break;
            }
            case KALO_DOBLE:
            case KALO_FECHA:
                // Sizes and positions within reason, so a run is not spent painting one huge glyph.
                a.v.doble = double(l.Valor<int16_t>()) / 64.0;
                break;
            default: a.v.moneda = l.Valor<int64_t>();
            }
        }
        const std::vector<KaloVariant> antes = args;
        KaloVariant resultado;
        kalo_variant_inicia(&resultado);
        KaloError error{0, nullptr, nullptr};
        const KaloResultado r = kalo_invoca(t.objeto, dispid, llamada, args.data(), cuantos, &resultado, &error);
        Comprueba(r == KALO_S_OK || r == KALO_DISP_E_EXCEPTION || r == KALO_DISP_E_MEMBERNOTFOUND ||
                  r == KALO_DISP_E_BADPARAMCOUNT || r == KALO_DISP_E_BADVARTYPE || r == KALO_E_INVALIDARG);
        if (r == KALO_S_OK) Comprueba(BienFormado(resultado));
        if (r == KALO_DISP_E_EXCEPTION) Comprueba(error.numero != 0 && error.descripcion);
        for (uint32_t i = 0; i < cuantos; ++i) {
            // Only a call that succeeded writes back, and only well-formed values.
            if (args[i].tipo != antes[i].tipo || args[i].v.moneda != antes[i].v.moneda)
                Comprueba(r == KALO_S_OK && BienFormado(args[i]));
            Comprueba(kalo_variant_limpia(&args[i]) == KALO_S_OK);
        }
        Comprueba(kalo_variant_limpia(&resultado) == KALO_S_OK);
        kalo_error_limpia(&error);
    }
    return 0;
}
