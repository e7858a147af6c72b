#include "target/superficie_imagen.h"

#include <cmath>

#include "automation/interfaz.h"
#include "target/imagen.h"

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

int32_t Contenedor::IdDeNombre(const QString& nombre) const { return InterfazContenedor().IdDeNombre(nombre); }

Variant Contenedor::Invoca(int32_t dispid, Llamada tipo, std::span<Variant> argumentos) {
    return InterfazContenedor().Invoca(*this, dispid, tipo, argumentos);
}

// ---- Fuente -----------------------------------------------------------------

namespace {

// The surface's Font object: a live view of its font, so that setting
// Font.Size changes what the next Print uses.
class Fuente : public Objeto {
public:
    explicit Fuente(std::shared_ptr<SuperficieDeImagen> s) : superficie(std::move(s)) {}
    Lienzo& lienzo() { return superficie->lienzo(); }

    int32_t IdDeNombre(const QString& nombre) const override;
    Variant Invoca(int32_t dispid, Llamada tipo, std::span<Variant> argumentos) override;

    std::shared_ptr<SuperficieDeImagen> superficie;
};

template <class Clase, class Leer, class Escribir>
Miembro<Clase> Prop(const char16_t* nombre, int32_t id, TipoDato tipo, Leer leer, Escribir escribir) {
    return PropiedadConProcedimientos<Clase>(QString::fromUtf16(nombre), id, tipo, leer, escribir);
}

const Interfaz<Fuente>& InterfazFuente() {
    static const Interfaz<Fuente> interfaz(
        u"Font"_s,
        {
            Prop<Fuente>(
                u"Name", 0, T::Texto, [](Fuente& f) { return Variant(f.lienzo().FontName()); },
                [](Fuente& f, const Variant& v) { f.lienzo().FontName(v.texto()); }),
            Prop<Fuente>(
                u"Size", 2, T::Doble, [](Fuente& f) { return Variant(f.lienzo().FontSize()); },
                [](Fuente& f, const Variant& v) { f.lienzo().FontSize(v.doble()); }),
            Prop<Fuente>(
                u"Bold", 3, T::Booleano, [](Fuente& f) { return Variant(f.lienzo().FontBold()); },
                [](Fuente& f, const Variant& v) { f.lienzo().FontBold(v.booleano()); }),
            Prop<Fuente>(
                u"Italic", 4, T::Booleano, [](Fuente& f) { return Variant(f.lienzo().FontItalic()); },
                [](Fuente& f, const Variant& v) { f.lienzo().FontItalic(v.booleano()); }),
            Prop<Fuente>(
                u"Underline", 5, T::Booleano, [](Fuente& f) { return Variant(f.lienzo().FontUnderline()); },
                [](Fuente& f, const Variant& v) { f.lienzo().FontUnderline(v.booleano()); }),
            Prop<Fuente>(
                u"Strikethrough", 6, T::Booleano, [](Fuente& f) { return Variant(f.lienzo().FontStrikethru()); },
                [](Fuente& f, const Variant& v) { f.lienzo().FontStrikethru(v.booleano()); }),
        });
    return interfaz;
}

int32_t Fuente::IdDeNombre(const QString& nombre) const { return InterfazFuente().IdDeNombre(nombre); }

Variant Fuente::Invoca(int32_t dispid, Llamada tipo, std::span<Variant> argumentos) {
    return InterfazFuente().Invoca(*this, dispid, tipo, argumentos);
}

// ---- SuperficieDeImagen: member table ----------------------------------------

Parametro Requerido(const char16_t* nombre, TipoDato tipo) {
    return {QString::fromUtf16(nombre), tipo, false, false, {}};
}
Parametro Opcional(const char16_t* nombre, TipoDato tipo = T::Variante) {
    return {QString::fromUtf16(nombre), tipo, false, true, {}};
}

bool Omitido(const Variant& v) { return v.esFalta(); }

// An omitted optional clears its flag, so the member falls back on its own
// state (ForeColor, a full circle) whatever the flags said.
int16_t Bandera(int16_t banderas, int16_t bit, const Variant& argumento) {
    return Omitido(argumento) ? int16_t(banderas & ~bit) : banderas;
}

double Numero(const Variant& v) { return Omitido(v) ? 0.0 : CDbl(v); }

QString TextoAImprimir(const Variant& v) {
    if (Omitido(v) || v.esVacio() || v.esNulo()) return {};
    return CStr(v);
}

const Imagen& ImagenDe(const Variant& v) {
    if (!v.esObjeto()) Lanza(err::kTiposNoCoinciden);
    if (!v.objeto()) Lanza(err::kObjetoNoEstablecido);
    const auto* imagen = dynamic_cast<const Imagen*>(v.objeto().get());
    if (!imagen) Lanza(err::kTiposNoCoinciden);
    return *imagen;
}

using S = SuperficieDeImagen;

template <class Leer, class Escribir>
Miembro<S> PropL(const char16_t* nombre, int32_t id, TipoDato tipo, Leer leer, Escribir escribir) {
    return Prop<S>(nombre, id, tipo, [leer](S& s) { return Variant(leer(s.lienzo())); },
                   [escribir](S& s, const Variant& v) { escribir(s.lienzo(), v); });
}

std::vector<Miembro<S>> MiembrosDeSuperficie() {
    auto soloLectura = [](S&, const Variant&) { Lanza(err::kNoAdmitePropiedadOMetodo); };
    std::vector<Miembro<S>> m = {
        PropL(u"ScaleMode", 1, T::Entero, [](Lienzo& l) { return l.ScaleMode(); },
              [](Lienzo& l, const Variant& v) { l.ScaleMode(v.entero()); }),
        PropL(u"ScaleWidth", 2, T::Doble, [](Lienzo& l) { return l.ScaleWidth(); },
              [](Lienzo& l, const Variant& v) { l.ScaleWidth(v.doble()); }),
        PropL(u"ScaleHeight", 3, T::Doble, [](Lienzo& l) { return l.ScaleHeight(); },
              [](Lienzo& l, const Variant& v) { l.ScaleHeight(v.doble()); }),
        PropL(u"ScaleLeft", 4, T::Doble, [](Lienzo& l) { return l.ScaleLeft(); },
              [](Lienzo& l, const Variant& v) { l.ScaleLeft(v.doble()); }),
        PropL(u"ScaleTop", 5, T::Doble, [](Lienzo& l) { return l.ScaleTop(); },
              [](Lienzo& l, const Variant& v) { l.ScaleTop(v.doble()); }),
        PropL(u"CurrentX", 6, T::Doble, [](Lienzo& l) { return l.CurrentX(); },
              [](Lienzo& l, const Variant& v) { l.CurrentX(v.doble()); }),
        PropL(u"CurrentY", 7, T::Doble, [](Lienzo& l) { return l.CurrentY(); },
              [](Lienzo& l, const Variant& v) { l.CurrentY(v.doble()); }),
        PropL(u"FontName", 8, T::Texto, [](Lienzo& l) { return l.FontName(); },
              [](Lienzo& l, const Variant& v) { l.FontName(v.texto()); }),
        PropL(u"FontSize", 9, T::Doble, [](Lienzo& l) { return l.FontSize(); },
              [](Lienzo& l, const Variant& v) { l.FontSize(v.doble()); }),
        PropL(u"FontBold", 10, T::Booleano, [](Lienzo& l) { return l.FontBold(); },
              [](Lienzo& l, const Variant& v) { l.FontBold(v.booleano()); }),
        PropL(u"FontItalic", 11, T::Booleano, [](Lienzo& l) { return l.FontItalic(); },
              [](Lienzo& l, const Variant& v) { l.FontItalic(v.booleano()); }),
        PropL(u"FontUnderline", 12, T::Booleano, [](Lienzo& l) { return l.FontUnderline(); },
              [](Lienzo& l, const Variant& v) { l.FontUnderline(v.booleano()); }),
        PropL(u"FontStrikethru", 13, T::Booleano, [](Lienzo& l) { return l.FontStrikethru(); },
              [](Lienzo& l, const Variant& v) { l.FontStrikethru(v.booleano()); }),
        PropL(u"FontTransparent", 14, T::Booleano, [](Lienzo& l) { return l.FontTransparent(); },
              [](Lienzo& l, const Variant& v) { l.FontTransparent(v.booleano()); }),
        PropL(u"ForeColor", 15, T::Largo, [](Lienzo& l) { return l.ForeColor(); },
              [](Lienzo& l, const Variant& v) { l.ForeColor(v.largo()); }),
        PropL(u"BackColor", 16, T::Largo, [](Lienzo& l) { return l.BackColor(); },
              [](Lienzo& l, const Variant& v) { l.BackColor(v.largo()); }),
        PropL(u"DrawWidth", 17, T::Entero, [](Lienzo& l) { return int16_t(l.DrawWidth()); },
              [](Lienzo& l, const Variant& v) { l.DrawWidth(v.entero()); }),
        Prop<S>(u"Width", 20, T::Doble, [](S& s) { return Variant(s.Width()); },
                [](S& s, const Variant& v) { s.Width(v.doble()); }),
        Prop<S>(u"Height", 21, T::Doble, [](S& s) { return Variant(s.Height()); },
                [](S& s, const Variant& v) { s.Height(v.doble()); }),
        Prop<S>(u"Left", 22, T::Doble, [](S& s) { return Variant(s.Left()); },
                [](S& s, const Variant& v) { s.Left(v.doble()); }),
        Prop<S>(u"Top", 23, T::Doble, [](S& s) { return Variant(s.Top()); },
                [](S& s, const Variant& v) { s.Top(v.doble()); }),
    };

    Miembro<S> parent = Prop<S>(u"Parent", 24, T::Objeto, [](S& s) { return Variant(s.Parent()); }, soloLectura);
    parent.clase = ClaseDeMiembro::PropiedadObjeto;
    m.push_back(parent);

    // Font: a live view; Set Font = another font object copies its attributes.
    Miembro<S> fuente = Prop<S>(
        u"Font", 25, T::Objeto, [](S& s) { return Variant(std::make_shared<Fuente>(s.shared_from_this())); },
        [](S& s, const Variant& v) {
            const auto& otra = v.objeto();
            if (!otra) Lanza(err::kObjetoNoEstablecido);
            Lienzo& l = s.lienzo();
            l.FontName(CStr(otra->Lee(u"Name"_s)));
            l.FontSize(CDbl(otra->Lee(u"Size"_s)));
            l.FontBold(CBool(otra->Lee(u"Bold"_s)));
            l.FontItalic(CBool(otra->Lee(u"Italic"_s)));
        });
    fuente.clase = ClaseDeMiembro::PropiedadObjeto;
    m.push_back(fuente);

    Miembro<S> image = Prop<S>(
        u"Image", 26, T::Objeto,
        [](S& s) { return Variant(std::make_shared<Imagen>(s.lienzo().Imagen(), s.lienzo().PppX())); },
        soloLectura);
    image.clase = ClaseDeMiembro::PropiedadObjeto;
    m.push_back(image);

    m.push_back(Metodo<S>(u"Scale"_s, 40, T::Ninguno,
                          {Opcional(u"x1"), Opcional(u"y1"), Opcional(u"x2"), Opcional(u"y2")},
                          [](S& s, std::span<Variant> a) {
                              // All four or none, as the runtime's statement allows.
                              const int dados = std::count_if(a.begin(), a.end(), [](auto& v) { return !Omitido(v); });
                              if (dados == 0) {
                                  s.lienzo().Scale();
                              } else if (dados == 4) {
                                  s.lienzo().Scale(CDbl(a[0]), CDbl(a[1]), CDbl(a[2]), CDbl(a[3]));
                              } else {
                                  Lanza(err::kArgumentoNoOpcional);
                              }
                              return Variant();
                          }));
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
    m.push_back(Metodo<S>(u"Line"_s, 43, T::Ninguno,
                          {Requerido(u"Flags", T::Entero), Opcional(u"X1"), Opcional(u"Y1"), Requerido(u"X2", T::Doble),
                           Requerido(u"Y2", T::Doble), Opcional(u"Color")},
                          [](S& s, std::span<Variant> a) {
                              int16_t banderas = a[0].entero();
                              if (Omitido(a[1]) || Omitido(a[2])) banderas &= ~trazo::kConPrimerPunto;
                              banderas = Bandera(banderas, trazo::kConColor, a[5]);
                              s.lienzo().Line(banderas, Numero(a[1]), Numero(a[2]), a[3].doble(), a[4].doble(),
                                              Omitido(a[5]) ? 0 : CLng(a[5]));
                              return Variant();
                          }));
    m.push_back(Metodo<S>(u"Circle"_s, 44, T::Ninguno,
                          {Requerido(u"Flags", T::Entero), Requerido(u"X", T::Doble), Requerido(u"Y", T::Doble),
                           Requerido(u"Radius", T::Doble), Opcional(u"Color"), Opcional(u"Start"), Opcional(u"End"),
                           Opcional(u"Aspect")},
                          [](S& s, std::span<Variant> a) {
                              int16_t banderas = a[0].entero();
                              banderas = Bandera(banderas, arco::kConColor, a[4]);
                              banderas = Bandera(banderas, arco::kConInicio, a[5]);
                              banderas = Bandera(banderas, arco::kConFin, a[6]);
                              banderas = Bandera(banderas, arco::kConAspecto, a[7]);
                              s.lienzo().Circle(banderas, a[1].doble(), a[2].doble(), a[3].doble(),
                                                Omitido(a[4]) ? 0 : CLng(a[4]), Numero(a[5]), Numero(a[6]),
                                                Omitido(a[7]) ? 1.0 : CDbl(a[7]));
                              return Variant();
                          }));
    // Width and height default to the picture's own size.
    m.push_back(Metodo<S>(u"PaintPicture"_s, 45, T::Ninguno,
                          {Requerido(u"Picture", T::Variante), Requerido(u"X1", T::Doble), Requerido(u"Y1", T::Doble),
                           Opcional(u"Width1"), Opcional(u"Height1")},
                          [](S& s, std::span<Variant> a) {
                              const Imagen& imagen = ImagenDe(a[0]);
                              Lienzo& l = s.lienzo();
                              const double ancho = Omitido(a[3]) ? l.AnchoDePixeles(imagen.AnchoHimetrico() / 2540.0 * l.PppX())
                                                                 : CDbl(a[3]);
                              const double alto = Omitido(a[4]) ? l.AltoDePixeles(imagen.AltoHimetrico() / 2540.0 * l.PppY())
                                                                : CDbl(a[4]);
                              l.PaintPicture(imagen.imagen(), a[1].doble(), a[2].doble(), ancho, alto);
                              return Variant();
                          }));
    m.push_back(Metodo<S>(u"TextWidth"_s, 46, T::Doble, {Requerido(u"Str", T::Texto)},
                          [](S& s, std::span<Variant> a) { return Variant(s.lienzo().TextWidth(a[0].texto())); }));
    m.push_back(Metodo<S>(u"TextHeight"_s, 47, T::Doble, {Requerido(u"Str", T::Texto)},
                          [](S& s, std::span<Variant> a) { return Variant(s.lienzo().TextHeight(a[0].texto())); }));
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
            return horizontal ? 1440 / l.PppX() * std::abs(l.AnchoEnPixeles(1))
                              : 1440 / l.PppY() * std::abs(l.AltoEnPixeles(1));
        }
    }
    const int16_t modo = contenedor_->scaleMode;
    if (modo == escala::kUsuario) return 1;
    return horizontal ? lienzo_.TwipsPorUnidadX(modo) : lienzo_.TwipsPorUnidadY(modo);
}

double SuperficieDeImagen::Width() {
    return lienzo_.Pixeles().width() * 1440 / lienzo_.PppX() / TwipsPorUnidadDelContenedor(true);
}

double SuperficieDeImagen::Height() {
    return lienzo_.Pixeles().height() * 1440 / lienzo_.PppY() / TwipsPorUnidadDelContenedor(false);
}

double SuperficieDeImagen::Left() {
    const int px = caja_ ? caja_->x() : posicion_.x();
    return px * 1440 / lienzo_.PppX() / TwipsPorUnidadDelContenedor(true);
}

double SuperficieDeImagen::Top() {
    const int px = caja_ ? caja_->y() : posicion_.y();
    return px * 1440 / lienzo_.PppY() / TwipsPorUnidadDelContenedor(false);
}

namespace {

int APixelesEnteros(double valor, double twipsPorUnidad, double ppp) {
    const double px = std::round(valor * twipsPorUnidad * ppp / 1440);
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
    constexpr int32_t kErrorDeAccesoALaRuta = 75;
    if (ruta.isEmpty() || !lienzo_.Imagen().save(ruta, "PNG")) Lanza(kErrorDeAccesoALaRuta);
}

int32_t SuperficieDeImagen::IdDeNombre(const QString& nombre) const {
    return InterfazSuperficie().IdDeNombre(nombre);
}

Variant SuperficieDeImagen::Invoca(int32_t dispid, Llamada tipo, std::span<Variant> argumentos) {
    // A hidden widget gets its resize event only when shown; its size is
    // already the one to draw on.
    if (caja_ && caja_->size() != lienzo_.Pixeles()) lienzo_.Redimensiona(caja_->size());
    return InterfazSuperficie().Invoca(*this, dispid, tipo, argumentos);
}

std::shared_ptr<Objeto> CreaSuperficieDeImagen(int anchoPixeles, int altoPixeles, double puntosPorPulgada) {
    if (anchoPixeles < 1 || altoPixeles < 1 || !(puntosPorPulgada > 0)) Lanza(err::kLlamadaNoValida);
    return std::make_shared<SuperficieDeImagen>(QSize(anchoPixeles, altoPixeles), puntosPorPulgada);
}

}  // namespace kalo
