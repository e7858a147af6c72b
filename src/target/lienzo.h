#pragma once

// The drawing semantics of the runtime's picture box and printer (scale modes,
// print position, font, colours, Print, Line, Circle, PaintPicture, TextWidth,
// TextHeight), painted with QPainter on any device and free of automation.
//
// How a device plugs in: give the constructor the drawable size in device
// pixels and the device's dots per inch (x and y), and a painter, either as
// a function passed to the constructor or by overriding Pintor(). The
// painter is asked for just before each output and not kept afterwards, so a
// printer can open its job on the first output and later hand out a painter
// that has moved on to a new page; measuring (TextWidth, TextHeight) never asks
// for one. The painter must paint in device pixels (no transform); Lienzo sets
// pen, brush, font and render hints itself on every output. Pintado() runs
// after each output (a widget schedules its repaint there). When the device
// changes size or resolution (a resized box, another paper), call
// CambiaDispositivo.
//
// Invalid property values raise ErrorDeAutomatizacion 380, as the runtime does;
// output reaching further than 2^24 pixels from the origin raises 6, overflow.

#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QPen>
#include <QPointF>
#include <QSize>
#include <QString>
#include <cstdint>
#include <functional>

class QPainter;
class QPaintDevice;

#include "runtime/unidades.h"

namespace kalo {

// Flag bits of Line(banderas, ...), as the target layer and the Code 39 class
// pass them (4 line, 20 box, 38 filled box in a colour, 30 and 46 relative).
namespace trazo {
inline constexpr int16_t kPrimeroRelativo = 1;  // (x1, y1) relative to CurrentX/CurrentY
inline constexpr int16_t kConColor = 2;         // the colour argument counts; else ForeColor
inline constexpr int16_t kConPrimerPunto = 4;   // (x1, y1) counts; else the line starts at CurrentX/CurrentY
inline constexpr int16_t kSegundoRelativo = 8;  // (x2, y2) relative to the first point
inline constexpr int16_t kCaja = 16;            // outline rectangle, the two points opposite corners
inline constexpr int16_t kCajaLlena = 32;       // rectangle filled and outlined in the line colour
}  // namespace trazo

// Flag bits of Circle(banderas, ...). 0: centre and radius only, a full
// circle in ForeColor (what the target layer passes, with zeros after it).
namespace arco {
inline constexpr int16_t kCentroRelativo = 1;  // centre relative to CurrentX/CurrentY
inline constexpr int16_t kConColor = 2;
inline constexpr int16_t kConInicio = 4;   // start angle counts
inline constexpr int16_t kConFin = 8;      // end angle counts
inline constexpr int16_t kConAspecto = 16; // aspect counts
}  // namespace arco

class Lienzo {
public:
    using FuenteDePintor = std::function<QPainter*()>;

    // pixeles: drawable area in device pixels; pppX, pppY: device dots per
    // inch. Starts in twips with the origin at 0,0, black on white,
    // transparent text, DrawWidth 1.
    Lienzo(QSize pixeles, double pppX, double pppY, FuenteDePintor pintor = {});
    virtual ~Lienzo();
    Lienzo(const Lienzo&) = delete;
    Lienzo& operator=(const Lienzo&) = delete;

    // The device changed size or resolution. A unit scale is recomputed for
    // the new size; a user scale keeps its coordinates (they stretch).
    void CambiaDispositivo(QSize pixeles, double pppX, double pppY);
    QSize Pixeles() const { return pixeles_; }
    double PppX() const { return pppX_; }
    double PppY() const { return pppY_; }

    // Coordinate system. ScaleMode to a unit puts the origin at 0,0 and
    // measures the device in that unit; setting ScaleLeft/Top/Width/Height or
    // Scale(x1, y1, x2, y2) switches to user mode 0; Scale() goes back to twips.
    int16_t ScaleMode() const { return modo_; }
    void ScaleMode(int16_t modo);
    double ScaleLeft() const { return izquierda_; }
    double ScaleTop() const { return arriba_; }
    double ScaleWidth() const { return ancho_; }
    double ScaleHeight() const { return alto_; }
    void ScaleLeft(double valor);
    void ScaleTop(double valor);
    void ScaleWidth(double valor);
    void ScaleHeight(double valor);
    void Scale(double x1, double y1, double x2, double y2);
    void Scale();

    // Twips in one unit of a scale mode other than user at this device's
    // resolution (pixels depend on it), across and down.
    double TwipsPorUnidadX(int16_t modo) const;
    double TwipsPorUnidadY(int16_t modo) const;

    // Between the current scale and device pixels (positions and lengths).
    QPointF APixeles(double x, double y) const {
        return {(x - izquierda_) * pxPorUnidadX_, (y - arriba_) * pxPorUnidadY_};
    }
    double AnchoEnPixeles(double ancho) const { return ancho * pxPorUnidadX_; }
    double AltoEnPixeles(double alto) const { return alto * pxPorUnidadY_; }
    double AnchoDePixeles(double px) const { return px / pxPorUnidadX_; }
    double AltoDePixeles(double px) const { return px / pxPorUnidadY_; }

    // Print position, in the current scale.
    double CurrentX() const { return x_; }
    double CurrentY() const { return y_; }
    void CurrentX(double x) { x_ = x; }
    void CurrentY(double y) { y_ = y; }

    // Font. The size is in points (any positive value, fractions kept) and is
    // turned into pixels with the vertical resolution, so text keeps its
    // physical size on a 96-dpi image and a 600-dpi printer alike.
    const QString& FontName() const { return nombreDeFuente_; }
    double FontSize() const { return tamanoDeFuente_; }
    bool FontBold() const { return negrita_; }
    bool FontItalic() const { return cursiva_; }
    bool FontUnderline() const { return subrayada_; }
    bool FontStrikethru() const { return tachada_; }
    void FontName(const QString& nombre);
    void FontSize(double puntos);
    void FontBold(bool valor);
    void FontItalic(bool valor);
    void FontUnderline(bool valor);
    void FontStrikethru(bool valor);
    // False: Print fills the text's cell with BackColor first.
    bool FontTransparent() const { return transparente_; }
    void FontTransparent(bool valor) { transparente_ = valor; }

    // Colours are 0x00BBGGRR; the high byte is ignored. BackColor is what Cls,
    // opaque text and newly exposed area are filled with.
    int32_t ForeColor() const { return colorDeTinta_; }
    int32_t BackColor() const { return colorDeFondo_; }
    void ForeColor(int32_t color);
    void BackColor(int32_t color);
    // Line width in device pixels, 1 or more.
    int32_t DrawWidth() const { return grosor_; }
    void DrawWidth(int32_t pixeles);

    // Fills the device with BackColor; the position goes to ScaleLeft, ScaleTop.
    void Cls();
    // Draws the text with its top-left corner at the position in the font and
    // ForeColor. Each line break starts a new line at ScaleLeft. With
    // saltoDeLinea the position ends at ScaleLeft one line below the last
    // line; without it, just after the text on its last line.
    void Print(const QString& texto, bool saltoDeLinea = true);
    // Straight line or rectangle (flags in kalo::trazo); the position ends at
    // the second point.
    void Line(int16_t banderas, double x1, double y1, double x2, double y2, int32_t color = 0);
    // Circle, ellipse or arc (flags in kalo::arco) centred on (x, y); the
    // radius is in the horizontal unit, aspect is height / width, angles are
    // radians counter-clockwise from three o'clock (a negative one also draws
    // the radius to that end). The position ends at the centre.
    void Circle(int16_t banderas, double x, double y, double radio, int32_t color = 0, double inicio = 0,
                double fin = 0, double aspecto = 1);
    // The picture stretched into the rectangle (negative extents mirror it).
    void PaintPicture(const QImage& imagen, double x, double y, double ancho, double alto);

    // Extent of a text in the current font, in the current scale: the widest
    // line, and the height of all its lines.
    double TextWidth(const QString& texto) const;
    double TextHeight(const QString& texto) const;

    // 0x00BBGGRR to a colour.
    static QColor ColorDe(int32_t color) {
        return QColor(color & 0xFF, (color >> 8) & 0xFF, (color >> 16) & 0xFF);
    }

protected:
    // The painter for the next output, active on the device; nullptr drops it.
    virtual QPainter* Pintor();
    // After every output.
    virtual void Pintado() {}

private:
    void RecalculaEscala();
    template <class F>
    void CambiaEscala(F&& cambio);
    void InvalidaFuente();
    const QFontMetricsF& Metricas() const;
    QPainter* PreparaPintor(const QColor& tinta);
    void AplicaFuente(QPainter& p);

    FuenteDePintor fuenteDePintor_;
    QSize pixeles_;
    double pppX_, pppY_;

    int16_t modo_ = escala::kTwips;
    double izquierda_ = 0, arriba_ = 0, ancho_ = 0, alto_ = 0;
    double pxPorUnidadX_ = 1, pxPorUnidadY_ = 1;
    double x_ = 0, y_ = 0;

    QString nombreDeFuente_;
    double tamanoDeFuente_;
    bool negrita_ = false, cursiva_ = false, subrayada_ = false, tachada_ = false;
    bool transparente_ = true;
    int32_t colorDeTinta_ = 0, colorDeFondo_ = 0xFFFFFF;
    QColor tinta_, fondo_;
    int32_t grosor_ = 1;
    QPen pluma_;

    // Measuring happens on a tiny image at this device's resolution; painting
    // uses a copy sized for the painter's device, remade when that changes.
    QImage medidor_;
    mutable QFont fuente_;
    mutable QFontMetricsF metricas_;
    mutable double altoDeLinea_ = 0, ascenso_ = 0;  // the font engine is asked once per font
    mutable bool fuenteVigente_ = false;
    QFont fuenteDePintura_;
    int ppyDePintura_ = 0;
};

}  // namespace kalo
