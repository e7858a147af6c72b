// Replay of the report spool file's command language.

#include "spool/guion.h"

#include <array>
#include <charconv>
#include <string_view>

namespace kalo {

using namespace Qt::StringLiterals;

namespace {

enum class Clase : char {
    Numero = 'N',      // Fn("2.5")
    Texto = 'T',       // quoted, its double quotes replaced by the recorder
    TextoCrudo = 'C',  // quoted as it came: may hold an unbalanced double quote
    Verdad = 'B',      // True / False
    Suelto = 'S',      // a bare number
};

struct Forma {
    std::u16string_view palabra;
    std::string_view clases;
};

constexpr std::array<Forma, 26> kPermitidos{{
    {u"IniciaDocumento", ""},   {u"PaginaNueva", ""},       {u"FinDocumento", ""},
    {u"Say", "NNT"},            {u"EstableceFuente", "CN"}, {u"CurrentX", "N"},
    {u"CurrentY", "N"},         {u"FontBold", "B"},         {u"FontItalic", "B"},
    {u"FuenteTransparente", "B"}, {u"ColorDeFuente", "S"},  {u"Linea", "NNNN"},
    {u"Box", "NNNN"},           {u"FilledBox", "NNNNN"},    {u"PCircle", "NNN"},
    {u"Picture", "CNNNN"},      {u"Bar128", "NCNNNNB"},     {u"Bar3de9", "NCNNNNBB"},
    {u"BarEAN13", "NCNNNNB"},   {u"BarEAN8", "NCNNNNB"},    {u"Codigo39", "NNNNTBBTT"},
    {u"EstableceImpresora", "C"}, {u"Portrait", ""},        {u"LandScape", ""},
    {u"RestauraPapel", ""},     {u"PaperSize", "NNN"},
}};

// Longest number inside Fn("..."). The closing quote is looked for no further,
// so that a line full of failed candidates for a quoted text still parses in
// linear time.
constexpr qsizetype kCifrasDeFn = 64;

// A plain "."-decimal number, never the locale's form: scripts travel between locales.
std::optional<double> NumeroDecimal(QStringView t) {
    if (t.size() > kCifrasDeFn) return std::nullopt;
    std::array<char, kCifrasDeFn> ascii;
    qsizetype i = 0;
    if (i < t.size() && (t[i] == u'-' || t[i] == u'+')) {
        ascii[0] = static_cast<char>(t[0].unicode());
        ++i;
    }
    qsizetype digitos = 0;
    bool punto = false;
    for (; i < t.size(); ++i) {
        const char16_t c = t[i].unicode();
        if (c >= u'0' && c <= u'9')
            ++digitos;
        else if (c == u'.' && !punto)
            punto = true;
        else
            return std::nullopt;
        ascii[i] = static_cast<char>(c);
    }
    if (digitos == 0) return std::nullopt;
    const char* inicio = ascii.data() + (ascii[0] == '+' ? 1 : 0);
    double v = 0;
    const auto [fin, ec] = std::from_chars(inicio, ascii.data() + t.size(), v);
    if (ec != std::errc() || fin != ascii.data() + t.size()) return std::nullopt;
    return v;
}

// Where `")` closes an Fn( "…" ) that opens at the start of the text, or -1.
qsizetype CierreDeFn(QStringView t) {
    for (qsizetype j = 4; j + 1 < t.size(); ++j)
        if (t[j] == u'"' && t[j + 1] == u')') return j;
    return -1;
}

class Analizador {
public:
    Analizador(QStringView resto, std::string_view clases) : resto_(resto), clases_(clases) {}

    // Parses the arguments from `desde` for clases_[k..], to the end of the line.
    bool Lee(qsizetype desde, size_t k, std::vector<Variant>& salida) {
        if (k == clases_.size()) {
            if (desde == resto_.size()) return true;
            return Falla(u"sobra texto tras el último argumento"_s);
        }
        if (k > 0) {
            if (desde >= resto_.size() || resto_[desde] != u',')
                return Falla(u"se esperaba \",\" antes del argumento %1"_s.arg(k + 1));
            ++desde;
        }
        const Clase clase = static_cast<Clase>(clases_[k]);
        if (clase == Clase::TextoCrudo) return LeeTextoCrudo(desde, k, salida);
        qsizetype fin = 0;
        Variant valor;
        if (!LeeSimple(clase, desde, k, fin, valor)) return false;
        salida.push_back(std::move(valor));
        if (Lee(fin, k + 1, salida)) return true;
        salida.pop_back();
        return false;
    }

    QString error;

private:
    bool Falla(QString que) {
        if (error.isEmpty()) error = std::move(que);
        return false;
    }

    bool LeeSimple(Clase clase, qsizetype i, size_t k, qsizetype& fin, Variant& valor) {
        const QStringView r = resto_.mid(i);
        switch (clase) {
        case Clase::Numero: {
            if (!r.startsWith(u"Fn(\""))
                return Falla(u"el argumento %1 debe ser un número Fn(\"…\")"_s.arg(k + 1));
            const qsizetype cierre = CierreDeFn(r.left(4 + kCifrasDeFn + 2));
            if (cierre < 0 && r.size() <= 4 + kCifrasDeFn + 2)
                return Falla(u"Fn sin terminar en el argumento %1"_s.arg(k + 1));
            if (cierre < 0)
                return Falla(u"el argumento %1 no es un número: %2…"_s.arg(k + 1).arg(r.mid(4, kCifrasDeFn)));
            const auto v = NumeroDecimal(r.mid(4, cierre - 4));
            if (!v) return Falla(u"el argumento %1 no es un número: %2"_s.arg(k + 1).arg(r.mid(4, cierre - 4)));
            valor = Variant(*v);
            fin = i + cierre + 2;
            return true;
        }
        case Clase::Texto: {
            if (!r.startsWith(u'"')) return Falla(u"el argumento %1 debe ser un texto entre comillas"_s.arg(k + 1));
            const qsizetype cierre = r.indexOf(u'"', 1);
            if (cierre < 0) return Falla(u"texto sin cerrar en el argumento %1"_s.arg(k + 1));
            valor = Variant(r.mid(1, cierre - 1).toString());
            fin = i + cierre + 1;
            return true;
        }
        case Clase::Verdad: {
            if (r.startsWith(u"True")) {
                valor = Variant(true);
                fin = i + 4;
            } else if (r.startsWith(u"False")) {
                valor = Variant(false);
                fin = i + 5;
            } else {
                return Falla(u"el argumento %1 debe ser True o False"_s.arg(k + 1));
            }
            return true;
        }
        case Clase::Suelto: {
            qsizetype largo = r.indexOf(u',');
            if (largo < 0) largo = r.size();
            const auto v = NumeroDecimal(r.left(largo));
            if (!v) return Falla(u"el argumento %1 no es un número: %2"_s.arg(k + 1).arg(r.left(largo)));
            // Whole values come back whole, as the host passed them.
            if (*v >= INT32_MIN && *v <= INT32_MAX && *v == static_cast<double>(static_cast<int32_t>(*v)))
                valor = Variant(static_cast<int32_t>(*v));
            else
                valor = Variant(*v);
            fin = i + largo;
            return true;
        }
        case Clase::TextoCrudo: break;
        }
        return false;
    }

    // The recorder left double quotes inside this text as they came, so the
    // closing quote is the one after which the remaining arguments parse.
    bool LeeTextoCrudo(qsizetype i, size_t k, std::vector<Variant>& salida) {
        if (i >= resto_.size() || resto_[i] != u'"')
            return Falla(u"el argumento %1 debe ser un texto entre comillas"_s.arg(k + 1));
        const bool ultimo = k + 1 == clases_.size();
        for (qsizetype c = resto_.indexOf(u'"', i + 1); c >= 0; c = resto_.indexOf(u'"', c + 1)) {
            const bool candidato = ultimo ? c + 1 == resto_.size() : c + 1 < resto_.size() && resto_[c + 1] == u',';
            if (!candidato) continue;
            // The text is copied only once the rest has parsed.
            salida.emplace_back();
            const size_t lugar = salida.size() - 1;
            if (Lee(c + 1, k + 1, salida)) {
                salida[lugar] = Variant(resto_.mid(i + 1, c - i - 1).toString());
                return true;
            }
            salida.pop_back();
        }
        return Falla(u"texto sin cerrar en el argumento %1"_s.arg(k + 1));
    }

    QStringView resto_;
    std::string_view clases_;
};

}  // namespace

std::optional<Comando> LeeComando(QStringView linea, QString* error) {
    auto falla = [&](const QString& que) -> std::optional<Comando> {
        if (error) *error = que;
        return std::nullopt;
    };
    if (linea.endsWith(u"\r\n"))
        linea.chop(2);
    else if (linea.endsWith(u'\n') || linea.endsWith(u'\r'))
        linea.chop(1);
    if (linea.size() > limite::kComando)
        return falla(u"Comando de más de %1 KiB; no se lee"_s.arg(limite::kComando / 1024));
    if (linea.trimmed().isEmpty()) return falla(u"Línea vacía"_s);

    const qsizetype espacio = linea.indexOf(u' ');
    const QStringView palabra = espacio < 0 ? linea : linea.left(espacio);
    const Forma* forma = nullptr;
    for (const Forma& f : kPermitidos)
        if (palabra.size() == static_cast<qsizetype>(f.palabra.size()) &&
            palabra.compare(QStringView(f.palabra.data(), f.palabra.size()), Qt::CaseInsensitive) == 0) {
            forma = &f;
            break;
        }
    if (!forma) return falla(u"Comando no permitido en un guion: "_s + palabra.left(80).toString());

    Comando c;
    // The allow-list's own static text: nothing to allocate, and the same
    // storage on every line, which the member lookup's cache recognises.
    c.palabra = QString::fromRawData(reinterpret_cast<const QChar*>(forma->palabra.data()),
                                     static_cast<qsizetype>(forma->palabra.size()));
    if (forma->clases.empty()) {
        if (espacio >= 0) return falla(u"%1 no lleva argumentos"_s.arg(c.palabra));
        return c;
    }
    if (espacio < 0)
        return falla(u"%1 lleva %2 argumentos y no tiene ninguno"_s.arg(c.palabra).arg(forma->clases.size()));
    c.argumentos.reserve(forma->clases.size());
    Analizador analizador(linea.mid(espacio + 1), forma->clases);
    if (!analizador.Lee(0, 0, c.argumentos)) return falla(c.palabra + u": "_s + analizador.error);
    return c;
}

void EjecutaComando(Objeto& impresora, Comando& c) {
    impresora.InvocaPorNombre(c.palabra, Llamada::Metodo, c.argumentos);
}

}  // namespace kalo
