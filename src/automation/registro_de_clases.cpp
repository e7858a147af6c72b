#include "automation/registro_de_clases.h"

#include <QHash>
#include <mutex>

namespace kalo {

namespace {

struct Registro {
    std::mutex mutex;
    QHash<QString, FabricaDeObjetos> clases;  // by case-folded identifier
};

Registro& ElRegistro() {
    static Registro registro;
    return registro;
}

}  // namespace

void RegistraClase(const QString& idDePrograma, FabricaDeObjetos fabrica) {
    Registro& r = ElRegistro();
    const QString clave = idDePrograma.trimmed().toCaseFolded();
    std::lock_guard bloqueo(r.mutex);
    if (fabrica)
        r.clases.insert(clave, std::move(fabrica));
    else
        r.clases.remove(clave);
}

std::shared_ptr<Objeto> CreaObjetoRegistrado(const QString& idDePrograma) {
    Registro& r = ElRegistro();
    FabricaDeObjetos fabrica;
    {
        std::lock_guard bloqueo(r.mutex);
        auto it = r.clases.constFind(idDePrograma.trimmed().toCaseFolded());
        if (it == r.clases.cend()) return nullptr;
        fabrica = *it;
    }
    // Outside the lock: a host's constructor may create objects itself.
    std::shared_ptr<Objeto> objeto = fabrica();
    if (!objeto) Lanza(err::kNoPuedeCrearObjeto, idDePrograma);
    return objeto;
}

}  // namespace kalo
