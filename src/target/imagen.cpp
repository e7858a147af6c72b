#include "target/imagen.h"

#include <QFileInfo>
#include <QImageReader>
#include <cmath>

#include "automation/interfaz.h"

namespace kalo {

namespace {

using namespace Qt::StringLiterals;

constexpr double kHimetricoPorPulgada = 2540;
constexpr int16_t kTipoMapaDeBits = 1;

std::vector<Miembro<Imagen>> Miembros() {
    std::vector<Miembro<Imagen>> m;
    // There is no platform handle behind a picture here; 0 keeps code that
    // reads it working.
    m.push_back(PropiedadDeLectura<Imagen>(
        u"Handle"_s, 0, TipoDato::Largo, [](Imagen&) { return Variant(int32_t{0}); }));
    m.push_back(PropiedadDeLectura<Imagen>(
        u"Width"_s, 4, TipoDato::Largo, [](Imagen& i) { return Variant(i.AnchoHimetrico()); }));
    m.push_back(PropiedadDeLectura<Imagen>(
        u"Height"_s, 5, TipoDato::Largo, [](Imagen& i) { return Variant(i.AltoHimetrico()); }));
    m.push_back(PropiedadDeLectura<Imagen>(
        u"Type"_s, 3, TipoDato::Entero,
        [](Imagen& i) { return Variant(int16_t(i.imagen().isNull() ? 0 : kTipoMapaDeBits)); }));
    return m;
}

const Interfaz<Imagen>& InterfazImagen() {
    static const Interfaz<Imagen> interfaz(u"Picture"_s, Miembros());
    return interfaz;
}

}  // namespace

Imagen::Imagen(QImage imagen, double puntosPorPulgada)
    : imagen_(std::move(imagen)), ppp_(puntosPorPulgada > 0 ? puntosPorPulgada : 96) {}

int32_t Imagen::AnchoHimetrico() const {
    return static_cast<int32_t>(std::lround(imagen_.width() * kHimetricoPorPulgada / ppp_));
}

int32_t Imagen::AltoHimetrico() const {
    return static_cast<int32_t>(std::lround(imagen_.height() * kHimetricoPorPulgada / ppp_));
}

const TablaDeMiembros& Imagen::Tabla() { return InterfazImagen(); }

std::shared_ptr<Imagen> CargaImagen(const QString& ruta) {
    if (ruta.isEmpty() || !QFileInfo(ruta).isFile()) Lanza(err::kArchivoNoEncontrado);
    QImageReader lector(ruta);
    QImage imagen = lector.read();
    if (imagen.isNull()) Lanza(err::kImagenNoValida);
    return std::make_shared<Imagen>(std::move(imagen));
}

}  // namespace kalo
