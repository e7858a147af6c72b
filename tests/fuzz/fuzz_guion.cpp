// libFuzzer target for the command-line parser of replayed scripts: any
// bytes, line by line, must parse or be refused, never crash, and whatever
// parses must be one of the recorder's commands with its arguments' shapes.

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <cmath>
#include <cstdlib>

#include "spool/guion.h"

namespace {

// The security property: only what the recorder writes gets through.
constexpr const char16_t* kGrabables[] = {
    u"IniciaDocumento", u"PaginaNueva", u"FinDocumento", u"Say", u"EstableceFuente", u"CurrentX",
    u"CurrentY", u"FontBold", u"FontItalic", u"FuenteTransparente", u"ColorDeFuente", u"Linea",
    u"Box", u"FilledBox", u"PCircle", u"Picture", u"Bar128", u"Bar3de9", u"BarEAN13", u"BarEAN8",
    u"Codigo39", u"EstableceImpresora", u"Portrait", u"LandScape", u"RestauraPapel", u"PaperSize",
};

void Comprueba(bool condicion) {
    if (!condicion) std::abort();
}

void CompruebaComando(const kalo::Comando& c) {
    bool grabable = false;
    for (const char16_t* p : kGrabables) grabable |= c.palabra == QString::fromUtf16(p);
    Comprueba(grabable);
    for (const kalo::Variant& a : c.argumentos) {
        const kalo::TipoVariant t = a.tipo();
        Comprueba(t == kalo::TipoVariant::Doble || t == kalo::TipoVariant::Largo || t == kalo::TipoVariant::Texto ||
                  t == kalo::TipoVariant::Booleano);
        if (t == kalo::TipoVariant::Doble) Comprueba(std::isfinite(a.doble()));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* datos, size_t tamano) {
    const QString texto = QString::fromUtf8(reinterpret_cast<const char*>(datos), static_cast<qsizetype>(tamano));
    for (QStringView linea : QStringView(texto).split(u'\n')) {
        QString error;
        const std::optional<kalo::Comando> c = kalo::LeeComando(linea, &error);
        if (c)
            CompruebaComando(*c);
        else
            Comprueba(!error.isEmpty());
    }
    return 0;
}
