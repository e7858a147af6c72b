// State and document lifecycle: creation defaults, and every lifecycle step
// recorded first, then carried out by the drawing-target layer.

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "core/privado.h"
#include "kaloimpresora/utilerias.h"
#include "runtime/aplicacion.h"
#include "runtime/unidades.h"
#include "spool/conexion.h"
#include "target/modulo4.h"

namespace kalo {

using namespace Qt::StringLiterals;

// Creation sets these in this order; everything else starts zero, empty,
// false or none.
Impresora::Impresora() {
    FormaAlto(11);
    FormaAncho(8.5);
    nCol = 80;
    nRow = 66;
    QString estilo = QString::fromUtf16(kEstiloPredeterminado);
    EstiloImpresion(estilo);
}

void Impresora::ControlhWndImpresora(int32_t& /*hwnForm*/) {
    // Deliberately discarded: the form-style routine must always see 0.
    controlhWnd_ = 0;
}

void Impresora::IniciaDocumento() {
    if (Archivo) Paginas = 1;
    RegistraComando(*this, u"IniciaDocumento"_s);
    if (Imagen1) {
        escalaGuardadaImagen1_ = CInt(Imagen1->Lee(u"ScaleMode"_s));
        Imagen1->Asigna(u"ScaleMode"_s, escala::kPulgadas);
    }
    AseguraAplicacion();
    modulo4::IniciaDestino(Imagen2, Variant(!Pantalla), Variant(FormaAncho()), Variant(FormaAlto()));
}

void Impresora::PaginaNueva() {
    if (Archivo) {
        if (Paginas == INT32_MAX) Lanza(err::kDesbordamiento, u"Impresora.PaginaNueva"_s);
        ++Paginas;
    }
    RegistraComando(*this, u"PaginaNueva"_s);
    modulo4::AvanzaPagina();
}

void Impresora::FinDocumento() {
    RegistraComando(*this, u"FinDocumento"_s);
    modulo4::TerminaDestino();
    if (Imagen1) Imagen1->Asigna(u"ScaleMode"_s, escalaGuardadaImagen1_);
    // Leaves the spool file complete on its own, ready to be copied.
    if (auto conexion = std::dynamic_pointer_cast<ConexionDeReporte>(sq)) conexion->Consolida();
}

void Impresora::Copias(int32_t& nCopias) {
    if (!Pantalla) modulo4::AsignaCopias(Variant(nCopias));
}

void Impresora::BorraArchivo() {
    try {
        if (UtileriasCompartidas().EsVacio(Variant(strTemp))) return;
        const QFileInfo info(strTemp);
        const QString nombre = info.fileName();
        if (nombre.contains(u'*') || nombre.contains(u'?')) {
            QDir carpeta = info.dir();
            for (const QString& f : carpeta.entryList({nombre}, QDir::Files)) QFile::remove(carpeta.filePath(f));
        } else if (info.isFile()) {
            QFile::remove(strTemp);
        }
    } catch (...) {
    }
}

void Impresora::Eventos() {
    if (QCoreApplication::instance()) QCoreApplication::processEvents();
}

}  // namespace kalo
