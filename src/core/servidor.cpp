// The in-process server's entry points, and creation through the C boundary.
// Nothing here runs when the library is loaded.

#include <dlfcn.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include <QFileInfo>

#include "automation/componentes.h"
#include "automation/frontera_c.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/kaloimpresora.h"
#include "kaloimpresora/paramdata.h"

using namespace Qt::StringLiterals;

namespace kalo {

namespace {

constexpr char kBibliotecaDeTipos[] = "{89626209-5F4C-4D16-8089-808B5994E8A3}";

template <class Clase>
KaloResultado CreaInstancia(const KaloFabricaDeClase*, KaloObjeto** objeto) {
    if (!objeto) return KALO_E_POINTER;
    *objeto = nullptr;
    return frontera::Protege(nullptr, KALO_E_FAIL, [&] {
        *objeto = frontera::Envuelve(std::make_shared<Clase>());
        return KALO_S_OK;
    });
}

KaloResultado BloqueaServidor(const KaloFabricaDeClase*, int32_t bloquea) {
    frontera::Bloquea(bloquea != 0);
    return KALO_S_OK;
}

// Plain data, so that nothing is constructed when the library is loaded.
struct ClaseDelServidor {
    const char* idDePrograma;
    const char* idDeClase;
    const char* interfaz;
    const char* idDeInterfaz;
    KaloFabricaDeClase fabrica;
};

const ClaseDelServidor kClases[] = {
    {KALO_ID_IMPRESORA, KALO_CLSID_IMPRESORA_TEXTO, "_Impresora", "{9A8C280D-29BC-4A62-BD58-8B46F27C3C00}",
     {sizeof(KaloFabricaDeClase), CreaInstancia<Impresora>, BloqueaServidor}},
    {KALO_ID_PARAMDATA, KALO_CLSID_PARAMDATA_TEXTO, "_ParamData", "{7BEFA45F-7BC4-47AA-AF7C-A5C8874CF96F}",
     {sizeof(KaloFabricaDeClase), CreaInstancia<ParamData>, BloqueaServidor}},
};

// This library's file, as the loader found it.
QString RutaDeLaBiblioteca() {
    Dl_info info{};
    if (!dladdr(reinterpret_cast<void*>(&DllRegisterServer), &info) || !info.dli_fname) return {};
    return QFileInfo(QFile::decodeName(info.dli_fname)).absoluteFilePath();
}

bool Iguales(const KaloGuid& a, const KaloGuid& b) {
    return a.dato1 == b.dato1 && a.dato2 == b.dato2 && a.dato3 == b.dato3 &&
           std::equal(std::begin(a.dato4), std::end(a.dato4), std::begin(b.dato4));
}

}  // namespace

}  // namespace kalo

using namespace kalo;

extern "C" {

KaloResultado kalo_crea(const char* identificador, KaloObjeto** objeto, KaloError* error) {
    if (!identificador || !objeto) return KALO_E_POINTER;
    *objeto = nullptr;
    const size_t n = std::strlen(identificador);
    if (!frontera::EsUtf8(identificador, n)) return KALO_E_INVALIDARG;
    return frontera::Protege(error, KALO_REGDB_E_CLASSNOTREG, [&] {
        *objeto = frontera::Envuelve(CreaObjeto(QString::fromUtf8(identificador, qsizetype(n))));
        return KALO_S_OK;
    });
}

KaloResultado DllRegisterServer(void) {
    return frontera::Protege(nullptr, KALO_SELFREG_E_CLASS, [] {
        const QString biblioteca = RutaDeLaBiblioteca();
        if (biblioteca.isEmpty()) return KALO_SELFREG_E_CLASS;
        const QString carpeta = componentes::CarpetaParaEscribir(biblioteca);
        for (const ClaseDelServidor& c : kClases) {
            const componentes::Registro r{QString::fromLatin1(c.idDePrograma), QString::fromLatin1(c.idDeClase),
                                          u"Apartment"_s, QString::fromLatin1(c.interfaz),
                                          QString::fromLatin1(c.idDeInterfaz), QString::fromLatin1(kBibliotecaDeTipos),
                                          u"1.0"_s, u"0x409"_s, biblioteca};
            if (!componentes::Escribe(carpeta, r)) return KALO_SELFREG_E_CLASS;
        }
        return KALO_S_OK;
    });
}

KaloResultado DllUnregisterServer(void) {
    return frontera::Protege(nullptr, KALO_SELFREG_E_CLASS, [] {
        const QString carpeta = componentes::CarpetaParaEscribir(RutaDeLaBiblioteca());
        bool todas = true;
        for (const ClaseDelServidor& c : kClases) todas &= componentes::Borra(carpeta, QString::fromLatin1(c.idDeClase));
        return todas ? KALO_S_OK : KALO_SELFREG_E_CLASS;
    });
}

KaloResultado DllGetClassObject(const KaloGuid* clsid, const KaloGuid* iid, void** fabrica) {
    if (!fabrica) return KALO_E_POINTER;
    *fabrica = nullptr;
    if (!clsid || !iid) return KALO_E_POINTER;
    const KaloGuid kDesconocida = KALO_IID_IUNKNOWN, kFabrica = KALO_IID_ICLASSFACTORY;
    const QString id = frontera::TextoDeGuid(*clsid);
    for (const ClaseDelServidor& c : kClases) {
        if (id != QLatin1StringView(c.idDeClase)) continue;
        if (!Iguales(*iid, kFabrica) && !Iguales(*iid, kDesconocida)) return KALO_E_NOINTERFACE;
        *fabrica = const_cast<KaloFabricaDeClase*>(&c.fabrica);
        return KALO_S_OK;
    }
    return KALO_CLASS_E_CLASSNOTAVAILABLE;
}

KaloResultado DllCanUnloadNow(void) { return frontera::Pendientes() == 0 ? KALO_S_OK : KALO_S_FALSE; }

}  // extern "C"
