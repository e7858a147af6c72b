// Program and class identifiers of the two creatable classes.

#include "kaloimpresora/automatizacion.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/paramdata.h"

namespace kalo {

namespace {

struct Clase {
    const char16_t* idDePrograma;
    const char16_t* idDeClase;
    std::shared_ptr<Objeto> (*crea)();
};

const Clase kClases[] = {
    {u"KaloImpresora.Impresora", u"{E94BEC84-E327-4A16-913B-8FBDD11090A8}",
     [] { return std::shared_ptr<Objeto>(std::make_shared<Impresora>()); }},
    {u"KaloImpresora.ParamData", u"{B3A1E471-9B00-448B-A06E-ABBC3C84DD1D}",
     [] { return std::shared_ptr<Objeto>(std::make_shared<ParamData>()); }},
};

}  // namespace

std::shared_ptr<Objeto> CreaObjeto(const QString& idDePrograma) {
    const QString id = idDePrograma.trimmed();
    for (const Clase& c : kClases) {
        if (id.compare(QString::fromUtf16(c.idDePrograma), Qt::CaseInsensitive) == 0 ||
            id.compare(QString::fromUtf16(c.idDeClase), Qt::CaseInsensitive) == 0)
            return c.crea();
    }
    Lanza(err::kNoPuedeCrearObjeto, idDePrograma);
}

}  // namespace kalo
