// Program and class identifiers of the creatable classes.

#include "automation/registro_de_clases.h"
#include "data/ambiente.h"
#include "data/conexion.h"
#include "kaloimpresora/automatizacion.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/paramdata.h"

namespace kalo {

namespace {

struct Clase {
    const char16_t* idDePrograma;
    const char16_t* idDeClase;  // empty for a class without one
    std::shared_ptr<Objeto> (*crea)();
};

std::shared_ptr<Objeto> CreaConexion() { return std::make_shared<Conexion>(); }

const Clase kClases[] = {
    {u"KaloImpresora.Impresora", u"{E94BEC84-E327-4A16-913B-8FBDD11090A8}",
     [] { return std::shared_ptr<Objeto>(std::make_shared<Impresora>()); }},
    {u"KaloImpresora.ParamData", u"{B3A1E471-9B00-448B-A06E-ABBC3C84DD1D}",
     [] { return std::shared_ptr<Objeto>(std::make_shared<ParamData>()); }},
    {u"KaloImpresora.Conexion", u"", CreaConexion},
    // What hosts ported from the old platform create their connections as.
    {u"ADODB.Connection", u"", CreaConexion},
    {u"KaloEnviroment.Ambiente", u"", CreaAmbiente},
};

}  // namespace

std::shared_ptr<Objeto> CreaObjeto(const QString& idDePrograma) {
    const QString id = idDePrograma.trimmed();
    if (auto propio = CreaObjetoRegistrado(id)) return propio;
    for (const Clase& c : kClases) {
        const QStringView idDeClase(c.idDeClase);
        if (id.compare(QStringView(c.idDePrograma), Qt::CaseInsensitive) == 0 ||
            (!idDeClase.isEmpty() && id.compare(idDeClase, Qt::CaseInsensitive) == 0))
            return c.crea();
    }
    Lanza(err::kNoPuedeCrearObjeto, idDePrograma);
}

}  // namespace kalo
