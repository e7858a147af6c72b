#pragma once

#include "kaloimpresora/exporta.h"

// Preview targets: surfaces that offer, by member name, what the drawing-target
// layer asks of a host's picture box (scale, position, font, colours, Cls,
// Print, Line, Circle, PaintPicture, TextWidth, TextHeight, Width, Height,
// Parent). Both kinds share one member table and one way of drawing.

#include <QImage>
#include <QWidget>
#include <memory>

#include "kaloimpresora/automatizacion.h"

namespace kalo {

// A headless preview over an image of the given size in pixels. Besides the
// picture box members it offers "GuardaImagen"(ruta), which writes a PNG
// (error 75 when it cannot), and "Image", a picture of what is drawn. Its
// "Parent" is a container whose only member is "ScaleMode" (twips at first);
// "Width" and "Height" are the image's size in that unit, and assigning them
// resizes the image, keeping what is drawn.
KALO_EXPORT std::shared_ptr<Objeto> CreaSuperficieDeImagen(int anchoPixeles, int altoPixeles, double puntosPorPulgada = 96);

class SuperficieDeImagen;

// The same surface as a widget for Qt hosts: it draws into a backing image of
// its own size and repaints when drawn on. "Width", "Height", "Left" and "Top"
// of its object resize and move the widget, in the unit of its "Parent": the
// object of a parent CajaDeImagen, or else a container with a "ScaleMode".
class KALO_EXPORT CajaDeImagen : public QWidget {
public:
    explicit CajaDeImagen(QWidget* padre = nullptr);
    ~CajaDeImagen() override;

    // The late-bound object the drawing-target layer is given.
    std::shared_ptr<Objeto> objeto() const;
    // What has been drawn so far.
    QImage imagen() const;

protected:
    void paintEvent(QPaintEvent* evento) override;
    void resizeEvent(QResizeEvent* evento) override;

private:
    std::shared_ptr<SuperficieDeImagen> superficie_;
};

}  // namespace kalo
