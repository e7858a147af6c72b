#pragma once

// The preview surface behind CreaSuperficieDeImagen and CajaDeImagen: a
// Lienzo over an image, reached by member name.

#include <QImage>
#include <QPainter>
#include <QPointer>
#include <functional>
#include <memory>

#include "kaloimpresora/superficies.h"
#include "target/lienzo.h"

namespace kalo {

// A Lienzo that paints on an image it owns, keeping one painter open between
// outputs so consecutive calls do not pay for beginning and ending it.
class LienzoDeImagen : public Lienzo {
public:
    LienzoDeImagen(QSize pixeles, double puntosPorPulgada);
    ~LienzoDeImagen() override;

    // What has been drawn; finishes the open painting first.
    const QImage& Imagen();
    // New size in pixels: what is drawn stays at the top left, new area is
    // filled with BackColor.
    void Redimensiona(QSize pixeles);
    // Called after every output (a widget schedules its repaint).
    std::function<void()> alPintar;

protected:
    QPainter* Pintor() override;
    void Pintado() override;

private:
    QImage imagen_;
    QPainter pintor_;
};

// The container a surface reports as its Parent when it has no better one:
// only its ScaleMode is used.
class Contenedor : public ConTabla<Contenedor> {
public:
    int16_t scaleMode = 1;

    static const TablaDeMiembros& Tabla();
};

class SuperficieDeImagen : public ConTabla<SuperficieDeImagen>, public std::enable_shared_from_this<SuperficieDeImagen> {
public:
    SuperficieDeImagen(QSize pixeles, double puntosPorPulgada);

    LienzoDeImagen& lienzo() { return lienzo_; }

    // While linked to a widget, size and position go to the widget and every
    // output repaints it.
    void EnlazaCaja(CajaDeImagen* caja);

    std::shared_ptr<Objeto> Parent();
    // Outer size and position in the Parent's unit.
    double Width();
    double Height();
    double Left();
    double Top();
    void Width(double valor);
    void Height(double valor);
    void Left(double valor);
    void Top(double valor);
    void GuardaImagen(const QString& ruta);

    static const TablaDeMiembros& Tabla();
    Variant Invoca(int32_t dispid, Llamada tipo, std::span<Variant> argumentos) override;

private:
    double TwipsPorUnidadDelContenedor(bool horizontal);
    void CambiaTamano(QSize pixeles);

    LienzoDeImagen lienzo_;
    std::shared_ptr<Contenedor> contenedor_;
    QPointer<CajaDeImagen> caja_;
    QPoint posicion_;  // pixels, when there is no widget to hold it
};

}  // namespace kalo
