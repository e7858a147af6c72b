#pragma once

// The members the printer and the preview surfaces share, built once for any
// class that hands out its Lienzo (`Lienzo& lienzo()`), so one call means the
// same on paper and on screen. Members that behave differently (Print, sizes,
// colours one of them lacks) stay in the owning class's table; hosts reach the
// shared ones by the same dispatch ids on both.

#include <QString>
#include <algorithm>
#include <memory>
#include <span>
#include <vector>

#include "automation/interfaz.h"
#include "kaloimpresora/automatizacion.h"
#include "target/imagen.h"
#include "target/lienzo.h"

namespace kalo::miembros_lienzo {

// The picture box's parameters are all by value.
inline Parametro Requerido(const char16_t* nombre, TipoDato tipo) { return PorValor(QString::fromUtf16(nombre), tipo); }
inline Parametro Opcional(const char16_t* nombre, TipoDato tipo = TipoDato::Variante) {
    return kalo::Opcional(PorValor(QString::fromUtf16(nombre), tipo));
}

inline bool Omitido(const Variant& v) { return v.esFalta(); }

// An omitted optional clears its flag, so the member falls back on its own
// state (ForeColor, a full circle) whatever the flags said.
inline int16_t Bandera(int16_t banderas, int16_t bit, const Variant& argumento) {
    return Omitido(argumento) ? int16_t(banderas & ~bit) : banderas;
}

inline double Numero(const Variant& v) { return Omitido(v) ? 0.0 : CDbl(v); }

inline QString TextoAImprimir(const Variant& v) {
    if (Omitido(v) || v.esVacio() || v.esNulo()) return {};
    return CStr(v);
}

inline const Imagen& ImagenDe(const Variant& v) {
    if (!v.esObjeto()) Lanza(err::kTiposNoCoinciden);
    if (!v.objeto()) Lanza(err::kObjetoNoEstablecido);
    const auto* imagen = dynamic_cast<const Imagen*>(v.objeto().get());
    if (!imagen) Lanza(err::kTiposNoCoinciden);
    return *imagen;
}

template <class Clase, class Leer, class Escribir>
Miembro<Clase> Prop(const char16_t* nombre, int32_t id, TipoDato tipo, Leer leer, Escribir escribir) {
    return PropiedadConProcedimientos<Clase>(QString::fromUtf16(nombre), id, tipo, leer, escribir);
}

// A property read from and written to the class's Lienzo.
template <class Clase, class Leer, class Escribir>
Miembro<Clase> PropL(const char16_t* nombre, int32_t id, TipoDato tipo, Leer leer, Escribir escribir) {
    return Prop<Clase>(nombre, id, tipo, [leer](Clase& c) { return Variant(leer(c.lienzo())); },
                       [escribir](Clase& c, const Variant& v) { escribir(c.lienzo(), v); });
}

// The Font object: a live view of its owner's font, so that setting Font.Size
// changes what the next Print uses. It keeps the owner alive.
template <class Clase>
class Fuente : public ConTabla<Fuente<Clase>> {
public:
    explicit Fuente(std::shared_ptr<Clase> dueno) : dueno_(std::move(dueno)) {}
    Lienzo& lienzo() { return dueno_->lienzo(); }

    static const TablaDeMiembros& Tabla() {
        using F = Fuente;
        using T = TipoDato;
        static const Interfaz<F> interfaz(
            QStringLiteral("Font"),
            {
                PropL<F>(u"Name", 0, T::Texto, [](Lienzo& l) { return l.FontName(); },
                         [](Lienzo& l, const Variant& v) { l.FontName(v.texto()); }),
                PropL<F>(u"Size", 2, T::Doble, [](Lienzo& l) { return l.FontSize(); },
                         [](Lienzo& l, const Variant& v) { l.FontSize(v.doble()); }),
                PropL<F>(u"Bold", 3, T::Booleano, [](Lienzo& l) { return l.FontBold(); },
                         [](Lienzo& l, const Variant& v) { l.FontBold(v.booleano()); }),
                PropL<F>(u"Italic", 4, T::Booleano, [](Lienzo& l) { return l.FontItalic(); },
                         [](Lienzo& l, const Variant& v) { l.FontItalic(v.booleano()); }),
                PropL<F>(u"Underline", 5, T::Booleano, [](Lienzo& l) { return l.FontUnderline(); },
                         [](Lienzo& l, const Variant& v) { l.FontUnderline(v.booleano()); }),
                PropL<F>(u"Strikethrough", 6, T::Booleano, [](Lienzo& l) { return l.FontStrikethru(); },
                         [](Lienzo& l, const Variant& v) { l.FontStrikethru(v.booleano()); }),
            });
        return interfaz;
    }

private:
    std::shared_ptr<Clase> dueno_;
};

// Appends the shared members to a class's table. Clase also needs
// shared_from_this(), which its Font object holds on to.
template <class Clase>
void Agrega(std::vector<Miembro<Clase>>& m) {
    using C = Clase;
    using T = TipoDato;
    m.push_back(PropL<C>(u"ScaleMode", 1, T::Entero, [](Lienzo& l) { return l.ScaleMode(); },
                         [](Lienzo& l, const Variant& v) { l.ScaleMode(v.entero()); }));
    m.push_back(PropL<C>(u"ScaleWidth", 2, T::Doble, [](Lienzo& l) { return l.ScaleWidth(); },
                         [](Lienzo& l, const Variant& v) { l.ScaleWidth(v.doble()); }));
    m.push_back(PropL<C>(u"ScaleHeight", 3, T::Doble, [](Lienzo& l) { return l.ScaleHeight(); },
                         [](Lienzo& l, const Variant& v) { l.ScaleHeight(v.doble()); }));
    m.push_back(PropL<C>(u"ScaleLeft", 4, T::Doble, [](Lienzo& l) { return l.ScaleLeft(); },
                         [](Lienzo& l, const Variant& v) { l.ScaleLeft(v.doble()); }));
    m.push_back(PropL<C>(u"ScaleTop", 5, T::Doble, [](Lienzo& l) { return l.ScaleTop(); },
                         [](Lienzo& l, const Variant& v) { l.ScaleTop(v.doble()); }));
    m.push_back(PropL<C>(u"CurrentX", 6, T::Doble, [](Lienzo& l) { return l.CurrentX(); },
                         [](Lienzo& l, const Variant& v) { l.CurrentX(v.doble()); }));
    m.push_back(PropL<C>(u"CurrentY", 7, T::Doble, [](Lienzo& l) { return l.CurrentY(); },
                         [](Lienzo& l, const Variant& v) { l.CurrentY(v.doble()); }));
    m.push_back(PropL<C>(u"FontName", 8, T::Texto, [](Lienzo& l) { return l.FontName(); },
                         [](Lienzo& l, const Variant& v) { l.FontName(v.texto()); }));
    m.push_back(PropL<C>(u"FontSize", 9, T::Doble, [](Lienzo& l) { return l.FontSize(); },
                         [](Lienzo& l, const Variant& v) { l.FontSize(v.doble()); }));
    m.push_back(PropL<C>(u"FontBold", 10, T::Booleano, [](Lienzo& l) { return l.FontBold(); },
                         [](Lienzo& l, const Variant& v) { l.FontBold(v.booleano()); }));
    m.push_back(PropL<C>(u"FontItalic", 11, T::Booleano, [](Lienzo& l) { return l.FontItalic(); },
                         [](Lienzo& l, const Variant& v) { l.FontItalic(v.booleano()); }));
    m.push_back(PropL<C>(u"FontUnderline", 12, T::Booleano, [](Lienzo& l) { return l.FontUnderline(); },
                         [](Lienzo& l, const Variant& v) { l.FontUnderline(v.booleano()); }));
    m.push_back(PropL<C>(u"FontStrikethru", 13, T::Booleano, [](Lienzo& l) { return l.FontStrikethru(); },
                         [](Lienzo& l, const Variant& v) { l.FontStrikethru(v.booleano()); }));
    m.push_back(PropL<C>(u"FontTransparent", 14, T::Booleano, [](Lienzo& l) { return l.FontTransparent(); },
                         [](Lienzo& l, const Variant& v) { l.FontTransparent(v.booleano()); }));
    m.push_back(PropL<C>(u"ForeColor", 15, T::Largo, [](Lienzo& l) { return l.ForeColor(); },
                         [](Lienzo& l, const Variant& v) { l.ForeColor(v.largo()); }));
    m.push_back(PropL<C>(u"DrawWidth", 17, T::Entero, [](Lienzo& l) { return int16_t(l.DrawWidth()); },
                         [](Lienzo& l, const Variant& v) { l.DrawWidth(v.entero()); }));

    // Set Font = another font object copies its attributes.
    Miembro<C> fuente = Prop<C>(
        u"Font", 25, T::Objeto, [](C& c) { return Variant(std::make_shared<Fuente<C>>(c.shared_from_this())); },
        [](C& c, const Variant& v) {
            const auto& otra = v.objeto();
            if (!otra) Lanza(err::kObjetoNoEstablecido);
            Lienzo& l = c.lienzo();
            l.FontName(CStr(otra->Lee(QStringLiteral("Name"))));
            l.FontSize(CDbl(otra->Lee(QStringLiteral("Size"))));
            l.FontBold(CBool(otra->Lee(QStringLiteral("Bold"))));
            l.FontItalic(CBool(otra->Lee(QStringLiteral("Italic"))));
        });
    fuente.clase = ClaseDeMiembro::PropiedadObjeto;
    m.push_back(fuente);

    m.push_back(Metodo<C>(QStringLiteral("Scale"), 40, T::Ninguno,
                          {Opcional(u"x1"), Opcional(u"y1"), Opcional(u"x2"), Opcional(u"y2")},
                          [](C& c, std::span<Variant> a) {
                              // All four or none, as the runtime's statement allows.
                              const auto dados = std::count_if(a.begin(), a.end(), [](auto& v) { return !Omitido(v); });
                              if (dados == 0) {
                                  c.lienzo().Scale();
                              } else if (dados == 4) {
                                  c.lienzo().Scale(CDbl(a[0]), CDbl(a[1]), CDbl(a[2]), CDbl(a[3]));
                              } else {
                                  Lanza(err::kArgumentoNoOpcional);
                              }
                              return Variant();
                          }));
    m.push_back(Metodo<C>(QStringLiteral("Line"), 43, T::Ninguno,
                          {Requerido(u"Flags", T::Entero), Opcional(u"X1"), Opcional(u"Y1"), Requerido(u"X2", T::Doble),
                           Requerido(u"Y2", T::Doble), Opcional(u"Color")},
                          [](C& c, std::span<Variant> a) {
                              int16_t banderas = a[0].entero();
                              if (Omitido(a[1]) || Omitido(a[2])) banderas &= ~trazo::kConPrimerPunto;
                              banderas = Bandera(banderas, trazo::kConColor, a[5]);
                              c.lienzo().Line(banderas, Numero(a[1]), Numero(a[2]), a[3].doble(), a[4].doble(),
                                              Omitido(a[5]) ? 0 : CLng(a[5]));
                              return Variant();
                          }));
    m.push_back(Metodo<C>(QStringLiteral("Circle"), 44, T::Ninguno,
                          {Requerido(u"Flags", T::Entero), Requerido(u"X", T::Doble), Requerido(u"Y", T::Doble),
                           Requerido(u"Radius", T::Doble), Opcional(u"Color"), Opcional(u"Start"), Opcional(u"End"),
                           Opcional(u"Aspect")},
                          [](C& c, std::span<Variant> a) {
                              int16_t banderas = a[0].entero();
                              banderas = Bandera(banderas, arco::kConColor, a[4]);
                              banderas = Bandera(banderas, arco::kConInicio, a[5]);
                              banderas = Bandera(banderas, arco::kConFin, a[6]);
                              banderas = Bandera(banderas, arco::kConAspecto, a[7]);
                              c.lienzo().Circle(banderas, a[1].doble(), a[2].doble(), a[3].doble(),
                                                Omitido(a[4]) ? 0 : CLng(a[4]), Numero(a[5]), Numero(a[6]),
                                                Omitido(a[7]) ? 1.0 : CDbl(a[7]));
                              return Variant();
                          }));
    // Width and height default to the picture's own size.
    m.push_back(Metodo<C>(QStringLiteral("PaintPicture"), 45, T::Ninguno,
                          {Requerido(u"Picture", T::Variante), Requerido(u"X1", T::Doble), Requerido(u"Y1", T::Doble),
                           Opcional(u"Width1"), Opcional(u"Height1")},
                          [](C& c, std::span<Variant> a) {
                              const Imagen& imagen = ImagenDe(a[0]);
                              Lienzo& l = c.lienzo();
                              const double ancho = Omitido(a[3]) ? l.AnchoDePixeles(imagen.AnchoHimetrico() / 2540.0 * l.PppX())
                                                                 : CDbl(a[3]);
                              const double alto = Omitido(a[4]) ? l.AltoDePixeles(imagen.AltoHimetrico() / 2540.0 * l.PppY())
                                                                : CDbl(a[4]);
                              l.PaintPicture(imagen.imagen(), a[1].doble(), a[2].doble(), ancho, alto);
                              return Variant();
                          }));
    m.push_back(Metodo<C>(QStringLiteral("TextWidth"), 46, T::Doble, {Requerido(u"Str", T::Texto)},
                          [](C& c, std::span<Variant> a) { return Variant(c.lienzo().TextWidth(a[0].texto())); }));
    m.push_back(Metodo<C>(QStringLiteral("TextHeight"), 47, T::Doble, {Requerido(u"Str", T::Texto)},
                          [](C& c, std::span<Variant> a) { return Variant(c.lienzo().TextHeight(a[0].texto())); }));
}

}  // namespace kalo::miembros_lienzo
