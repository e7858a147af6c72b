#include "target/lienzo.h"
#include "runtime/unidades.h"

#include <QPaintDevice>
#include <QPainter>
#include <cmath>
#include <numbers>

#include "kaloimpresora/errores.h"
#include "runtime/aplicacion.h"

namespace kalo {

namespace {

constexpr double kDosPi = 2 * std::numbers::pi;

// How far from the device's origin output may reach, in pixels: far beyond
// any sheet at any resolution, and far enough inside int that the sums and
// differences of the drawing code cannot overflow.
constexpr double kAlcance = 1 << 24;

// Beyond that the runtime's coordinates overflow, and so do these.
QPointF Alcanzable(QPointF p) {
    if (!(std::abs(p.x()) <= kAlcance && std::abs(p.y()) <= kAlcance)) Lanza(err::kDesbordamiento);
    return p;
}

double Alcanzable(double largo) {
    if (!(std::abs(largo) <= kAlcance)) Lanza(err::kDesbordamiento);
    return largo;
}

// The pixel that holds a point; the small bias keeps 95.9999999 (a whole
// inch through a user scale) on pixel 96.
QPoint Celda(QPointF p) {
    return {static_cast<int>(std::floor(p.x() + 1e-6)), static_cast<int>(std::floor(p.y() + 1e-6))};
}

QSize AlMenosUnPixel(QSize s) { return {std::max(1, s.width()), std::max(1, s.height())}; }

// Calls f for each line of the text (CR LF, LF or CR end a line); no copies.
template <class F>
void PorLinea(const QString& texto, F&& f) {
    const QStringView v(texto);
    qsizetype inicio = 0;
    for (qsizetype i = 0; i < v.size(); ++i) {
        const QChar c = v[i];
        if (c != u'\r' && c != u'\n') continue;
        f(v.sliced(inicio, i - inicio), false);
        if (c == u'\r' && i + 1 < v.size() && v[i + 1] == u'\n') ++i;
        inicio = i + 1;
    }
    f(v.sliced(inicio), true);
}

// The line as a QString; the whole text itself when it has no breaks, so the
// usual one-line case allocates nothing.
QString ComoTexto(const QString& texto, QStringView linea) {
    return linea.size() == texto.size() ? texto : linea.toString();
}

}  // namespace

Lienzo::Lienzo(QSize pixeles, double pppX, double pppY, FuenteDePintor pintor)
    : fuenteDePintor_(std::move(pintor)),
      pixeles_(AlMenosUnPixel(pixeles)),
      pppX_(pppX > 0 ? pppX : 96),
      pppY_(pppY > 0 ? pppY : 96),
      nombreDeFuente_(QStringLiteral("Arial")),
      tamanoDeFuente_(10),
      tinta_(ColorDe(colorDeTinta_)),
      fondo_(ColorDe(colorDeFondo_)),
      pluma_(tinta_, 1),
      metricas_(QFont()) {
    AseguraAplicacion();
    medidor_ = QImage(1, 1, QImage::Format_RGB32);
    medidor_.setDotsPerMeterX(std::lround(pppX_ / 0.0254));
    medidor_.setDotsPerMeterY(std::lround(pppY_ / 0.0254));
    RecalculaEscala();
}

Lienzo::~Lienzo() = default;

QPainter* Lienzo::Pintor() { return fuenteDePintor_ ? fuenteDePintor_() : nullptr; }

void Lienzo::CambiaDispositivo(QSize pixeles, double pppX, double pppY) {
    pixeles_ = AlMenosUnPixel(pixeles);
    if (pppX > 0 && pppY > 0 && (pppX != pppX_ || pppY != pppY_)) {
        pppX_ = pppX;
        pppY_ = pppY;
        medidor_.setDotsPerMeterX(std::lround(pppX_ / 0.0254));
        medidor_.setDotsPerMeterY(std::lround(pppY_ / 0.0254));
        InvalidaFuente();
    }
    RecalculaEscala();
}

// ---- Coordinate system ------------------------------------------------------

double Lienzo::TwipsPorUnidadX(int16_t modo) const {
    switch (modo) {
    case escala::kPuntos: return 20;
    case escala::kPixeles: return kTwipsPorPulgada / pppX_;
    case escala::kCaracteres: return 120;
    case escala::kPulgadas: return kTwipsPorPulgada;
    case escala::kMilimetros: return kTwipsPorPulgada / 25.4;
    case escala::kCentimetros: return kTwipsPorPulgada / 2.54;
    default: return 1;
    }
}

double Lienzo::TwipsPorUnidadY(int16_t modo) const {
    switch (modo) {
    case escala::kPixeles: return kTwipsPorPulgada / pppY_;
    case escala::kCaracteres: return 240;
    default: return TwipsPorUnidadX(modo);
    }
}

// A unit scale measures the device afresh; a user scale keeps its numbers.
void Lienzo::RecalculaEscala() {
    if (modo_ != escala::kUsuario) {
        izquierda_ = 0;
        arriba_ = 0;
        ancho_ = pixeles_.width() * (kTwipsPorPulgada / pppX_) / TwipsPorUnidadX(modo_);
        alto_ = pixeles_.height() * (kTwipsPorPulgada / pppY_) / TwipsPorUnidadY(modo_);
    }
    pxPorUnidadX_ = pixeles_.width() / ancho_;
    pxPorUnidadY_ = pixeles_.height() / alto_;
}

// The print position stays on the same spot of the device when the scale
// changes under it.
template <class F>
void Lienzo::CambiaEscala(F&& cambio) {
    const QPointF donde = APixeles(x_, y_);
    cambio();
    RecalculaEscala();
    x_ = izquierda_ + AnchoDePixeles(donde.x());
    y_ = arriba_ + AltoDePixeles(donde.y());
}

void Lienzo::ScaleMode(int16_t modo) {
    if (modo < escala::kUsuario || modo > escala::kCentimetros) Lanza(err::kValorDePropiedadNoValido);
    CambiaEscala([&] { modo_ = modo; });
}

void Lienzo::ScaleLeft(double valor) {
    CambiaEscala([&] {
        modo_ = escala::kUsuario;
        izquierda_ = valor;
    });
}

void Lienzo::ScaleTop(double valor) {
    CambiaEscala([&] {
        modo_ = escala::kUsuario;
        arriba_ = valor;
    });
}

void Lienzo::ScaleWidth(double valor) {
    if (valor == 0 || !std::isfinite(valor)) Lanza(err::kValorDePropiedadNoValido);
    CambiaEscala([&] {
        modo_ = escala::kUsuario;
        ancho_ = valor;
    });
}

void Lienzo::ScaleHeight(double valor) {
    if (valor == 0 || !std::isfinite(valor)) Lanza(err::kValorDePropiedadNoValido);
    CambiaEscala([&] {
        modo_ = escala::kUsuario;
        alto_ = valor;
    });
}

void Lienzo::Scale(double x1, double y1, double x2, double y2) {
    if (x1 == x2 || y1 == y2 || !std::isfinite(x2 - x1) || !std::isfinite(y2 - y1))
        Lanza(err::kValorDePropiedadNoValido);
    CambiaEscala([&] {
        modo_ = escala::kUsuario;
        izquierda_ = x1;
        arriba_ = y1;
        ancho_ = x2 - x1;
        alto_ = y2 - y1;
    });
}

void Lienzo::Scale() { ScaleMode(escala::kTwips); }

// ---- Font and colours -------------------------------------------------------

void Lienzo::InvalidaFuente() {
    fuenteVigente_ = false;
    ppyDePintura_ = 0;
}

void Lienzo::FontName(const QString& nombre) {
    nombreDeFuente_ = nombre;
    InvalidaFuente();
}

void Lienzo::FontSize(double puntos) {
    if (!(puntos > 0) || puntos > 2160) Lanza(err::kValorDePropiedadNoValido);
    tamanoDeFuente_ = puntos;
    InvalidaFuente();
}

void Lienzo::FontBold(bool valor) {
    negrita_ = valor;
    InvalidaFuente();
}

void Lienzo::FontItalic(bool valor) {
    cursiva_ = valor;
    InvalidaFuente();
}

void Lienzo::FontUnderline(bool valor) {
    subrayada_ = valor;
    InvalidaFuente();
}

void Lienzo::FontStrikethru(bool valor) {
    tachada_ = valor;
    InvalidaFuente();
}

void Lienzo::ForeColor(int32_t color) {
    colorDeTinta_ = color & 0xFFFFFF;
    tinta_ = ColorDe(colorDeTinta_);
}

void Lienzo::BackColor(int32_t color) {
    colorDeFondo_ = color & 0xFFFFFF;
    fondo_ = ColorDe(colorDeFondo_);
}

void Lienzo::DrawWidth(int32_t pixeles) {
    if (pixeles < 1 || pixeles > 32767) Lanza(err::kValorDePropiedadNoValido);
    grosor_ = pixeles;
    pluma_.setWidth(pixeles);
    // Wide lines end round, like the runtime's; one pixel stays exact.
    pluma_.setCapStyle(pixeles > 1 ? Qt::RoundCap : Qt::SquareCap);
}

// The measuring font is sized for the measuring image, whose integer dpi may
// differ a little from the device's; the point size absorbs the difference.
const QFontMetricsF& Lienzo::Metricas() const {
    if (!fuenteVigente_) {
        fuente_ = QFont(nombreDeFuente_);
        fuente_.setBold(negrita_);
        fuente_.setItalic(cursiva_);
        fuente_.setUnderline(subrayada_);
        fuente_.setStrikeOut(tachada_);
        fuente_.setPointSizeF(tamanoDeFuente_ * pppY_ / medidor_.logicalDpiY());
        fuente_ = QFont(fuente_, &medidor_);
        metricas_ = QFontMetricsF(fuente_, &medidor_);
        altoDeLinea_ = metricas_.height();
        ascenso_ = metricas_.ascent();
        fuenteVigente_ = true;
    }
    return metricas_;
}

void Lienzo::AplicaFuente(QPainter& p) {
    Metricas();
    const int ppy = p.device()->logicalDpiY();
    if (ppy != ppyDePintura_) {
        QFont f = fuente_;
        f.setPointSizeF(tamanoDeFuente_ * pppY_ / ppy);
        // Resolved for the device now, so the painter takes it without a copy.
        fuenteDePintura_ = QFont(f, p.device());
        ppyDePintura_ = ppy;
    }
    if (!(p.font() == fuenteDePintura_)) p.setFont(fuenteDePintura_);
}

QPainter* Lienzo::PreparaPintor(const QColor& tinta) {
    QPainter* p = Pintor();
    if (!p) return nullptr;
    if (pluma_.color() != tinta) pluma_.setColor(tinta);
    p->setPen(pluma_);
    // Set only on a change: the painter marks its state dirty on every call,
    // and the device then works the whole state out again.
    if (p->brush().style() != Qt::NoBrush) p->setBrush(Qt::NoBrush);
    if (p->testRenderHint(QPainter::Antialiasing)) p->setRenderHint(QPainter::Antialiasing, false);
    return p;
}

// ---- Output -----------------------------------------------------------------

void Lienzo::Cls() {
    x_ = izquierda_;
    y_ = arriba_;
    QPainter* p = Pintor();
    if (!p) return;
    p->fillRect(QRect(QPoint(0, 0), pixeles_), fondo_);
    Pintado();
}

void Lienzo::Print(const QString& texto, bool saltoDeLinea) {
    const QFontMetricsF& m = Metricas();
    const double altoPx = altoDeLinea_;
    const double ascenso = ascenso_;
    QPainter* p = PreparaPintor(tinta_);
    if (p) AplicaFuente(*p);
    PorLinea(texto, [&](QStringView linea, bool ultima) {
        const QPointF origen = Alcanzable(APixeles(x_, y_));
        const bool seguido = ultima && !saltoDeLinea;
        // Measuring costs about as much as drawing: only when it is needed.
        double anchoPx = 0;
        if (!linea.isEmpty() && (seguido || (p && !transparente_)))
            anchoPx = m.horizontalAdvance(ComoTexto(texto, linea));
        if (p && !linea.isEmpty()) {
            if (!transparente_) p->fillRect(QRectF(origen, QSizeF(anchoPx, altoPx)), fondo_);
            p->drawText(QPointF(origen.x(), origen.y() + ascenso), ComoTexto(texto, linea));
        }
        if (seguido) {
            x_ += AnchoDePixeles(anchoPx);
        } else {
            x_ = izquierda_;
            y_ += AltoDePixeles(altoPx);
        }
    });
    if (p) Pintado();
}

void Lienzo::Line(int16_t banderas, double x1, double y1, double x2, double y2, int32_t color) {
    double ax = x_, ay = y_;
    if (banderas & trazo::kConPrimerPunto) {
        ax = x1;
        ay = y1;
        if (banderas & trazo::kPrimeroRelativo) {
            ax += x_;
            ay += y_;
        }
    }
    double bx = x2, by = y2;
    if (banderas & trazo::kSegundoRelativo) {
        bx += ax;
        by += ay;
    }
    const QPoint a = Celda(Alcanzable(APixeles(ax, ay)));
    const QPoint b = Celda(Alcanzable(APixeles(bx, by)));
    x_ = bx;
    y_ = by;

    const QColor c = (banderas & trazo::kConColor) ? ColorDe(color) : tinta_;
    QPainter* p = PreparaPintor(c);
    if (!p) return;
    if (banderas & (trazo::kCaja | trazo::kCajaLlena)) {
        const int l = std::min(a.x(), b.x()), r = std::max(a.x(), b.x());
        const int t = std::min(a.y(), b.y()), d = std::max(a.y(), b.y());
        // fillRect covers both corners, like a one-pixel outline does.
        if (banderas & trazo::kCajaLlena) p->fillRect(QRect(QPoint(l, t), QPoint(r, d)), c);
        if (!(banderas & trazo::kCajaLlena) || grosor_ > 1) p->drawRect(QRect(l, t, r - l, d - t));
    } else {
        p->drawLine(a, b);
    }
    Pintado();
}

void Lienzo::Circle(int16_t banderas, double x, double y, double radio, int32_t color, double inicio,
                    double fin, double aspecto) {
    if (banderas & arco::kCentroRelativo) {
        x += x_;
        y += y_;
    }
    const bool conInicio = banderas & arco::kConInicio;
    const bool conFin = banderas & arco::kConFin;
    if ((conInicio && std::abs(inicio) > kDosPi + 1e-9) || (conFin && std::abs(fin) > kDosPi + 1e-9))
        Lanza(err::kLlamadaNoValida);
    const QPoint centro = Celda(Alcanzable(APixeles(x, y)));
    const double r = std::abs(Alcanzable(AnchoEnPixeles(radio)));
    x_ = x;
    y_ = y;

    const QColor c = (banderas & arco::kConColor) ? ColorDe(color) : tinta_;
    QPainter* p = PreparaPintor(c);
    if (!p) return;

    // The radius is measured across; down it covers the same physical length,
    // and the aspect shortens whichever axis is not the longer one.
    double rx = r, ry = r * pppY_ / pppX_;
    const double a = (banderas & arco::kConAspecto) ? std::abs(aspecto) : 1.0;
    if (a <= 1) {
        ry *= a;
    } else {
        rx /= a;
    }
    const QRectF caja(centro.x() - rx, centro.y() - ry, 2 * rx, 2 * ry);
    if (!conInicio && !conFin) {
        p->drawEllipse(caja);
    } else {
        const double s = conInicio ? std::abs(inicio) : 0.0;
        const double e = conFin ? std::abs(fin) : kDosPi;
        double barrido = e - s;
        if (barrido <= 0) barrido += kDosPi;
        constexpr double kDieciseisavosPorRadian = 180.0 * 16 / std::numbers::pi;
        p->drawArc(caja, static_cast<int>(std::lround(s * kDieciseisavosPorRadian)),
                   static_cast<int>(std::lround(barrido * kDieciseisavosPorRadian)));
        auto radioHasta = [&](double angulo) {
            p->drawLine(QPointF(centro), QPointF(centro.x() + rx * std::cos(angulo), centro.y() - ry * std::sin(angulo)));
        };
        if (conInicio && inicio < 0) radioHasta(s);
        if (conFin && fin < 0) radioHasta(e);
    }
    Pintado();
}

void Lienzo::PaintPicture(const QImage& imagen, double x, double y, double ancho, double alto) {
    if (imagen.isNull()) return;
    const QPoint a = Celda(Alcanzable(APixeles(x, y)));
    const QPoint b = Celda(Alcanzable(APixeles(x + ancho, y + alto)));
    QPainter* p = Pintor();
    if (!p) return;
    const QRect destino(QPoint(std::min(a.x(), b.x()), std::min(a.y(), b.y())),
                        QSize(std::abs(b.x() - a.x()), std::abs(b.y() - a.y())));
    if (destino.isEmpty()) return;
    const bool espejoH = b.x() < a.x(), espejoV = b.y() < a.y();
    // Nearest-pixel stretching, as the runtime's pictures are stretched.
    p->setRenderHint(QPainter::SmoothPixmapTransform, false);
    if (espejoH || espejoV) {
        p->drawImage(destino, imagen.mirrored(espejoH, espejoV));
    } else {
        p->drawImage(destino, imagen);
    }
    Pintado();
}

double Lienzo::TextWidth(const QString& texto) const {
    const QFontMetricsF& m = Metricas();
    double maximo = 0;
    PorLinea(texto, [&](QStringView linea, bool) {
        if (!linea.isEmpty()) maximo = std::max(maximo, m.horizontalAdvance(ComoTexto(texto, linea)));
    });
    return AnchoDePixeles(maximo);
}

double Lienzo::TextHeight(const QString& texto) const {
    Metricas();
    int lineas = 0;
    PorLinea(texto, [&](QStringView, bool) { ++lineas; });
    return AltoDePixeles(lineas * altoDeLinea_);
}

}  // namespace kalo
