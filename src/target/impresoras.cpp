#include "kaloimpresora/impresoras.h"

#include <QDir>
#include <QPrinterInfo>
#include <QStandardPaths>
#include <cstdlib>
#include <mutex>
#include <vector>

#include "automation/interfaz.h"
#include "runtime/aplicacion.h"
#include "target/impresora_sistema.h"

namespace kalo {

using namespace Qt::StringLiterals;
using T = TipoDato;

namespace {

class Coleccion : public ConTabla<Coleccion> {
public:
    Coleccion() {
        const QList<QPrinterInfo> lista = QPrinterInfo::availablePrinters();
        destinos_.assign(lista.begin(), lista.end());
        impresoras_.resize(destinos_.size());
    }

    int32_t Count() const { return static_cast<int32_t>(destinos_.size()); }

    // Made on first request and kept, so the same index gives the same object.
    std::shared_ptr<Objeto> Item(int32_t indice) {
        if (indice < 0 || indice >= Count()) Lanza(err::kSubindiceFueraDeIntervalo);
        auto& impresora = impresoras_[static_cast<size_t>(indice)];
        if (!impresora) impresora = ImpresoraDelSistema::DeDestino(destinos_[static_cast<size_t>(indice)]);
        return impresora;
    }

    static const TablaDeMiembros& Tabla();

private:
    std::vector<QPrinterInfo> destinos_;
    std::vector<std::shared_ptr<Objeto>> impresoras_;
};

const Interfaz<Coleccion>& InterfazColeccion() {
    static const Interfaz<Coleccion> interfaz(
        u"Printers"_s,
        {
            Metodo<Coleccion>(u"Item"_s, kDispidValor, T::Objeto, {{u"Index"_s, T::Largo, false, false, {}}},
                              [](Coleccion& c, std::span<Variant> a) { return Variant(c.Item(a[0].largo())); }),
            PropiedadDeLectura<Coleccion>(u"Count"_s, 1, T::Largo, [](Coleccion& c) { return Variant(c.Count()); }),
        });
    return interfaz;
}

const TablaDeMiembros& Coleccion::Tabla() { return InterfazColeccion(); }

std::mutex& Cerrojo() {
    static std::mutex cerrojo;
    return cerrojo;
}

// Never destroyed: the printer must outlive anything that might still print
// while the process ends; TerminaAlSalir sends what is left instead.
std::shared_ptr<Objeto>& Actual() {
    static auto* actual = new std::shared_ptr<Objeto>();
    return *actual;
}

// The current printer as the component's own class, when it is one: worked
// out once per change, not on every drawing call.
ImpresoraComun*& Propia() {
    static ImpresoraComun* propia = nullptr;
    return propia;
}

void Cambia(std::shared_ptr<Objeto> impresora) {
    Actual() = std::move(impresora);
    Propia() = dynamic_cast<ImpresoraComun*>(Actual().get());
}

// A job the host left open is sent when the process ends, as the runtime does.
void TerminaAlSalir() {
    std::shared_ptr<Objeto> actual;
    {
        std::lock_guard bloqueo(Cerrojo());
        actual = Actual();
    }
    if (auto* impresora = dynamic_cast<ImpresoraComun*>(actual.get())) {
        try {
            impresora->EndDoc();
        } catch (...) {
        }
    }
}

std::shared_ptr<Objeto> ImpresoraPredeterminada() {
    AseguraAplicacion();
    const QList<QPrinterInfo> destinos = QPrinterInfo::availablePrinters();
    if (destinos.isEmpty()) return ImpresoraDelSistema::EnPdf(CarpetaDeImpresos());
    const QString predeterminada = QPrinterInfo::defaultPrinterName();
    for (const QPrinterInfo& d : destinos)
        if (d.printerName() == predeterminada) return ImpresoraDelSistema::DeDestino(d);
    return ImpresoraDelSistema::DeDestino(destinos.first());
}

}  // namespace

std::shared_ptr<Objeto> ColeccionDeImpresoras() {
    AseguraAplicacion();
    return std::make_shared<Coleccion>();
}

namespace {

// Under the lock.
const std::shared_ptr<Objeto>& Vigente() {
    if (!Actual()) {
        Cambia(ImpresoraPredeterminada());
        static const bool registrado = (std::atexit(TerminaAlSalir), true);
        (void)registrado;
    }
    return Actual();
}

}  // namespace

std::shared_ptr<Objeto> ImpresoraActual() {
    std::lock_guard bloqueo(Cerrojo());
    return Vigente();
}

std::shared_ptr<ImpresoraComun> ImpresoraActualPropia() {
    std::lock_guard bloqueo(Cerrojo());
    const auto& vigente = Vigente();
    return Propia() ? std::shared_ptr<ImpresoraComun>(vigente, Propia()) : nullptr;
}

void EstableceImpresoraActual(std::shared_ptr<Objeto> impresora) {
    std::lock_guard bloqueo(Cerrojo());
    Cambia(std::move(impresora));
}

QString CarpetaDeImpresos() {
    const QString propia = qEnvironmentVariable("KALO_CARPETA_DE_IMPRESOS");
    if (!propia.isEmpty()) return QDir::cleanPath(propia);
    QString datos = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (datos.isEmpty()) datos = QDir::home().filePath(u".local/share"_s);
    return QDir(datos).filePath(u"kaloimpresora/impresos"_s);
}

}  // namespace kalo
