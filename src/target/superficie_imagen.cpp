#include "target/superficie_imagen.h"
#include "runtime/unidades.h"

#include <cmath>

#include "automation/interfaz.h"
#include "target/imagen.h"
#include "target/miembros_lienzo.h"

namespace kalo {

using namespace Qt::StringLiterals;
using T = TipoDato;

// ---- LienzoDeImagen ---------------------------------------------------------

namespace {

QImage ImagenNueva(QSize pixeles, double ppp, const QColor& fondo) {
    QImage imagen(pixeles.expandedTo(QSize(1, 1)), QImage::Format_RGB32);
    // The image's own resolution is the one QPainter sizes fonts with.
    imagen.setDotsPerMeterX(std::lround(ppp / 0.0254));
    imagen.setDotsPerMeterY(std::lround(ppp / 0.0254));
    imagen.fill(fondo);
    return imagen;
}

}  // namespace

LienzoDeImagen::LienzoDeImagen(QSize pixeles, double ppp)
    : Lienzo(pixeles, ppp, ppp), imagen_(ImagenNueva(pixeles, ppp, ColorDe(BackColor()))) {}

LienzoDeImagen::~LienzoDeImagen() {
    if (pintor_.isActive()) pintor_.end();
}

QPainter* LienzoDeImagen::Pintor() {
    if (!pintor_.isActive()) pintor_.begin(&imagen_);
    return &pintor_;
}

void LienzoDeImagen::Pintado() {
    if (alPintar) alPintar();
}

const QImage& LienzoDeImagen::Imagen() {
    if (pintor_.isActive()) pintor_.end();
    return imagen_;
}

void LienzoDeImagen::Redimensiona(QSize pixeles) {
    pixeles = pixeles.expandedTo(QSize(1, 1));
    if (pixeles == imagen_.size()) return;
    if (pintor_.isActive()) pintor_.end();
    QImage nueva = ImagenNueva(pixeles, PppX(), ColorDe(BackColor()));
    {
        QPainter p(&nueva);
        p.drawImage(0, 0, imagen_);
    }
    imagen_ = std::move(nueva);
    CambiaDispositivo(pixeles, PppX(), PppY());
}

// ---- Contenedor -------------------------------------------------------------

namespace {

const Interfaz<Contenedor>& InterfazContenedor() {
    static const Interfaz<Contenedor> interfaz(
        u"Contenedor"_s,
        {PropiedadConProcedimientos<Contenedor>(
            u"ScaleMode"_s, 1, T::Entero, [](Contenedor& c) { return Variant(c.scaleMode); },
            [](Contenedor& c, const Variant& v) {
                const int16_t modo = v.entero();
                if (modo < escala::kUsuario || modo > escala::kCentimetros) Lanza(err::kValorDePropiedadNoValido);
                c.scaleMode = modo;
            })});
    return interfaz;
}

}  // namespace

const TablaDeMiembros& Contenedor::Tabla() { return InterfazContenedor(); }

// ---- SuperficieDeImagen: member table ----------------------------------------

namespace {

using S = SuperficieDeImagen;
using namespace miembros_lienzo;

std::vector<Miembro<S>> MiembrosDeSuperficie() {
    std::vector<Miembro<S>> m;
    Agrega(m);
    m.push_back(PropL<S>(u"BackColor", 16, T::Largo, [](Lienzo& l) { return l.BackColor(); },
                         [](Lienzo& l, const Variant& v) { l.BackColor(v.largo()); }));
    m.push_back(Prop<S>(u"Width", 20, T::Doble, [](S& s) { return Variant(s.Width()); },
                        [](S& s, const Variant& v) { s.Width(v.doble()); }));
    m.push_back(Prop<S>(u"Height", 21, T::Doble, [](S& s) { return Variant(s.Height()); },
                        [](S& s, const Variant& v) { s.Height(v.doble()); }));
    m.push_back(Prop<S>(u"Left", 22, T::Doble, [](S& s) { return Variant(s.Left()); },
                        [](S& s, const Variant& v) { s.Left(v.doble()); }));
    m.push_back(Prop<S>(u"Top", 23, T::Doble, [](S& s) { return Variant(s.Top()); },
                        [](S& s, const Variant& v) { s.Top(v.doble()); }));

    m.push_back(Prop<S>(u"Parent", 24, T::Objeto, [](S& s) { return Variant(s.Parent()); }, nullptr));

    m.push_back(Prop<S>(
        u"Image", 26, T::Objeto,
        [](S& s) { return Variant(std::make_shared<Imagen>(s.lienzo().Imagen(), s.lienzo().PppX())); },
        nullptr));

    m.push_back(Metodo<S>(u"Cls"_s, 41, T::Ninguno, {}, [](S& s, std::span<Variant>) {
        s.lienzo().Cls();
        return Variant();
    }));
    // Print's second argument stands for the statement's trailing ";": the
    // position stays just after the text instead of going to the next line.
    m.push_back(Metodo<S>(u"Print"_s, 42, T::Ninguno, {Opcional(u"Texto"), Opcional(u"SinSalto", T::Booleano)},
                          [](S& s, std::span<Variant> a) {
                              s.lienzo().Print(TextoAImprimir(a[0]), !a[1].booleano());
                              return Variant();
                          }));
    m.push_back(Metodo<S>(u"GuardaImagen"_s, 48, T::Ninguno, {Requerido(u"Ruta", T::Texto)},
                          [](S& s, std::span<Variant> a) {
                              s.GuardaImagen(a[0].texto());
                              return Variant();
                          }));
    return m;
}

const Interfaz<S>& InterfazSuperficie() {
    static const Interfaz<S> interfaz(u"PictureBox"_s, MiembrosDeSuperficie());
    return interfaz;
}

}  // namespace

// ---- SuperficieDeImagen -----------------------------------------------------

SuperficieDeImagen::SuperficieDeImagen(QSize pixeles, double ppp)
    : lienzo_(pixeles, ppp), contenedor_(std::make_shared<Contenedor>()) {}

void SuperficieDeImagen::EnlazaCaja(CajaDeImagen* caja) {
    caja_ = caja;
    if (caja) {
        posicion_ = caja->pos();
        lienzo_.alPintar = [this] {
            if (caja_) caja_->update();
        };
    } else {
        lienzo_.alPintar = nullptr;
    }
}

std::shared_ptr<Objeto> SuperficieDeImagen::Parent() {
    if (caja_) {
        if (auto* padre = dynamic_cast<CajaDeImagen*>(caja_->parentWidget())) return padre->objeto();
    }
    return contenedor_;
}

// A parent surface converts through its own scale (a user scale included);
// a plain container only has a unit, user mode counting as twips.
double SuperficieDeImagen::TwipsPorUnidadDelContenedor(bool horizontal) {
    if (caja_) {
        if (auto* padre = dynamic_cast<CajaDeImagen*>(caja_->parentWidget())) {
            auto* s = dynamic_cast<SuperficieDeImagen*>(padre->objeto().get());
            Lienzo& l = s->lienzo();
            return horizontal ? kTwipsPorPulgada / l.PppX() * std::abs(l.AnchoEnPixeles(1))
                              : kTwipsPorPulgada / l.PppY() * std::abs(l.AltoEnPixeles(1));
        }
    }
    const int16_t modo = contenedor_->scaleMode;
    if (modo == escala::kUsuario) return 1;
    return horizontal ? lienzo_.TwipsPorUnidadX(modo) : lienzo_.TwipsPorUnidadY(modo);
}

double SuperficieDeImagen::Width() {
    return lienzo_.Pixeles().width() * kTwipsPorPulgada / lienzo_.PppX() / TwipsPorUnidadDelContenedor(true);
}

double SuperficieDeImagen::Height() {
    return lienzo_.Pixeles().height() * kTwipsPorPulgada / lienzo_.PppY() / TwipsPorUnidadDelContenedor(false);
}

double SuperficieDeImagen::Left() {
    const int px = caja_ ? caja_->x() : posicion_.x();
    return px * kTwipsPorPulgada / lienzo_.PppX() / TwipsPorUnidadDelContenedor(true);
}

double SuperficieDeImagen::Top() {
    const int px = caja_ ? caja_->y() : posicion_.y();
    return px * kTwipsPorPulgada / lienzo_.PppY() / TwipsPorUnidadDelContenedor(false);
}

namespace {

int APixelesEnteros(double valor, double twipsPorUnidad, double ppp) {
    const double px = std::round(valor * twipsPorUnidad * ppp / kTwipsPorPulgada);
    if (!std::isfinite(px) || std::abs(px) > 32767) Lanza(err::kValorDePropiedadNoValido);
    return static_cast<int>(px);
}

}  // namespace

void SuperficieDeImagen::Width(double valor) {
    if (valor < 0) Lanza(err::kValorDePropiedadNoValido);
    const int px = APixelesEnteros(valor, TwipsPorUnidadDelContenedor(true), lienzo_.PppX());
    CambiaTamano(QSize(px, lienzo_.Pixeles().height()));
}

void SuperficieDeImagen::Height(double valor) {
    if (valor < 0) Lanza(err::kValorDePropiedadNoValido);
    const int px = APixelesEnteros(valor, TwipsPorUnidadDelContenedor(false), lienzo_.PppY());
    CambiaTamano(QSize(lienzo_.Pixeles().width(), px));
}

void SuperficieDeImagen::Left(double valor) {
    posicion_.setX(APixelesEnteros(valor, TwipsPorUnidadDelContenedor(true), lienzo_.PppX()));
    if (caja_) caja_->move(posicion_.x(), caja_->y());
}

void SuperficieDeImagen::Top(double valor) {
    posicion_.setY(APixelesEnteros(valor, TwipsPorUnidadDelContenedor(false), lienzo_.PppY()));
    if (caja_) caja_->move(caja_->x(), posicion_.y());
}

void SuperficieDeImagen::CambiaTamano(QSize pixeles) {
    pixeles = pixeles.expandedTo(QSize(1, 1));
    lienzo_.Redimensiona(pixeles);
    if (caja_) caja_->resize(pixeles);
}

void SuperficieDeImagen::GuardaImagen(const QString& ruta) {
    if (ruta.isEmpty() || !lienzo_.Imagen().save(ruta, "PNG")) Lanza(err::kAccesoARutaOArchivo);
}

const TablaDeMiembros& SuperficieDeImagen::Tabla() { return InterfazSuperficie(); }

Variant SuperficieDeImagen::Invoca(int32_t dispid, Llamada tipo, std::span<Variant> argumentos) {
    // A hidden widget gets its resize event only when shown; its size is
    // already the one to draw on.
    if (caja_ && caja_->size() != lienzo_.Pixeles()) lienzo_.Redimensiona(caja_->size());
    return ConTabla::Invoca(dispid, tipo, argumentos);
}

std::shared_ptr<Objeto> CreaSuperficieDeImagen(int anchoPixeles, int altoPixeles, double puntosPorPulgada) {
    if (anchoPixeles < 1 || altoPixeles < 1 || !(puntosPorPulgada > 0)) Lanza(err::kLlamadaNoValida);
    return std::make_shared<SuperficieDeImagen>(QSize(anchoPixeles, altoPixeles), puntosPorPulgada);
}

}  // namespace kalo
