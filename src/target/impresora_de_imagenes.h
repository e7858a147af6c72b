#pragma once

// A printer object whose pages are images: the same members as the system
// printer, with pages painted on white QImages of the whole sheet (no
// unprintable border) at a chosen resolution, starting on Letter portrait.
// Each finished page goes to the given function and is not kept, so a long
// job needs no more memory than one page.

#include <QImage>
#include <QPageLayout>
#include <functional>
#include <memory>

#include "target/impresora_comun.h"

namespace kalo {

class ImpresoraDeImagenes : public ImpresoraComun {
public:
    // Receives each finished page with its number within the job (1 for the
    // first); the image is only lent for the call.
    using EntregaDePagina = std::function<void(const QImage& pagina, int numeroEnElTrabajo)>;

    // puntosPorPulgada: the pages' resolution, 1 to 2400.
    static std::shared_ptr<ImpresoraDeImagenes> Crea(int puntosPorPulgada, EntregaDePagina entrega);

    // A job still open hands over its last page.
    ~ImpresoraDeImagenes() override;

protected:
    QPageLayout Hoja() const override { return hoja_; }
    void CambiaHoja(const QPageSize& hoja, QPageLayout::Orientation orientacion) override;
    QSize AreaDibujable() const override;
    double Resolucion() const override { return ppp_; }
    void IniciaTrabajo() override;
    void PasaPagina() override;
    void CierraTrabajo(bool entrega, int32_t paginas) override;

private:
    ImpresoraDeImagenes(int puntosPorPulgada, EntregaDePagina entrega);

    void ComienzaPagina();
    QImage TerminaPagina();

    int ppp_;
    EntregaDePagina entrega_;
    QPageLayout hoja_;
    QImage enCurso_;
};

}  // namespace kalo
