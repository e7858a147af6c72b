#include "automation/interfaz.h"

#include "kaloimpresora/paramdata.h"

namespace kalo {

Variant Coacciona(const Variant& valor, TipoDato tipo) {
    switch (tipo) {
    case TipoDato::Variante:
    case TipoDato::Ninguno: return valor;
    case TipoDato::Booleano: return Variant(CBool(valor));
    case TipoDato::Entero: return Variant(CInt(valor));
    case TipoDato::Largo: return Variant(CLng(valor));
    case TipoDato::Doble: return Variant(CDbl(valor));
    case TipoDato::Fecha: return Variant::Fecha(CDate(valor));
    case TipoDato::Texto: return Variant(CStr(valor));
    case TipoDato::Objeto:
        if (!valor.esObjeto()) Lanza(err::kTiposNoCoinciden);
        return valor;
    case TipoDato::ParamData:
        if (!valor.esObjeto()) Lanza(err::kTiposNoCoinciden);
        if (valor.objeto() && !std::dynamic_pointer_cast<ParamData>(valor.objeto()))
            Lanza(err::kTiposNoCoinciden);
        return valor;
    }
    return valor;
}

Variant ValorInicial(TipoDato tipo) {
    switch (tipo) {
    case TipoDato::Booleano: return Variant(false);
    case TipoDato::Entero: return Variant(int16_t{0});
    case TipoDato::Largo: return Variant(int32_t{0});
    case TipoDato::Doble: return Variant(0.0);
    case TipoDato::Fecha: return Variant::Fecha(0);
    case TipoDato::Texto: return Variant(QString());
    case TipoDato::Objeto:
    case TipoDato::ParamData: return Variant::Nada();
    case TipoDato::Variante: return Variant::Falta();
    case TipoDato::Ninguno: return Variant();
    }
    return Variant();
}

RanurasEnLinea PreparaArgumentos(const std::vector<Parametro>& parametros, std::span<const Variant> argumentos) {
    if (argumentos.size() > parametros.size()) Lanza(err::kNumeroDeArgumentosErroneo);
    RanurasEnLinea ranuras;
    ranuras.reserve(qsizetype(parametros.size()));
    for (size_t i = 0; i < parametros.size(); ++i) {
        const Parametro& p = parametros[i];
        const bool omitido = i >= argumentos.size() || argumentos[i].esFalta();
        if (!omitido) {
            ranuras.push_back(Coacciona(argumentos[i], p.tipo));
        } else if (!p.opcional) {
            Lanza(err::kArgumentoNoOpcional);
        } else if (p.omision) {
            ranuras.push_back(Coacciona(*p.omision, p.tipo));
        } else {
            ranuras.push_back(ValorInicial(p.tipo));
        }
    }
    return ranuras;
}

Variant AVariant(bool b, TipoDato) { return Variant(b); }
Variant AVariant(int16_t i, TipoDato) { return Variant(i); }
Variant AVariant(int32_t i, TipoDato) { return Variant(i); }
Variant AVariant(double d, TipoDato tipo) {
    return tipo == TipoDato::Fecha ? Variant::Fecha(d) : Variant(d);
}
Variant AVariant(const QString& s, TipoDato) { return Variant(s); }
Variant AVariant(const Variant& v, TipoDato) { return v; }
Variant AVariant(const std::shared_ptr<Objeto>& o, TipoDato) { return Variant(o); }

void DeVariant(const Variant& v, bool& campo) { campo = CBool(v); }
void DeVariant(const Variant& v, int16_t& campo) { campo = CInt(v); }
void DeVariant(const Variant& v, int32_t& campo) { campo = CLng(v); }
void DeVariant(const Variant& v, double& campo) {
    campo = v.tipo() == TipoVariant::Fecha ? v.fecha() : CDbl(v);
}
void DeVariant(const Variant& v, QString& campo) { campo = CStr(v); }
void DeVariant(const Variant& v, Variant& campo) { campo = v; }
void DeVariant(const Variant& v, std::shared_ptr<Objeto>& campo) { campo = v.objeto(); }

}  // namespace kalo
