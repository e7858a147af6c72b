#pragma once

// The automation picture object: what LoadPicture returns and what a drawing
// target's PaintPicture accepts. Its size is in HIMETRIC (0.01 mm), like the
// runtime's pictures; a bitmap keeps the resolution it was made for.

#include <QImage>
#include <memory>

#include "kaloimpresora/automatizacion.h"

namespace kalo {

class Imagen : public ConTabla<Imagen> {
public:
    explicit Imagen(QImage imagen, double puntosPorPulgada = 96);

    const QImage& imagen() const { return imagen_; }
    double PuntosPorPulgada() const { return ppp_; }
    // Width and Height members.
    int32_t AnchoHimetrico() const;
    int32_t AltoHimetrico() const;

    static const TablaDeMiembros& Tabla();

private:
    QImage imagen_;
    double ppp_;
};

// Loads a picture file (any format Qt reads), as the runtime's LoadPicture:
// 53 when the file does not exist, 481 when it is not a picture.
std::shared_ptr<Imagen> CargaImagen(const QString& ruta);

}  // namespace kalo
